#include "appbase/messaging/zmsg.h"

#include "appbase/messaging/queuefile.h"
#include "appbase/messaging/wire.h"
#include "platform/bus/qcopchannel.h"

class ZMsgData {
public:
    QCString channel;
    QCString message;
    wire::Writer arguments;
    bool localOnly = false;

    [[nodiscard]] bool sendNow() const
    {
        const auto send = localOnly
            ? &QCopChannel::sendLocally
            : qOverload<const QCString &, const QCString &, const QByteArray &>(&QCopChannel::send);
        return send(channel, message, arguments.result());
    }
};

ZMsg::ZMsg(const QCString &channel, const QCString &message) : d(std::make_unique<ZMsgData>())
{
    d->channel = channel;
    d->message = message;
}

ZMsg::~ZMsg() = default;

QCString ZMsg::channel() const { return d->channel; }

QCString ZMsg::message() const { return d->message; }

QDataStream &ZMsg::stream() { return d->arguments.stream(); }

QByteArray ZMsg::data() const { return d->arguments.result(); }

void ZMsg::setLocalOnly(bool localOnly) { d->localOnly = localOnly; }

bool ZMsg::isLocalOnly() const { return d->localOnly; }

bool ZMsg::send()
{
    if (!d->channel.startsWith(queue::kApplicationChannels))
        return d->sendNow();
    auto file = queue::LockedFile::forAppending(
        d->channel.mid(queue::kApplicationChannels.size()), std::chrono::system_clock::now());
    // Promised: a message that meets somebody else's lock is dropped.
    if (!file)
        return file.error().number != EWOULDBLOCK && d->sendNow();
    if (!QCopChannel::isRegistered(d->channel))
        return file->append({d->channel, d->message, data()}).has_value();
    std::ignore = std::move(*file).remove(); // if it stays, its age discards it
    return d->sendNow();
}
