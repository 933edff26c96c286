// An 8-bit text that ends at its first NUL: the type of channel and message names.
#pragma once

#include "platform/tyxexport.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QMetaType>
#include <QStringBuilder>
#include <type_traits>

class QDataStream;

// A byte array with everything it offers; what it is made from is cut at the first NUL. Null and empty differ, here and
// in the stream form.
class TYX_EXPORT QCString : public QByteArray {
public:
    QCString() = default;
    QCString(const char *text) // a null pointer makes a null string
        : QByteArray(text)
    {
    }
    // Without a NUL among the bytes an array is shared, not copied. Anything that QByteArray makes with "+" will do.
    QCString(const QByteArray &bytes);
    QCString(QByteArrayView bytes);
    template <typename A, typename B>
        requires std::is_convertible_v<QStringBuilder<A, B>, QByteArray>
    QCString(const QStringBuilder<A, B> &sum) : QCString(QByteArray(sum))
    {
    }
};

Q_DECLARE_TYPEINFO(QCString, Q_RELOCATABLE_TYPE);

template <> struct QConcatenable<QCString> : QConcatenable<QByteArray> { };

// Stream form: a 32-bit length that counts the terminating NUL, then the bytes with it; null is length 0 alone.
// Reading ends the text at the first NUL. A length beyond the bytes that are there makes the stream ReadPastEnd and the
// string null, whatever memory the length asks for.
TYX_EXPORT QDataStream &operator<<(QDataStream &stream, const QCString &text);
TYX_EXPORT QDataStream &operator>>(QDataStream &stream, QCString &text);
