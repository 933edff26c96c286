#include "platform/system/filereplace.h"

#include <QFile>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace platform {

namespace {

using Clock = std::chrono::steady_clock;

// A save holds the lock for as long as the disk takes to sync a small file. Whoever holds it longer is stopped or means
// harm (reading the file suffices to lock it), and a user interface does not wait for him.
constexpr auto kPatience = std::chrono::milliseconds(300); // of all of begin()
constexpr auto kLockPause = std::chrono::milliseconds(2);

Result<FileLock> lockUntil(Clock::time_point deadline, int fd)
{
    for (;;) {
        auto lock = FileLock::exclusive(fd, FileLock::Wait::No);
        if (lock || lock.error().number != EWOULDBLOCK || Clock::now() > deadline)
            return lock;
        std::this_thread::sleep_for(kLockPause);
    }
}

bool stillNamed(int fd, const QByteArray &path)
{
    struct stat opened = {};
    struct stat named = {};
    return ::fstat(fd, &opened) == 0 && ::lstat(path.constData(), &named) == 0 && opened.st_dev == named.st_dev
        && opened.st_ino == named.st_ino;
}

// Removes the temporary that a killed writer left behind. Its content is never reused: it may be another user's file,
// or have another name besides this one.
Result<> removeLeftover(int fd, const QByteArray &path, Clock::time_point deadline)
{
    struct stat status = {};
    if (::fstat(fd, &status) != 0)
        return failed("fstat");
    if (!S_ISREG(status.st_mode))
        return failed("open", S_ISDIR(status.st_mode) ? EISDIR : EEXIST);
    const auto lock = lockUntil(deadline, fd);
    if (!lock)
        return tl::make_unexpected(lock.error());
    if (stillNamed(fd, path) && ::unlink(path.constData()) != 0)
        return failed("unlink");
    return {};
}

// Makes the rename itself survive a power cut.
Result<> syncFolderOf(const QByteArray &path)
{
    const qsizetype slash = path.lastIndexOf('/');
    const QByteArray folder = slash < 0 ? QByteArray(".") : path.left(slash + 1);
    const auto opened = Fd::open(folder.constData(), O_RDONLY | O_DIRECTORY);
    if (!opened)
        return tl::make_unexpected(opened.error());
    if (::fsync(opened->get()) != 0)
        return failed("fsync");
    return {};
}

}

Result<FileReplacement> FileReplacement::create(const QByteArray &temporary, mode_t mode)
{
    auto file = Fd::open(temporary.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, mode);
    if (!file)
        return tl::make_unexpected(file.error());
    auto lock = FileLock::exclusive(file->get(), FileLock::Wait::No);
    if (!lock)
        return tl::make_unexpected(lock.error());
    return FileReplacement(std::move(*file), std::move(*lock));
}

// Whoever got a lock looks again whether the name still means the file that it locked.
Result<FileReplacement> FileReplacement::createLocked(const QByteArray &temporary, mode_t mode)
{
    const auto deadline = Clock::now() + kPatience;
    do {
        // O_NONBLOCK: a FIFO under this name must not stop the program. Reading suffices for the lock.
        if (const auto old = Fd::open(temporary.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK)) {
            if (const auto removed = removeLeftover(old->get(), temporary, deadline); !removed)
                return tl::make_unexpected(removed.error());
        } else if (old.error().number != ENOENT) {
            return tl::make_unexpected(old.error());
        }
        auto created = create(temporary, mode);
        if (created && stillNamed(created->m_file.get(), temporary))
            return created;
        if (!created && created.error().number != EEXIST && created.error().number != EWOULDBLOCK)
            return created;
    } while (Clock::now() <= deadline);
    return failed("flock", EWOULDBLOCK);
}

Result<FileReplacement> FileReplacement::begin(const QString &path, mode_t mode)
{
    // A name would end at a NUL, and the temporary's name would be the file's own.
    if (path.contains(QChar::Null))
        return failed("open", EINVAL);
    const QByteArray name = QFile::encodeName(path);
    auto replacement = createLocked(name + ".new", mode);
    if (!replacement)
        return replacement;
    replacement->m_path = name;
    replacement->m_temporary = name + ".new";
    if (::fchmod(replacement->m_file.get(), mode) != 0)
        return failed("fchmod");
    return replacement;
}

FileReplacement::~FileReplacement()
{
    if (!m_temporary.isEmpty())
        ::unlink(m_temporary.constData());
}

Result<> FileReplacement::write(std::span<const std::byte> bytes) { return writeAll(m_file.get(), bytes); }

Result<> FileReplacement::sync()
{
    if (::fsync(m_file.get()) != 0)
        return failed("fsync");
    // Every descriptor of a file is told of deferred failures when it closes; this one has to keep the lock.
    Fd copy = Fd::own(::fcntl(m_file.get(), F_DUPFD_CLOEXEC, 0));
    if (!copy)
        return failed("fcntl");
    return copy.close();
}

Result<> FileReplacement::publish()
{
    if (::rename(m_temporary.constData(), m_path.constData()) != 0)
        return failed("rename");
    m_temporary.clear();
    return syncFolderOf(m_path);
}

Result<> replaceFile(const QString &path, std::span<const std::byte> bytes, mode_t mode)
{
    auto replacement = FileReplacement::begin(path, mode);
    if (!replacement)
        return tl::make_unexpected(replacement.error());
    return replacement->write(bytes).and_then([&] { return replacement->sync(); }).and_then([&] {
        return replacement->publish();
    });
}

}
