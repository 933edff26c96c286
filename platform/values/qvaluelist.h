// A list of values whose stream form is a 32-bit count and then its elements.
#pragma once

#include <QDataStream>
#include <QList>

// The type of lists in messages. A QList of the same elements becomes one where a function takes one.
template <typename T> class QValueList : public QList<T> {
public:
    using QList<T>::QList;
    QValueList() = default;
    QValueList(const QList<T> &list) : QList<T>(list) { } // shares the elements, as copies of lists do
};

// A 32-bit count, then each element as its own operator writes it.
template <typename T> QDataStream &operator<<(QDataStream &stream, const QValueList<T> &list)
{
    stream << quint32(list.size());
    for (const T &element : list)
        stream << element;
    return stream;
}

// A count is only believed element by element; a stream that ends early leaves the list empty and the status bad.
template <typename T> QDataStream &operator>>(QDataStream &stream, QValueList<T> &list)
{
    list.clear();
    quint32 count = 0;
    for (stream >> count; count > 0 && stream.status() == QDataStream::Ok; --count) {
        T element{};
        stream >> element;
        list.append(std::move(element));
    }
    if (stream.status() != QDataStream::Ok)
        list.clear();
    return stream;
}
