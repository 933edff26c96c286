// The server program and the clients' way to it, as processes.
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>
#include <csignal>

namespace {

constexpr int kPatience = 20'000; // milliseconds

const QString kServer = QStringLiteral(TYX_BINARY_DIR "/bin/tyx-guiserver");
const QString kClient = QStringLiteral(TYX_BINARY_DIR "/tests/windowpeer");

struct Outcome {
    int status;
    QByteArray output;
    QByteArray errors;
};

Outcome run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(kPatience))
        return {-1, {}, "still running"};
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, process.readAllStandardOutput(),
        process.readAllStandardError()};
}

// One that is ready.
class Server {
public:
    explicit Server(const QStringList &arguments = {u"--platform"_qs, u"offscreen"_qs})
    {
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(kServer, arguments);
        while (!process.canReadLine() && process.waitForReadyRead(kPatience)) { }
        greeting = process.readLine();
    }
    ~Server()
    {
        process.kill();
        process.waitForFinished();
    }
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    QProcess process;
    QByteArray greeting;
};

QString socketPath() { return qEnvironmentVariable("XDG_RUNTIME_DIR") + u"/tyx-screen-0"_qs; }

}

class TstStartup : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void serverSaysWhenItIsReady();
    void serverStopsCleanly_data();
    void serverStopsCleanly();
    void secondServerIsRefused();
    void crashedServerIsReplaced();
    void wrongArguments_data();
    void wrongArguments();
    void clientWithoutServerGivesUp();
    void clientWaitsForAServerThatIsStarting();
    void clientEndsWithItsOwnStatus();
    void clientsEndWithTheServer();
};

void TstStartup::serverSaysWhenItIsReady()
{
    const Server server({u"--size=320x480"_qs, u"--platform=offscreen"_qs});
    QCOMPARE(
        server.greeting, "tyx-guiserver: ready on " + socketPath().toUtf8() + ", screen 320x480, platform offscreen\n");
}

void TstStartup::serverStopsCleanly_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
}

void TstStartup::serverStopsCleanly()
{
    QFETCH(int, signal);
    Server server;
    QVERIFY(QFile::exists(socketPath()));
    ::kill(pid_t(server.process.processId()), signal);
    QVERIFY(server.process.waitForFinished(kPatience));
    QCOMPARE(server.process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(server.process.exitCode(), 0);
    QVERIFY(!QFile::exists(socketPath()));
}

void TstStartup::secondServerIsRefused()
{
    Server first;
    const Outcome second = run(kServer, {u"--platform"_qs, u"offscreen"_qs});
    QCOMPARE(second.status, 1);
    QCOMPARE(second.errors, "tyx-guiserver: another window server runs on " + socketPath().toUtf8() + "\n");
    QVERIFY(QFile::exists(socketPath())); // the first one's
    QCOMPARE(first.process.state(), QProcess::Running);
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
    QVERIFY2(outcome.errors.contains(named.toUtf8()), outcome.errors.constData());
    QVERIFY(status != 0 || outcome.output.contains("--platform"));
}

void TstStartup::clientWithoutServerGivesUp()
{
    QFile::remove(socketPath());
    const Outcome client = run(kClient, {});
    QCOMPARE(client.status, 1);
    QCOMPARE(client.errors,
        "windowpeer: no window server answers on " + socketPath().toUtf8() + "; start tyx-guiserver first\n");
}

void TstStartup::clientWaitsForAServerThatIsStarting()
{
    QProcess client;
    client.start(kClient, {});
    QVERIFY(client.waitForStarted());
    const Server server;
    while (!client.canReadLine() && client.waitForReadyRead(kPatience)) { }
    QCOMPARE(client.readLine(), QByteArray("ready\n"));
    client.write("exit 0\n");
    QVERIFY(client.waitForFinished(kPatience));
}

void TstStartup::clientEndsWithItsOwnStatus()
{
    const Server server;
    QProcess client;
    client.start(kClient, {});
    client.write("make w main 10 10 red\nshow w\nexit 7\n");
    QVERIFY(client.waitForFinished(kPatience));
    QCOMPARE(client.exitStatus(), QProcess::NormalExit);
    QCOMPARE(client.exitCode(), 7);
}

void TstStartup::clientsEndWithTheServer()
{
    Server server;
    QProcess client;
    client.start(kClient, {});
    while (!client.canReadLine() && client.waitForReadyRead(kPatience)) { }
    server.process.terminate();
    QVERIFY(server.process.waitForFinished(kPatience));
    QVERIFY(client.waitForFinished(kPatience));
    QCOMPARE(client.exitStatus(), QProcess::NormalExit); // not by a signal
}

QTEST_GUILESS_MAIN(TstStartup)

#include "tst_startup.moc"
