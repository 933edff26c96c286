// Replaces a file so that its readers, a power cut or a kill find the old one or the new one, whole.
#pragma once

#include "platform/system/fd.h"
#include "platform/system/filelock.h"
#include "platform/system/result.h"
#include "platform/tyxexport.h"

#include <QByteArray>
#include <QString>
#include <cstddef>
#include <span>
#include <sys/types.h>

namespace platform {

// One replacement in progress: begin, write, sync, publish. Dropped before publish() it removes its temporary file and
// the old file stays. The temporary is the file's name with ".new" appended. All writers of a file share that name, so
// it is locked until the rename: they follow one another, and the last one wins.
//
// What stands at the temporary's name is removed when no living writer holds it (a killed one left it behind); a
// symbolic link, a directory or a device there is an error. A symbolic link at the file's own name is replaced by the
// file, and what it pointed to is not touched.
class FileReplacement {
public:
    // Creates the temporary with `mode`, whatever the umask. Waits 300 ms at most for other writers, all in all;
    // EWOULDBLOCK says that somebody still holds it (whoever may read the temporary can).
    static Result<FileReplacement> begin(const QString &path, mode_t mode);

    FileReplacement(FileReplacement &&) noexcept = default;
    FileReplacement &operator=(FileReplacement &&) = delete;
    ~FileReplacement();

    Result<> write(std::span<const std::byte> bytes); // appends; after a failure nothing more can be done here
    Result<> sync(); // ends writing: all bytes are on the disk, and nothing that was deferred has failed
    Result<> publish(); // after sync(): the rename, then fsync of the directory.

private:
    FileReplacement(Fd file, FileLock lock) : m_file(std::move(file)), m_lock(std::move(lock)) { }
    static Result<FileReplacement> createLocked(const QByteArray &temporary, mode_t mode);
    static Result<FileReplacement> create(const QByteArray &temporary, mode_t mode);

    QByteArray m_path;
    QByteArray m_temporary; // empty when there is nothing to remove
    Fd m_file;
    FileLock m_lock; // on m_file
};

// All of it for bytes that are at hand. After an error of the directory's fsync the new file stands already, but may
// not survive a power cut; after any other error the old file stands. Exported for the tools.
TYX_EXPORT Result<> replaceFile(const QString &path, std::span<const std::byte> bytes, mode_t mode);

}
