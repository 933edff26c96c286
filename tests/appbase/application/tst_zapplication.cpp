// The application object: its channels, what each message does, its language.
#include "appbase/messaging/wire.h"
#include "tests/support/peerprocess.h"

#include <QCopChannel>
#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <ZApplication>
#include <ZConfig>

namespace {

const QString kPeer = QStringLiteral(TYX_BINARY_DIR "/tests/apppeer");

QCString processChannel(qint64 pid) { return QCString("TYX/Application/" + QByteArray::number(pid)); }

void setLanguage(const QString &code)
{
    ZConfig config(QStringLiteral("/tmp/tyx_system.cfg"), false);
    config.writeEntry(QStringLiteral("SYS_SYSTEM_SET"), QStringLiteral("LanguageType"), code);
}

// Everything the application object says, in order: "signalRaise", "signalOpenDoc(a.txt)".
class Recorder : public QObject {
public:
    explicit Recorder(ZApplication &app)
    {
        note(&app, &ZApplication::signalRaise, "raise");
        note(&app, &ZApplication::shutdown, "shutdown");
        note(&app, &ZApplication::quickQuit, "quickQuit");
        note(&app, &ZApplication::clickAppIcon, "icon");
        note(&app, &ZApplication::signalMasterClear, "clear");
        note(&app, &ZApplication::signalMasterReset, "reset");
        note(&app, &ZApplication::signalHomeKeyClicked, "home");
        note(&app, &ZApplication::signalOpenDoc, "open");
        note(&app, &ZApplication::signalCmdLine, "cmdLine");
        note(&app, &ZApplication::usbStorageInOut, "usb");
        note(&app, &ZApplication::signalAppLaunched, "launched");
        note(&app, qOverload<const QCString &, const QByteArray &>(&ZApplication::signalBridgeMessage), "bridge");
        note(&app, qOverload<const QByteArray &>(&ZApplication::signalBridgeMessage), "bridge2");
        note(&app, &ZApplication::signalBridgeMessageWithoutRaise, "bridgeWithoutRaise");
        note(&app, &ZApplication::systemMessage, "system");
        note(&app, &ZApplication::appMessage, "app");
    }

    QStringList seen;

private:
    static QString text(const QString &value) { return value; }
    static QString text(int value) { return QString::number(value); }
    static QString text(const QByteArray &value) { return QString::fromLatin1(value.toHex()); }
    static QString text(const QCString &value) { return QString::fromLatin1(value); }

    template <typename... Args> void note(ZApplication *app, void (ZApplication::*signal)(Args...), const char *name)
    {
        connect(app, signal, this, [this, name](Args... args) {
            QStringList values{QString::fromLatin1(name)};
            (values.append(text(args)), ...);
            seen.append(values.join(u' '));
        });
    }
};

}

class TstZApplication : public QObject {
    Q_OBJECT

public:
    explicit TstZApplication(ZApplication &app) : m_app(app) { }

private Q_SLOTS:
    void opensItsChannels();
    void readsItsLanguageFromTheSystemFile();
    void everyMessageHasItsEffect_data();
    void everyMessageHasItsEffect();
    void timeZonesCountWestwards_data();
    void timeZonesCountWestwards();
    void aSecondProcessChannelIsNotOpened();
    void ordersToQuitEndTheProcess_data();
    void ordersToQuitEndTheProcess();

private:
    ZApplication &m_app;
};

void TstZApplication::opensItsChannels()
{
    QCOMPARE(m_app.name(), QStringLiteral("tst_zapplication"));
    QVERIFY(QCopChannel::isRegistered("TYX/System"));
    QVERIFY(QCopChannel::isRegistered("TYX/Application/tst_zapplication"));
    QVERIFY(QCopChannel::isRegistered(processChannel(QCoreApplication::applicationPid())));
    QVERIFY(!QCopChannel::isRegistered("TYX/QtServer"));
}

void TstZApplication::readsItsLanguageFromTheSystemFile()
{
    QCOMPARE(m_app.language(), QStringLiteral("en-us"));
    setLanguage(QStringLiteral("de-de"));
    QCOMPARE(m_app.language(), QStringLiteral("en-us"));
    Recorder recorder(m_app);
    QVERIFY(QCopChannel::send("TYX/System", "languageChanged()"));
    QTRY_COMPARE(recorder.seen, QStringList{QStringLiteral("system languageChanged() ")});
    QCOMPARE(m_app.language(), QStringLiteral("de-de"));
}

void TstZApplication::everyMessageHasItsEffect_data()
{
    QTest::addColumn<QCString>("channel");
    QTest::addColumn<QCString>("message");
    QTest::addColumn<QByteArray>("arguments");
    QTest::addColumn<QStringList>("seen");
    const QString document = QStringLiteral("a.txt");
    const QByteArray data("\x01\x02");
    const auto row = [](const QCString &channel, const QCString &message, const QByteArray &arguments,
                         const QStringList &seen) {
        QTest::addRow("%s %s %d", channel.constData(), message.constData(), int(arguments.size()))
            << channel << message << arguments << seen;
    };
    const QCString process = processChannel(QCoreApplication::applicationPid());
    const QByteArray openDoc = wire::pack(document);
    const QStringList opened{QStringLiteral("raise"), QStringLiteral("open a.txt")};
    const QStringList bridged{QStringLiteral("raise"), QStringLiteral("bridge hi 0102")};
    const QStringList nothing;

    row(process, "raise()", {}, {QStringLiteral("raise")});
    row(process, "flush()", {}, nothing);
    row(process, "nextView()", {}, nothing);
    row(process, "clickAppIcon()", {}, {QStringLiteral("icon")});
    row(process, "openDoc(QString)", openDoc, opened);
    row(process, "openDoc(QString)", openDoc.chopped(1), nothing);
    row(process, "bridgeMessage", wire::pack(7, QCString("hi"), data), bridged);
    row(process, "bridgeMessage", wire::pack(7, QCString("openDoc(QString)"), openDoc), opened);
    row(process, "bridgeMessage", wire::pack(QCString("hi"), data), nothing);
    row(process, "bridgeMessageWithoutRaise", wire::pack(7, QCString("hi"), data),
        {QStringLiteral("bridgeWithoutRaise hi 0102")});
    row(process, "bridgeMessage2", data, {QStringLiteral("bridge2 0102")});
    row(process, "cmdLine", wire::pack(QStringLiteral("-x y")), {QStringLiteral("cmdLine -x y")});
    row(process, "usbMassStorageEnabled(bool)", wire::pack(2), {QStringLiteral("usb 1")});
    row(process, "usbMassStorageEnabled(bool)", wire::pack(false), {QStringLiteral("usb 0")});
    row(process, "Raise()", {}, nothing);

    row("TYX/System", "master clear", {}, {QStringLiteral("clear")});
    row("TYX/System", "master reset", {}, {QStringLiteral("reset")});
    row("TYX/System", "notifyLaunchApp", wire::pack(12), {QStringLiteral("launched 12")});
    row("TYX/System", "HomeKeyPress", {}, {QStringLiteral("home")});
    row("TYX/System", "bridgeMessage", wire::pack(QCString("hi"), data), bridged);
    row("TYX/System", "bridgeMessageWithoutRaise", wire::pack(QCString("hi"), data),
        {QStringLiteral("bridgeWithoutRaise hi 0102")});
    row("TYX/System", "unknown", data, {QStringLiteral("system unknown 0102")});
    row("TYX/Application/tst_zapplication", "unknown", data, {QStringLiteral("app unknown 0102")});
}

void TstZApplication::everyMessageHasItsEffect()
{
    QFETCH(QCString, channel);
    QFETCH(QCString, message);
    QFETCH(QByteArray, arguments);
    QFETCH(QStringList, seen);
    Recorder recorder(m_app);
    QVERIFY(QCopChannel::send(channel, message, arguments));
    // What this last message shows came after the effects of the one before.
    QVERIFY(QCopChannel::send("TYX/System", "end of test", {}));
    QTRY_VERIFY(recorder.seen.contains(QStringLiteral("system end of test ")));
    QCOMPARE(recorder.seen, seen + QStringList{QStringLiteral("system end of test ")});
}

void TstZApplication::timeZonesCountWestwards_data()
{
    QTest::addColumn<QByteArray>("arguments");
    QTest::addColumn<QByteArray>("zone");
    QTest::newRow("east") << wire::pack(8, 0, 0) << QByteArray("GMT-8:0:0");
    QTest::newRow("west") << wire::pack(-5, 0, 0) << QByteArray("GMT+5:0:0");
    QTest::newRow("Greenwich") << wire::pack(0, 30, 9) << QByteArray("GMT+0:30:9");
    QTest::newRow("largest") << wire::pack(INT_MIN, 0, 0) << QByteArray("GMT+2147483648:0:0");
    QTest::newRow("two of three") << wire::pack(8, 0) << QByteArray("unchanged");
}

void TstZApplication::timeZonesCountWestwards()
{
    QFETCH(QByteArray, arguments);
    qputenv("TZ", "unchanged");
    Recorder recorder(m_app);
    QVERIFY(QCopChannel::send("TYX/System", "modifytimezone", arguments));
    QVERIFY(QCopChannel::send("TYX/System", "end of test", {}));
    QTRY_VERIFY(!recorder.seen.isEmpty());
    QTEST(qgetenv("TZ"), "zone");
}

void TstZApplication::aSecondProcessChannelIsNotOpened()
{
    // The process finds a channel of its own name taken: a child asks the shell for its id before it becomes the peer.
    QProcess peer;
    peer.start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), QStringLiteral("echo $$; read go; exec ") + kPeer});
    QVERIFY(peer.waitForReadyRead());
    const QCString channel = processChannel(peer.readAll().trimmed().toLongLong());
    QCopChannel taken(channel);
    QSignalSpy received(&taken, &QCopChannel::received);
    peer.write("go\n");
    QVERIFY(peer.waitForReadyRead());
    QVERIFY(QCopChannel::send(channel, "quickQuit()"));
    QTRY_COMPARE(received.count(), 1);
    QVERIFY(QCopChannel::isRegistered("TYX/Application/apppeer"));
    QCOMPARE(peer.state(), QProcess::Running); // the order to quit did not reach it
    QVERIFY(QCopChannel::send("TYX/System", "amClosed()"));
    QVERIFY(peer.waitForFinished());
}

void TstZApplication::ordersToQuitEndTheProcess_data()
{
    QTest::addColumn<QCString>("message");
    QTest::addColumn<bool>("keep");
    QTest::newRow("shutdown()") << QCString("shutdown()") << false;
    QTest::newRow("quickQuit()") << QCString("quickQuit()") << false;
    QTest::newRow("amClosed()") << QCString("amClosed()") << false;
    QTest::newRow("amClosed() refused") << QCString("amClosed()") << true;
}

void TstZApplication::ordersToQuitEndTheProcess()
{
    QFETCH(QCString, message);
    QFETCH(bool, keep);
    QProcess peer;
    peer.start(kPeer, keep ? QStringList{QStringLiteral("keep")} : QStringList());
    QVERIFY(peer.waitForReadyRead());
    const QCString process = processChannel(peer.processId());
    QVERIFY(QCopChannel::send(message == "amClosed()" ? QCString("TYX/System") : process, message));
    if (keep) // it is still there to take the next order
        QVERIFY(QCopChannel::send(process, "quickQuit()"));
    QVERIFY(peer.waitForFinished());
    QCOMPARE(peer.exitStatus(), QProcess::NormalExit);
    QCOMPARE(peer.exitCode(), keep ? 5 : 0);
}

int main(int argc, char **argv)
{
    PeerProcess server(QStringLiteral("buspeer"));
    if (server.ask("host") != "hosting")
        return 1;
    ZApplication app(argc, argv, ZApplication::Tty);
    DisableAMClosedRestart(); // the tests send "amClosed()" to others
    TstZApplication test(app);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_zapplication.moc"
