// What is compared: buses that carry bytes to everybody who joined a channel. Every broker and every endpoint is a
// process of its own; nothing here is made before the fork.
#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>

namespace bench {

class Endpoint {
public:
    virtual ~Endpoint() = default;

    virtual void join(const std::string &channel) = 0; // one a process; counts for everybody on return
    virtual void send(const std::string &channel, std::span<const char> data) = 0;
    virtual void run() = 0; // calls onMessage for each message, until stop()
    virtual void stop() = 0;
    std::function<void(std::span<const char> data)> onMessage;
};

struct Bus {
    const char *name;
    void (*serve)(int readyFd); // the broker's process: writes a byte when it listens; never returns
    std::unique_ptr<Endpoint> (*connect)();
};

extern const Bus kFloor; // raw sockets through a broker that does the least that can be done: a write for each frame
extern const Bus kBatchedFloor; // the same, but one write for each receiver and wake-up
extern const Bus kTyx;
extern const Bus kSdBus; // sd-bus over dbus-daemon
extern const Bus kQtDBus; // QtDBus over dbus-daemon

// For both of them; never returns.
void serveDBus(int readyFd);
extern const char *const kDBusAddress;
inline constexpr auto kDBusInterface = "bench.Bus";
inline constexpr auto kDBusPath = "/bench";

// The places of the sockets, in a folder of this run.
extern const char *const kFloorSocket;

[[noreturn]] void die(const char *what); // with errno

void sayReady(int readyFd);

}
