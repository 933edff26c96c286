#include "platform/bus/qcopchannel.h"

#include "platform/bus/busclient.h"

using platform::bus::BusClient;

QCopChannel::QCopChannel(const QCString &channel, QObject *parent) : QObject(parent), m_channel(channel)
{
    if (platform::bus::isChannelName(m_channel))
        BusClient::instance().add(this);
    else
        qWarning("bus: a channel name has 1 to 255 bytes: \"%.64s\"", m_channel.constData());
}

QCopChannel::~QCopChannel() { BusClient::instance().remove(this); }

QCString QCopChannel::channel() const { return m_channel; }

bool QCopChannel::isRegistered(const QCString &channel) { return BusClient::instance().isRegistered(channel); }

bool QCopChannel::send(const QCString &channel, const QCString &msg) { return send(channel, msg, QByteArray()); }

bool QCopChannel::send(const QCString &channel, const QCString &msg, const QByteArray &data)
{
    return BusClient::instance().send({channel, msg, data});
}

bool QCopChannel::sendLocally(const QCString &channel, const QCString &msg, const QByteArray &data)
{
    return BusClient::instance().sendLocally(channel, msg, data);
}

void QCopChannel::receive(const QCString &msg, const QByteArray &data) { Q_EMIT received(msg, data); }
