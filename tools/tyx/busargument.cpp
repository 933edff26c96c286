#include "tools/tyx/busargument.h"

#include "appbase/messaging/wire.h"

#include <algorithm>
#include <array>

namespace tyx {

namespace {

using Writer = wire::Writer;

bool putInt(Writer &out, const QString &text)
{
    bool ok = false;
    out.i32(text.toInt(&ok, 0));
    return ok;
}

bool putUint(Writer &out, const QString &text)
{
    bool ok = false;
    out.u32(text.toUInt(&ok, 0));
    return ok;
}

bool putBool(Writer &out, const QString &text)
{
    const bool yes = text == QLatin1String("1") || text == QLatin1String("true");
    out.flag(yes);
    return yes || text == QLatin1String("0") || text == QLatin1String("false");
}

bool putQString(Writer &out, const QString &text)
{
    out.string(text);
    return true;
}

bool putQCString(Writer &out, const QString &text)
{
    out.cstring(text.toUtf8());
    return true;
}

bool putUuid(Writer &out, const QString &text)
{
    const QUuid uuid(text);
    out.uuid(uuid);
    return !uuid.isNull() || text == QUuid().toString();
}

bool putBytes(Writer &out, const QString &text)
{
    const auto bytes = decodeHex(text);
    out.bytes(bytes.value_or(QByteArray()));
    return bytes.has_value();
}

bool putRaw(Writer &out, const QString &text)
{
    const auto bytes = decodeHex(text);
    out.raw(bytes.value_or(QByteArray()));
    return bytes.has_value();
}

struct Kind {
    QLatin1String name;
    bool (*put)(Writer &out, const QString &text);
    const char *wanted;
};

const std::array kKinds = {
    Kind{QLatin1String("int"), putInt, "a whole number of 32 bits"},
    Kind{QLatin1String("uint"), putUint, "a whole number from 0 to 4294967295"},
    Kind{QLatin1String("bool"), putBool, "1, 0, true or false"},
    Kind{QLatin1String("qstring"), putQString, "a text"},
    Kind{QLatin1String("qcstring"), putQCString, "a text"},
    Kind{QLatin1String("uuid"), putUuid, "an identifier like {01234567-89ab-cdef-0123-456789abcdef}"},
    Kind{QLatin1String("bytes"), putBytes, "pairs of hexadecimal digits"},
    Kind{QLatin1String("raw"), putRaw, "pairs of hexadecimal digits"},
};

}

tl::expected<QByteArray, QString> encodeArguments(const QStringList &arguments)
{
    Writer out;
    for (const QString &argument : arguments) {
        const qsizetype colon = argument.indexOf(u':');
        const QStringView name = QStringView(argument).left(std::max<qsizetype>(colon, 0));
        const auto kind =
            std::find_if(kKinds.begin(), kKinds.end(), [&](const Kind &known) { return known.name == name; });
        if (kind == kKinds.end()) {
            return tl::make_unexpected(QStringLiteral("argument \"%1\" has no type that is known: write int:, uint:, "
                                                      "bool:, qstring:, qcstring:, uuid:, bytes: or raw: before it")
                                           .arg(argument));
        }
        if (!kind->put(out, argument.mid(colon + 1)))
            return tl::make_unexpected(
                QStringLiteral("argument \"%1\" should be %2").arg(argument, QLatin1String(kind->wanted)));
    }
    return out.result();
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
