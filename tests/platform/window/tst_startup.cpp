// The server program and the clients' way to it, as processes.
#include "settings/status/systemstatus.h"
#include "tests/support/peerprocess.h"
#include "tests/support/testfiles.h"

#include <QDir>
#include <csignal>

namespace {

const QString kServer = QStringLiteral(TYX_BINARY_DIR "/bin/tyx-guiserver");

// One that is ready.
class Server : public PeerProcess {
public:
    explicit Server(const QStringList &arguments = {u"--platform"_qs, u"offscreen"_qs})
        : PeerProcess(u"../bin/tyx-guiserver"_qs, arguments), greeting(line())
    {
    }
    const QByteArray greeting;
};

QString socketPath() { return qEnvironmentVariable("XDG_RUNTIME_DIR") + u"/tyx-screen-0"_qs; }

}

class TstStartup : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void serverSaysWhenItIsReady();
    void serverStopsCleanly();
    void secondServerIsRefused();
    void crashedServerIsReplaced();
    void wrongArguments_data();
    void wrongArguments();
    void clientWithoutServerGivesUp();
    void clientWaitsForAServerThatIsStarting();
    void clientsEndWithTheServer();
};

void TstStartup::serverSaysWhenItIsReady()
{
    const Server server({u"--size=320x480"_qs, u"--platform=offscreen"_qs});
    QCOMPARE(
        server.greeting, "tyx-guiserver: ready on " + socketPath().toUtf8() + ", screen 320x480, platform offscreen");
}

void TstStartup::serverStopsCleanly()
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        Server server;
        QVERIFY(QFile::exists(socketPath()));
        ::kill(pid_t(server.pid()), signal);
        QCOMPARE(server.status(), 0);
        QVERIFY(!QFile::exists(socketPath()));
    }
}

void TstStartup::secondServerIsRefused()
{
    Server first;
    UTIL_SetSignalQuality(4);
    QVERIFY(QDir().mkdir(u"/tmp/another"_qs));
    for (const QString &folder : {qEnvironmentVariable("XDG_RUNTIME_DIR"), u"/tmp/another"_qs}) {
        const Outcome second = run(u"env"_qs, {u"XDG_RUNTIME_DIR="_qs + folder, kServer, u"--platform=offscreen"_qs});
        QCOMPARE(second.status, 1);
        QCOMPARE(
            second.err, "tyx-guiserver: another phone runs on this machine: its server holds /tmp/key_testcommand\n");
    }
    QVERIFY(QFile::exists(socketPath())); // the first one's
    QVERIFY(QFile::exists(u"/tmp/imsstate.shm"_qs));
    QCOMPARE(UTIL_GetSignalQuality(), 4);
    ::kill(pid_t(first.pid()), SIGTERM);
    QCOMPARE(first.status(), 0); // it went on until now
}

void TstStartup::crashedServerIsReplaced()
{
    {
        Server killed;
    }
    QVERIFY(QFile::exists(socketPath()));
    const Server next;
    QVERIFY(next.greeting.contains("ready"));
}

void TstStartup::wrongArguments_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("named"); // in the error
    QTest::newRow("help") << QStringList{u"--help"_qs} << 0 << QString();
    QTest::newRow("version") << QStringList{u"--version"_qs} << 0 << QString();
    QTest::newRow("unknown option") << QStringList{u"--colour"_qs} << 2 << u"--colour"_qs;
    QTest::newRow("unknown platform") << QStringList{u"--platform"_qs, u"paper"_qs} << 2 << u"paper"_qs;
    QTest::newRow("no value") << QStringList{u"--size"_qs} << 2 << u"--size"_qs;
    for (const QString &size : {u"240"_qs, u"0x0"_qs, u"99999x10"_qs, u"-240x320"_qs, u"240x320x"_qs})
        QTest::addRow("size %s", qPrintable(size)) << QStringList{u"--size="_qs + size} << 2 << size;
    QTest::newRow("no frame buffer") << QStringList{u"--platform"_qs, u"linuxfb"_qs} << 1 << u"/dev/fb0"_qs;
}

void TstStartup::wrongArguments()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, status);
    QFETCH(QString, named);
    const Outcome outcome = run(kServer, arguments);
    QCOMPARE(outcome.status, status);
    QVERIFY2(outcome.err.contains(named.toUtf8()), outcome.err.constData());
    QVERIFY(status != 0 || outcome.out.contains(arguments[0] == u"--help" ? "--platform" : "1."));
}

void TstStartup::clientWithoutServerGivesUp()
{
    QFile::remove(socketPath());
    const Outcome client = run(QStringLiteral(TYX_BINARY_DIR "/tests/windowpeer"), {});
    QCOMPARE(client.status, 1);
    QCOMPARE(client.err,
        "windowpeer: no window server answers on " + socketPath().toUtf8() + "; start tyx-guiserver first\n");
}

void TstStartup::clientWaitsForAServerThatIsStarting()
{
    PeerProcess client(u"windowpeer"_qs);
    const Server server;
    QCOMPARE(client.line(), "ready");
    client.tell("make w main 10 10 red\nshow w\nexit 7");
    QCOMPARE(client.status(), 7);
}

void TstStartup::clientsEndWithTheServer()
{
    Server server;
    PeerProcess client(u"windowpeer"_qs);
    QCOMPARE(client.line(), "ready");
    ::kill(pid_t(server.pid()), SIGTERM);
    QCOMPARE(server.status(), 0);
    QVERIFY(client.status() >= 0); // not by a signal
}

QTEST_GUILESS_MAIN(TstStartup)

#include "tst_startup.moc"
