#include "platform/bus/busaddress.h"

#include "platform/bus/buslimits.h"

#include <QList>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <grp.h>
#include <optional>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace platform::bus {

namespace {

constexpr auto kSocketName = "/tyx-bus";
constexpr int kWaitingConnections = 128; // a phone that starts all its programs at once

// A folder that anybody may write to (/tmp itself) would let anybody pose as the bus.
Result<> checkGivenFolder(const char *folder)
{
    struct stat info = {};
    if (stat(folder, &info) != 0)
        return failed("runtime folder named by XDG_RUNTIME_DIR");
    if (!S_ISDIR(info.st_mode))
        return failed("runtime folder named by XDG_RUNTIME_DIR", ENOTDIR);
    if (*folder != '/')
        return failed("runtime folder named by XDG_RUNTIME_DIR is not named from the root", EINVAL);
    if ((info.st_mode & S_IWOTH) != 0)
        return failed("runtime folder named by XDG_RUNTIME_DIR is writable for everybody", EPERM);
    return {};
}

// The server's: clients of a shared bus may use a folder of another user, see isTrusted().
Result<> checkServedFolder(const char *folder, bool shared)
{
    struct stat info = {};
    if (stat(folder, &info) != 0)
        return failed("runtime folder named by XDG_RUNTIME_DIR");
    if (info.st_uid != geteuid() && info.st_uid != 0)
        return failed("runtime folder named by XDG_RUNTIME_DIR belongs to another user", EPERM);
    if ((info.st_mode & S_IWGRP) != 0 && !shared)
        return failed("runtime folder named by XDG_RUNTIME_DIR is writable for its group", EPERM);
    return {};
}

// Its name can be guessed, so it must be a real folder, ours, and closed to all others.
Result<> checkOwnFolder(const QByteArray &folder)
{
    struct stat info = {};
    if (lstat(folder.constData(), &info) != 0)
        return failed("runtime folder under /tmp");
    if (!S_ISDIR(info.st_mode) || info.st_uid != geteuid() || (info.st_mode & 077) != 0)
        return failed("runtime folder under /tmp is not ours alone", EPERM);
    return {};
}

std::optional<QByteArray> givenFolder()
{
    const QByteArray folder = qgetenv("XDG_RUNTIME_DIR");
    return folder.isEmpty() ? std::nullopt : std::optional(folder);
}

QByteArray ownFolder() { return QByteArrayLiteral("/tmp/tyx-") + QByteArray::number(geteuid()); }

Result<sockaddr_un> socketAddress(const QByteArray &path)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (path.size() >= qsizetype(sizeof address.sun_path))
        return failed("socket path", ENAMETOOLONG);
    std::memcpy(address.sun_path, path.constData(), size_t(path.size()));
    return address;
}

// glibc's interface: every address travels as its first member's type.
const sockaddr *generic(const sockaddr_un &address) { return reinterpret_cast<const sockaddr *>(&address); }

Result<Fd> streamSocket(int flags)
{
    Fd fd = Fd::own(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | flags, 0));
    if (!fd)
        return failed("socket");
    return fd;
}

// Where the socket is made, before it is moved to its place.
QByteArray makingPath(const QByteArray &path) { return path + ".new"; }

Result<Fd> lockFor(const QByteArray &path)
{
    const QByteArray name = path + ".lock";
    auto lock = Fd::open(name.constData(), O_RDWR | O_CREAT | O_NOFOLLOW, 0600);
    if (lock && flock(lock->get(), LOCK_EX | LOCK_NB) != 0)
        return errno == EWOULDBLOCK ? failed("lock of the bus", EADDRINUSE) : failed("flock");
    return lock;
}

Result<gid_t> groupId(const QByteArray &group)
{
    const ::group *entry = getgrnam(group.constData());
    if (entry == nullptr)
        return failed("group of the bus is not known", ENOENT);
    return entry->gr_gid;
}

// Clients find a socket that already listens, or none: it is made under another name and moved.
Result<> bindListening(int fd, const QByteArray &path, const QByteArray &group)
{
    const QByteArray making = makingPath(path);
    const auto address = socketAddress(making);
    if (!address)
        return tl::make_unexpected(address.error());
    ::unlink(making.constData());
    // Before bind: at no time is the socket open to more users than it should be.
    if (fchmod(fd, 0600) != 0 || bind(fd, generic(*address), sizeof *address) != 0)
        return failed("bind");
    if (!group.isEmpty()) {
        const auto id = groupId(group);
        if (!id)
            return tl::make_unexpected(id.error());
        if (chown(making.constData(), uid_t(-1), *id) != 0 || chmod(making.constData(), 0660) != 0)
            return failed("chown");
    }
    if (listen(fd, kWaitingConnections) != 0)
        return failed("listen");
    if (rename(making.constData(), path.constData()) != 0)
        return failed("rename");
    return {};
}

// The groups that the kernel noted when the peer connected; no look-up that another answer could come from.
bool isMember(int socket, gid_t primary, gid_t group)
{
    if (primary == group)
        return true;
    QList<gid_t> groups(64);
    auto size = socklen_t(groups.size() * qsizetype(sizeof(gid_t)));
    while (getsockopt(socket, SOL_SOCKET, SO_PEERGROUPS, groups.data(), &size) != 0) {
        if (errno != ERANGE)
            return false;
        groups.resize(qsizetype(size / sizeof(gid_t)));
    }
    groups.resize(qsizetype(size / sizeof(gid_t)));
    return groups.contains(group);
}

// Whoever owns the socket's folder can put any bus there; nobody else should have.
bool isTrusted(int socket, const QByteArray &path)
{
    ucred server = {};
    socklen_t size = sizeof server;
    if (getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &server, &size) != 0)
        return false;
    struct stat folder = {};
    return server.uid == geteuid() || server.uid == 0
        || (stat(path.first(path.lastIndexOf('/') + 1).constData(), &folder) == 0 && server.uid == folder.st_uid);
}

}

Result<QByteArray> standardSocket()
{
    const auto given = givenFolder();
    const QByteArray folder = given.value_or(ownFolder());
    if (const auto checked = given ? checkGivenFolder(folder.constData()) : checkOwnFolder(folder); !checked)
        return tl::make_unexpected(checked.error());
    return QByteArray(folder + kSocketName);
}

Result<QByteArray> makeStandardSocket(bool shared)
{
    const auto given = givenFolder();
    if (given) {
        if (const auto checked = checkServedFolder(given->constData(), shared); !checked)
            return tl::make_unexpected(checked.error());
    } else if (mkdir(ownFolder().constData(), 0700) != 0 && errno != EEXIST) {
        return failed("mkdir of the runtime folder under /tmp");
    }
    return standardSocket();
}

Result<Listener> listenAt(const QByteArray &path, const QByteArray &group)
{
    if (const auto address = socketAddress(makingPath(path)); !address)
        return tl::make_unexpected(address.error());
    auto lock = lockFor(path);
    if (!lock)
        return tl::make_unexpected(lock.error());
    auto socket = streamSocket(SOCK_NONBLOCK);
    if (!socket)
        return tl::make_unexpected(socket.error());
    if (const auto bound = bindListening(socket->get(), path, group); !bound) {
        ::unlink(makingPath(path).constData());
        return tl::make_unexpected(bound.error());
    }
    return Listener{std::move(*socket), std::move(*lock), path};
}

Result<Fd> connectTo(const QByteArray &path)
{
    const auto address = socketAddress(path);
    if (!address)
        return tl::make_unexpected(address.error());
    auto socket = streamSocket(0);
    if (!socket)
        return socket;
    // Connecting blocks only while the queue of new connections is full; a stopped server is not waited for.
    const timeval wait = {.tv_sec = kConnectWait.count() / 1000, .tv_usec = kConnectWait.count() % 1000 * 1000};
    setsockopt(socket->get(), SOL_SOCKET, SO_SNDTIMEO, &wait, sizeof wait);
    if (connect(socket->get(), generic(*address), sizeof *address) != 0)
        return failed("connect");
    if (!isTrusted(socket->get(), path))
        return failed("server of the bus", EACCES);
    if (fcntl(socket->get(), F_SETFL, O_NONBLOCK) != 0)
        return failed("fcntl");
    return socket;
}

Result<PeerIdentity> identify(int socket, const QByteArray &group)
{
    ucred peer = {};
    socklen_t size = sizeof peer;
    if (getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0)
        return failed("getsockopt");
    const PeerIdentity identity{quint32(peer.pid), peer.uid};
    if (peer.uid == geteuid() || peer.uid == 0)
        return identity;
    const auto id = group.isEmpty() ? Result<gid_t>(failed("user of the bus", EACCES)) : groupId(group);
    if (!id || !isMember(socket, peer.gid, *id))
        return failed("user of the bus", EACCES);
    return identity;
}

}
