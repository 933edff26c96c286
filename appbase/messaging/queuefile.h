// Files of messages that wait for an application to start. docs/formats/queue.md describes them byte by byte.
//
// Exported for the application object and the tools, not installed.
#pragma once

#include "platform/system/fd.h"
#include "platform/system/filelock.h"
#include "platform/tyxexport.h"
#include "platform/values/qcstring.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <chrono>

namespace queue {

inline constexpr QByteArrayView kApplicationChannels = "TYX/Application/"; // plus a program's name or a process id
inline constexpr char kFilePrefix[] = "/tmp/qcop-msg-"; // plus what follows kApplicationChannels

// What waited longer is nothing that its sender still expects an answer to.
inline constexpr std::chrono::seconds kMaxAge{60};

// As much as the bus keeps for an application that runs and does not read.
inline constexpr qint64 kMaxFileBytes = qint64{4} << 20;

struct Record {
    QCString channel;
    QCString message;
    QByteArray data;

    friend bool operator==(const Record &, const Record &) = default;
};

// What a file holds. Records are good up to the first damage, and nothing behind it can be told apart from it.
struct Contents {
    QList<Record> records;
    bool damaged = false;
};

TYX_EXPORT QByteArray encode(const Record &record);
TYX_EXPORT Contents decode(const QByteArray &bytes);

// A file as it is at this moment, looked at without its lock: a lock would make senders drop their messages.
struct Glance {
    Contents contents;
    qint64 bytes = 0;
    std::chrono::system_clock::time_point modified;
};
TYX_EXPORT platform::Result<Glance> glance(const QByteArray &name);

// The file of an application (its name or process id), locked: nobody else appends to it or takes it meanwhile.
//
// EWOULDBLOCK is somebody else's lock. A name with a slash, a link, a file with a second name and everything that is no
// regular file (nothing is waited for) are an open() that failed.
class TYX_EXPORT LockedFile {
public:
    using TimePoint = std::chrono::system_clock::time_point;

    LockedFile(LockedFile &&other) noexcept;
    LockedFile &operator=(LockedFile &&other) noexcept;
    ~LockedFile();

    // For a sender: made when it is missing, emptied when it was last modified more than kMaxAge before `now`.
    static platform::Result<LockedFile> forAppending(const QByteArray &name, TimePoint now);

    // For the application: ENOENT when nothing waits, ESTALE when somebody else just took it.
    static platform::Result<LockedFile> forTaking(const QByteArray &name);

    // The file holds all of the record or, on a full disk or over kMaxFileBytes (EFBIG), what it held before.
    platform::Result<> append(const Record &record);

    [[nodiscard]] platform::Result<Contents> read() const;

    // Removes the file and then unlocks it, so that who waits for it finds it gone instead of writing into nowhere. One
    // that belongs to somebody else, where only owners may remove files, is emptied.
    platform::Result<> remove() &&;

private:
    LockedFile(QByteArray path, platform::Fd fd, platform::FileLock lock, qint64 size);
    static platform::Result<LockedFile> lock(const QByteArray &path, platform::Fd fd);
    static platform::Result<LockedFile> openOrCreate(const QByteArray &path);
    platform::Result<> discardOlderThan(TimePoint oldest);

    QByteArray m_path;
    platform::Fd m_fd;
    platform::FileLock m_lock; // behind the descriptor, so that it goes first
    qint64 m_size;
};

// All that waits for the application, in the order in which it was sent; its file is gone. What could not be had, and
// what was damaged, is told in one line on standard error.
TYX_EXPORT QList<Record> take(const QByteArray &name);

}
