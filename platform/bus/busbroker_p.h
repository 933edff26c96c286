// What the broker keeps. The sockets' side is in busbroker.cpp, the clients' requests are in busservice.cpp.
#pragma once

#include "platform/bus/busbroker.h"
#include "platform/bus/busloop.h"
#include "platform/bus/buspeer.h"
#include "platform/bus/busroutes.h"
#include "platform/bus/warninglimit.h"

#include <sys/epoll.h>
#include <vector>

namespace platform {

struct BusBroker::Data {
    using Peer = bus::Peer;

    Data(BusOptions opts, bus::Listener listening);
    ~Data();

    Result<> watchAll();
    void process(int waitMs);

    // Sockets
    bool watch(int operation, int fd, quint32 events, void *whose);
    void rewatch(const Peer &peer);
    void acceptAll();
    void admit(Fd socket);
    void refuse(Fd socket, const char *reason);
    void onEvent(const epoll_event &event);
    void receive(Peer &peer);
    void write(Peer &peer);
    void finishWakeUp(); // every change of peers ends here
    void remove(Peer &peer);
    void expire();
    void armTimer();

    // Requests
    bool handle(Peer &peer, const bus::Frame &frame); // false: the peer was sent away
    bool greet(Peer &peer, const bus::Frame &frame);
    bool serve(Peer &peer, const bus::Frame &frame);
    bool addChannel(Peer &peer, QByteArrayView channel);
    void removeChannel(Peer &peer, QByteArrayView channel);
    void route(const Peer &from, const bus::Frame &frame, const bus::Message &message);
    void tellObservers(const Peer &from, const bus::Frame &frame);
    void list(Peer &peer, quint32 token);
    void push(Peer &peer, QByteArrayView frame);
    void touch(Peer &peer); // after something was put into its send buffer
    void dismiss(Peer &peer, const char *reason);
    void forget(Peer &peer);
    void warn(const QByteArray &text);

    BusOptions options;
    bus::Listener listener;
    Fd epoll;
    Fd timer;
    bool accepting = true; // not while the process has no descriptors left
    bool standard = false;
    std::unique_ptr<bus::LoopWatch> loopWatch;

    std::vector<std::unique_ptr<Peer>> peers;
    Peer host;
    BusHostSink *sink = nullptr;
    bus::Routes routes;
    QList<Peer *> observers;
    QList<Peer *> touched;
    bool someGone = false;
    bus::WarningLimit warnings;
    QByteArray scratch; // one read of any peer
};

}
