#include "tools/tyx/busargument.h"

#include "tools/tyx/command.h"

#include <QJsonArray>
#include <QJsonObject>
#include <algorithm>
#include <array>
#include <utility>

namespace tyx {

namespace {

using wire::Reader;
using wire::Writer;

std::optional<QUuid> uuidFrom(const QString &text)
{
    const QUuid uuid(text);
    if (uuid.isNull() && text != QUuid().toString())
        return {};
    return uuid;
}

template <typename T> std::optional<T> numberOf(const QString &text)
{
    const auto number = wholeNumber(text.toStdString());
    return number && std::in_range<T>(*number) ? std::optional(T(*number)) : std::nullopt;
}

// The parts of "a,b,c"; none of an empty text.
QStringList partsOf(const QString &text, QChar separator)
{
    return text.isEmpty() ? QStringList() : text.split(separator);
}

template <typename T> bool putNumber(Writer &out, const QString &text)
{
    const auto number = numberOf<T>(text);
    out.value(number.value_or(0));
    return number.has_value();
}

template <typename T> QJsonValue takeNumber(Reader &in)
{
    T number = 0;
    in.value(number);
    return qint64(number);
}

template <void (Writer::*write)(bool)> bool putFlag(Writer &out, const QString &text)
{
    const bool yes = text == QLatin1String("1") || text == QLatin1String("true");
    (out.*write)(yes);
    return yes || text == QLatin1String("0") || text == QLatin1String("false");
}

template <void (Reader::*read)(bool &)> QJsonValue takeFlag(Reader &in)
{
    bool yes = false;
    (in.*read)(yes);
    return yes;
}

bool putQString(Writer &out, const QString &text)
{
    out.string(text);
    return true;
}

QJsonValue takeQString(Reader &in)
{
    QString text;
    in.string(text);
    return text.isNull() ? QJsonValue() : QJsonValue(text);
}

bool putQCString(Writer &out, const QString &text)
{
    out.cstring(text.toUtf8());
    return true;
}

QJsonValue takeQCString(Reader &in)
{
    QCString text;
    in.cstring(text);
    return text.isNull() ? QJsonValue() : QJsonValue(QString::fromUtf8(text));
}

bool putUuid(Writer &out, const QString &text)
{
    const auto uuid = uuidFrom(text);
    out.uuid(uuid.value_or(QUuid()));
    return uuid.has_value();
}

QJsonValue takeUuid(Reader &in)
{
    QUuid uuid;
    in.uuid(uuid);
    return uuid.toString();
}

bool putBytes(Writer &out, const QString &text)
{
    const auto bytes = decodeHex(text);
    out.bytes(bytes.value_or(QByteArray()));
    return bytes.has_value();
}

QJsonValue takeBytes(Reader &in)
{
    QByteArray bytes;
    in.bytes(bytes);
    return QString::fromLatin1(bytes.toHex());
}

bool putRaw(Writer &out, const QString &text)
{
    const auto bytes = decodeHex(text);
    out.raw(bytes.value_or(QByteArray()));
    return bytes.has_value();
}

QJsonValue takeRaw(Reader &in)
{
    QByteArray bytes;
    in.raw(bytes, in.left());
    return QString::fromLatin1(bytes.toHex());
}

bool putInts(Writer &out, const QString &text)
{
    QList<qint32> list;
    for (const QString &part : partsOf(text, u',')) {
        const auto number = numberOf<qint32>(part);
        if (!number)
            return false;
        list.append(*number);
    }
    out.value(list);
    return true;
}

QJsonValue takeInts(Reader &in)
{
    QList<qint32> list;
    in.value(list);
    QJsonArray array;
    for (const qint32 number : list)
        array.append(number);
    return array;
}

bool putUuids(Writer &out, const QString &text)
{
    QList<QUuid> list;
    for (const QString &part : partsOf(text, u',')) {
        const auto uuid = uuidFrom(part);
        if (!uuid)
            return false;
        list.append(*uuid);
    }
    out.value(list);
    return true;
}

QJsonValue takeUuids(Reader &in)
{
    QList<QUuid> list;
    in.value(list);
    QJsonArray array;
    for (const QUuid &uuid : list)
        array.append(uuid.toString());
    return array;
}

bool putNames(Writer &out, const QString &text)
{
    QMap<QUuid, QString> names;
    for (const QString &part : partsOf(text, u';')) {
        const auto uuid = uuidFrom(part.section(u'=', 0, 0));
        if (!uuid || !part.contains(u'='))
            return false;
        names.insert(*uuid, part.section(u'=', 1));
    }
    out.value(names);
    return true;
}

QJsonValue takeNames(Reader &in)
{
    QMap<QUuid, QString> names;
    in.value(names);
    QJsonObject object;
    for (auto it = names.cbegin(); it != names.cend(); ++it)
        object.insert(it.key().toString(), it.value());
    return object;
}

constexpr char kFlag[] = "1, 0, true or false";

// clang-format off
constexpr std::array kKinds = {
    Kind{QLatin1String("int"), putNumber<qint32>, takeNumber<qint32>, "a whole number of 32 bits"},
    Kind{QLatin1String("uint"), putNumber<quint32>, takeNumber<quint32>, "a whole number from 0 to 4294967295"},
    Kind{QLatin1String("bool"), putFlag<&Writer::flag>, takeFlag<&Reader::flag>, kFlag},
    Kind{QLatin1String("qstring"), putQString, takeQString, "a text of UTF-16"},
    Kind{QLatin1String("qcstring"), putQCString, takeQCString, "a text of bytes, as names of channels and messages are"},
    Kind{QLatin1String("uuid"), putUuid, takeUuid, "an identifier like {01234567-89ab-cdef-0123-456789abcdef}"},
    Kind{QLatin1String("bytes"), putBytes, takeBytes, "a byte array as pairs of hexadecimal digits"},
    Kind{QLatin1String("raw"), putRaw, takeRaw, "bytes as they are, as pairs of hexadecimal digits"},
    Kind{QLatin1String("uint8"), putNumber<quint8>, takeNumber<quint8>, "a whole number from 0 to 255"},
    Kind{QLatin1String("uint16"), putNumber<quint16>, takeNumber<quint16>, "a whole number from 0 to 65535"},
    Kind{QLatin1String("bool8"), putFlag<&Writer::flag8>, takeFlag<&Reader::flag8>, kFlag},
    Kind{QLatin1String("ints"), putInts, takeInts, "whole numbers of 32 bits with commas between them"},
    Kind{QLatin1String("uuids"), putUuids, takeUuids, "identifiers with commas between them"},
    Kind{QLatin1String("names"), putNames, takeNames, "pairs like {identifier}=TEXT with semicolons between them"},
};
// clang-format on

QString kindNames()
{
    QStringList names;
    for (const Kind &kind : kKinds)
        names.append(kind.name + u':');
    return names.join(u' ');
}

// What a kind travels as: the three words of 32 bits are one to the reader.
QLatin1String formOf(const Kind &kind)
{
    for (const Kind &word : std::span(kKinds).first(3)) {
        if (kind.name == word.name)
            return kKinds.front().name;
    }
    return kind.name == QLatin1String("bool8") ? QLatin1String("uint8") : kind.name;
}

}

std::span<const Kind> kinds() { return kKinds; }

const Kind *kindNamed(QStringView name)
{
    const auto kind = std::ranges::find_if(kKinds, [&](const Kind &known) { return known.name == name; });
    return kind == kKinds.end() ? nullptr : &*kind;
}

bool haveSameForm(const Kind &a, const Kind &b) { return formOf(a) == formOf(b); }

tl::expected<Encoded, QString> encodeArguments(const QStringList &arguments, const QString &whatItTakes)
{
    Writer out;
    QList<const Kind *> written;
    for (const QString &argument : arguments) {
        const qsizetype colon = argument.indexOf(u':');
        const Kind *kind = kindNamed(QStringView(argument).left(std::max<qsizetype>(colon, 0)));
        if (!kind) {
            const QString cure =
                whatItTakes.isEmpty() ? QStringLiteral("write one of %1 before it").arg(kindNames()) : whatItTakes;
            return tl::make_unexpected(
                QStringLiteral("argument \"%1\" has no type that is known: %2").arg(argument, cure));
        }
        if (!kind->put(out, argument.mid(colon + 1)))
            return tl::make_unexpected(
                QStringLiteral("argument \"%1\" should be %2").arg(argument, QLatin1String(kind->wanted)));
        written.append(kind);
    }
    return Encoded{out.result(), written};
}

tl::expected<QByteArray, QString> decodeHex(const QString &text)
{
    QByteArray digits = text.toUtf8();
    digits.replace(' ', QByteArray());
    const auto isDigit = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
    };
    if (digits.size() % 2 != 0 || !std::all_of(digits.cbegin(), digits.cend(), isDigit))
        return tl::make_unexpected(QStringLiteral("\"%1\" is not pairs of hexadecimal digits").arg(text));
    return QByteArray::fromHex(digits);
}

}
