#include "appbase/messaging/queuefile.h"

#include "appbase/messaging/wire.h"

#include <QFile>
#include <algorithm>
#include <chrono>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace queue {

using platform::failed;
using platform::Fd;
using platform::FileLock;
using platform::Result;

namespace {

// Every process of the phone, whoever it runs as, writes there.
constexpr mode_t kMode = 0666;

// A link would lead elsewhere; a FIFO would be waited for.
constexpr int kCarefully = O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;

Result<QByteArray> pathOf(const QByteArray &name)
{
    if (name.contains('/') || name.contains('\0'))
        return failed("open", EINVAL); // it would lead out of the folder
    return kFilePrefix + name;
}

Result<struct stat> statusOf(const Fd &fd)
{
    struct stat status = {};
    if (::fstat(fd.get(), &status) != 0)
        return failed("fstat");
    if (!S_ISREG(status.st_mode) || status.st_nlink > 1)
        return failed("open", EINVAL);
    return status;
}

// From 1970 to 2262: a file may bear any date, and the nanoseconds of others are no number.
std::chrono::system_clock::time_point modified(const struct stat &status)
{
    using namespace std::chrono;
    constexpr auto kLast = duration_cast<seconds>(nanoseconds::max()) - 1s;
    const auto whole = std::clamp(seconds(status.st_mtim.tv_sec), seconds::zero(), kLast);
    const nanoseconds since = whole + nanoseconds(status.st_mtim.tv_nsec);
    return system_clock::time_point(duration_cast<system_clock::duration>(since));
}

Result<Contents> readContents(const Fd &fd)
{
    QFile file;
    if (!file.open(fd.get(), QIODevice::ReadOnly | QIODevice::Unbuffered, QFileDevice::DontCloseHandle))
        return failed("read");
    const QByteArray bytes = file.read(kMaxFileBytes + 1);
    if (file.error() != QFileDevice::NoError)
        return failed("read", EIO);
    Contents contents = decode(bytes.first(std::min(bytes.size(), qsizetype{kMaxFileBytes})));
    contents.damaged |= bytes.size() > kMaxFileBytes;
    return contents;
}

}

QByteArray encode(const Record &record) { return wire::pack(record.channel, record.message, record.data); }

Contents decode(const QByteArray &bytes)
{
    Contents contents;
    wire::Reader reader(bytes);
    while (!reader.atEnd()) {
        Record record;
        reader.cstring(record.channel);
        reader.cstring(record.message);
        reader.bytes(record.data);
        // No sender leaves the channel out; the zeros that a power cut leaves in a file would.
        contents.damaged = !reader.ok() || record.channel.isNull();
        if (contents.damaged)
            break;
        contents.records.append(std::move(record));
    }
    return contents;
}

Result<Glance> glance(const QByteArray &name)
{
    const auto path = pathOf(name);
    if (!path)
        return tl::make_unexpected(path.error());
    const auto fd = Fd::open(path->constData(), O_RDONLY | kCarefully);
    if (!fd)
        return tl::make_unexpected(fd.error());
    const auto status = statusOf(*fd);
    if (!status)
        return tl::make_unexpected(status.error());
    return readContents(*fd).map([&](Contents &&contents) {
        return Glance{std::move(contents), status->st_size, modified(*status)};
    });
}

LockedFile::LockedFile(QByteArray path, Fd fd, FileLock lock, qint64 size)
    : m_path(std::move(path)), m_fd(std::move(fd)), m_lock(std::move(lock)), m_size(size)
{
}

LockedFile::LockedFile(LockedFile &&other) noexcept = default;
LockedFile &LockedFile::operator=(LockedFile &&other) noexcept = default;
LockedFile::~LockedFile() = default;

// Whoever gets the lock looks whether the file was removed by the one who held it before.
Result<LockedFile> LockedFile::lock(const QByteArray &path, Fd fd)
{
    auto lock = FileLock::exclusive(fd.get(), FileLock::Wait::No);
    if (!lock)
        return tl::make_unexpected(lock.error());
    const auto status = statusOf(fd);
    if (!status)
        return tl::make_unexpected(status.error());
    if (status->st_nlink == 0)
        return failed("open", ESTALE);
    return LockedFile(path, std::move(fd), std::move(*lock), status->st_size);
}

// Existing files are opened without O_CREAT: in a sticky folder the kernel refuses it for another user's file.
Result<LockedFile> LockedFile::openOrCreate(const QByteArray &path)
{
    constexpr int kAppend = O_WRONLY | O_APPEND | kCarefully;
    auto fd = Fd::open(path.constData(), kAppend);
    if (!fd && fd.error().number == ENOENT) {
        fd = Fd::open(path.constData(), kAppend | O_CREAT | O_EXCL, kMode);
        if (fd && ::fchmod(fd->get(), kMode) != 0) // whatever the umask
            return failed("fchmod");
        if (!fd && fd.error().number == EEXIST) // another sender was faster
            fd = Fd::open(path.constData(), kAppend);
    }
    if (!fd)
        return tl::make_unexpected(fd.error());
    return lock(path, std::move(*fd));
}

Result<LockedFile> LockedFile::forAppending(const QByteArray &name, TimePoint now)
{
    const auto path = pathOf(name);
    if (!path)
        return tl::make_unexpected(path.error());
    auto file = openOrCreate(*path);
    if (!file && file.error().number == ESTALE)
        file = openOrCreate(*path); // once: a file that is always gone has a taker
    if (!file)
        return file;
    if (const auto discarded = file->discardOlderThan(now - kMaxAge); !discarded)
        return tl::make_unexpected(discarded.error());
    return file;
}

Result<> LockedFile::discardOlderThan(TimePoint oldest)
{
    const auto status = statusOf(m_fd);
    if (!status)
        return tl::make_unexpected(status.error());
    if (modified(*status) >= oldest)
        return {};
    if (::ftruncate(m_fd.get(), 0) != 0)
        return failed("ftruncate");
    m_size = 0;
    return {};
}

Result<LockedFile> LockedFile::forTaking(const QByteArray &name)
{
    const auto path = pathOf(name);
    if (!path)
        return tl::make_unexpected(path.error());
    auto fd = Fd::open(path->constData(), O_RDONLY | kCarefully);
    if (!fd)
        return tl::make_unexpected(fd.error());
    return lock(*path, std::move(*fd));
}

Result<> LockedFile::append(const Record &record)
{
    const QByteArray bytes = encode(record);
    if (m_size + bytes.size() > kMaxFileBytes)
        return failed("write", EFBIG);
    auto written = platform::writeAll(m_fd.get(), std::as_bytes(std::span(bytes)));
    if (written)
        m_size += bytes.size();
    else // half a record would take those behind it along
        std::ignore = ::ftruncate(m_fd.get(), m_size);
    return written;
}

Result<Contents> LockedFile::read() const { return readContents(m_fd); }

Result<> LockedFile::remove() &&
{
    const LockedFile held = std::move(*this);
    if (::unlink(held.m_path.constData()) == 0)
        return {};
    const auto refused = failed("unlink");
    const auto fd = Fd::open(held.m_path.constData(), O_WRONLY | kCarefully);
    if (!fd || ::ftruncate(fd->get(), 0) != 0)
        return refused;
    return {};
}

QList<Record> take(const QByteArray &name)
{
    const auto complain = [&](const QString &what) {
        qWarning("queue: %s%s: %s", kFilePrefix, name.constData(), qPrintable(what));
    };
    auto file = LockedFile::forTaking(name);
    if (!file) {
        const int error = file.error().number;
        if (error != ENOENT && error != ESTALE && error != EWOULDBLOCK)
            complain(file.error().text());
        return {};
    }
    const auto contents = file->read();
    if (!contents) {
        complain(contents.error().text());
        return {};
    }
    if (const auto removed = std::move(*file).remove(); !removed)
        complain(removed.error().text() + QStringLiteral("; its messages will come again"));
    else if (contents->damaged)
        complain(QStringLiteral("damaged behind message %1, the rest is dropped").arg(contents->records.size()));
    return contents->records;
}

}
