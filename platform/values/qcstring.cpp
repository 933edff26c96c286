#include "platform/values/qcstring.h"

#include <QDataStream>
#include <algorithm>

namespace {

// A length from outside is followed step by step: memory grows no further than one step ahead of the bytes.
constexpr quint32 kReadStep = 65'536;

QByteArray readBytes(QDataStream &stream, quint32 length)
{
    QByteArray bytes;
    while (length > 0) {
        const quint32 step = std::min(length, kReadStep);
        const qsizetype before = bytes.size();
        bytes.resize(before + qsizetype(step));
        if (stream.readRawData(bytes.data() + before, int(step)) != int(step)) {
            stream.setStatus(QDataStream::ReadPastEnd);
            return {};
        }
        length -= step;
    }
    return bytes;
}

QByteArrayView untilNul(QByteArrayView bytes)
{
    const qsizetype end = bytes.indexOf('\0');
    return end < 0 ? bytes : bytes.first(end);
}

}

QCString::QCString(const QByteArray &bytes) : QByteArray(bytes.contains('\0') ? untilNul(bytes).toByteArray() : bytes)
{
}

QCString::QCString(QByteArrayView bytes) : QByteArray(untilNul(bytes).toByteArray()) { }

QDataStream &operator<<(QDataStream &stream, const QCString &text)
{
    if (text.isNull())
        return stream << quint32(0);
    const QByteArrayView bytes = untilNul(text); // an append may have brought in a NUL
    stream << quint32(bytes.size() + 1);
    stream.writeRawData(bytes.data(), int(bytes.size()));
    return stream << quint8(0);
}

QDataStream &operator>>(QDataStream &stream, QCString &text)
{
    quint32 length = 0;
    stream >> length;
    text = length == 0 ? QCString() : QCString(readBytes(stream, length));
    return stream;
}
