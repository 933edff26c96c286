// What is to be written to a connection: written at once as far as the socket takes it, the rest when it has room.
#pragma once

#include <QByteArray>
#include <QByteArrayView>

namespace platform::bus {

class SendBuffer {
public:
    enum class State { Empty, Blocked, Broken };

    // Whole frames only. Grows without a limit: the owner compares backlog() with its own.
    void append(QByteArrayView frames) { m_bytes.append(frames); }
    QByteArray &tail() { return m_bytes; } // to put frames in place

    // Writes all that the socket takes. Broken: nobody reads any more.
    State flush(int fd);

    // Frames that nobody began to write are dropped, a half-written one is completed: `last` follows it.
    void finishWith(QByteArrayView last);

    [[nodiscard]] qsizetype backlog() const { return m_bytes.size() - m_sent; }
    void clear();

private:
    void dropSent();

    QByteArray m_bytes; // begins with a whole frame
    qsizetype m_sent = 0;
};

}
