// Where the bus has its socket, and who may use it.
#pragma once

#include "platform/system/fd.h"

#include <QByteArray>
#include <QByteArrayView>
#include <sys/types.h>

namespace platform::bus {

// $XDG_RUNTIME_DIR/tyx-bus, or, when that is unset or empty, /tmp/tyx-<user id>/tyx-bus. The folder must be there,
// belong to nobody that could lend us a false bus, and the path must fit a socket address (107 bytes).
Result<QByteArray> standardSocket();

// As above, and makes the folder under /tmp (mode 0700) when it is missing.
Result<QByteArray> makeStandardSocket();

struct Listener {
    Fd socket;
    Fd lock; // the socket is ours while this lives
    QByteArray path;
};

// A listening socket at `path`. A socket that a crashed broker left is replaced; EADDRINUSE when a broker is alive.
// With a group its members may connect (mode 0660), else only the same user and root (0600).
Result<Listener> listenAt(const QByteArray &path, const QByteArray &group);

Result<Fd> connectTo(const QByteArray &path);

struct PeerIdentity {
    quint32 pid = 0;
    uid_t user = 0;
};

// Who is at the other end; EACCES unless that is the same user, root, or a member of the group (if there is one).
Result<PeerIdentity> identify(int socket, const QByteArray &group);

}
