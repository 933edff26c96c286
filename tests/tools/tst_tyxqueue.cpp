#include "appbase/messaging/queuefile.h"
#include "platform/bus/busbroker.h"

#include <QCopChannel>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using platform::BusBroker;

// The program as it is typed, against a broker in this process.
class TstTyxQueue : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void listTellsForWhomMessagesWait();
    void showDecodesWhatWaits();
    void dropRemovesTheFile();
    void replaySendsToAnApplicationThatRuns();
    void replayLeavesTheMessagesOfAnApplicationThatDoesNotRun();
    void whatCannotBeUsedIsNamed_data();
    void whatCannotBeUsedIsNamed();

private:
    struct Outcome {
        int exit;
        QByteArray out;
        QByteArray err;
    };
    static Outcome run(const QStringList &arguments);

    std::unique_ptr<BusBroker> m_broker;
};

namespace {

constexpr char kPath[] = "/tmp/qcop-msg-app";
const queue::Record kFirst{"TYX/Application/app", "first", QByteArray("\0\xFF", 2)};
const queue::Record kSecond{"TYX/Application/app", "se\x1b", {}};
const queue::Record kKnown{"TYX/Application/app", "openDoc(QString)", QByteArray("\0\0\0\2\0a", 6)};

void put(const QByteArray &bytes)
{
    QFile file(QString::fromLatin1(kPath));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

bool isThere() { return ::access(kPath, F_OK) == 0; }

}

void TstTyxQueue::init()
{
    auto broker = BusBroker::listen();
    QVERIFY(broker);
    m_broker = std::move(*broker);
    put(queue::encode(kFirst) + queue::encode(kSecond));
}

void TstTyxQueue::cleanup()
{
    m_broker.reset();
    ::unlink(kPath);
    ::rmdir(kPath);
}

TstTyxQueue::Outcome TstTyxQueue::run(const QStringList &arguments)
{
    QProcess tyx;
    tyx.start(QStringLiteral(TYX_BINARY_DIR "/bin/tyx"), QStringList{u"queue"_s} + arguments);
    // The broker works from this event loop meanwhile.
    if (!QTest::qWaitFor([&] { return tyx.state() == QProcess::NotRunning; }, 20'000))
        return {-1, "(does not end)", {}};
    return {tyx.exitCode(), tyx.readAllStandardOutput(), tyx.readAllStandardError()};
}

void TstTyxQueue::listTellsForWhomMessagesWait()
{
    const timespec hourAgo{::time(nullptr) - 3600, 0};
    const timespec times[] = {hourAgo, hourAgo};
    QCOMPARE(::utimensat(AT_FDCWD, kPath, times, 0), 0);
    QCOMPARE(::mkdir("/tmp/qcop-msg-folder", 0700), 0);
    const Outcome text = run({u"list"_s});
    const QJsonArray array = QJsonDocument::fromJson(run({u"list"_s, u"--json"_s}).out).array();
    ::rmdir("/tmp/qcop-msg-folder");
    QCOMPARE(text.exit, 0);
    QVERIFY2(text.out.startsWith("app  36"), text.out.constData());
    QVERIFY2(text.out.contains(" s  2 messages; the next sender discards them\nfolder  cannot be read: open: "),
        text.out.constData());
    QCOMPARE(array.size(), 2);
    QCOMPARE(array[0][u"application"], u"app"_s);
    QCOMPARE(array[0][u"records"], 2);
    QCOMPARE(array[0][u"damaged"], false);
    QVERIFY(array[0][u"age"].toInteger() >= 3600);
    QVERIFY(array[1].toObject().contains(u"error"));
}

void TstTyxQueue::showDecodesWhatWaits()
{
    put(queue::encode(kFirst) + queue::encode(kSecond) + queue::encode(kKnown) + "damage");
    const Outcome text = run({u"show"_s, u"app"_s});
    QCOMPARE(text.exit, 0);
    QCOMPARE(text.out,
        "TYX/Application/app  first  2  00 ff\nTYX/Application/app  se?  0\n"
        "TYX/Application/app  openDoc(QString)  6  document=\"a\"\n");
    QCOMPARE(text.err, "tyx: /tmp/qcop-msg-app: damaged behind message 3, the rest will be dropped\n");
    const QJsonArray array = QJsonDocument::fromJson(run({u"show"_s, u"app"_s, u"--json"_s}).out).array();
    QCOMPARE(array.size(), 3);
    QCOMPARE(array[0][u"message"], u"first"_s);
    QCOMPARE(array[0][u"data"], u"00ff"_s);
    QCOMPARE(array[2][u"arguments"][0][u"value"], u"a"_s);
    QVERIFY(isThere());
}

void TstTyxQueue::dropRemovesTheFile()
{
    QCOMPARE(run({u"drop"_s, u"app"_s}).exit, 0);
    QVERIFY(!isThere());
}

void TstTyxQueue::replaySendsToAnApplicationThatRuns()
{
    put(queue::encode(kFirst) + queue::encode(kSecond) + queue::encode(kKnown));
    QCopChannel channel("TYX/Application/app");
    QCopChannel process("TYX/Application/" + QByteArray::number(QCoreApplication::applicationPid()));
    QSignalSpy received(&channel, &QCopChannel::received);
    QSignalSpy receivedByProcess(&process, &QCopChannel::received);
    QCOMPARE(run({u"replay"_s, u"app"_s}).exit, 0);
    QTRY_COMPARE(receivedByProcess.size(), 1); // where it has its effect
    QCOMPARE(receivedByProcess[0][0].value<QCString>(), kKnown.message);
    QCOMPARE(received.size(), 2);
    QCOMPARE(received[0][0].value<QCString>(), kFirst.message);
    QCOMPARE(received[0][1].toByteArray(), kFirst.data);
    QCOMPARE(received[1][0].value<QCString>(), kSecond.message);
    QVERIFY(!isThere());
}

void TstTyxQueue::replayLeavesTheMessagesOfAnApplicationThatDoesNotRun()
{
    QCOMPARE(run({u"replay"_s, u"app"_s}).exit, 1);
    m_broker.reset();
    const Outcome withoutServer = run({u"replay"_s, u"app"_s});
    QCOMPARE(withoutServer.exit, 1);
    QVERIFY(withoutServer.err.startsWith("tyx: app does not run, its messages stay in /tmp/qcop-msg-app;"));
    QVERIFY(isThere());
}

void TstTyxQueue::whatCannotBeUsedIsNamed_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("locked");
    QTest::addColumn<int>("exit");
    QTest::addColumn<QByteArray>("error");
    QTest::newRow("nothing waits") << u"other"_s << false << 1 << QByteArray("/tmp/qcop-msg-other: nothing waits");
    QTest::newRow("a path") << u"../etc/x"_s << false << 2 << QByteArray("\"../etc/x\" is no name");
    QTest::newRow("a folder") << u"folder"_s << false << 3 << QByteArray("/tmp/qcop-msg-folder: open: ");
    QTest::newRow("in use") << u"app"_s << true << 3 << QByteArray("/tmp/qcop-msg-app: flock: ");
}

void TstTyxQueue::whatCannotBeUsedIsNamed()
{
    QFETCH(QString, name);
    QFETCH(bool, locked);
    QFETCH(QByteArray, error);
    ::mkdir("/tmp/qcop-msg-folder", 0700);
    const auto held = queue::LockedFile::forTaking(locked ? "app" : "none");
    for (const char *command : {"drop", "replay"}) {
        const Outcome outcome = run({QString::fromLatin1(command), name});
        QTEST(outcome.exit, "exit");
        QVERIFY2(outcome.err.startsWith(QByteArray("tyx: " + error)), outcome.err.constData());
        QCOMPARE(outcome.err.count('\n'), 1);
    }
    ::rmdir("/tmp/qcop-msg-folder");
    QVERIFY(isThere());
}

QTEST_GUILESS_MAIN(TstTyxQueue)
#include "tst_tyxqueue.moc"
