// Brings events to a client no faster than it reads them.
#pragma once

#include <QObject>
#include <QPointer>
#include <QSocketNotifier>
#include <deque>
#include <functional>

class QWaylandClient;
class QWaylandSurface;

// Sends what was said to the surface's client now, not only when the event loop goes to sleep.
void flushClient(const QWaylandSurface &surface);

// The library keeps little for a client that does not read, and then fails without a word: the client hears nothing any
// more, and its windows stay. So events wait here while the client's socket is full, and a client that leaves too many
// waiting is disconnected. Lives as a child of the client's object.
class ClientBacklog : public QObject {
    Q_OBJECT

public:
    enum class Event {
        Needed, // a key, a button
        Droppable // the pointer moved: the next move tells all
    };

    // Calls `send`, which is to tell the surface's client something: at once, or in its turn when the client has room
    // again; never after the surface or `context` is gone.
    static void deliver(QWaylandSurface &surface, QObject *context, Event event, std::function<void()> send);

    static int waiting(const QWaylandClient &client); // events

private:
    struct Waiting {
        QPointer<QWaylandSurface> surface;
        QPointer<QObject> context;
        std::function<void()> send;

        void sendNow() const;
    };

    explicit ClientBacklog(QWaylandClient *client);
    static ClientBacklog *of(const QWaylandClient &client); // null when nothing was sent to it yet
    [[nodiscard]] bool hasRoom() const;
    void wait(Waiting event);
    void sendWaiting();

    QWaylandClient *m_client; // the parent
    std::deque<Waiting> m_waiting;
    QSocketNotifier m_room;
};
