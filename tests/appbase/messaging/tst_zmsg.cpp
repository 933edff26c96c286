// Where a message goes: over the bus, into the file of an application that does not run, or nowhere.
#include "appbase/messaging/queuefile.h"
#include "appbase/messaging/wire.h"
#include "tests/support/peerprocess.h"

#include <QCopChannel>
#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <ZMsg>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr char kChannel[] = "TYX/Application/app";
constexpr char kPath[] = "/tmp/qcop-msg-app";

bool exists(const char *path) { return QFile::exists(QString::fromLatin1(path)); }

bool send(const char *message, const char *channel = kChannel)
{
    ZMsg msg(channel, message);
    msg.stream() << 7;
    return msg.send();
}

QList<QByteArray> waiting()
{
    QList<QByteArray> names;
    if (const auto glance = queue::glance("app")) {
        for (const queue::Record &record : glance->contents.records)
            names.append(record.message);
    }
    return names;
}

}

class TstZMsg : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void waitsForAnApplicationThatDoesNotRun();
    void goesToAnApplicationThatRuns();
    void otherChannelsAreNeverStored();
    void localMessagesStayInTheProcess();
    void whatCameAMinuteAgoIsDiscarded();
    void isLostWhileAnotherHoldsTheFile();
    void isSentWhenItCannotBeStored_data();
    void isSentWhenItCannotBeStored();
    void isStoredWithoutAServer();

private:
    std::unique_ptr<PeerProcess> m_peer;
};

void TstZMsg::init()
{
    m_peer = std::make_unique<PeerProcess>(u"buspeer"_s);
    QCOMPARE(m_peer->ask("host"), "hosting");
}

void TstZMsg::cleanup()
{
    m_peer.reset();
    ::unlink(kPath);
    ::rmdir(kPath);
}

void TstZMsg::waitsForAnApplicationThatDoesNotRun()
{
    {
        ZMsg msg(kChannel, "openDoc(QString)");
        msg.stream() << u"a.txt"_s;
        QCOMPARE(msg.data(), wire::pack(u"a.txt"_s));
        QVERIFY(msg.send());
        const ZMsg unsent(kChannel, "unsent");
    }
    QVERIFY(send("second"));
    const auto glance = queue::glance("app");
    QVERIFY(glance && !glance->contents.damaged);
    QCOMPARE(glance->contents.records,
        (QList<queue::Record>{
            {kChannel, "openDoc(QString)", wire::pack(u"a.txt"_s)}, {kChannel, "second", wire::pack(7)}}));
}

void TstZMsg::goesToAnApplicationThatRuns()
{
    QVERIFY(send("left from before"));
    QCOMPARE(m_peer->ask(QByteArray("open ") + kChannel), "opened");
    QVERIFY(send("m"));
    QCOMPARE(m_peer->line(), QByteArray("got ") + kChannel + " m 00000007");
    QVERIFY(!exists(kPath));
}

void TstZMsg::otherChannelsAreNeverStored()
{
    for (const char *channel : {"TYX/System", "TYX/Application", "/TYX/Application/app", "tyx/Application/app"}) {
        QCOMPARE(m_peer->ask(QByteArray("open ") + channel), "opened");
        QVERIFY(send("m", channel));
        QCOMPARE(m_peer->line(), QByteArray("got ") + channel + " m 00000007");
    }
    QVERIFY(!exists(kPath));
}

void TstZMsg::localMessagesStayInTheProcess()
{
    QCOMPARE(m_peer->ask("open TYX/System"), "opened");
    QCopChannel own("TYX/System");
    QSignalSpy received(&own, &QCopChannel::received);
    ZMsg msg("TYX/System", "local");
    msg.setLocalOnly(true);
    QVERIFY(msg.send());
    QCOMPARE(received.size(), 1); // before send() returned
    msg.setLocalOnly(false);
    QVERIFY(msg.send());
    QTRY_COMPARE(received.size(), 2);
    QCOMPARE(m_peer->line(), "got TYX/System local");
    QCOMPARE(m_peer->ask("registered none"), "registered 0"); // nothing more came
    QVERIFY(!QCopChannel::sendLocally("nobody", "m"));
}

void TstZMsg::whatCameAMinuteAgoIsDiscarded()
{
    QVERIFY(send("first"));
    QCOMPARE(std::system("touch -d '30 seconds ago' /tmp/qcop-msg-app"), 0);
    QVERIFY(send("second"));
    QCOMPARE(waiting(), (QList<QByteArray>{"first", "second"}));
    QCOMPARE(std::system("touch -d '61 seconds ago' /tmp/qcop-msg-app"), 0);
    QVERIFY(send("third"));
    QCOMPARE(waiting(), QList<QByteArray>{"third"});
}

void TstZMsg::isLostWhileAnotherHoldsTheFile()
{
    QVERIFY(send("first"));
    QCOMPARE(m_peer->ask(QByteArray("open ") + kChannel), "opened"); // not even an application that runs gets it
    const int fd = ::open(kPath, O_RDONLY);
    QVERIFY(fd >= 0 && ::flock(fd, LOCK_EX | LOCK_NB) == 0);
    QVERIFY(!send("lost"));
    QCOMPARE(waiting(), QList<QByteArray>{"first"});
    ::close(fd);
    QVERIFY(send("second"));
    QCOMPARE(m_peer->line(), QByteArray("got ") + kChannel + " second 00000007");
}

void TstZMsg::isSentWhenItCannotBeStored_data()
{
    QTest::addColumn<QByteArray>("channel");
    QTest::addColumn<bool>("folder");
    QTest::newRow("something else has its name") << QByteArray(kChannel) << true;
    QTest::newRow("a slash") << QByteArray("TYX/Application/../var/x") << false;
    QTest::newRow("too long for a file") << "TYX/Application/" + QByteArray(239, 'x') << false;
}

void TstZMsg::isSentWhenItCannotBeStored()
{
    QFETCH(QByteArray, channel);
    QFETCH(bool, folder);
    if (folder)
        QCOMPARE(::mkdir(kPath, 0700), 0);
    QCOMPARE(m_peer->ask("open " + channel), "opened");
    QVERIFY(send("m", channel.constData()));
    QCOMPARE(m_peer->line(), "got " + channel + " m 00000007");
}

void TstZMsg::isStoredWithoutAServer()
{
    m_peer.reset();
    QVERIFY(send("m"));
    QCOMPARE(waiting(), QList<QByteArray>{"m"});
    QVERIFY(!send("m", "TYX/System"));
}

QTEST_GUILESS_MAIN(TstZMsg)
#include "tst_zmsg.moc"
