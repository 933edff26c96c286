#include "platform/bus/busframe.h"

#include <QtEndian>

namespace platform::bus {

namespace {

constexpr QByteArrayView kMagic = "TYXBUS";

void putU16(QByteArray &out, quint16 value)
{
    const quint16 big = qToBigEndian(value);
    out.append(reinterpret_cast<const char *>(&big), sizeof big);
}

void putU32(QByteArray &out, quint32 value)
{
    const quint32 big = qToBigEndian(value);
    out.append(reinterpret_cast<const char *>(&big), sizeof big);
}

void putHead(QByteArray &out, FrameType type, qsizetype payload)
{
    putU32(out, quint32(payload + 1));
    out.append(char(type));
}

// Reads from the front; what is not there is zero, and ok() is false from then on.
class Cursor {
public:
    explicit Cursor(QByteArrayView bytes) : m_rest(bytes) { }

    QByteArrayView take(quint32 size)
    {
        if (size > quint64(m_rest.size())) {
            m_ok = false;
            return {};
        }
        const QByteArrayView taken = m_rest.first(size);
        m_rest = m_rest.sliced(size);
        return taken;
    }
    template <typename T> T number()
    {
        const QByteArrayView bytes = take(sizeof(T));
        return m_ok ? qFromBigEndian<T>(bytes.data()) : T(0);
    }
    QByteArrayView rest() { return take(quint32(m_rest.size())); }
    [[nodiscard]] bool ok() const { return m_ok; }
    [[nodiscard]] bool consumed() const { return m_ok && m_rest.isEmpty(); }

private:
    QByteArrayView m_rest;
    bool m_ok = true;
};

Message takeMessage(Cursor &cursor)
{
    Message message;
    message.channel = cursor.take(cursor.number<quint8>());
    message.name = cursor.take(cursor.number<quint32>());
    message.data = cursor.rest();
    return message;
}

qsizetype payloadSize(const Message &message)
{
    return 1 + message.channel.size() + 4 + message.name.size() + message.data.size();
}

}

bool isChannelName(QByteArrayView name)
{
    return !name.isEmpty() && name.size() <= kMaxChannelName && !name.contains('\0');
}

bool fitsFrame(const Message &message)
{
    return isChannelName(message.channel) && payloadSize(message) + 1 <= qsizetype(kMaxMessage);
}

void putHello(QByteArray &out)
{
    putHead(out, FrameType::Hello, kMagic.size() + 2);
    out.append(kMagic);
    putU16(out, kProtocolVersion);
}

void putWelcome(QByteArray &out)
{
    putHead(out, FrameType::Welcome, 2);
    putU16(out, kProtocolVersion);
}

void putChannel(QByteArray &out, FrameType type, QByteArrayView channel)
{
    putHead(out, type, channel.size());
    out.append(channel);
}

void putMessage(QByteArray &out, const Message &message)
{
    putHead(out, FrameType::Message, payloadSize(message));
    out.append(char(message.channel.size()));
    out.append(message.channel);
    putU32(out, quint32(message.name.size()));
    out.append(message.name);
    out.append(message.data);
}

void putQuery(QByteArray &out, const Query &query)
{
    putHead(out, FrameType::Query, 4 + query.channel.size());
    putU32(out, query.token);
    out.append(query.channel);
}

void putAnswer(QByteArray &out, const Answer &answer)
{
    putHead(out, FrameType::Answer, 4 + 1);
    putU32(out, answer.token);
    out.append(char(answer.yes ? 1 : 0));
}

void putToken(QByteArray &out, FrameType type, quint32 token)
{
    putHead(out, type, 4);
    putU32(out, token);
}

void putEntry(QByteArray &out, const Entry &entry)
{
    putHead(out, FrameType::Entry, 4 + 4 + entry.channel.size());
    putU32(out, entry.token);
    putU32(out, entry.pid);
    out.append(entry.channel);
}

void putObserve(QByteArray &out) { putHead(out, FrameType::Observe, 0); }

void putSeen(QByteArray &out, quint32 pid, QByteArrayView messagePayload)
{
    putHead(out, FrameType::Seen, 4 + messagePayload.size());
    putU32(out, pid);
    out.append(messagePayload);
}

void putGoodbye(QByteArray &out, QByteArrayView reason)
{
    putHead(out, FrameType::Goodbye, reason.size());
    out.append(reason);
}

std::optional<quint16> readHello(QByteArrayView payload)
{
    Cursor cursor(payload);
    if (cursor.take(quint32(kMagic.size())) != kMagic)
        return {};
    const auto version = cursor.number<quint16>();
    return cursor.ok() ? std::optional(version) : std::nullopt; // a later version may say more
}

std::optional<QByteArrayView> readChannel(QByteArrayView payload)
{
    return isChannelName(payload) ? std::optional(payload) : std::nullopt;
}

std::optional<Message> readMessage(QByteArrayView payload)
{
    Cursor cursor(payload);
    const Message message = takeMessage(cursor);
    return cursor.ok() && fitsFrame(message) ? std::optional(message) : std::nullopt;
}

std::optional<Query> readQuery(QByteArrayView payload)
{
    Cursor cursor(payload);
    Query query;
    query.token = cursor.number<quint32>();
    query.channel = cursor.rest();
    return cursor.ok() && isChannelName(query.channel) ? std::optional(query) : std::nullopt;
}

std::optional<Answer> readAnswer(QByteArrayView payload)
{
    Cursor cursor(payload);
    Answer answer;
    answer.token = cursor.number<quint32>();
    answer.yes = cursor.number<quint8>() != 0;
    return cursor.consumed() ? std::optional(answer) : std::nullopt;
}

std::optional<quint32> readToken(QByteArrayView payload)
{
    Cursor cursor(payload);
    const auto token = cursor.number<quint32>();
    return cursor.consumed() ? std::optional(token) : std::nullopt;
}

std::optional<Entry> readEntry(QByteArrayView payload)
{
    Cursor cursor(payload);
    Entry entry;
    entry.token = cursor.number<quint32>();
    entry.pid = cursor.number<quint32>();
    entry.channel = cursor.rest();
    return cursor.ok() && isChannelName(entry.channel) ? std::optional(entry) : std::nullopt;
}

std::optional<Seen> readSeen(QByteArrayView payload)
{
    Cursor cursor(payload);
    Seen seen;
    seen.pid = cursor.number<quint32>();
    seen.message = takeMessage(cursor);
    return cursor.ok() && fitsFrame(seen.message) ? std::optional(seen) : std::nullopt;
}

Cut cutFrame(QByteArrayView bytes, quint32 limit)
{
    if (bytes.size() < 4)
        return {};
    const auto length = qFromBigEndian<quint32>(bytes.data());
    if (length == 0 || length > limit)
        return {Cut::Impossible, {}};
    if (quint64(bytes.size()) < 4 + quint64(length))
        return {};
    const QByteArrayView whole = bytes.first(4 + qsizetype(length));
    return {Cut::Whole, {FrameType(quint8(whole[4])), whole.sliced(kFrameHead), whole}};
}

void FrameReader::keep(QByteArrayView rest)
{
    constexpr qsizetype kWorthKeeping = 163'840; // a buffer that grew for one large frame is given back
    if (m_partial.isEmpty())
        m_partial = rest.toByteArray();
    else if (rest.isEmpty() && m_partial.capacity() > kWorthKeeping)
        m_partial = QByteArray();
    else
        m_partial.remove(0, m_partial.size() - rest.size());
}

}
