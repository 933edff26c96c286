// Notices a client that no longer reads what it is sent.
#pragma once

#include <QObject>

class QWaylandSurface;

// The library keeps little for a client that does not read, and then fails without a word: the client hears nothing any
// more, and its windows stay. So events are counted as soon as the socket is no longer writable, and a client that
// leaves too many unread is disconnected. Lives as a child of the client's object.
class ClientBacklog : public QObject {
    Q_OBJECT

public:
    enum class Event {
        Needed, // a key, a button
        Droppable // the pointer moved: the next move tells all
    };

    // Whether the event shall be sent to the surface's client.
    static bool admits(const QWaylandSurface &surface, Event event);

private:
    using QObject::QObject;
    bool admit(Event event);

    int m_unread = 0;
};
