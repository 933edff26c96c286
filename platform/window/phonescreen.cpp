#include "platform/window/phonescreen.h"

#include <QFile>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

using platform::failed;
using platform::Fd;
using platform::FileLock;
using platform::Result;

namespace phonescreen {

namespace {

QString fallbackDirectory() { return QStringLiteral("/tmp/tyx-run-%1").arg(getuid()); }

QString directoryName()
{
    const QString given = QFile::decodeName(qgetenv("XDG_RUNTIME_DIR"));
    return given.startsWith(u'/') ? given : fallbackDirectory();
}

// /tmp is everybody's: a directory that somebody else laid there is not ours to trust.
Result<> makePrivate(const QByteArray &path)
{
    struct stat status { };
    if (mkdir(path.constData(), 0700) != 0 && errno != EEXIST)
        return failed("mkdir");
    if (lstat(path.constData(), &status) != 0)
        return failed("lstat");
    if (!S_ISDIR(status.st_mode) || status.st_uid != getuid() || (status.st_mode & 077) != 0)
        return failed("lstat", EPERM);
    return {};
}

Result<> connectOnce(const QByteArray &path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (static_cast<std::size_t>(path.size()) >= sizeof address.sun_path)
        return failed("connect", ENAMETOOLONG);
    std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
    const Fd socket = Fd::own(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!socket)
        return failed("socket");
    if (::connect(socket.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0)
        return failed("connect");
    return {};
}

}

Result<QString> runtimeDirectory()
{
    const QString directory = directoryName();
    if (directory == fallbackDirectory()) {
        if (const auto made = makePrivate(QFile::encodeName(directory)); !made)
            return tl::make_unexpected(made.error());
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(directory));
    }
    return directory;
}

QString socketPath() { return directoryName() + u'/' + QLatin1String(kSocketName); }

bool waitForServer(std::chrono::milliseconds limit)
{
    using namespace std::chrono_literals;
    const QByteArray path = QFile::encodeName(socketPath());
    const auto deadline = std::chrono::steady_clock::now() + limit;
    // The file exists before the server listens on it, so watching the directory would not tell enough.
    while (!connectOnce(path)) {
        if (std::chrono::steady_clock::now() >= deadline)
            return false;
        std::this_thread::sleep_for(5ms);
    }
    return true;
}

Claim::Claim(Fd file, FileLock lock) : m_file(std::move(file)), m_lock(std::move(lock)) { }

Result<Claim> Claim::take()
{
    const QByteArray path = QFile::encodeName(socketPath() + QStringLiteral(".server"));
    auto file = Fd::open(path.constData(), O_RDWR | O_CREAT | O_NOFOLLOW, 0600);
    if (!file)
        return tl::make_unexpected(file.error());
    auto lock = FileLock::exclusive(file->get(), FileLock::Wait::No);
    if (!lock)
        return tl::make_unexpected(lock.error());
    return Claim(std::move(*file), std::move(*lock));
}

}
