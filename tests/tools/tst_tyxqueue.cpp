#include "appbase/messaging/queuefile.h"
#include "platform/bus/busbroker.h"
#include "tests/support/columns.h"
#include "tests/support/tyxtool.h"

#include <QCopChannel>
#include <QJsonArray>
#include <QJsonObject>
#include <QSignalSpy>
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
    std::unique_ptr<BusBroker> m_broker;
};

namespace {

const TyxCommand tyx{u"queue"_s};

const QString kFile = u"/tmp/qcop-msg-app"_s;
const queue::Record kFirst{"TYX/Application/app", "first", QByteArray("\0\xFF", 2)};
const queue::Record kSecond{"TYX/Application/app", "se\x1b", {}};
const queue::Record kKnown{"TYX/Application/app", "openDoc(QString)", QByteArray("\0\0\0\2\0a", 6)};

}

void TstTyxQueue::init()
{
    auto broker = BusBroker::listen();
    QVERIFY(broker);
    m_broker = std::move(*broker);
    fill(kFile, queue::encode(kFirst) + queue::encode(kSecond));
}

void TstTyxQueue::cleanup()
{
    m_broker.reset();
    QFile::remove(kFile);
}

void TstTyxQueue::listTellsForWhomMessagesWait()
{
    const timespec hourAgo{::time(nullptr) - 3600, 0};
    const timespec times[] = {hourAgo, hourAgo};
    QCOMPARE(::utimensat(AT_FDCWD, "/tmp/qcop-msg-app", times, 0), 0);
    QCOMPARE(::mkdir("/tmp/qcop-msg-folder", 0700), 0);
    const Outcome text = tyx("list");
    const QJsonArray array = tyx.json("list").array();
    ::rmdir("/tmp/qcop-msg-folder");
    QCOMPARE(text.status, 0);
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
    fill(kFile, queue::encode(kFirst) + queue::encode(kSecond) + queue::encode(kKnown) + "damage");
    const Outcome text = tyx("show app");
    QCOMPARE(text.status, 0);
    QCOMPARE(text.out,
        "TYX/Application/app  first  2  00 ff\nTYX/Application/app  se?  0\n"
        "TYX/Application/app  openDoc(QString)  6  document=\"a\"\n");
    QCOMPARE(text.err, "tyx: /tmp/qcop-msg-app: damaged behind message 3, the rest will be dropped\n");
    const QJsonArray array = tyx.json("show app").array();
    QCOMPARE(array.size(), 3);
    QCOMPARE(array[0][u"message"], u"first"_s);
    QCOMPARE(array[0][u"data"], u"00ff"_s);
    QCOMPARE(array[2][u"arguments"][0][u"value"], u"a"_s);
    QVERIFY(QFile::exists(kFile));
}

void TstTyxQueue::dropRemovesTheFile()
{
    QCOMPARE(tyx("drop app").status, 0);
    QVERIFY(!QFile::exists(kFile));
}

void TstTyxQueue::replaySendsToAnApplicationThatRuns()
{
    fill(kFile, queue::encode(kFirst) + queue::encode(kSecond) + queue::encode(kKnown));
    QCopChannel channel("TYX/Application/app");
    QCopChannel process("TYX/Application/" + QByteArray::number(QCoreApplication::applicationPid()));
    QSignalSpy received(&channel, &QCopChannel::received);
    QSignalSpy receivedByProcess(&process, &QCopChannel::received);
    QCOMPARE(tyx("replay app").status, 0);
    QTRY_COMPARE(receivedByProcess.size(), 1); // where it has its effect
    QCOMPARE(receivedByProcess[0][0].value<QCString>(), kKnown.message);
    QCOMPARE(received.size(), 2);
    QCOMPARE(received[0][0].value<QCString>(), kFirst.message);
    QCOMPARE(received[0][1].toByteArray(), kFirst.data);
    QCOMPARE(received[1][0].value<QCString>(), kSecond.message);
    QVERIFY(!QFile::exists(kFile));
}

void TstTyxQueue::replayLeavesTheMessagesOfAnApplicationThatDoesNotRun()
{
    QCOMPARE(tyx("replay app").status, 1);
    m_broker.reset();
    const Outcome withoutServer = tyx("replay app");
    QCOMPARE(withoutServer.status, 1);
    QVERIFY(withoutServer.err.startsWith("tyx: app does not run, its messages stay in /tmp/qcop-msg-app;"));
    QVERIFY(QFile::exists(kFile));
}

void TstTyxQueue::whatCannotBeUsedIsNamed_data()
{
    const auto row = columns<QString, bool, int, QByteArray>("name", "locked", "status", "error");
    row("nothing waits", u"other"_s, false, 1, "/tmp/qcop-msg-other: nothing waits");
    row("a path", u"../etc/x"_s, false, 2, "\"../etc/x\" is no name");
    row("a folder", u"folder"_s, false, 3, "/tmp/qcop-msg-folder: open: ");
    row("in use", u"app"_s, true, 3, "/tmp/qcop-msg-app: flock: ");
}

void TstTyxQueue::whatCannotBeUsedIsNamed()
{
    QFETCH(QString, name);
    QFETCH(bool, locked);
    QFETCH(QByteArray, error);
    ::mkdir("/tmp/qcop-msg-folder", 0700);
    const auto held = queue::LockedFile::forTaking(locked ? "app" : "none");
    for (const char *command : {"drop", "replay"}) {
        const Outcome outcome = tyx({QString::fromLatin1(command), name});
        QTEST(outcome.status, "status");
        QVERIFY2(outcome.err.startsWith(QByteArray("tyx: " + error)), outcome.err.constData());
        QCOMPARE(outcome.err.count('\n'), 1);
    }
    ::rmdir("/tmp/qcop-msg-folder");
    QVERIFY(QFile::exists(kFile));
}

QTEST_GUILESS_MAIN(TstTyxQueue)
#include "tst_tyxqueue.moc"
