// Messages that waited for an application: what they do when it starts.
#include "appbase/messaging/queuefile.h"
#include "appbase/messaging/wire.h"
#include "tests/support/peerprocess.h"

#include <QFile>
#include <QProcess>
#include <QTest>
#include <ZMsg>

using namespace Qt::StringLiterals;

namespace {

const QString kPeer = QStringLiteral(TYX_BINARY_DIR "/tests/apppeer");
const QString kNameFile = u"/tmp/qcop-msg-apppeer"_s;

template <typename... T> void send(const QByteArray &name, const char *message, const T &...arguments)
{
    ZMsg msg(QCString("TYX/Application/" + name), message);
    ((msg.stream() << arguments), ...);
    QVERIFY(msg.send());
}

}

class TstStoredMessages : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void arriveInTheirOrderWithTheirEffect();
    void theProcessIdComesAfterTheName();
    void areDeliveredFromNestedLoopsToo();
    void anOrderToQuitIsObeyed();
    void damagedAndForeignFilesDoNotStopTheStart_data();
    void damagedAndForeignFilesDoNotStopTheStart();

private:
    PeerProcess m_server{u"buspeer"_s};
};

void TstStoredMessages::initTestCase() { QCOMPARE(m_server.ask("host"), "hosting"); }

void TstStoredMessages::arriveInTheirOrderWithTheirEffect()
{
    send("apppeer", "openDoc(QString)", u"a.txt"_s);
    send("apppeer", "unknown", 7);
    send("apppeer", "openDoc(QString)"); // its argument is missing
    send("apppeer", "shutdown"); // no name of the process channel
    PeerProcess peer(u"apppeer"_s, {u"tell"_s});
    for (const char *expected : {"ready", "open a.txt", "opened a.txt", "app unknown 00000007", "app shutdown"})
        QCOMPARE(peer.line(), expected);
    QVERIFY(!QFile::exists(kNameFile));
    send("apppeer", "later");
    QCOMPARE(peer.line(), "app later");
}

void TstStoredMessages::theProcessIdComesAfterTheName()
{
    QProcess peer; // a shell that tells its id before it becomes the application
    peer.start(u"/bin/sh"_s, {u"-c"_s, u"echo $$; read go; exec \"$0\" tell"_s, kPeer});
    QVERIFY(peer.waitForReadyRead());
    const QByteArray id = peer.readAll().trimmed();
    send(id, "by id");
    send("apppeer", "by name");
    peer.write("go\n");
    QByteArray told;
    while (told.count('\n') < 3 && peer.waitForReadyRead())
        told += peer.readAll();
    QCOMPARE(told, "ready\napp by name \napp by id \n");
    QVERIFY(!QFile::exists(u"/tmp/qcop-msg-"_s + QString::fromLatin1(id)));
    peer.kill();
    QVERIFY(peer.waitForFinished());
}

void TstStoredMessages::areDeliveredFromNestedLoopsToo()
{
    send("apppeer", "openDoc(QString)", u"in a dialog"_s);
    send("apppeer", "m");
    PeerProcess peer(u"apppeer"_s, {u"tell"_s});
    for (const char *expected : {"ready", "open in a dialog", "app m", "opened in a dialog"})
        QCOMPARE(peer.line(), expected);
}

void TstStoredMessages::anOrderToQuitIsObeyed()
{
    send("apppeer", "quickQuit()");
    send("apppeer", "m");
    QProcess peer;
    peer.start(kPeer, {u"tell"_s});
    QVERIFY(peer.waitForFinished());
    QCOMPARE(peer.exitStatus(), QProcess::NormalExit);
    QCOMPARE(peer.exitCode(), 0);
    QCOMPARE(peer.readAllStandardOutput(), "ready\nquit \napp m \n"); // pending events pass before the end
}

void TstStoredMessages::damagedAndForeignFilesDoNotStopTheStart_data()
{
    QTest::addColumn<QString>("make"); // a shell command; $f is the file
    QTest::addColumn<QByteArray>("told");
    QTest::addColumn<QByteArray>("diagnostic");
    QTest::newRow("cut off") << u"truncate -s -1 $f"_s << QByteArray("app one \n")
                             << QByteArray("damaged behind message 1");
    QTest::newRow("link") << u"mv $f /tmp/other; ln -s /tmp/other $f"_s << QByteArray() << QByteArray("open: Too many");
    QTest::newRow("FIFO") << u"rm $f; mkfifo $f"_s << QByteArray() << QByteArray("open: Invalid argument");
}

void TstStoredMessages::damagedAndForeignFilesDoNotStopTheStart()
{
    QFETCH(QString, make);
    QFETCH(QByteArray, diagnostic);
    send("apppeer", "one");
    send("apppeer", "two");
    QCOMPARE(std::system(qPrintable(u"f="_s + kNameFile + u"; "_s + make)), 0);
    QProcess peer;
    peer.start(kPeer, {u"tell"_s});
    QVERIFY(peer.waitForReadyRead());
    ZMsg quit(QCString("TYX/Application/" + QByteArray::number(peer.processId())), "quickQuit()");
    QVERIFY(quit.send());
    QVERIFY(peer.waitForFinished());
    QTEST(peer.readAllStandardOutput().replace("ready\n", "").replace("quit \n", ""), "told");
    const QByteArray error = peer.readAllStandardError();
    const QByteArray expected = "queue: /tmp/qcop-msg-apppeer: " + diagnostic;
    QVERIFY2(error.startsWith(expected) && error.count('\n') == 1, error.constData());
    QFile::remove(kNameFile);
}

QTEST_GUILESS_MAIN(TstStoredMessages)
#include "tst_storedmessages.moc"
