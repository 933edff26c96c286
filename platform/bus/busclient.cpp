#include "platform/bus/busclient.h"

#include "platform/bus/busflush.h"
#include "platform/bus/qcopchannel.h"

#include <QCoreApplication>
#include <QEvent>
#include <cstdlib>
#include <sys/timerfd.h>

namespace platform {

void busFlush() { bus::BusClient::instance().flush(bus::kAnswerWait); }

}

namespace platform::bus {

namespace {

BusClient *theClient = nullptr;
using Clock = std::chrono::steady_clock;

}

BusClient &BusClient::instance()
{
    if (theClient == nullptr) {
        theClient = new BusClient;
        std::atexit(busFlush);
        if (BusBroker *host = BusBroker::hosted())
            hostAppeared(*host);
    }
    return *theClient;
}

BusClient::BusClient() : m_retryTimer(Fd::own(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK))) { }

void BusClient::add(QCopChannel *channel)
{
    QList<QCopChannel *> &sameName = m_channels[channel->channel()];
    sameName.append(channel);
    if (sameName.size() > 1)
        return;
    if (BusBroker *host = BusBroker::hosted())
        return host->registerForHost(channel->channel());
    const bool registersAll = m_link == nullptr; // connecting registers this one too
    const auto put = [&](QByteArray &out) { putChannel(out, FrameType::Register, channel->channel()); };
    if (registersAll ? !connectLink() : !transmit(put))
        return scheduleRetry();
    // The answer is known; waited for is that the broker has come this far. From here on all other processes find the
    // channel, so a message that was not stored for it is sent to it.
    std::ignore = isRegistered(channel->channel());
}

void BusClient::remove(QCopChannel *channel)
{
    m_receivers.removeOne(channel);
    const auto sameName = m_channels.find(channel->channel());
    if (sameName == m_channels.end() || !sameName->removeOne(channel) || !sameName->isEmpty())
        return;
    m_channels.erase(sameName);
    if (BusBroker *host = BusBroker::hosted())
        return host->unregisterForHost(channel->channel());
    if (m_link)
        write([&](QByteArray &out) { putChannel(out, FrameType::Unregister, channel->channel()); });
}

bool BusClient::send(const Message &message)
{
    if (!fitsFrame(message))
        return false;
    if (BusBroker *host = BusBroker::hosted()) {
        host->sendFromHost(message);
        return true;
    }
    return transmit([&](QByteArray &out) { putMessage(out, message); });
}

bool BusClient::sendLocally(const QCString &channel, const QCString &name, const QByteArray &data)
{
    const QList<QCopChannel *> receivers = m_channels.value(channel);
    for (QCopChannel *receiver : receivers) {
        if (m_channels.value(channel).contains(receiver)) // unless an earlier one deleted it
            receiver->receive(name, data);
    }
    return !receivers.isEmpty();
}

bool BusClient::isRegistered(QByteArrayView channel)
{
    if (const BusBroker *host = BusBroker::hosted())
        return host->isRegistered(channel);
    const quint32 token = ++m_token;
    const auto put = [&](QByteArray &out) { putQuery(out, {token, channel}); };
    if (!isChannelName(channel) || isStuck() || !transmit(put))
        return false;
    m_stuck = !m_link->drain(kAnswerWait);
    return !m_stuck && waitForAnswer(token);
}

// A server that left one question unanswered is not asked again before it said something: a program that asks for
// several channels as it starts would wait for each of them.
bool BusClient::isStuck()
{
    if (m_stuck && m_link)
        read({});
    wakeUp();
    return m_stuck;
}

void BusClient::read(std::chrono::milliseconds limit)
{
    if (m_link->waitForInput(limit) && !m_link->receive([this](const Frame &frame) { onFrame(frame); }))
        lose();
}

bool BusClient::waitForAnswer(quint32 token)
{
    m_answer.reset();
    for (const auto end = Clock::now() + kAnswerWait; m_link && Clock::now() < end;) {
        read(std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()));
        if (m_answer && m_answer->token == token)
            break;
    }
    wakeUp(); // for messages that came meanwhile
    const bool answered = m_answer && m_answer->token == token;
    m_stuck = m_link && !answered;
    return answered && m_answer->yes;
}

void BusClient::flush(std::chrono::milliseconds limit)
{
    if (BusBroker *host = BusBroker::hosted())
        host->flush(limit);
    else if (m_link)
        m_link->drain(limit);
}

bool BusClient::connectLink()
{
    auto link = BusLink::open();
    if (!link)
        return false;
    m_link = std::move(*link);
    m_stuck = false;
    m_inputWatch = std::make_unique<LoopWatch>(m_link->fd(), QSocketNotifier::Read, [this] { onInput(); });
    m_retryWatch.reset();
    registerAll();
    return m_link->drain(kAnswerWait);
}

void BusClient::registerAll()
{
    for (auto it = m_channels.cbegin(); it != m_channels.cend(); ++it)
        putChannel(m_link->tail(), FrameType::Register, it.key());
}

// A connection that turns out to be dead is made again once: the broker may be back already.
bool BusClient::transmit(const PutFrame &put)
{
    const bool wasThere = m_link != nullptr;
    if ((wasThere || connectLink()) && write(put))
        return true;
    return wasThere && !m_link && connectLink() && write(put);
}

bool BusClient::write(const PutFrame &put)
{
    if (m_roomWatch)
        m_link->flush(); // perhaps there is room again, and no event loop to notice
    const qsizetype before = m_link->tail().size();
    put(m_link->tail());
    if (m_link->backlog() > kMaxBacklog) {
        m_link->tail().truncate(before); // the broker is stuck: give up this frame rather than grow without end
        return false;
    }
    auto state = m_link->flush();
    // The broker reads fast: waiting for it lets a burst survive an _exit() right behind it. Once it was found stuck,
    // nothing waits until it reads again.
    if (state == SendBuffer::State::Blocked && !m_roomWatch && m_link->drain(hasLoop() ? kRoomWait : kAnswerWait))
        state = SendBuffer::State::Empty;
    if (state == SendBuffer::State::Broken || (state == SendBuffer::State::Blocked && !hasLoop())) {
        lose();
        return false;
    }
    if (state == SendBuffer::State::Blocked)
        watchForRoom();
    return true;
}

void BusClient::watchForRoom()
{
    if (m_roomWatch)
        return;
    m_roomWatch = std::make_unique<LoopWatch>(m_link->fd(), QSocketNotifier::Write, [this] {
        const auto state = m_link->flush();
        if (state == SendBuffer::State::Broken)
            lose();
        else if (state == SendBuffer::State::Empty)
            m_roomWatch.reset();
    });
}

void BusClient::onInput()
{
    if (m_link && !m_link->receive([this](const Frame &frame) { onFrame(frame); }))
        lose();
    dispatch();
}

void BusClient::onFrame(const Frame &frame)
{
    m_stuck = false;
    switch (frame.type) {
    case FrameType::Message:
        if (const auto message = readMessage(frame.payload))
            m_queue.push_back({message->channel.toByteArray(), QCString(message->name), message->data.toByteArray()});
        break;
    case FrameType::Answer:
        m_answer = readAnswer(frame.payload);
        break;
    case FrameType::Welcome:
        m_retryDelay = kRetryFirst;
        m_lastGoodbye.clear();
        break;
    case FrameType::Goodbye:
        onGoodbye(frame.payload);
        break;
    default:
        break; // of a later version
    }
}

void BusClient::onGoodbye(QByteArrayView reason)
{
    if (m_lastGoodbye == reason)
        return; // said already, before the last retry
    m_lastGoodbye = reason.toByteArray();
    qWarning("bus: the server closed the connection: %s", m_lastGoodbye.constData());
}

void BusClient::lose()
{
    // What the broker wrote before it ended, its reason perhaps, is still there to be read.
    while (m_link->waitForInput({}) && m_link->receive([this](const Frame &frame) { onFrame(frame); })) { }
    wakeUp();
    m_inputWatch.reset();
    m_roomWatch.reset();
    m_link.reset();
    m_stuck = false;
    scheduleRetry();
}

void BusClient::scheduleRetry()
{
    if (m_channels.isEmpty() || m_retryWatch)
        return;
    const auto nanoseconds = std::chrono::nanoseconds(m_retryDelay).count();
    const timespec delay = {.tv_sec = static_cast<time_t>(nanoseconds / 1'000'000'000),
        .tv_nsec = static_cast<long>(nanoseconds % 1'000'000'000)};
    const itimerspec once = {.it_interval = {}, .it_value = delay};
    timerfd_settime(m_retryTimer.get(), 0, &once, nullptr);
    m_retryWatch = std::make_unique<LoopWatch>(m_retryTimer.get(), QSocketNotifier::Read, [this] { onRetry(); });
    m_retryDelay = std::min(2 * m_retryDelay, kRetryLast);
}

void BusClient::onRetry()
{
    m_retryWatch.reset();
    if (!m_link && BusBroker::hosted() == nullptr && !connectLink())
        scheduleRetry();
}

void BusClient::hostAppeared(BusBroker &host)
{
    if (theClient == nullptr)
        return;
    theClient->m_inputWatch.reset();
    theClient->m_roomWatch.reset();
    theClient->m_retryWatch.reset();
    theClient->m_link.reset();
    host.setHostSink(theClient);
    for (auto it = theClient->m_channels.cbegin(); it != theClient->m_channels.cend(); ++it)
        host.registerForHost(it.key());
}

void BusClient::hostGone()
{
    if (theClient != nullptr)
        theClient->scheduleRetry();
}

void BusClient::take(const Message &message)
{
    m_queue.push_back({message.channel.toByteArray(), QCString(message.name), message.data.toByteArray()});
    wakeUp();
}

void BusClient::wakeUp()
{
    const bool nothingToDo = m_queue.empty() && m_receivers.isEmpty();
    if (nothingToDo || std::exchange(m_wakeUpPosted, true))
        return;
    QCoreApplication::postEvent(this, new QEvent(QEvent::User));
}

bool BusClient::event(QEvent *event)
{
    if (event->type() != QEvent::User)
        return QObject::event(event);
    m_wakeUpPosted = false;
    dispatch();
    return true;
}

// What receivers add meanwhile waits for the next turn of the event loop: one that sends to its own channel would keep
// the loop from everything else.
void BusClient::dispatch()
{
    const quint64 end = m_taken + m_queue.size();
    while ((!m_receivers.isEmpty() || m_taken < end) && takeNext())
        deliverNext();
    wakeUp();
}

bool BusClient::takeNext()
{
    while (m_receivers.isEmpty() && !m_queue.empty()) {
        m_current = std::move(m_queue.front());
        m_queue.pop_front();
        ++m_taken;
        m_receivers = m_channels.value(m_current.channel);
    }
    return !m_receivers.isEmpty();
}

void BusClient::deliverNext()
{
    QCopChannel *receiver = m_receivers.takeFirst();
    // A receiver that runs an event loop of its own makes the rest of the queue be delivered from there.
    const QCString name = m_current.name;
    const QByteArray data = m_current.data;
    wakeUp();
    receiver->receive(name, data);
}

}
