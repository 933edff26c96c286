// Arguments of a message as they are typed: "int:3 qstring:abc bool:1".
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <tl/expected.hpp>

namespace tyx {

// Written one behind the other, in their wire forms:
//   int:N uint:N (also 0x...)   bool:0|1|true|false   qstring:TEXT   qcstring:TEXT   uuid:{...}   bytes:HEX   raw:HEX
// bytes: is a byte array with its length, raw: is put as it is. The error names the argument and what is wrong with it.
tl::expected<QByteArray, QString> encodeArguments(const QStringList &arguments);

// Hexadecimal digits in pairs, blanks between them allowed; nothing else is taken.
tl::expected<QByteArray, QString> decodeHex(const QString &text);

}
