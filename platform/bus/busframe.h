// The frames that travel between the bus broker and its clients; docs/bus.md shows them byte by byte.
// Pure: bytes in, values out. Every view points into the bytes it was read from.
#pragma once

#include "platform/bus/buslimits.h"

#include <QByteArray>
#include <QByteArrayView>
#include <optional>

namespace platform::bus {

constexpr quint16 kProtocolVersion = 1;
constexpr qsizetype kFrameHead = 4 + 1; // length word, type

enum class FrameType : quint8 {
    Hello = 'H', // client: greeting
    Welcome = 'W', // broker: greeting accepted
    Register = 'R', // client: wants the messages of a channel
    Unregister = 'U',
    Message = 'M', // both ways, the same bytes
    Query = 'Q', // client: is the channel registered?
    Answer = 'A', // broker: to a query
    List = 'L', // client: which channels are registered?
    Entry = 'E', // broker: one of them
    Done = 'D', // broker: that was the last
    Observe = 'O', // client: wants to see all traffic
    Seen = 'S', // broker: a message and its sender, for observers
    Goodbye = 'X', // broker: why the connection is closed
};

struct Frame {
    FrameType type{};
    QByteArrayView payload;
    QByteArrayView bytes; // the whole frame, to be passed on as it is
};

struct Message {
    QByteArrayView channel;
    QByteArrayView name;
    QByteArrayView data;
};

struct Query {
    quint32 token = 0;
    QByteArrayView channel;
};

struct Answer {
    quint32 token = 0;
    bool yes = false;
};

struct Entry {
    quint32 token = 0;
    quint32 pid = 0;
    QByteArrayView channel;
};

struct Seen {
    quint32 pid = 0;
    Message message;
};

// 1 to 255 bytes without a NUL.
bool isChannelName(QByteArrayView name);

// A message that one frame can carry.
bool fitsFrame(const Message &message);

// Each appends one whole frame.
void putHello(QByteArray &out);
void putWelcome(QByteArray &out);
void putChannel(QByteArray &out, FrameType type, QByteArrayView channel); // Register, Unregister
void putMessage(QByteArray &out, const Message &message);
void putQuery(QByteArray &out, const Query &query);
void putAnswer(QByteArray &out, const Answer &answer);
void putToken(QByteArray &out, FrameType type, quint32 token); // List, Done
void putEntry(QByteArray &out, const Entry &entry);
void putObserve(QByteArray &out);
void putSeen(QByteArray &out, quint32 pid, QByteArrayView messagePayload);
void putGoodbye(QByteArray &out, QByteArrayView reason);

// Each reads one payload; nothing when it is too short, too long or says what cannot be.
std::optional<quint16> readHello(QByteArrayView payload); // the client's version
std::optional<QByteArrayView> readChannel(QByteArrayView payload);
std::optional<Message> readMessage(QByteArrayView payload);
std::optional<Query> readQuery(QByteArrayView payload);
std::optional<Answer> readAnswer(QByteArrayView payload);
std::optional<quint32> readToken(QByteArrayView payload);
std::optional<Entry> readEntry(QByteArrayView payload);
std::optional<Seen> readSeen(QByteArrayView payload);

struct Cut {
    enum State { Whole, Incomplete, Impossible } state = Incomplete;
    Frame frame; // when Whole
};

// The frame at the front of `bytes`. Impossible: a length of zero or beyond `limit`.
Cut cutFrame(QByteArrayView bytes, quint32 limit = kMaxFrame);

// Collects what a connection delivers, in whatever pieces, and hands out whole frames.
class FrameReader {
public:
    // Calls handle(frame) for each frame that is complete, until it answers false. False when it did, or when the bytes
    // cannot be frames; then the reader is of no further use.
    template <typename Handler> bool feed(QByteArrayView received, Handler &&handle)
    {
        if (!m_partial.isEmpty())
            received = m_partial.append(received);
        QByteArrayView rest = received;
        for (Cut cut = cutFrame(rest, m_limit); cut.state != Cut::Incomplete; cut = cutFrame(rest, m_limit)) {
            if (cut.state == Cut::Impossible || !handle(cut.frame))
                return false;
            rest = rest.sliced(cut.frame.bytes.size());
        }
        keep(rest);
        return true;
    }

    void setLimit(quint32 limit) { m_limit = limit; } // of the frames that follow

private:
    void keep(QByteArrayView rest);

    QByteArray m_partial;
    quint32 m_limit = kMaxFrame;
};

}
