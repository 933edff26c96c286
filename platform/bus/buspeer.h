// One client as the broker sees it. Decides nothing: bytes in, bytes out, and what the client asked for.
#pragma once

#include "platform/bus/busaddress.h"
#include "platform/bus/busframe.h"
#include "platform/bus/bussendbuffer.h"
#include "platform/system/fd.h"

#include <QList>
#include <chrono>

namespace platform::bus {

using Clock = std::chrono::steady_clock;

struct Peer {
    enum class Phase {
        Greeting, // connected, said nothing yet
        Serving,
        Leaving, // was sent away and is given time to read why; nothing else is read from it or sent to it
        Gone, // removed at the end of the wake-up
    };

    Phase phase = Phase::Greeting;
    Fd socket; // none: the client of the broker's own process
    PeerIdentity identity;
    FrameReader in;
    SendBuffer out;
    QList<QByteArray> channels;
    Clock::time_point deadline = Clock::time_point::max(); // of Greeting and of Leaving
    bool observes = false;
    bool touched = false; // has something to write at the end of the wake-up
    bool waitsForRoom = false; // the socket is full, epoll tells when it is not
};

}
