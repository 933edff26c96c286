// A client of a broker in the test's own process that writes what it likes, frame or not.
#pragma once

#include "platform/bus/busaddress.h"
#include "platform/bus/busbroker.h"
#include "platform/bus/busframe.h"

#include <QByteArray>
#include <QList>
#include <sys/socket.h>

class RawBusClient {
public:
    explicit RawBusClient(platform::BusBroker &broker) : m_broker(broker)
    {
        if (auto socket = platform::bus::connectTo(broker.socketPath()))
            m_socket = std::move(*socket);
    }

    // Writes all of it while the broker works; false when nobody takes it any more.
    bool write(QByteArrayView bytes)
    {
        while (!bytes.isEmpty()) {
            const ssize_t n = ::send(m_socket.get(), bytes.data(), size_t(bytes.size()), MSG_NOSIGNAL);
            if (n < 0 && errno != EAGAIN)
                return false;
            if (n > 0)
                bytes = bytes.sliced(n);
            m_broker.process();
        }
        return true;
    }
    bool greet()
    {
        QByteArray hello;
        platform::bus::putHello(hello);
        return write(hello) && next() == "W";
    }
    void open(QByteArrayView channel)
    {
        QByteArray frame;
        platform::bus::putChannel(frame, platform::bus::FrameType::Register, channel);
        write(frame);
        m_broker.process();
    }
    bool send(const char *channel, QByteArrayView name, QByteArrayView data = {})
    {
        QByteArray frame;
        platform::bus::putMessage(frame, {channel, name, data});
        return write(frame);
    }

    // What comes next: "M NAME", "X REASON", another frame's letter, "end", or "nothing" for a while.
    QByteArray next()
    {
        for (int i = 0; m_seen.isEmpty() && i < 2'000; ++i) {
            m_broker.process(std::chrono::milliseconds(i < 10 ? 0 : 10));
            if (!m_ended)
                read();
        }
        return m_seen.isEmpty() ? "nothing" : m_seen.takeFirst();
    }

private:
    void read()
    {
        char buffer[65536];
        const ssize_t size = recv(m_socket.get(), buffer, sizeof buffer, 0);
        if (size < 0 && errno == EAGAIN)
            return;
        if (size > 0) {
            m_reader.feed(QByteArrayView(buffer, size), [this](const platform::bus::Frame &frame) {
                m_seen.append(text(frame));
                return true;
            });
            return;
        }
        m_ended = true;
        m_seen.append("end");
    }
    static QByteArray text(const platform::bus::Frame &frame)
    {
        using platform::bus::FrameType;
        QByteArray letter(1, char(frame.type));
        const auto message = platform::bus::readMessage(frame.payload);
        if (frame.type == FrameType::Message && message)
            return letter + ' ' + message->name.toByteArray();
        if (frame.type == FrameType::Goodbye)
            return letter + ' ' + frame.payload.toByteArray();
        return letter;
    }

    platform::BusBroker &m_broker;
    platform::Fd m_socket;
    platform::bus::FrameReader m_reader;
    QList<QByteArray> m_seen;
    bool m_ended = false;
};
