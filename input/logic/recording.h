// What happened to a phone, as a text: keys, samples of the touch panel, messages and changes of the status table, each
// with its time. docs/formats/recording.md describes the text.
#pragma once

#include "input/logic/keymap.h"
#include "input/logic/touchfilter.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>
#include <tl/expected.hpp>
#include <variant>

namespace recording {

struct Key {
    keypad::Device device;
    quint16 record;

    bool operator==(const Key &) const = default;
};

struct Touch {
    touch::Sample sample;

    bool operator==(const Touch &other) const { return sample.encode() == other.sample.encode(); }
};

struct Message {
    bool isEffect; // of something else in the recording; it is not to be sent again
    QByteArray channel;
    QByteArray name;
    QByteArray data;

    bool operator==(const Message &) const = default;
};

struct Status {
    QByteArray field;
    QByteArray bytes; // all that the field has

    bool operator==(const Status &) const = default;
};

struct Event {
    qint64 at; // milliseconds since the recording began
    std::variant<Key, Touch, Message, Status> what;

    bool operator==(const Event &) const = default;
};

QByteArray header(); // the first line
QByteArray format(const Event &event); // a line

// The error names the line and what is wrong with it.
tl::expected<QList<Event>, QString> parse(QByteArrayView text);

// How long a replay that is in a hurry waits before each event, in milliseconds: not at all, except that pauses in
// which a key or the pen is down stay as they were (they make holding and repeating), and that two touches do not
// become a double click.
QList<qint64> shortenedPauses(const QList<Event> &events);

}
