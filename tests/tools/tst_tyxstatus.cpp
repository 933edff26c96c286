// tyx status, without a phone and on a whole one.
#include "tests/support/peerprocess.h"
#include "tests/support/tyxtool.h"

#include <QImage>
#include <QJsonArray>
#include <QJsonObject>
#include <SystemStatus>
#include <ZConfig>
#include <csignal>
#include <sys/shm.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

class TstTyxStatus : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void withoutATableTheCureIsNamed();
    void fieldsAreSetAndRead();
    void wrongValuesAreRefused();
    void everyFieldIsListed();
    void theDocumentShowsTheLayout();
    void changesArePrintedAsTheyHappen();
    void theServerOwnsTheTables();
};

namespace {

const TyxCommand status{u"status"_s};

}

void TstTyxStatus::withoutATableTheCureIsNamed()
{
    for (const char *line : {"list", "get pin", "set pin 1", "dump"}) {
        const Outcome outcome = status(line);
        QCOMPARE(outcome.status, 3);
        QVERIFY2(outcome.err.startsWith("tyx: there is no status table here; make one with tyx status init, or start "),
            outcome.err.constData());
    }
    QVERIFY(::symlink("/tmp/elsewhere", "/tmp/key_testcommand") == 0);
    QVERIFY(status("init").err.startsWith("tyx: /tmp/key_testcommand: open: File exists; remove"));
    QVERIFY(!QFile::exists(u"/tmp/elsewhere"_s));
    QVERIFY(QFile::remove(u"/tmp/key_testcommand"_s));
    ::umask(077);
    fill(u"/tmp/key_testcommand"_s, "");
    const int small = ::shmget(::ftok("/tmp/key_testcommand", 'm'), 100, IPC_CREAT | 0600);
    for (const char *line : {"get pin", "init"}) {
        const Outcome outcome = status(line);
        QCOMPARE(outcome.status, 3);
        QVERIFY2(outcome.err.contains("tyx doctor"), outcome.err.constData());
    }
    QVERIFY(::shmctl(small, IPC_RMID, nullptr) == 0 && QFile::remove(u"/tmp/key_testcommand"_s));
    QCOMPARE(status("init").status, 0);
    QCOMPARE(modeOf(u"/tmp/key_testcommand"_s), mode_t(S_IFREG | 0666));
    QCOMPARE(UTIL_GetPowerOnMode(), 0xFF);
}

void TstTyxStatus::fieldsAreSetAndRead()
{
    const std::tuple<QString, QString, QByteArray> rows[] = {
        {u"battery-level"_s, u"010"_s, "10"},
        {u"blending-color"_s, u"0x00ff8000"_s, "0x00ff8000"},
        {u"country"_s, u"4294967295"_s, "0xffffffff"},
        {u"charging"_s, u"1"_s, "1"},
        {u"touch-sound"_s, u"1,70000"_s, "1,0x00011170"},
        {u"service-name"_s, u"Öst Netz"_s, "Öst Netz"},
        {u"network-id"_s, u"123456789012345"_s, "123456789012345"},
        {u"network-id"_s, u""_s, ""},
    };
    for (const auto &[field, value, printed] : rows) {
        const Outcome set = status({u"set"_s, field, value});
        QCOMPARE(set.err, "");
        QCOMPARE(set.status, 0);
        QCOMPARE(status({u"get"_s, field}).out, printed + '\n');
    }
}

void TstTyxStatus::wrongValuesAreRefused()
{
    const std::pair<const char *, const char *> rows[] = {
        {"get nope", "there is no field \"nope\"; tyx status list names them"},
        {"set signal 6", "signal takes a number from 0 to 5, not \"6\""},
        {"set pin -- -1", "pin takes a number from 0 to 255, not \"-1\""},
        {"set pin 0x0x5", "pin takes a number from 0 to 255, not \"0x0x5\""},
        {"set charging 2", "charging takes a number from 0 to 1, not \"2\""},
        {"set key-sound 1", "key-sound takes 2 numbers from 0 to 4294967295, separated by commas, not \"1\""},
        {"set network-id 1234567890123456", "network-id takes a text of at most 15 bytes, not \"1234567890123456\""}};
    for (const auto &[line, error] : rows) {
        const Outcome outcome = status(line);
        QCOMPARE(outcome.err, "tyx: " + QByteArray(error) + '\n');
        QCOMPARE(outcome.status, 2);
    }
    const Outcome unused = status({u"get"_s, u""_s}); // as unused bytes are named in the layout
    QCOMPARE(unused.err, "tyx: there is no field \"\"; tyx status list names them\n");
}

void TstTyxStatus::everyFieldIsListed()
{
    UTIL_SetSignalQuality(3);
    const QJsonArray fields = status.json("list").array();
    const QByteArray text = status("list").out;
    const QByteArray dump = status("dump").out;
    QCOMPARE(text.count('\n'), fields.size());
    int bytes = 0;
    for (const QByteArray &line : dump.split('\n'))
        bytes += int(QByteArray::fromHex(line.mid(7, 47)).size());
    QCOMPARE(bytes, 1456);
    for (const auto &each : fields) {
        const QJsonObject field = each.toObject();
        const QByteArray name = field[u"name"].toString().toUtf8();
        QVERIFY(text.contains(QByteArray(' ' + name + ' ')));
        QVERIFY(dump.contains(QByteArray("  " + name + '\n')));
        if (name == "signal") {
            QCOMPARE(field[u"offset"].toInt(), 0x17);
            QCOMPARE(field[u"type"].toString(), u"u8"_s);
            QCOMPARE(field[u"value"].toInt(), 3);
        }
    }
}

void TstTyxStatus::theDocumentShowsTheLayout()
{
    const QByteArray document = content(QStringLiteral(TYX_SOURCE_DIR "/docs/status.md"));
    QVERIFY(document.contains(status("list --markdown").out)); // otherwise put it there
}

void TstTyxStatus::changesArePrintedAsTheyHappen()
{
    QProcess watch;
    status.start(watch, words("watch --count 3 country spn-name"));
    QVERIFY(watch.waitForStarted());
    // It watches when the first of these comes through.
    for (quint32 country = 1; watch.bytesAvailable() == 0; ++country) {
        UTIL_SetCountryId(country);
        UTIL_SetBatteryLevel(quint8(country)); // nobody asked for it
        watch.waitForReadyRead(50);
        QVERIFY(country < 400);
    }
    UTIL_SetSpnName("Süd");
    UTIL_SetCountryId(70000);
    QVERIFY(watch.waitForFinished());
    QCOMPARE(watch.exitCode(), 0);
    const QList<QByteArray> lines = watch.readAllStandardOutput().split('\n');
    QCOMPARE(lines.size(), 4);
    for (const QByteArray &line : lines.first(3))
        QVERIFY2(line.startsWith("country ") || line == "spn-name Süd", line.constData());
}

void TstTyxStatus::theServerOwnsTheTables()
{
    UTIL_SetCountryId(49);
    ZConfig alerts(u"/tmp/tyx_alertstyle.cfg"_s, false);
    alerts.writeEntry(u"ALERTSTYLE_CONFIG_TABLE"_s, u"AlertSystemVolume"_s, 4);
    alerts.writeEntry(u"ALERTSTYLE_CONFIG_TABLE"_s, u"AlertKeypadStyle"_s, 1);
    QVERIFY(alerts.flush());
    PeerProcess server(u"../bin/tyx-guiserver"_s, {u"--platform"_s, u"offscreen"_s});
    QVERIFY(server.line().startsWith("tyx-guiserver: ready on "));
    QCOMPARE(UTIL_GetCountryId(), 0U);
    SoundInfo touchPanel = {};
    SoundInfo hardKeys = {};
    UTIL_GetTPSoundInfo(&touchPanel);
    UTIL_GetHKSoundInfo(&hardKeys);
    QVERIFY(touchPanel.style == 2 && touchPanel.volume == 4);
    QVERIFY(hardKeys.style == 1 && hardKeys.volume == 4);
    void *applicationManager = UTIL_GetApplicationManagerTableAddress();
    QVERIFY(applicationManager);
    const auto bar = [] {
        TyxCommand{u"screen"_s}("shot /tmp/shot.png");
        return QImage(u"/tmp/shot.png"_s).copy(0, 0, 190, 20); // without the clock
    };
    const QImage before = bar();
    UTIL_SetSignalQuality(5);
    QTRY_VERIFY(bar() != before);
    UTIL_SetSignalQuality(0);
    QTRY_VERIFY(bar() == before);
    // A second server, which is refused, leaves the settings of the phone alone.
    const QByteArray alertsOfThePhone = content(u"/tmp/tyx_alertstyle.cfg"_s);
    fill(u"/setup/tyx_alertstyle.cfg"_s, "[ALERTSTYLE_CONFIG_TABLE]\nAlertSystemVolume = 1\n");
    QVERIFY(run(QStringLiteral(TYX_BINARY_DIR "/bin/tyx-guiserver"), {}).status != 0);
    QCOMPARE(content(u"/tmp/tyx_alertstyle.cfg"_s), alertsOfThePhone);
    ::kill(pid_t(server.pid()), SIGTERM);
    QVERIFY(server.waitForEnd());
    QVERIFY(!UTIL_GetTableAddress());
    QCOMPARE(status("get pin").status, 3);
}

QTEST_GUILESS_MAIN(TstTyxStatus)
#include "tst_tyxstatus.moc"
