// The broker of the message bus: one a phone, in the GUI server's process.
//
// Clients connect to its Unix socket and register channels; it passes every message to every client that registered the
// message's channel, the sender included, and keeps the order of each sender. It needs no window system, so tests and
// tools host one alone. All its descriptors are in one epoll set behind one QSocketNotifier; a wake-up reads from each
// ready client once, and then writes once to each client that got something.
//
// Used from one thread. The client side of the same process (QCopChannel) reaches it by direct calls, see BusHostSink.
#pragma once

#include "platform/bus/buslimits.h"
#include "platform/system/result.h"
#include "platform/tyxexport.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <chrono>
#include <memory>
#include <utility>

namespace platform {

namespace bus {
struct Message;
}

struct BusOptions {
    QByteArray socketPath = {}; // empty: the standard place, which all clients know
    QByteArray group = {}; // members of this group may connect too; empty: only this user and root
    std::chrono::milliseconds greetingWait = bus::kGreetingWait;
    std::chrono::milliseconds farewellWait = bus::kFarewellWait;
    std::chrono::milliseconds endingWait = bus::kEndingWait;
};

// Takes the messages for the broker's own process. Called while the broker is at work: it may only remember them.
class BusHostSink {
public:
    virtual void take(const bus::Message &message) = 0;

protected:
    ~BusHostSink() = default;
};

class TYX_EXPORT BusBroker {
public:
    // Fails with EADDRINUSE when a broker is alive at that place already. With a QCoreApplication the broker works from
    // its event loop; otherwise, and at any time, from process().
    static Result<std::unique_ptr<BusBroker>> listen(const BusOptions &options = {});
    // Waits a moment (BusOptions::endingWait) for clients that are slow to read what was sent to them.
    ~BusBroker();
    BusBroker(const BusBroker &) = delete;
    BusBroker &operator=(const BusBroker &) = delete;

    // The broker that this process hosts at the standard place, or null.
    static BusBroker *hosted();

    [[nodiscard]] QByteArray socketPath() const;

    // Does what is to be done, after waiting for it for at most the given time (negative: without end).
    void process(std::chrono::milliseconds wait = {});

    [[nodiscard]] bool isRegistered(QByteArrayView channel) const;
    [[nodiscard]] QList<std::pair<QByteArray, quint32>> registrations() const; // (channel, process id), sorted

    // The broker's own process as a client: what it sends is passed on before the call returns.
    void setHostSink(BusHostSink *sink);
    void registerForHost(QByteArrayView channel);
    void unregisterForHost(QByteArrayView channel);
    void sendFromHost(const bus::Message &message);

    // Writes out what clients have not taken yet, for at most the given time: for a process that is about to end.
    void flush(std::chrono::milliseconds limit);

private:
    struct TYX_HIDDEN Data;
    explicit BusBroker(std::unique_ptr<Data> data);

    std::unique_ptr<Data> d;
};

}
