// The messages that are known on a phone: what each carries and what it is for. docs/messages.md tells more.
//
// A table of the tool and not of the library: programs know their own messages, and nobody else should load this.
#pragma once

#include "tools/tyx/busargument.h"

#include <QByteArrayView>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <span>

namespace tyx {

// What stands in a row instead of a channel when there is one for every process or program.
inline constexpr QByteArrayView kProcessChannel = "TYX/Application/PID";
inline constexpr QByteArrayView kProgramChannel = "TYX/Application/NAME";
inline constexpr QByteArrayView kToolChannel = "TYX/Tool/PID";
inline constexpr QByteArrayView kAnyChannel = "*"; // an answer to the channel that the question named

struct KnownMessage {
    QByteArrayView channel;
    QByteArrayView name;
    const char *arguments; // "KIND NAME, KIND NAME"
    const char *meaning;
};

std::span<const KnownMessage> knownMessages();

// The rows that a channel's messages are looked up in, the likeliest first. Stored messages reach the handlers of both
// channels of an application, and a program may have a name of digits: those are looked up in both.
QList<QByteArrayView> rowsOf(QByteArrayView channel);

// Null when the message is not known on that channel.
const KnownMessage *knownMessage(QByteArrayView channel, QByteArrayView message);

// Whether two names differ only in what is easily forgotten: "Shutdown" is like "shutdown()".
bool isLike(QByteArrayView name, QByteArrayView other);

struct Argument {
    const Kind *kind;
    QLatin1String name;
};
QList<Argument> argumentsOf(const KnownMessage &message);

// As they are typed: "int:h int:m int:s"; empty when there are none.
QString usageOf(const KnownMessage &message);

// For error texts: "modifytimezone" takes int:h int:m int:s
QString whatItTakes(const KnownMessage &message);

// The arguments of a message, as far as they are what the catalogue says.
struct Decoded {
    QList<QJsonValue> values; // of the first arguments of the row
    QByteArray rest; // the bytes behind them: surplus when all arguments were there
    bool complete = false;
};
Decoded decode(const KnownMessage &message, const QByteArray &data);

// For a person, on one line: names and values, bytes where nothing is known or nothing fits, long ones cut short.
QString argumentsText(QByteArrayView channel, QByteArrayView message, const QByteArray &data);

// For a program: "size" and "data" (all bytes), and of a known message "arguments" (type, name, value) with "surplus"
// or "undecodable" for the bytes that are left.
void describeArguments(QJsonObject &object, QByteArrayView channel, QByteArrayView message, const QByteArray &data);

}
