#include "guiserver/statuscontent.h"
#include "settings/status/statuslayout.h"

#include <QTest>
#include <cstring>

using Content = StatusContent;

class TstStatusContent : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theOperatorIsNamedAfterTheSimCardAtHome();
    void theBatteryCountsInPercentOrLevels();
    void anIncomingCallIsShownBeforeOneThatIsUp();
    void wildValuesAreBounded();
};

void TstStatusContent::theOperatorIsNamedAfterTheSimCardAtHome()
{
    const auto shown = [](const QByteArray &network, const QByteArray &simCard, bool roaming = false) {
        SystemTableCopy table = {};
        std::memcpy(table.bytes + status::serviceName.offset, network.constData(), size_t(network.size()));
        std::memcpy(table.bytes + status::spnName.offset, simCard.constData(), size_t(simCard.size()));
        table.bytes[status::roaming.offset] = roaming;
        return contentOf(table).operatorName;
    };
    QCOMPARE(shown("Net", "Sim"), QStringLiteral("Sim"));
    QCOMPARE(shown("Net", "Sim", true), QStringLiteral("Net"));
    QCOMPARE(shown("Net", ""), QStringLiteral("Net"));
    QCOMPARE(shown("", "Sim", true), QStringLiteral("Sim"));
    QCOMPARE(shown("\xC3\x96st", ""), QStringLiteral("Öst"));
    QCOMPARE(shown("\xD6st", ""), QStringLiteral("Öst")); // Latin-1
    QCOMPARE(shown("a\n\x1b b", ""), QStringLiteral("a b"));
    QCOMPARE(shown(QByteArray(61, 'x'), ""), QString(60, u'x')); // without a NUL
}

void TstStatusContent::theBatteryCountsInPercentOrLevels()
{
    const auto shown = [](quint8 battery, quint8 percent, quint8 level) {
        SystemTableCopy table = {};
        table.bytes[status::battery.offset] = battery;
        table.bytes[status::batteryPercent.offset] = percent;
        table.bytes[status::batteryLevel.offset] = level;
        return contentOf(table).batteryPercent;
    };
    QCOMPARE(shown(0xFF, 0, 0), Content::kUnknown);
    QCOMPARE(shown(0, 0, 0), 0);
    QCOMPARE(shown(0, 42, 4), 42);
    QCOMPARE(shown(0, 200, 0), 100);
    QCOMPARE(shown(0xFF, 0, 3), 75); // a level
    QCOMPARE(shown(0, 0, 9), 100); // beyond full
}

void TstStatusContent::anIncomingCallIsShownBeforeOneThatIsUp()
{
    SystemTableCopy table = {};
    table.bytes[status::phoneInCall.offset] = 1;
    QCOMPARE(contentOf(table).call, Content::Call::Up);
    table.bytes[status::incomingCall.offset] = 1;
    QCOMPARE(contentOf(table).call, Content::Call::Incoming);
}

void TstStatusContent::wildValuesAreBounded()
{
    SystemTableCopy table;
    std::memset(table.bytes, 0xFF, sizeof table.bytes);
    const Content content = contentOf(table);
    QCOMPARE(content.signalBars, 5);
    QCOMPARE(content.batteryPercent, 100);
    QCOMPARE(content.operatorName, QString(60, QChar(0xFF)));
}

QTEST_APPLESS_MAIN(TstStatusContent)
#include "tst_statuscontent.moc"
