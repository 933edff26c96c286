#include "platform/bus/buslink.h"

#include "platform/bus/busaddress.h"

#include <array>
#include <poll.h>
#include <sys/socket.h>

namespace platform::bus {

namespace {

using Clock = std::chrono::steady_clock;

bool waitFor(int fd, short events, std::chrono::milliseconds limit)
{
    pollfd one = {.fd = fd, .events = events, .revents = 0};
    return poll(&one, 1, int(limit.count())) > 0;
}

}

Result<std::unique_ptr<BusLink>> BusLink::open(const QByteArray &path)
{
    auto socket = connectTo(path);
    if (!socket)
        return tl::make_unexpected(socket.error());
    std::unique_ptr<BusLink> link(new BusLink(std::move(*socket)));
    putHello(link->tail());
    return link;
}

Result<std::unique_ptr<BusLink>> BusLink::open()
{
    const auto path = standardSocket();
    if (!path)
        return tl::make_unexpected(path.error());
    return open(*path);
}

BusLink::BusLink(Fd socket) : m_socket(std::move(socket)) { }

BusLink::~BusLink() = default;

bool BusLink::drain(std::chrono::milliseconds limit)
{
    const auto end = Clock::now() + limit;
    SendBuffer::State state = flush();
    while (state == SendBuffer::State::Blocked) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        if (left.count() <= 0)
            return false;
        waitFor(fd(), POLLOUT, left);
        state = flush();
    }
    return state == SendBuffer::State::Empty;
}

bool BusLink::receive(const std::function<void(const Frame &)> &handle)
{
    std::array<char, 65'536> buffer; // filled by the call
    const ssize_t size = recv(fd(), buffer.data(), buffer.size(), MSG_DONTWAIT);
    if (size < 0)
        return errno == EAGAIN || errno == EINTR;
    if (size == 0)
        return false;
    return m_in.feed(QByteArrayView(buffer.data(), qsizetype(size)), [&](const Frame &frame) {
        handle(frame);
        return true;
    });
}

bool BusLink::waitForInput(std::chrono::milliseconds limit) const { return waitFor(fd(), POLLIN, limit); }

}
