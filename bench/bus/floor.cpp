// The floor: frames of a length and one letter for the channel, through a broker of a few dozen lines.
#include "bench/bus/endpoint.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <map>
#include <set>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

namespace bench {

const char *const kFloorSocket = "floor.socket";

namespace {

constexpr size_t kHead = sizeof(uint32_t) + 1;
constexpr char kJoin = 'J'; // as channel: the data's letter is joined, and the frame comes back

sockaddr_un address()
{
    sockaddr_un where = {};
    where.sun_family = AF_UNIX;
    std::strcpy(where.sun_path, kFloorSocket);
    return where;
}

void writeAll(int fd, const char *bytes, size_t size)
{
    while (size > 0) {
        const ssize_t n = send(fd, bytes, size, MSG_NOSIGNAL);
        if (n <= 0)
            return; // it has ended
        bytes += n;
        size -= size_t(n);
    }
}

std::string frame(char channel, std::span<const char> data)
{
    const auto size = uint32_t(data.size());
    std::string bytes(kHead + data.size(), channel);
    std::memcpy(bytes.data(), &size, sizeof size);
    std::memcpy(bytes.data() + kHead, data.data(), data.size());
    return bytes;
}

// Calls handle(channel, whole frame, data) for each whole frame of what one read brings. False at the end.
template <typename Handler> bool readFrames(int fd, std::vector<char> &pending, Handler handle)
{
    static std::array<char, 65536> buffer;
    const ssize_t n = read(fd, buffer.data(), buffer.size());
    if (n <= 0)
        return false;
    pending.insert(pending.end(), buffer.data(), buffer.data() + n);
    size_t at = 0;
    for (uint32_t size = 0; pending.size() - at >= kHead; at += kHead + size) {
        std::memcpy(&size, pending.data() + at, sizeof size);
        if (pending.size() - at < kHead + size)
            break;
        const std::span<const char> whole(pending.data() + at, kHead + size);
        handle(whole[kHead - 1], whole, whole.subspan(kHead));
    }
    pending.erase(pending.begin(), pending.begin() + ssize_t(at));
    return true;
}

class Broker {
public:
    Broker(int listener, bool batched) : m_listener(listener), m_batched(batched), m_epoll(epoll_create1(0))
    {
        watch(listener);
    }

    void run()
    {
        for (std::array<epoll_event, 64> events;;) {
            const int ready = epoll_wait(m_epoll, events.data(), int(events.size()), -1);
            for (int i = 0; i < ready; ++i)
                serve(events[size_t(i)].data.fd);
            for (auto &[fd, bytes] : m_batches)
                writeAll(fd, bytes.data(), bytes.size());
            m_batches.clear();
        }
    }

private:
    void watch(int fd)
    {
        epoll_event event = {.events = EPOLLIN, .data = {.fd = fd}};
        epoll_ctl(m_epoll, EPOLL_CTL_ADD, fd, &event);
    }

    void serve(int fd)
    {
        if (fd == m_listener)
            return watch(accept(fd, nullptr, nullptr));
        const bool there = readFrames(fd, m_pending[fd], [&](char channel, auto whole, auto data) {
            if (channel == kJoin) {
                m_receivers[data[0]].insert(fd);
                return writeAll(fd, whole.data(), whole.size());
            }
            for (const int receiver : m_receivers[channel]) {
                if (m_batched)
                    m_batches[receiver].append(whole.data(), whole.size());
                else
                    writeAll(receiver, whole.data(), whole.size());
            }
        });
        if (!there)
            close(fd);
    }

    int m_listener;
    bool m_batched;
    int m_epoll;
    std::map<int, std::vector<char>> m_pending;
    std::map<char, std::set<int>> m_receivers;
    std::map<int, std::string> m_batches;
};

void serveFloor(int readyFd, bool batched)
{
    const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
    const sockaddr_un where = address();
    unlink(kFloorSocket);
    if (bind(listener, reinterpret_cast<const sockaddr *>(&where), sizeof where) != 0 || listen(listener, 64) != 0)
        die("floor");
    sayReady(readyFd);
    Broker(listener, batched).run();
}

class FloorEndpoint final : public Endpoint {
public:
    FloorEndpoint() : m_fd(socket(AF_UNIX, SOCK_STREAM, 0))
    {
        const sockaddr_un where = address();
        if (connect(m_fd, reinterpret_cast<const sockaddr *>(&where), sizeof where) != 0)
            die("connect to the floor");
    }
    ~FloorEndpoint() override { close(m_fd); }

    void join(const std::string &channel) override
    {
        const std::string bytes = frame(kJoin, std::span(channel.data(), 1));
        writeAll(m_fd, bytes.data(), bytes.size());
        readFrames(m_fd, m_pending, [](auto...) {});
    }
    void send(const std::string &channel, std::span<const char> data) override
    {
        const std::string bytes = frame(channel[0], data);
        writeAll(m_fd, bytes.data(), bytes.size());
    }
    void run() override
    {
        m_running = true;
        while (m_running && readFrames(m_fd, m_pending, [this](char, auto, auto data) { onMessage(data); })) { }
    }
    void stop() override { m_running = false; }

private:
    int m_fd;
    bool m_running = false;
    std::vector<char> m_pending;
};

std::unique_ptr<Endpoint> connectFloor() { return std::make_unique<FloorEndpoint>(); }

}

const Bus kFloor = {"floor", [](int ready) { serveFloor(ready, false); }, connectFloor};
const Bus kBatchedFloor = {"batched floor", [](int ready) { serveFloor(ready, true); }, connectFloor};

}
