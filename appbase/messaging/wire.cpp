#include "appbase/messaging/wire.h"

#include <QtEndian>

namespace wire {

namespace {

constexpr QDataStream::Version kVersion = QDataStream::Qt_2_1;
static_assert(kVersion == 3);
constexpr quint32 kNullString = 0xFFFFFFFF;

}

Writer::Writer()
{
    m_buffer.open(QIODevice::WriteOnly);
    m_stream.setDevice(&m_buffer);
    m_stream.setVersion(kVersion);
}

void Writer::raw(QByteArrayView bytes) { m_stream.writeRawData(bytes.data(), int(bytes.size())); }

Reader::Reader(const QByteArray &bytes)
{
    m_buffer.setData(bytes);
    m_buffer.open(QIODevice::ReadOnly);
    m_stream.setDevice(&m_buffer);
    m_stream.setVersion(kVersion);
}

void Reader::flag(bool &value)
{
    qint32 number = 0;
    i32(number);
    value = number != 0;
}

void Reader::flag8(bool &value)
{
    quint8 number = 0;
    u8(number);
    value = number != 0;
}

void Reader::string(QString &value)
{
    value = QString();
    quint32 size = 0;
    u32(size);
    if (size == kNullString || !ok())
        return;
    if (size % 2 != 0)
        m_stream.setStatus(QDataStream::ReadCorruptData);
    if (!fits(size))
        return;
    value = QString(qsizetype(size / 2), Qt::Uninitialized);
    m_stream.readRawData(reinterpret_cast<char *>(value.data()), int(size));
    qFromBigEndian<quint16>(value.constData(), value.size(), value.data());
}

void Reader::cstring(QCString &value)
{
    quint32 size = 0;
    u32(size);
    value = size == 0 ? QCString() : QCString(take(size));
}

void Reader::bytes(QByteArray &value)
{
    quint32 size = 0;
    u32(size);
    value = size == 0 || size == kNullString ? QByteArray() : take(size);
}

void Reader::uuid(QUuid &value)
{
    value = QUuid();
    if (fits(sizeof(QUuid)))
        m_stream >> value;
}

void Reader::raw(QByteArray &bytes, qsizetype size) { bytes = take(quint32(size)); }

bool Reader::fits(quint64 size)
{
    if (ok() && size > quint64(left()))
        m_stream.setStatus(QDataStream::ReadPastEnd);
    return ok();
}

quint32 Reader::count()
{
    quint32 elements = 0;
    u32(elements);
    return fits(elements) ? elements : 0;
}

QByteArray Reader::take(quint32 size)
{
    if (!fits(size))
        return {};
    QByteArray bytes(qsizetype(size), Qt::Uninitialized);
    m_stream.readRawData(bytes.data(), int(size));
    return bytes;
}

}
