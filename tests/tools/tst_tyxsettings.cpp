// The real program on a phone's settings: `tyx settings`.
#include "tests/support/peerprocess.h"
#include "tests/support/tyxtool.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

const TyxCommand settings{u"settings"_s};
const QString kSystem = u"/setup/tyx_system.cfg"_s;
const QString kCopy = u"/tmp/tyx_system.cfg"_s;

}

class TstTyxSettings : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void setsAndGets();
    void namesWhatFails();
    void whatASecondTrySavesIsDone();
    void writesTheCopyAndTellsTheInputMethods();
    void describesEverySettingAsTheDocumentDoes();
    void watches();
};

void TstTyxSettings::init()
{
    for (const QString &folder : {u"/setup/"_s, u"/tmp/"_s}) {
        for (const QString &file : QDir(folder).entryList({u"*.cfg"_s}))
            QFile::remove(folder + file);
    }
}

void TstTyxSettings::setsAndGets()
{
    const struct {
        QString name;
        QString value;
        int status;
        QByteArray shown; // afterwards
    } rows[] = {
        {u"bluetooth-name"_s, u"my phone"_s, 0, "my phone"},
        {u"bluetooth-name"_s, u"my\nphone"_s, 2, "Q300 BT"},
        {u"lock-code"_s, u""_s, 2, "1234"}, // it would mean the default one
        {u"bluetooth"_s, u"on"_s, 0, "on"},
        {u"voice-help"_s, u"0"_s, 0, "off"},
        {u"bluetooth"_s, u"maybe"_s, 2, "off"},
        {u"screen-sleep"_s, u"2min"_s, 0, "2min"},
        {u"screen-sleep"_s, u"300"_s, 0, "5min"},
        {u"screen-sleep"_s, u"17"_s, 2, "never"},
        {u"backlight"_s, u"100"_s, 0, "100"},
        {u"backlight"_s, u"101"_s, 2, "60"},
        {u"backlight"_s, u"bright"_s, 2, "60"},
        {u"vibration"_s, u"0x-5"_s, 2, "0"},
        {u"key-lock-after"_s, u"-7"_s, 0, "-7"},
        {u"blending-color"_s, u"0x80FFFFFF"_s, 0, "2164260863"},
        {u"browser-qos-min"_s, u"00FFa0"_s, 0, "00ffa0"},
        {u"browser-qos-min"_s, u"00F"_s, 2, ""},
    };
    for (const auto &[name, value, status, shown] : rows) {
        init();
        const Outcome set = settings({u"set"_s, u"--"_s, name, value});
        QCOMPARE(set.status, status);
        QVERIFY(set.out.isEmpty());
        QVERIFY(status == 0 ? set.err.isEmpty() : set.err.contains(name.toUtf8()) && set.err.count('\n') == 1);
        QCOMPARE(settings({u"get"_s, name}).out, shown + '\n');
    }
}

void TstTyxSettings::namesWhatFails()
{
    for (const char *line : {"get none", "set none 1", "watch none", "describe none", "get", ""}) {
        const Outcome outcome = settings(line);
        QCOMPARE(outcome.status, 2);
        QCOMPARE(outcome.err.count('\n'), 1);
    }
    QVERIFY(QDir().mkpath(kSystem));
    const Outcome outcome = settings("set bluetooth on");
    QVERIFY(QDir().rmdir(kSystem));
    QCOMPARE(outcome.status, 3);
    QCOMPARE(outcome.err, "tyx: /setup/tyx_system.cfg: open: Is a directory; make it a file that can be read\n");
    QVERIFY(QDir().mkpath(kCopy + u".new"_s));
    const Outcome halfSet = settings("set input-language 7");
    QVERIFY(QDir().rmdir(kCopy + u".new"_s) && QFile::remove(kSystem));
    QCOMPARE(halfSet.status, 3);
    QVERIFY2(halfSet.err.startsWith("tyx: /tmp/tyx_system.cfg: could not be saved"), halfSet.err.constData());
    // The source tree is mounted read-only here.
    QVERIFY(QDir().mkpath(u"/tmp/locked"_s) && QFile::link(u"" TYX_SOURCE_DIR "/docs"_s, u"/tmp/locked/setup"_s));
    qputenv("TYX_APP_WRITE_PATH", "/tmp/locked");
    for (const QStringList &line : QList<QStringList>{{u"settings"_s, u"set"_s, u"bluetooth"_s, u"on"_s},
             {u"config"_s, u"set"_s, u"/tmp/locked/setup/t.cfg"_s, u"G"_s, u"k"_s, u"v"_s},
             {u"touch"_s, u"calibrate"_s, u"300"_s, u"250"_s, u"3700"_s, u"3800"_s, u"20"_s, u"20"_s, u"219"_s,
                 u"299"_s}}) {
        const Outcome locked = run(QStringLiteral(TYX_BINARY_DIR "/bin/tyx"), line);
        QCOMPARE(locked.status, 3);
        QVERIFY2(locked.err.startsWith("tyx: /tmp/locked/setup/") && locked.err.contains(": could not be saved: ")
                && locked.err.contains("Read-only file system; mount its disk for writing"),
            locked.err.constData());
    }
    qunsetenv("TYX_APP_WRITE_PATH");
    const Outcome listed = settings("list");
    QVERIFY(listed.out.contains("\nlock-code = ****\n") && listed.out.contains("\nbluetooth = off\n"));
}

void TstTyxSettings::whatASecondTrySavesIsDone()
{
    if (const char *reason = whyNotTraced())
        QSKIP(reason);
    const Outcome outcome = run(u"strace"_s, // leaks cannot be looked for while it traces
        {u"-o"_s, u"/dev/null"_s, u"-E"_s, u"ASAN_OPTIONS=detect_leaks=0"_s, u"-e"_s,
            u"inject=fsync:error=ENOSPC:when=1"_s, QStringLiteral(TYX_BINARY_DIR "/bin/tyx"), u"settings"_s, u"set"_s,
            u"input-language"_s, u"7"_s});
    QCOMPARE(outcome.status, 0);
    for (const QString &file : {kSystem, kCopy})
        QCOMPARE(content(file), "[SYS_SYSTEM_SET]\npreferedInputLanguage = 7\n");
}

void TstTyxSettings::writesTheCopyAndTellsTheInputMethods()
{
    PeerProcess inputMethods(u"buspeer"_s);
    QCOMPARE(inputMethods.ask("host"), "hosting");
    QCOMPARE(inputMethods.ask("open TYX/IMServer"), "opened");
    QCOMPARE(settings("set language de-de").status, 0);
    QCOMPARE(inputMethods.line(),
        "got TYX/IMServer setInputMethodSettings(INPUT_SETTING_T) 0001010100000032010500010100000000");
    for (const QString &file : {kSystem, kCopy})
        QCOMPARE(content(file), "[SYS_SYSTEM_SET]\nLanguageType = de-de\npreferedInputLanguage = 5\n");
}

void TstTyxSettings::describesEverySettingAsTheDocumentDoes()
{
    const QJsonObject list = settings.json("list").object();
    const QJsonArray all = settings.json("describe").array();
    QCOMPARE(all.size(), list.size());
    for (const auto &each : all) {
        const QJsonObject row = each.toObject();
        const QString name = row[u"name"_s].toString();
        QVERIFY2(
            !row[u"meaning"_s].toString().isEmpty() && row[u"file"_s].toString().endsWith(u".cfg"_s), qPrintable(name));
        QVERIFY2(list[name].isNull() || list[name] == row[u"default"_s], qPrintable(name)); // nothing is set
    }
    const Outcome table = settings("describe --markdown");
    QVERIFY2(content(QStringLiteral(TYX_SOURCE_DIR "/docs/settings.md")).contains(table.out),
        "docs/settings.md: replace its table by what `tyx settings describe --markdown` prints");
}

void TstTyxSettings::watches()
{
    QProcess watching;
    settings.start(watching, words("watch --json --count 2"));
    QVERIFY(watching.waitForStarted());
    watching.setReadChannel(QProcess::StandardError);
    QVERIFY(watching.waitForReadyRead()); // it says that it watches
    QCOMPARE(settings("set bluetooth on").status, 0);
    watching.setReadChannel(QProcess::StandardOutput);
    QVERIFY(watching.canReadLine() || watching.waitForReadyRead());
    QCOMPARE(watching.readLine(), "{\"name\":\"bluetooth\",\"value\":true}\n");
    fill(kCopy, "[SYS_SYSTEM_SET]\nSystemVolume = 2\n");
    QVERIFY(watching.waitForFinished());
    QCOMPARE(watching.readLine(), "{\"name\":\"volume-system\",\"value\":2}\n");
    QCOMPARE(watching.exitCode(), 0);
}

QTEST_GUILESS_MAIN(TstTyxSettings)
#include "tst_tyxsettings.moc"
