#include "platform/bus/bussendbuffer.h"

#include <QtEndian>
#include <cerrno>
#include <sys/socket.h>

namespace platform::bus {

namespace {

constexpr qsizetype kCompactAfter = 262'144; // sent bytes that a blocked connection keeps at most
constexpr qsizetype kWorthKeeping = 163'840; // a larger buffer goes back once it is empty

struct Borders {
    qsizetype before = 0; // the last border between frames at or before a place
    qsizetype after = 0; // the first one at or after it
};

Borders frameBorders(QByteArrayView frames, qsizetype place)
{
    Borders borders;
    while (borders.after < place) {
        borders.before = borders.after;
        borders.after += 4 + qsizetype(qFromBigEndian<quint32>(frames.data() + borders.after));
    }
    if (borders.after == place)
        borders.before = place;
    return borders;
}

}

SendBuffer::State SendBuffer::flush(int fd)
{
    while (backlog() > 0) {
        const ssize_t n = ::send(fd, m_bytes.constData() + m_sent, size_t(backlog()), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return errno == EAGAIN ? State::Blocked : State::Broken;
        m_sent += n;
        if (m_sent > kCompactAfter)
            dropSent();
    }
    clear();
    return State::Empty;
}

void SendBuffer::dropSent()
{
    const qsizetype whole = frameBorders(m_bytes, m_sent).before;
    m_bytes.remove(0, whole);
    m_sent -= whole;
}

void SendBuffer::finishWith(QByteArrayView last)
{
    m_bytes.truncate(frameBorders(m_bytes, m_sent).after);
    m_bytes.append(last);
}

void SendBuffer::clear()
{
    if (m_bytes.capacity() > kWorthKeeping)
        m_bytes = QByteArray();
    else
        m_bytes.resize(0);
    m_sent = 0;
}

}
