// The viewer's hand on the phone's devices: a process of its own, so that whatever ends the viewer lets go.
//
// A key that is down stays down for the phone until a record says otherwise, and a FIFO does not tell its reader that a
// writer died. So the viewer writes nothing itself: it gives its orders to a child over a socket. When the socket
// closes, because the viewer ended or was killed, the child releases what is down, lifts the pen and ends too. It also
// does the waiting when the phone does not read.
#pragma once

#include "input/logic/keymap.h"
#include "input/logic/touchfilter.h"
#include "platform/system/fd.h"

#include <QObject>
#include <QPoint>
#include <QSocketNotifier>
#include <array>
#include <deque>
#include <memory>

class Hand : public QObject {
    Q_OBJECT

public:
    // Forks: to be called before the application object is made, whose threads a child would not have. Yields the
    // socket that the orders go to.
    static platform::Result<platform::Fd> start();

    explicit Hand(platform::Fd orders);

    void put(const keypad::RawKey &key, bool pressed);

    // Places as the panel counts.
    void touch(QPoint place);
    void moveTo(QPoint place);
    void lift();

    void letGo(); // of everything, the devices too: the phone is gone

Q_SIGNALS:
    void failed(const QString &why); // something could not be written to a device

private:
    enum Order : quint16 { Key, Touch, LetGo };
    using Packet = std::array<quint16, 4>; // an order and its numbers
    class Fingers;

    void send(const Packet &packet);
    void sendSamples(int count, quint16 pressure);
    void flush();
    void listen();

    platform::Fd m_orders;
    QSocketNotifier m_answers;
    QSocketNotifier m_room;
    std::deque<Packet> m_unsent; // while the hand waits for the phone
    QPoint m_pen;
};
