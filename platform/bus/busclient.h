// This process as a client of the bus: one connection for all its channels.
//
// Sending writes to the socket at once, with or without an event loop. Messages that arrive are queued and delivered
// one at a time to one channel each, so that a receiver may delete channels, wait for an answer or run a loop of its
// own without changing the order for anybody. A lost connection is made again with the next call, and while there are
// channels also by a timer; then all channels register again. In the broker's own process the broker is called directly
// instead: nothing there could answer over a socket.
#pragma once

#include "platform/bus/busbroker.h"
#include "platform/bus/buslink.h"
#include "platform/bus/busloop.h"
#include "platform/values/qcstring.h"

#include <QHash>
#include <QObject>
#include <deque>
#include <functional>
#include <optional>

class QCopChannel;

namespace platform::bus {

class BusClient final : public QObject, public BusHostSink {
public:
    static BusClient &instance(); // never destroyed

    void add(QCopChannel *channel);
    void remove(QCopChannel *channel);
    bool send(const Message &message);
    bool sendLocally(const QCString &channel, const QCString &name, const QByteArray &data);
    bool isRegistered(QByteArrayView channel);
    void flush(std::chrono::milliseconds limit);

    // The broker of this process tells when it begins and ends.
    static void hostAppeared(BusBroker &host);
    static void hostGone();

    void take(const Message &message) override;

protected:
    bool event(QEvent *event) override;

private:
    struct Received {
        QByteArray channel;
        QCString name;
        QByteArray data;
    };

    BusClient();
    bool connectLink();
    using PutFrame = std::function<void(QByteArray &out)>; // appends one frame: straight to what is to be written
    bool transmit(const PutFrame &put);
    bool write(const PutFrame &put);
    void watchForRoom();
    bool isStuck();
    void read(std::chrono::milliseconds limit);
    bool waitForAnswer(quint32 token);
    void onInput();
    void onFrame(const Frame &frame);
    void onGoodbye(QByteArrayView reason);
    void lose();
    void scheduleRetry();
    void onRetry();
    void registerAll();
    void wakeUp();
    void dispatch();
    bool takeNext();
    void deliverNext();

    std::unique_ptr<BusLink> m_link;
    std::unique_ptr<LoopWatch> m_inputWatch;
    std::unique_ptr<LoopWatch> m_roomWatch; // while the socket is full
    Fd m_retryTimer;
    std::unique_ptr<LoopWatch> m_retryWatch; // while the connection is to be made again
    std::chrono::milliseconds m_retryDelay = kRetryFirst;
    QByteArray m_lastGoodbye;

    QHash<QByteArray, QList<QCopChannel *>> m_channels;
    std::deque<Received> m_queue;
    quint64 m_taken = 0; // out of the queue, ever
    Received m_current; // being delivered to m_receivers, one after the other
    QList<QCopChannel *> m_receivers;
    bool m_wakeUpPosted = false;
    quint32 m_token = 0;
    std::optional<Answer> m_answer;
    bool m_stuck = false; // it left a question unanswered, and was silent since
};

}
