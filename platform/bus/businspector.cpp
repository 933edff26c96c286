#include "platform/bus/businspector.h"

#include "platform/bus/busaddress.h"
#include "platform/bus/buslink.h"

#include <algorithm>

namespace platform {

using bus::Frame;
using bus::FrameType;

Result<std::unique_ptr<BusInspector>> BusInspector::open()
{
    auto link = bus::BusLink::open();
    if (!link)
        return tl::make_unexpected(link.error());
    return std::unique_ptr<BusInspector>(new BusInspector(std::move(*link)));
}

BusInspector::BusInspector(std::unique_ptr<bus::BusLink> link) : m_link(std::move(link)) { }

BusInspector::~BusInspector() = default;

std::optional<QList<BusInspector::Registration>> BusInspector::registrations()
{
    constexpr quint32 kToken = 1;
    bus::putToken(m_link->tail(), FrameType::List, kToken);
    QList<Registration> all;
    bool done = false;
    const auto onFrame = [&](const Frame &frame) {
        if (frame.type == FrameType::Goodbye)
            m_goodbye = frame.payload.toByteArray();
        else if (frame.type == FrameType::Done)
            done = true;
        else if (const auto entry = frame.type == FrameType::Entry ? bus::readEntry(frame.payload) : std::nullopt)
            all.append({entry->channel.toByteArray(), entry->pid});
    };
    bool alive = m_link->drain(bus::kAnswerWait);
    while (alive && !done)
        alive = m_link->waitForInput(bus::kAnswerWait) && m_link->receive(onFrame);
    if (!done)
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
