// What the broker does with the frames of its clients.
#include "platform/bus/busbroker_p.h"

namespace platform {

using bus::FrameType;

namespace {

constexpr auto kUnread = "4 MiB of messages were left unread";

}

bool BusBroker::Data::handle(Peer &peer, const bus::Frame &frame)
{
    const bool served = peer.phase == Peer::Phase::Greeting ? greet(peer, frame) : serve(peer, frame);
    return served && peer.phase == Peer::Phase::Serving;
}

bool BusBroker::Data::greet(Peer &peer, const bus::Frame &frame)
{
    const auto version = frame.type == FrameType::Hello ? bus::readHello(frame.payload) : std::nullopt;
    if (!version || *version < bus::kProtocolVersion) {
        dismiss(peer, "the first frame was no greeting of this bus");
        return false;
    }
    peer.phase = Peer::Phase::Serving;
    peer.deadline = bus::Clock::time_point::max();
    peer.in.setLimit(bus::kMaxFrame);
    bus::putWelcome(peer.out.tail());
    touch(peer);
    return true;
}

bool BusBroker::Data::serve(Peer &peer, const bus::Frame &frame)
{
    switch (frame.type) {
    case FrameType::Message:
        if (const auto message = bus::readMessage(frame.payload)) {
            route(peer, frame, *message);
            return true;
        }
        break;
    case FrameType::Register:
        if (const auto channel = bus::readChannel(frame.payload))
            return addChannel(peer, *channel);
        break;
    case FrameType::Unregister:
        removeChannel(peer, frame.payload);
        return true;
    case FrameType::Query:
        if (const auto query = bus::readQuery(frame.payload)) {
            bus::putAnswer(peer.out.tail(), {query->token, !routes.of(query->channel).isEmpty()});
            touch(peer);
            return true;
        }
        break;
    case FrameType::List:
        if (const auto token = bus::readToken(frame.payload)) {
            list(peer, *token);
            return true;
        }
        break;
    case FrameType::Observe:
        if (!std::exchange(peer.observes, true))
            observers.append(&peer);
        return true;
    default:
        break;
    }
    dismiss(peer, "a frame that the bus does not know, or with contents that cannot be");
    return false;
}

bool BusBroker::Data::addChannel(Peer &peer, QByteArrayView channel)
{
    const QByteArray name = channel.toByteArray();
    if (peer.channels.contains(name))
        return true;
    if (peer.socket && peer.channels.size() >= bus::kMaxChannelsPerClient) {
        dismiss(peer, "too many channels, a client may have 1024");
        return false;
    }
    peer.channels.append(name);
    routes.add(channel, &peer);
    return true;
}

void BusBroker::Data::removeChannel(Peer &peer, QByteArrayView channel)
{
    if (peer.channels.removeOne(channel.toByteArray()))
        routes.remove(channel, &peer);
}

void BusBroker::Data::route(const Peer &from, const bus::Frame &frame, const bus::Message &message)
{
    // A copy: a receiver that is sent away for its backlog leaves the list.
    const QList<Peer *> receivers = routes.of(message.channel);
    for (Peer *to : receivers) {
        if (to->socket)
            push(*to, frame.bytes);
        else if (sink != nullptr)
            sink->take(message);
    }
    if (!observers.isEmpty())
        tellObservers(from, frame);
}

void BusBroker::Data::tellObservers(const Peer &from, const bus::Frame &frame)
{
    QByteArray seen;
    bus::putSeen(seen, from.identity.pid, frame.payload);
    const QList<Peer *> all = observers;
    for (Peer *observer : all)
        push(*observer, seen);
}

void BusBroker::Data::list(Peer &peer, quint32 token)
{
    // Others decide how long it is, so it is looked at as it grows. Nobody is sent away meanwhile: that changes routes.
    bool unread = false;
    routes.forEach([&](QByteArrayView channel, const Peer *owner) {
        if (unread)
            return;
        bus::putEntry(peer.out.tail(), {token, owner->identity.pid, channel});
        if (peer.out.backlog() > bus::kMaxBacklog) {
            peer.out.flush(peer.socket.get());
            unread = peer.out.backlog() > bus::kMaxBacklog;
        }
    });
    if (unread)
        return dismiss(peer, kUnread);
    bus::putToken(peer.out.tail(), FrameType::Done, token);
    touch(peer);
}

void BusBroker::Data::push(Peer &peer, QByteArrayView frame)
{
    if (peer.phase != Peer::Phase::Serving)
        return;
    peer.out.append(frame);
    touch(peer);
}

void BusBroker::Data::touch(Peer &peer)
{
    if (!std::exchange(peer.touched, true))
        touched.append(&peer);
    // One wake-up may bring more than the limit to a client that reads well: only what its socket refuses counts.
    if (peer.out.backlog() > bus::kMaxBacklog && peer.phase == Peer::Phase::Serving) {
        write(peer);
        if (peer.out.backlog() > bus::kMaxBacklog)
            dismiss(peer, kUnread);
    }
}

void BusBroker::Data::dismiss(Peer &peer, const char *reason)
{
    if (peer.phase == Peer::Phase::Leaving || peer.phase == Peer::Phase::Gone)
        return;
    warn("the client with process id " + QByteArray::number(peer.identity.pid) + " is sent away: " + reason);
    forget(peer);
    peer.phase = Peer::Phase::Leaving;
    peer.deadline = bus::Clock::now() + options.farewellWait;
    QByteArray goodbye;
    bus::putGoodbye(goodbye, reason);
    peer.out.finishWith(goodbye);
    rewatch(peer);
    touch(peer);
    armTimer();
}

void BusBroker::Data::warn(const QByteArray &text)
{
    const auto [tell, untold] = warnings.ask(bus::Clock::now());
    if (untold > 0)
        qWarning("bus: %d more clients were refused or sent away", untold);
    if (tell)
        qWarning("bus: %s", text.constData());
}

void BusBroker::Data::forget(Peer &peer)
{
    for (const QByteArray &channel : std::as_const(peer.channels))
        routes.remove(channel, &peer);
    peer.channels.clear();
    observers.removeOne(&peer);
}

}
