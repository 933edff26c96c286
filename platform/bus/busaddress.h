// Where the bus has its socket, and who may use it.
#pragma once

#include "platform/system/fd.h"

#include <QByteArray>
#include <QByteArrayView>
#include <sys/types.h>

namespace platform::bus {

// $XDG_RUNTIME_DIR/tyx-bus, or, when that is unset or empty, /tmp/tyx-<user id>/tyx-bus. The folder must be there,
// be named from the root, and not let everybody pose as the bus.
Result<QByteArray> standardSocket();

// As above for the server: makes the folder under /tmp (mode 0700) when it is missing. A given folder must belong to us
// or root; its group may write there only if the bus is shared with a group.
Result<QByteArray> makeStandardSocket(bool shared = false);

struct Listener {
    Fd socket;
    Fd lock; // the socket is ours while this lives
    QByteArray path;
};

// A listening socket at `path`. A socket that a crashed broker left is replaced; EADDRINUSE when a broker is alive.
// With a group its members may connect (mode 0660), else only the same user and root (0600). The path has at most 103
// bytes: the socket is made under a name that is 4 longer.
Result<Listener> listenAt(const QByteArray &path, const QByteArray &group);

// EACCES when the server is not run by this user, root, or the owner of the socket's folder.
Result<Fd> connectTo(const QByteArray &path);

struct PeerIdentity {
    quint32 pid = 0;
    uid_t user = 0;
};

// Who is at the other end; EACCES unless that is the same user, root, or a member of the group (if there is one).
Result<PeerIdentity> identify(int socket, const QByteArray &group);

}
