#include "platform/bus/businspector.h"

#include "platform/bus/busaddress.h"
#include "platform/bus/buslink.h"

#include <algorithm>

namespace platform {

using bus::Frame;
using bus::FrameType;

namespace {

constexpr quint32 kToken = 1; // one question at a time

}

Result<std::unique_ptr<BusInspector>> BusInspector::open()
{
    auto link = bus::BusLink::open();
    if (!link)
        return tl::make_unexpected(link.error());
    return std::unique_ptr<BusInspector>(new BusInspector(std::move(*link)));
}

BusInspector::BusInspector(std::unique_ptr<bus::BusLink> link) : m_link(std::move(link)) { }

BusInspector::~BusInspector() = default;

bool BusInspector::await(const std::function<bool(const Frame &)> &isLast)
{
    bool done = false;
    bool open = true;
    const auto onFrame = [&](const Frame &frame) {
        if (frame.type == FrameType::Goodbye)
            m_goodbye = frame.payload.toByteArray();
        done = isLast(frame) || done;
    };
    m_link->drain(bus::kAnswerWait); // a server that closed the connection may still have said why
    while (open && !done && m_link->waitForInput(bus::kAnswerWait))
        open = m_link->receive(onFrame);
    m_silent = open && !done;
    return done;
}

bool BusInspector::fits(const Sent &sent) { return bus::fitsFrame({sent.channel, sent.message, sent.data}); }

bool BusInspector::send(const Sent &sent)
{
    bus::putMessage(m_link->tail(), {sent.channel, sent.message, sent.data});
    bus::putQuery(m_link->tail(), {kToken, sent.channel}); // its answer says that the message was taken
    return await([](const Frame &frame) { return frame.type == FrameType::Answer; });
}

std::optional<QList<BusInspector::Registration>> BusInspector::registrations()
{
    bus::putToken(m_link->tail(), FrameType::List, kToken);
    QList<Registration> all;
    const bool whole = await([&](const Frame &frame) {
        if (const auto entry = frame.type == FrameType::Entry ? bus::readEntry(frame.payload) : std::nullopt)
            all.append({entry->channel.toByteArray(), entry->pid});
        return frame.type == FrameType::Done;
    });
    if (!whole)
        return {};
    std::sort(all.begin(), all.end());
    return all;
}

bool BusInspector::observe(const std::function<bool(const Sent &)> &visit)
{
    bus::putObserve(m_link->tail());
    bool wanted = true;
    const auto onFrame = [&](const Frame &frame) {
        if (frame.type == FrameType::Goodbye)
            m_goodbye = frame.payload.toByteArray();
        const auto seen = wanted && frame.type == FrameType::Seen ? bus::readSeen(frame.payload) : std::nullopt;
        if (seen)
            wanted = visit({seen->pid, seen->message.channel, seen->message.name, seen->message.data});
    };
    constexpr std::chrono::milliseconds kForEver{-1};
    bool alive = m_link->drain(bus::kAnswerWait);
    while (alive && wanted)
        alive = !m_link->waitForInput(kForEver) || m_link->receive(onFrame);
    return !wanted;
}

QByteArray BusInspector::socketPath() { return bus::standardSocket().value_or(QByteArrayLiteral("tyx-bus")); }

}
