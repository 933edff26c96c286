// The catalogue of messages: what it says holds for the tables that act on them, and its decoding for any bytes.
#include "appbase/application/routes.h"
#include "appbase/messaging/wire.h"
#include "tests/support/columns.h"
#include "tests/support/testfiles.h"
#include "tools/tyx/catalogue.h"

#include <QJsonArray>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

class TstCatalogue : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void holdsTheRowsOfTheTables();
    void everyRowReadsWhatItsKindsWrite();
    void argumentsAreToldAsFarAsTheyAreThere_data();
    void argumentsAreToldAsFarAsTheyAreThere();
};

namespace {

// Acted on before the table of its channel is looked at, or by applications and not by the library.
const QStringList kWithoutRow = {
    u"TYX/System languageChanged()"_s,
    u"TYX/System SetGuiToResume()"_s,
    u"TYX/Application/NAME sendTextToContact(QString)"_s,
};

QStringList routedMessages()
{
    QStringList messages;
    const auto add = [&](const char *channel, routes::Rows rows) {
        for (const auto &row : rows)
            messages.append(QString::fromLatin1(channel) + u' ' + QString::fromLatin1(row.message));
    };
    add("TYX/Application/PID", routes::process());
    add("TYX/System", routes::system());
    add("TYX/QtServer", routes::server());
    add("TYX/Application/NAME", routes::application());
    // This table belongs to a program: it can only be read.
    static const QRegularExpression row(uR"re(\{"([^"]+)", &ScreenService::)re"_s);
    const QString source = QString::fromUtf8(content(QStringLiteral(TYX_SOURCE_DIR "/guiserver/screenservice.cpp")));
    for (const auto &found : row.globalMatch(source))
        messages.append(u"TYX/Screen "_s + found.captured(1));
    return messages;
}

// A value of each kind, as it is typed.
QString sampleOf(const tyx::Kind &kind)
{
    const QMap<QLatin1String, QString> samples = {
        {"int"_L1, u"-2"_s},
        {"bool"_L1, u"true"_s},
        {"bool8"_L1, u"1"_s},
        {"qstring"_L1, u"a\u00e9"_s},
        {"qcstring"_L1, u"b"_s},
        {"uuid"_L1, u"{01234567-89ab-cdef-0123-456789abcdef}"_s},
        {"bytes"_L1, u"00ff"_s},
        {"raw"_L1, u"00ff"_s},
        {"ints"_L1, u"1,-1"_s},
        {"uuids"_L1, u"{01234567-89ab-cdef-0123-456789abcdef},{00000000-0000-0000-0000-000000000000}"_s},
        {"names"_L1, u"{01234567-89ab-cdef-0123-456789abcdef}=a=b"_s},
    };
    return kind.name + u':' + samples.value(kind.name, u"7"_s);
}

}

void TstCatalogue::holdsTheRowsOfTheTables()
{
    QStringList expected = routedMessages() + kWithoutRow;
    QVERIFY(expected.size() > 20);
    QStringList known;
    for (const tyx::KnownMessage &row : tyx::knownMessages()) {
        const bool isOfATable = row.channel == "TYX/System" || row.channel == "TYX/QtServer"
            || row.channel == "TYX/Screen" || row.channel.startsWith("TYX/Application/");
        if (isOfATable)
            known.append(QString::fromLatin1(row.channel) + u' ' + QString::fromLatin1(row.name));
    }
    expected.sort();
    known.sort();
    QCOMPARE(known, expected);
}

void TstCatalogue::everyRowReadsWhatItsKindsWrite()
{
    for (const tyx::KnownMessage &row : tyx::knownMessages()) {
        QStringList typed;
        for (const tyx::Argument &argument : tyx::argumentsOf(row)) {
            QVERIFY2(argument.kind && !argument.name.isEmpty(), row.name.constData());
            typed.append(sampleOf(*argument.kind));
        }
        const auto encoded = tyx::encodeArguments(typed);
        QVERIFY2(encoded, row.name.constData());
        const tyx::Decoded decoded = tyx::decode(row, encoded->data);
        QVERIFY2(decoded.complete && decoded.rest.isEmpty(), row.name.constData());
        QCOMPARE(decoded.values.size(), typed.size());
        QVERIFY2(typed.isEmpty() || QByteArrayView(row.arguments) == "raw arguments"
                || !tyx::decode(row, encoded->data.chopped(1)).complete,
            row.name.constData());
        const auto *found = tyx::knownMessage(row.channel, row.name);
        QVERIFY2(found == &row, row.name.constData()); // no other row hides it
    }
}

void TstCatalogue::argumentsAreToldAsFarAsTheyAreThere_data()
{
    const auto row = columns<QByteArray, QByteArray, QByteArray, QString>("channel", "message", "data", "text");
    const QByteArray system = "TYX/System";
    const QByteArray zone = "modifytimezone";
    row("known", system, zone, wire::pack(8, 0, -1), u"h=8 m=0 s=-1"_s);
    row("short", system, zone, wire::pack(8, 0) + "ab", u"h=8 m=0 (int:s cannot be read from: 61 62)"_s);
    row("empty", system, zone, {}, u"(int:h is missing)"_s);
    row("surplus", system, zone, wire::pack(8, 0, 0, true), u"h=8 m=0 s=0 (surplus: 00 00 00 01)"_s);
    row("unknown", system, "other", "ab", u"61 62"_s);
    row("no arguments", system, "applyStyle()", {}, QString());
    row("texts", "TYX/Application/7", "openDoc(QString)", wire::pack(u"a\nb"_s), u"document=\"a?b\""_s);
    row("null text", "TYX/Application/7", "openDoc(QString)", wire::pack(QString()), u"document=null"_s);
    row("stored under the name", "TYX/Application/app", "cmdLine", wire::pack(u"-x"_s), u"commandLine=\"-x\""_s);
    row("program named by digits", "TYX/Application/7", "unconfirmedText(QString)", wire::pack(u"x"_s),
        u"text=\"x\""_s);
    row("lists", "TYX/Application/app", "manipulateAppWindows(int,QValueList)", wire::pack(1, QList<int>{2, -3}),
        u"operation=1 windows=[2,-3]"_s);
    row("answer to any channel", "TYX/Own", "IMNameList(IMMap)", wire::pack(QMap<QUuid, QString>{{QUuid(), u"a"_s}}),
        u"methods={\"{00000000-0000-0000-0000-000000000000}\":\"a\"}"_s);
    row("a length of nearly 4 GiB", "TYX/Screen", "shot(QCString)", wire::pack(quint32(0xFFFFFFF0)),
        u"(qcstring:answerTo cannot be read from: ff ff ff f0)"_s);
    row("a count of nearly 2^32", "TYX/IMServer", "setEntryfavoriteIMList(int,QValueList)",
        wire::pack(quint32(0xFFFFFFFE), 1), u"(uuids:methods cannot be read from: ff ff ff fe 00 00 00 01)"_s);
    row("a picture", "TYX/Tool/9", "shot(QByteArray)", wire::pack(QByteArray(1000, 'p')),
        u"png=<"_s + QString::fromLatin1(QByteArray(64, 'p').toHex(' ')) + u" ... (1000 bytes)>"_s);
}

void TstCatalogue::argumentsAreToldAsFarAsTheyAreThere()
{
    QFETCH(QByteArray, channel);
    QFETCH(QByteArray, message);
    QFETCH(QByteArray, data);
    QFETCH(QString, text);
    QCOMPARE(tyx::argumentsText(channel, message, data), text);
    // As JSON nothing is lost: what is not in the arguments is in the rest.
    QJsonObject object;
    tyx::describeArguments(object, channel, message, data);
    QCOMPARE(object[u"data"].toString(), QString::fromLatin1(data.toHex()));
    QCOMPARE(object.contains(u"arguments"), tyx::knownMessage(channel, message) != nullptr);
    QCOMPARE(object.contains(u"undecodable"), (text.contains(u" cannot be read"_s) || text.contains(u" is missing"_s)));
    QCOMPARE(object.contains(u"surplus"), text.contains(u"(surplus"_s));
}

QTEST_GUILESS_MAIN(TstCatalogue)
#include "tst_catalogue.moc"
