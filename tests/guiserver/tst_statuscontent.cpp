#include "guiserver/statuscontent.h"
#include "settings/status/statuslayout.h"

#include <QTest>
#include <cstring>

using Content = StatusContent;

class TstStatusContent : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theOperatorIsNamedAfterTheSimCardAtHome_data();
    void theOperatorIsNamedAfterTheSimCardAtHome();
    void theBatteryCountsInPercentOrLevels_data();
    void theBatteryCountsInPercentOrLevels();
    void anIncomingCallIsShownBeforeOneThatIsUp();
    void wildValuesAreBounded();
};

void TstStatusContent::theOperatorIsNamedAfterTheSimCardAtHome_data()
{
    QTest::addColumn<QByteArray>("network");
    QTest::addColumn<QByteArray>("simCard");
    QTest::addColumn<bool>("roaming");
    QTest::addColumn<QString>("shown");
    QTest::newRow("home") << QByteArray("Net") << QByteArray("Sim") << false << QStringLiteral("Sim");
    QTest::newRow("roaming") << QByteArray("Net") << QByteArray("Sim") << true << QStringLiteral("Net");
    QTest::newRow("only the network") << QByteArray("Net") << QByteArray() << false << QStringLiteral("Net");
    QTest::newRow("only the SIM card") << QByteArray() << QByteArray("Sim") << true << QStringLiteral("Sim");
    QTest::newRow("UTF-8") << QByteArray("\xC3\x96st") << QByteArray() << false << QStringLiteral("Öst");
    QTest::newRow("Latin-1") << QByteArray("\xD6st") << QByteArray() << false << QStringLiteral("Öst");
    QTest::newRow("control characters") << QByteArray("a\n\x1b b") << QByteArray() << false << QStringLiteral("a b");
    QTest::newRow("no NUL") << QByteArray(61, 'x') << QByteArray() << false << QString(60, u'x');
}

void TstStatusContent::theOperatorIsNamedAfterTheSimCardAtHome()
{
    QFETCH(QByteArray, network);
    QFETCH(QByteArray, simCard);
    QFETCH(bool, roaming);
    SystemTableCopy table = {};
    std::memcpy(table.bytes + status::serviceName.offset, network.constData(), size_t(network.size()));
    std::memcpy(table.bytes + status::spnName.offset, simCard.constData(), size_t(simCard.size()));
    table.bytes[status::roaming.offset] = roaming;
    QTEST(contentOf(table).operatorName, "shown");
}

void TstStatusContent::theBatteryCountsInPercentOrLevels_data()
{
    QTest::addColumn<int>("battery");
    QTest::addColumn<int>("percent");
    QTest::addColumn<int>("level");
    QTest::addColumn<int>("shown");
    QTest::newRow("not known") << 0xFF << 0 << 0 << Content::kUnknown;
    QTest::newRow("empty") << 0 << 0 << 0 << 0;
    QTest::newRow("percent") << 0 << 42 << 4 << 42;
    QTest::newRow("more than all") << 0 << 200 << 0 << 100;
    QTest::newRow("level") << 0xFF << 0 << 3 << 75;
    QTest::newRow("a level beyond full") << 0 << 0 << 9 << 100;
}

void TstStatusContent::theBatteryCountsInPercentOrLevels()
{
    QFETCH(int, battery);
    QFETCH(int, percent);
    QFETCH(int, level);
    SystemTableCopy table = {};
    table.bytes[status::battery.offset] = quint8(battery);
    table.bytes[status::batteryPercent.offset] = quint8(percent);
    table.bytes[status::batteryLevel.offset] = quint8(level);
    QTEST(contentOf(table).batteryPercent, "shown");
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
