#include "input/logic/recording.h"

#include <QByteArrayList>
#include <QSet>
#include <algorithm>
#include <optional>

namespace recording {

namespace {

constexpr char kHeader[] = "tyx-recording 1";
constexpr qint64 kLatest = 1'000'000'000'000; // milliseconds: 31 years, and sums of it are still numbers
constexpr qint64 kAfterTouch = 500; // milliseconds; the toolkit takes two touches within 400 for a double click

QByteArray word(const QByteArray &text) { return text.isEmpty() ? QByteArray("-") : text.toPercentEncoding("/(),.:"); }

QByteArray unword(const QByteArray &word) { return word == "-" ? QByteArray() : QByteArray::fromPercentEncoding(word); }

QByteArray hex(const QByteArray &bytes) { return bytes.isEmpty() ? QByteArray("-") : bytes.toHex(); }

std::optional<QByteArray> unhex(const QByteArray &word)
{
    if (word == "-")
        return QByteArray();
    QByteArray bytes = QByteArray::fromHex(word); // which leaves out what is no digit
    return bytes.toHex() == word.toLower() ? std::optional(std::move(bytes)) : std::nullopt;
}

std::optional<quint16> number(const QByteArray &word)
{
    bool good = false;
    const quint16 value = word.startsWith("0x") ? word.mid(2).toUShort(&good, 16) : word.toUShort(&good, 10);
    return good && !word.startsWith('+') ? std::optional(value) : std::nullopt;
}

QByteArray text(const Key &key)
{
    return (key.device == keypad::Device::Button ? "key button 0x" : "key keypad 0x")
        + QByteArray::number(key.record, 16);
}

QByteArray text(const Touch &touch)
{
    return "touch " + QByteArray::number(touch.sample.pressure) + ' ' + QByteArray::number(touch.sample.x) + ' '
        + QByteArray::number(touch.sample.y);
}

QByteArray text(const Message &message)
{
    return (message.isEffect ? "effect " : "message ") + word(message.channel) + ' ' + word(message.name) + ' '
        + hex(message.data);
}

QByteArray text(const Status &status) { return "status " + word(status.field) + ' ' + hex(status.bytes); }

using What = std::optional<decltype(Event::what)>;

What key(const QByteArrayList &words)
{
    const auto record = words.size() == 2 ? number(words[1]) : std::nullopt;
    if (!record || (words[0] != "keypad" && words[0] != "button"))
        return {};
    return Key{words[0] == "button" ? keypad::Device::Button : keypad::Device::Keypad, *record};
}

What touchSample(const QByteArrayList &words)
{
    if (words.size() != 3)
        return {};
    const auto pressure = number(words[0]);
    const auto x = number(words[1]);
    const auto y = number(words[2]);
    if (!pressure || !x || !y)
        return {};
    return Touch{{*pressure, *x, *y}};
}

What message(const QByteArrayList &words, bool isEffect)
{
    const auto data = words.size() == 3 ? unhex(words[2]) : std::nullopt;
    if (!data || words[0] == "-" || words[1] == "-")
        return {};
    return Message{isEffect, unword(words[0]), unword(words[1]), *data};
}

What status(const QByteArrayList &words)
{
    const auto bytes = words.size() == 2 ? unhex(words[1]) : std::nullopt;
    if (!bytes)
        return {};
    return Status{unword(words[0]), *bytes};
}

What what(const QByteArray &kind, const QByteArrayList &words)
{
    if (kind == "key")
        return key(words);
    if (kind == "touch")
        return touchSample(words);
    if (kind == "message" || kind == "effect")
        return message(words, kind == "effect");
    if (kind == "status")
        return status(words);
    return {};
}

std::optional<Event> event(const QByteArray &line)
{
    const QByteArrayList words = line.split(' ');
    bool good = false;
    const qint64 at = words[0].toLongLong(&good);
    if (!good || at < 0 || at > kLatest || words.size() < 2)
        return {};
    auto read = what(words[1], words.mid(2));
    return read ? std::optional(Event{at, std::move(*read)}) : std::nullopt;
}

tl::unexpected<QString> wrong(qsizetype line, const QString &why)
{
    return tl::make_unexpected(QStringLiteral("line %1: %2").arg(QString::number(line), why));
}

}

QByteArray header() { return QByteArray(kHeader) + '\n'; }

QByteArray format(const Event &event)
{
    const QByteArray rest = std::visit([](const auto &what) { return text(what); }, event.what);
    return QByteArray::number(event.at) + ' ' + rest + '\n';
}

tl::expected<QList<Event>, QString> parse(QByteArrayView text)
{
    QList<Event> events;
    qsizetype number = 0;
    for (const QByteArray &raw : text.toByteArray().split('\n')) {
        const QByteArray line = raw.simplified();
        if (++number == 1 && line != kHeader)
            return wrong(1, QStringLiteral("a recording begins with \"%1\"").arg(QLatin1String(kHeader)));
        if (number == 1 || line.isEmpty() || line.startsWith('#'))
            continue;
        const auto read = event(line);
        if (!read)
            return wrong(number, QStringLiteral("this is no event"));
        if (!events.isEmpty() && read->at < events.last().at)
            return wrong(number, QStringLiteral("it is earlier than the line before"));
        events.append(*read);
    }
    return events;
}

QList<qint64> shortenedPauses(const QList<Event> &events)
{
    QList<qint64> pauses;
    QSet<quint16> keysDown;
    bool penDown = false;
    constexpr qint64 kNever = -1;
    qint64 lifted = kNever; // when the pen was
    qint64 before = 0;
    for (const Event &event : events) {
        const qint64 pause = event.at - std::exchange(before, event.at);
        const auto *touch = std::get_if<Touch>(&event.what);
        const bool down = touch && touch->sample.pressure > 0;
        const bool afterTouch = down && !penDown && lifted != kNever;
        pauses.append(!keysDown.isEmpty() || penDown ? pause
                : afterTouch                         ? std::min(event.at - lifted, kAfterTouch)
                                                     : 0);
        if (touch && std::exchange(penDown, down) && !down)
            lifted = event.at;
        if (const auto *key = std::get_if<Key>(&event.what); key && key->device == keypad::Device::Keypad) {
            const quint16 which = key->record & keypad::kNumberMask;
            if (key->record & keypad::kPressed)
                keysDown.insert(which);
            else
                keysDown.remove(which);
        }
    }
    return pauses;
}

}
