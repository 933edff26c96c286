#include "platform/window/phonescreen.h"

#include "platform/bus/busaddress.h"

#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>

using platform::failed;
using platform::Fd;
using platform::LockedFile;
using platform::Result;

namespace phonescreen {

namespace {

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

Result<> prepareDirectory()
{
    const auto bus = platform::bus::makeStandardSocket();
    if (!bus)
        return tl::make_unexpected(bus.error());
    qputenv("XDG_RUNTIME_DIR", QFileInfo(QFile::decodeName(*bus)).path().toLocal8Bit());
    return {};
}

QString socketPath() { return qEnvironmentVariable("XDG_RUNTIME_DIR") + u'/' + QLatin1String(kSocketName); }

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

Result<LockedFile> claim()
{
    const QByteArray path = QFile::encodeName(socketPath() + QStringLiteral(".server"));
    return LockedFile::open(path.constData(), O_RDWR | O_CREAT | O_NOFOLLOW, 0600);
}

}
