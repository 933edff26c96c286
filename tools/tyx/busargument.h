// Arguments of messages: the kinds there are, how they are typed ("int:3 qstring:abc bool:1"), written, read and shown.
#pragma once

#include "appbase/messaging/wire.h"

#include <QByteArray>
#include <QJsonValue>
#include <QList>
#include <QString>
#include <QStringList>
#include <span>
#include <tl/expected.hpp>

namespace tyx {

// One row for everything that is known of a kind. Written with `put` and read with `take` it is the same.
struct Kind {
    QLatin1String name; // as it is typed before the colon
    bool (*put)(wire::Writer &out, const QString &text); // false: the text is no such value
    QJsonValue (*take)(wire::Reader &in); // null strings are null; bytes are hexadecimal digits
    const char *wanted; // what to type, for error texts
};

//   int uint bool            32 bits each (also 0x..., true, false)
//   uint8 uint16 bool8       for the few records that say so
//   qstring qcstring         texts
//   bytes uuid               a byte array with its length; {01234567-89ab-cdef-0123-456789abcdef}
//   ints uuids names         a 32-bit count, then as many; names are pairs of a uuid and a qstring
//   raw                      bytes as they are, without a length; read, all that are left
std::span<const Kind> kinds();
const Kind *kindNamed(QStringView name); // null: there is none

// Whether what is written as one of them reads as the other.
bool haveSameForm(const Kind &a, const Kind &b);

struct Encoded {
    QByteArray data;
    QList<const Kind *> kinds; // in order; none when the data were given as bytes
};

// Each is KIND:VALUE. The error names the argument, what is wrong with it, and what the message takes, when that is
// told.
tl::expected<Encoded, QString> encodeArguments(const QStringList &arguments, const QString &whatItTakes = {});

// Hexadecimal digits in pairs, blanks between them allowed; nothing else is taken.
tl::expected<QByteArray, QString> decodeHex(const QString &text);

}
