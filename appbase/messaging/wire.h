// Arguments of messages and stored records, in the one stream version that every program of the phone speaks.
//
// A bool travels as a 32-bit int, an 8-bit string counts its terminating NUL, a null byte array is length 0; everything
// else is QDataStream's form of version Qt_2_1 (big-endian). No other file makes a QDataStream.
#pragma once

#include "platform/tyxexport.h"
#include "platform/values/qcstring.h"
#include "platform/values/qvaluelist.h"

#include <QBuffer>
#include <QByteArray>
#include <QDataStream>
#include <QMap>
#include <QString>
#include <QUuid>

namespace wire {

// Writes values one behind the other, each in the form that its function is named after.
class TYX_EXPORT Writer {
public:
    Writer();

    // Numbers of 8, 16 and 32 bits, big-endian; a bool as 32 bits; texts and bytes with their length.
    void u8(quint8 value) { m_stream << value; }
    void u16(quint16 value) { m_stream << value; }
    void i32(qint32 value) { m_stream << value; }
    void u32(quint32 value) { m_stream << value; }
    void flag(bool value) { i32(value ? 1 : 0); }
    void flag8(bool value) { u8(value ? 1 : 0); } // only where a record says that its bool has 8 bits
    void string(const QString &value) { m_stream << value; }
    void cstring(const QCString &value) { m_stream << value; }
    void bytes(const QByteArray &value) { m_stream << value; }
    void uuid(const QUuid &value) { m_stream << value; }
    void raw(QByteArrayView bytes); // as they are, without a length

    // The same, by the type of the value: what pack() uses.
    void value(quint8 v) { u8(v); }
    void value(quint16 v) { u16(v); }
    void value(qint32 v) { i32(v); }
    void value(quint32 v) { u32(v); }
    void value(bool v) { flag(v); }
    void value(const QString &v) { string(v); }
    void value(const QCString &v) { cstring(v); }
    void value(const QByteArray &v) { bytes(v); }
    void value(const QUuid &v) { uuid(v); }
    template <typename T> void value(const QList<T> &list) // a 32-bit count, then the elements
    {
        u32(quint32(list.size()));
        for (const T &element : list)
            value(element);
    }
    template <typename K, typename V> void value(const QMap<K, V> &map) // a 32-bit count, then (key, value) in order
    {
        u32(quint32(map.size()));
        for (auto it = map.cbegin(); it != map.cend(); ++it) {
            value(it.key());
            value(it.value());
        }
    }
    void value(const char *) = delete; // say whether it is a QCString or a QString

    // For code that is handed a stream; it is at the place where this writer is.
    QDataStream &stream() { return m_stream; }
    [[nodiscard]] const QByteArray &result() const { return m_buffer.data(); }

private:
    QBuffer m_buffer;
    QDataStream m_stream;
};

// Reads what a Writer wrote. Once something does not fit into the bytes that are left the reader is bad: everything
// read from then on is zero, empty or null. A length or count is compared with the bytes that are left before memory is
// asked for. Bytes left over at the end are no error: a newer sender may append arguments.
class TYX_EXPORT Reader {
public:
    explicit Reader(const QByteArray &bytes); // at their beginning; keeps them

    // What the functions of the same names of Writer wrote; zero, empty or null when the reader is bad.
    void u8(quint8 &value) { number(value); }
    void u16(quint16 &value) { number(value); }
    void i32(qint32 &value) { number(value); }
    void u32(quint32 &value) { number(value); }
    void flag(bool &value);
    void flag8(bool &value);
    void string(QString &value);
    void cstring(QCString &value);
    void bytes(QByteArray &value);
    void uuid(QUuid &value);
    void raw(QByteArray &bytes, qsizetype size);

    // The same, by the type of the value: what unpack() uses.
    void value(quint8 &v) { u8(v); }
    void value(quint16 &v) { u16(v); }
    void value(qint32 &v) { i32(v); }
    void value(quint32 &v) { u32(v); }
    void value(bool &v) { flag(v); }
    void value(QString &v) { string(v); }
    void value(QCString &v) { cstring(v); }
    void value(QByteArray &v) { bytes(v); }
    void value(QUuid &v) { uuid(v); }
    // A list that is cut off is read as an empty one.
    template <typename T> void value(QList<T> &list)
    {
        list.clear();
        for (quint32 left = count(); left > 0 && ok(); --left) {
            T element{};
            value(element);
            list.append(std::move(element));
        }
        if (!ok())
            list.clear();
    }
    // Likewise; of equal keys the last one counts.
    template <typename K, typename V> void value(QMap<K, V> &map)
    {
        map.clear();
        for (quint32 left = count(); left > 0 && ok(); --left) {
            K key{};
            V mapped{};
            value(key);
            value(mapped);
            map.insert(key, mapped);
        }
        if (!ok())
            map.clear();
    }

    // Whether everything up to here was there, and how many bytes are behind it.
    [[nodiscard]] bool ok() const { return m_stream.status() == QDataStream::Ok; }
    [[nodiscard]] qsizetype left() const { return qsizetype(m_buffer.size() - m_buffer.pos()); }
    [[nodiscard]] bool atEnd() const { return left() == 0; }

    // For code that is handed a stream; it is at the place where this reader is, and its status is ok().
    QDataStream &stream() { return m_stream; }

private:
    template <typename T> void number(T &value)
    {
        value = 0;
        if (fits(sizeof(T)))
            m_stream >> value;
    }
    bool fits(quint64 size); // otherwise the reader is bad from here on
    quint32 count(); // of elements: each takes at least one byte
    QByteArray take(quint32 size);

    QBuffer m_buffer;
    QDataStream m_stream;
};

// The arguments of a message in one line: QCopChannel::send(channel, "moved(int,QString)", wire::pack(3, name)).
template <typename... T> QByteArray pack(const T &...values)
{
    Writer writer;
    (writer.value(values), ...);
    return writer.result();
}

// True when all of them were there; otherwise the values are not to be used.
template <typename... T> [[nodiscard]] bool unpack(const QByteArray &bytes, T &...values)
{
    Reader reader(bytes);
    (reader.value(values), ...);
    return reader.ok();
}

}
