#include "platform/bus/busbroker.h"

#include "platform/bus/busbroker_p.h"
#include "platform/bus/busclient.h"

#include <algorithm>
#include <array>
#include <sys/socket.h>
#include <sys/timerfd.h>
#include <unistd.h>

namespace platform {

using namespace std::chrono_literals;
using bus::Clock;
using bus::Peer;

namespace {

constexpr qsizetype kReadSize = 65'536;
constexpr int kEventsPerWakeUp = 64;
constexpr auto kAcceptPause = 100ms; // with no descriptors left; others may be closed meanwhile

BusBroker *hostedBroker = nullptr;

}

BusBroker::Data::Data(BusOptions opts, bus::Listener listening)
    : options(std::move(opts))
    , listener(std::move(listening))
    , epoll(Fd::own(epoll_create1(EPOLL_CLOEXEC)))
    , timer(Fd::own(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)))
    , scratch(kReadSize, Qt::Uninitialized)
{
    host.phase = Peer::Phase::Serving;
    host.identity = {quint32(getpid()), geteuid()};
}

BusBroker::Data::~Data()
{
    ::unlink(listener.path.constData()); // the lock says that it is ours
}

Result<> BusBroker::Data::watchAll()
{
    if (!epoll || !timer || !watch(EPOLL_CTL_ADD, listener.socket.get(), EPOLLIN, &listener)
        || !watch(EPOLL_CTL_ADD, timer.get(), EPOLLIN, &timer))
        return failed("epoll");
    loopWatch = std::make_unique<bus::LoopWatch>(epoll.get(), QSocketNotifier::Read, [this] { process(0); });
    return {};
}

bool BusBroker::Data::watch(int operation, int fd, quint32 events, void *whose)
{
    epoll_event event = {.events = events, .data = {.ptr = whose}};
    return epoll_ctl(epoll.get(), operation, fd, &event) == 0;
}

void BusBroker::Data::rewatch(const Peer &peer)
{
    const quint32 in = peer.phase == Peer::Phase::Leaving ? 0U : quint32(EPOLLIN);
    const quint32 out = peer.waitsForRoom ? quint32(EPOLLOUT) : 0U;
    watch(EPOLL_CTL_MOD, peer.socket.get(), in | out, const_cast<Peer *>(&peer));
}

void BusBroker::Data::process(int waitMs)
{
    std::array<epoll_event, kEventsPerWakeUp> events; // filled by the call
    const int ready = epoll_wait(epoll.get(), events.data(), int(events.size()), waitMs);
    for (int i = 0; i < ready; ++i)
        onEvent(events[size_t(i)]);
    finishWakeUp();
}

void BusBroker::Data::onEvent(const epoll_event &event)
{
    if (event.data.ptr == &listener)
        return acceptAll();
    if (event.data.ptr == &timer)
        return expire();
    Peer &peer = *static_cast<Peer *>(event.data.ptr);
    if (peer.phase == Peer::Phase::Gone)
        return;
    if (peer.phase == Peer::Phase::Leaving && (event.events & (EPOLLHUP | EPOLLERR)) != 0)
        return remove(peer);
    if ((event.events & EPOLLOUT) != 0)
        touch(peer);
    // Also after a hang-up: what the client wrote before it ended is still there to be read.
    if ((event.events & (EPOLLIN | EPOLLHUP | EPOLLERR)) != 0 && peer.phase != Peer::Phase::Leaving)
        receive(peer);
}

void BusBroker::Data::acceptAll()
{
    for (int i = 0; i < kEventsPerWakeUp; ++i) {
        Fd socket = Fd::own(accept4(listener.socket.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (socket) {
            admit(std::move(socket));
        } else if (errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM) {
            // The connection waits, and would wake us without end.
            accepting = false;
            watch(EPOLL_CTL_DEL, listener.socket.get(), 0, nullptr);
            return armTimer();
        } else if (errno != EINTR && errno != ECONNABORTED) {
            return;
        }
    }
}

void BusBroker::Data::admit(Fd socket)
{
    const auto identity = bus::identify(socket.get(), options.group);
    if (!identity)
        return refuse(std::move(socket), "this user may not use the bus");
    if (peers.size() >= size_t(bus::kMaxClients))
        return refuse(std::move(socket), "too many clients, the bus serves 256");
    auto peer = std::make_unique<Peer>();
    peer->socket = std::move(socket);
    peer->identity = *identity;
    peer->in.setLimit(bus::kMaxGreeting);
    peer->deadline = Clock::now() + options.greetingWait;
    if (!watch(EPOLL_CTL_ADD, peer->socket.get(), EPOLLIN, peer.get()))
        return;
    peers.push_back(std::move(peer));
    armTimer();
}

void BusBroker::Data::refuse(Fd socket, const char *reason)
{
    bus::SendBuffer out;
    bus::putGoodbye(out.tail(), reason);
    out.flush(socket.get()); // into an empty socket buffer: it fits
    warn(QByteArray("a client was refused: ") + reason);
}

void BusBroker::Data::receive(Peer &peer)
{
    const ssize_t size = recv(peer.socket.get(), scratch.data(), size_t(scratch.size()), 0);
    if (size < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (size <= 0)
        return remove(peer);
    const QByteArrayView received(scratch.constData(), qsizetype(size));
    const bool understood = peer.in.feed(received, [&](const bus::Frame &frame) { return handle(peer, frame); });
    if (!understood)
        dismiss(peer, "a frame with an impossible length");
}

void BusBroker::Data::write(Peer &peer)
{
    const auto state = peer.out.flush(peer.socket.get());
    const bool blocked = state == bus::SendBuffer::State::Blocked;
    const bool farewellRead = state == bus::SendBuffer::State::Empty && peer.phase == Peer::Phase::Leaving;
    if (state == bus::SendBuffer::State::Broken || farewellRead)
        return remove(peer);
    if (blocked != peer.waitsForRoom) {
        peer.waitsForRoom = blocked;
        rewatch(peer);
    }
}

void BusBroker::Data::finishWakeUp()
{
    for (qsizetype i = 0; i < touched.size(); ++i) {
        Peer &peer = *touched[i];
        peer.touched = false;
        if (peer.phase != Peer::Phase::Gone)
            write(peer);
    }
    touched.resize(0);
    if (someGone)
        std::erase_if(peers, [](const auto &peer) { return peer->phase == Peer::Phase::Gone; });
    someGone = false;
}

// Only marked: the list of events, or of receivers, may still name it.
void BusBroker::Data::remove(Peer &peer)
{
    forget(peer);
    watch(EPOLL_CTL_DEL, peer.socket.get(), 0, nullptr);
    peer.phase = Peer::Phase::Gone;
    someGone = true;
}

void BusBroker::Data::expire()
{
    quint64 expirations = 0;
    std::ignore = ::read(timer.get(), &expirations, sizeof expirations); // only to make it quiet
    if (!accepting)
        accepting = watch(EPOLL_CTL_ADD, listener.socket.get(), EPOLLIN, &listener);
    const auto now = Clock::now();
    for (const auto &peer : peers) {
        if (peer->deadline > now)
            continue;
        if (peer->phase == Peer::Phase::Greeting)
            dismiss(*peer, "no greeting in time");
        else if (peer->phase == Peer::Phase::Leaving)
            remove(*peer);
    }
    armTimer();
}

void BusBroker::Data::armTimer()
{
    auto next = accepting ? Clock::time_point::max() : Clock::now() + kAcceptPause;
    for (const auto &peer : peers) {
        if (peer->phase != Peer::Phase::Gone)
            next = std::min(next, peer->deadline);
    }
    itimerspec when = {}; // all zero: off
    if (next != Clock::time_point::max()) {
        const auto wait = std::max<std::chrono::nanoseconds>(next - Clock::now(), 1ms);
        when.it_value = {.tv_sec = static_cast<time_t>(wait / 1s), .tv_nsec = static_cast<long>((wait % 1s).count())};
    }
    timerfd_settime(timer.get(), 0, &when, nullptr);
}

Result<std::unique_ptr<BusBroker>> BusBroker::listen(const BusOptions &options)
{
    const bool standard = options.socketPath.isEmpty();
    const auto path =
        standard ? bus::makeStandardSocket(!options.group.isEmpty()) : Result<QByteArray>(options.socketPath);
    if (!path)
        return tl::make_unexpected(path.error());
    auto listener = bus::listenAt(*path, options.group);
    if (!listener)
        return tl::make_unexpected(listener.error());
    auto data = std::make_unique<Data>(options, std::move(*listener));
    data->standard = standard;
    if (const auto watched = data->watchAll(); !watched)
        return tl::make_unexpected(watched.error());
    return std::unique_ptr<BusBroker>(new BusBroker(std::move(data)));
}

BusBroker::BusBroker(std::unique_ptr<Data> data) : d(std::move(data))
{
    if (d->standard) {
        hostedBroker = this;
        bus::BusClient::hostAppeared(*this);
    }
}

BusBroker::~BusBroker()
{
    flush(d->options.endingWait);
    if (!d->standard)
        return;
    hostedBroker = nullptr;
    bus::BusClient::hostGone();
}

BusBroker *BusBroker::hosted() { return hostedBroker; }

QByteArray BusBroker::socketPath() const { return d->listener.path; }

void BusBroker::process(std::chrono::milliseconds wait) { d->process(int(wait.count())); }

bool BusBroker::isRegistered(QByteArrayView channel) const { return !d->routes.of(channel).isEmpty(); }

QList<std::pair<QByteArray, quint32>> BusBroker::registrations() const
{
    QList<std::pair<QByteArray, quint32>> all;
    d->routes.forEach(
        [&](QByteArrayView channel, const Peer *peer) { all.emplaceBack(channel.toByteArray(), peer->identity.pid); });
    std::sort(all.begin(), all.end());
    return all;
}

void BusBroker::setHostSink(BusHostSink *sink) { d->sink = sink; }

void BusBroker::registerForHost(QByteArrayView channel) { d->addChannel(d->host, channel); }

void BusBroker::unregisterForHost(QByteArrayView channel) { d->removeChannel(d->host, channel); }

void BusBroker::sendFromHost(const bus::Message &message)
{
    QByteArray bytes;
    bus::putMessage(bytes, message);
    d->route(d->host, bus::cutFrame(bytes).frame, message);
    d->finishWakeUp();
}

void BusBroker::flush(std::chrono::milliseconds limit)
{
    const auto end = Clock::now() + limit;
    const auto unread = [this] {
        return std::any_of(d->peers.cbegin(), d->peers.cend(), [](const auto &peer) { return peer->waitsForRoom; });
    };
    while (unread() && Clock::now() < end)
        process(10ms);
}

}
