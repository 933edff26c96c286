// Channels as applications use them, between processes, and what they do when the server ends or is stopped.
#include <QCopChannel>
#include <QEventLoop>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include "platform/bus/busbroker.h"
#include "platform/bus/busflush.h"
#include "tests/support/peerprocess.h"

#include <csignal>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using platform::BusBroker;

// Between processes; the broker lives in one of its own unless a test says otherwise.
class TstQCopChannel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void messageReachesEveryProcessThatHasTheChannel();
    void senderKeepsItsOrderAroundAQuestion();
    void registrationEndsWithTheChannelOrTheProcess();
    void messageOfAProcessThatEndsAtOnceArrives();
    void withoutServerEverythingAnswersNo();
    void channelsWorkAgainAfterTheServerWasKilled();
    void oneProcessMayHostAndTakePart();
    void answeringToOneselfLeavesTheLoopToOthers();
    void hostingTakesOverWhatTheProcessHad();
    void stoppedServerGetsWhatWasSentMeanwhile();
    void silentServerIsAskedOnce();
    void channelMayBeOlderThanTheApplication();
    void twoServersAreOne();
    void channelMayBeDeletedWhileItReceives();
    void nestedLoopKeepsTheOrderForAll();
    void localMessagesStayHere();
    void impossibleNamesAndSizesAreRefused();

private:
    std::unique_ptr<PeerProcess> m_server;
};

namespace {

QList<QByteArray> namesIn(const QSignalSpy &spy)
{
    QList<QByteArray> names;
    for (const auto &call : spy)
        names.append(call.at(0).value<QCString>());
    return names;
}

}

void TstQCopChannel::init()
{
    m_server = std::make_unique<PeerProcess>(QStringLiteral("buspeer"));
    QCOMPARE(m_server->ask("host"), "hosting");
}

void TstQCopChannel::cleanup() { m_server.reset(); }

void TstQCopChannel::messageReachesEveryProcessThatHasTheChannel()
{
    QCopChannel first("TYX/System");
    QCopChannel second("TYX/System");
    QCopChannel other("TYX/Other");
    QSignalSpy firstSpy(&first, &QCopChannel::received);
    QSignalSpy secondSpy(&second, &QCopChannel::received);
    QSignalSpy otherSpy(&other, &QCopChannel::received);
    PeerProcess peer(QStringLiteral("buspeer"));
    QCOMPARE(peer.ask("open TYX/System"), "opened");
    QCOMPARE(m_server->ask("open TYX/System"), "opened");

    QVERIFY(QCopChannel::send("TYX/System", "applyStyle()", QByteArray("\0\1\xFF", 3)));

    QCOMPARE(peer.line(), "got TYX/System applyStyle() 0001ff");
    QCOMPARE(m_server->line(), "got TYX/System applyStyle() 0001ff");
    QTRY_COMPARE(firstSpy.size(), 1);
    QTRY_COMPARE(secondSpy.size(), 1);
    QCOMPARE(firstSpy[0][0].value<QCString>(), "applyStyle()");
    QCOMPARE(firstSpy[0][1].toByteArray(), QByteArray("\0\1\xFF", 3));
    QCOMPARE(otherSpy.size(), 0);

    QCOMPARE(m_server->ask("send TYX/Other fromServer 00"), "sent 1");
    QTRY_COMPARE(namesIn(otherSpy), QList<QByteArray>{"fromServer"});
}

void TstQCopChannel::senderKeepsItsOrderAroundAQuestion()
{
    QCopChannel channel("c");
    QSignalSpy spy(&channel, &QCopChannel::received);
    QVERIFY(QCopChannel::send("c", "1"));
    QVERIFY(QCopChannel::isRegistered("c"));
    QCOMPARE(spy.size(), 0); // what came with the answer waits for the event loop,
    QTRY_COMPARE(namesIn(spy), QList<QByteArray>{"1"}); // and for nothing else
    QVERIFY(QCopChannel::send("c", "2"));
    QTRY_COMPARE(namesIn(spy), (QList<QByteArray>{"1", "2"}));
}

void TstQCopChannel::registrationEndsWithTheChannelOrTheProcess()
{
    QVERIFY(!QCopChannel::isRegistered("c"));
    PeerProcess peer(QStringLiteral("buspeer"));
    QCOMPARE(peer.ask("open c"), "opened");
    QVERIFY(QCopChannel::isRegistered("c"));
    {
        const QCopChannel own("c");
        QCOMPARE(peer.ask("close c"), "closed");
        QVERIFY(QCopChannel::isRegistered("c"));
    }
    QTRY_VERIFY(!QCopChannel::isRegistered("c"));
    QCOMPARE(peer.ask("open c"), "opened");
    QVERIFY(QCopChannel::isRegistered("c"));
    peer.kill();
    QTRY_VERIFY(!QCopChannel::isRegistered("c"));
}

void TstQCopChannel::messageOfAProcessThatEndsAtOnceArrives()
{
    constexpr int kCount = 5'000; // more than a socket takes while the receiver is not looking
    QCopChannel channel("c");
    QSignalSpy spy(&channel, &QCopChannel::received);
    PeerProcess peer(QStringLiteral("buspeer"));
    peer.tell("die c last 00112233445566778899 " + QByteArray::number(kCount));
    QVERIFY(peer.waitForEnd());
    QTRY_COMPARE(spy.size(), kCount);
    for (int i = 0; i < kCount; ++i)
        QCOMPARE(spy[i][1].toByteArray().right(4).toHex().toInt(nullptr, 16), i);
}

void TstQCopChannel::withoutServerEverythingAnswersNo()
{
    m_server.reset();
    const QCopChannel channel("c");
    QVERIFY(!QCopChannel::send("c", "x"));
    QVERIFY(!QCopChannel::isRegistered("c"));
    platform::busFlush();
}

void TstQCopChannel::channelsWorkAgainAfterTheServerWasKilled()
{
    QCopChannel channel("c");
    QSignalSpy spy(&channel, &QCopChannel::received);
    QVERIFY(QCopChannel::isRegistered("c"));
    m_server->kill();
    QTRY_VERIFY(!QCopChannel::send("c", "lost"));

    init();
    // Nothing is called here: the channel finds the way back by itself.
    PeerProcess peer(QStringLiteral("buspeer"));
    QTRY_COMPARE(peer.ask("registered c"), "registered 1");
    QCOMPARE(peer.ask("send c again 00"), "sent 1");
    QTRY_COMPARE(namesIn(spy), QList<QByteArray>{"again"});

    m_server->kill();
    init();
    QVERIFY(QCopChannel::send("c", "at once")); // over a connection that is dead already
    QTRY_COMPARE(namesIn(spy), (QList<QByteArray>{"again", "at once"}));
}

void TstQCopChannel::oneProcessMayHostAndTakePart()
{
    m_server.reset();
    auto broker = BusBroker::listen();
    QVERIFY(broker);
    QCopChannel channel("c");
    QSignalSpy spy(&channel, &QCopChannel::received);
    QVERIFY(QCopChannel::isRegistered("c"));
    PeerProcess peer(QStringLiteral("buspeer"));
    peer.tell("open p");
    QTRY_VERIFY(QCopChannel::isRegistered("p"));
    for (const char *name : {"1", "2", "3"}) {
        QVERIFY(QCopChannel::send("c", name));
        QVERIFY(QCopChannel::send("p", name));
        QVERIFY(!QCopChannel::isRegistered("nobody"));
    }
    QCOMPARE(spy.size(), 0);
    QTRY_COMPARE(namesIn(spy), (QList<QByteArray>{"1", "2", "3"}));
    QCOMPARE(peer.line(), "opened");
    for (const char *name : {"1", "2", "3"})
        QCOMPARE(peer.line(), QByteArray("got p ") + name);
}

void TstQCopChannel::answeringToOneselfLeavesTheLoopToOthers()
{
    m_server.reset();
    const auto broker = BusBroker::listen();
    QVERIFY(broker);
    QCopChannel channel("echo"); // the last message is still on its way when this ends
    constexpr int kGiveUp = 200'000; // so that a loop that is kept from the timer ends
    int rounds = 0;
    bool rung = false;
    connect(&channel, &QCopChannel::received, this, [&] {
        if (!rung && ++rounds < kGiveUp)
            QCopChannel::send("echo", "again");
    });
    QTimer::singleShot(1, this, [&] { rung = true; });
    QVERIFY(QCopChannel::send("echo", "first"));
    QTRY_VERIFY(rung);
    QVERIFY(rounds < kGiveUp);
}

void TstQCopChannel::hostingTakesOverWhatTheProcessHad()
{
    QCopChannel channel("c");
    QSignalSpy spy(&channel, &QCopChannel::received);
    QVERIFY(QCopChannel::isRegistered("c"));
    m_server->kill();
    {
        const auto broker = BusBroker::listen(); // the dead server's socket is still there
        QVERIFY(broker);
        QVERIFY(QCopChannel::isRegistered("c"));
        QVERIFY(QCopChannel::send("c", "here"));
        QTRY_COMPARE(namesIn(spy), QList<QByteArray>{"here"});
    }
    QVERIFY(!QCopChannel::send("c", "nobody"));
    init();
    QVERIFY(QCopChannel::send("c", "there"));
    QTRY_COMPARE(namesIn(spy), (QList<QByteArray>{"here", "there"}));
}

void TstQCopChannel::stoppedServerGetsWhatWasSentMeanwhile()
{
    QCopChannel channel("c");
    QSignalSpy spy(&channel, &QCopChannel::received);
    kill(pid_t(m_server->pid()), SIGSTOP);
    const QByteArray data(100'000, 'd');
    int sent = 0;
    while (sent < 1'000 && QCopChannel::send("c", QCString(QByteArray::number(sent)), data))
        ++sent;
    QVERIFY(sent >= 40); // 4 MiB are kept for it, and no more
    QVERIFY(sent < 50);
    QVERIFY(!QCopChannel::isRegistered("c"));
    kill(pid_t(m_server->pid()), SIGCONT);
    QTRY_VERIFY(QCopChannel::isRegistered("c"));
    QTRY_COMPARE(spy.size(), sent);
    for (int i = 0; i < sent; ++i)
        QCOMPARE(spy[i][0].value<QCString>(), QByteArray::number(i));
}

// Each question that is asked is waited for: how many were says whether the second one made anybody wait.
void TstQCopChannel::silentServerIsAskedOnce()
{
    m_server.reset();
    const QByteArray path = qgetenv("XDG_RUNTIME_DIR") + "/tyx-bus";
    const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address = {.sun_family = AF_UNIX, .sun_path = {}};
    qstrncpy(address.sun_path, path.constData(), sizeof address.sun_path);
    unlink(path.constData());
    QCOMPARE(bind(listener, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    QCOMPARE(listen(listener, 1), 0);
    {
        const QCopChannel first("c");
        const QCopChannel second("d");
        QVERIFY(!QCopChannel::isRegistered("c"));
    }
    const int connection = accept(listener, nullptr, nullptr);
    QByteArray heard(4096, 0);
    heard.resize(recv(connection, heard.data(), size_t(heard.size()), MSG_DONTWAIT));
    close(connection);
    close(listener);
    const QByteArray query = QByteArray::fromHex("0000000651"); // the length of a channel named by one letter, Q
    QCOMPARE(heard.count(query), 1);
    QVERIFY(heard.contains(QByteArray::fromHex("000000025264"))); // the second channel was registered all the same
    init();
    const QCopChannel channel("c");
    QVERIFY(QCopChannel::isRegistered("c")); // a server that answers is asked again
}

void TstQCopChannel::channelMayBeOlderThanTheApplication()
{
    PeerProcess peer(QStringLiteral("buspeer"), {QStringLiteral("early")});
    QCOMPARE(peer.line(), "opened");
    QVERIFY(QCopChannel::send("early", "m"));
    QCOMPARE(peer.line(), "got early m");
}

void TstQCopChannel::twoServersAreOne()
{
    PeerProcess second(QStringLiteral("buspeer"));
    QCOMPARE(second.ask("host"), "failed lock of the bus: Address already in use");
    const QCopChannel channel("c");
    QVERIFY(QCopChannel::isRegistered("c")); // the first one is not disturbed
    m_server->kill();
    QCOMPARE(second.ask("host"), "hosting");
}

void TstQCopChannel::channelMayBeDeletedWhileItReceives()
{
    auto *first = new QCopChannel("c");
    auto *second = new QCopChannel("c");
    QCopChannel third("c");
    QSignalSpy spy(&third, &QCopChannel::received);
    connect(first, &QCopChannel::received, this, [&] {
        delete second; // it waits for the same message
        delete first;
    });
    QVERIFY(QCopChannel::send("c", "1"));
    QVERIFY(QCopChannel::send("c", "2"));
    QTRY_COMPARE(namesIn(spy), (QList<QByteArray>{"1", "2"}));
}

void TstQCopChannel::nestedLoopKeepsTheOrderForAll()
{
    QCopChannel first("c");
    QCopChannel second("c");
    QSignalSpy firstSpy(&first, &QCopChannel::received);
    QSignalSpy secondSpy(&second, &QCopChannel::received);
    QEventLoop nested;
    connect(&first, &QCopChannel::received, this, [&](const QCString &name) {
        if (name == "1")
            nested.exec(); // like a dialog that a message opens and a later message closes
        else if (name == "3")
            nested.quit();
    });
    for (const char *name : {"1", "2", "3"})
        QVERIFY(QCopChannel::send("c", name));
    QTRY_COMPARE(namesIn(secondSpy), (QList<QByteArray>{"1", "2", "3"}));
    QCOMPARE(namesIn(firstSpy), (QList<QByteArray>{"1", "2", "3"}));
}

void TstQCopChannel::localMessagesStayHere()
{
    QCopChannel channel("c");
    QSignalSpy spy(&channel, &QCopChannel::received);
    PeerProcess peer(QStringLiteral("buspeer"));
    QCOMPARE(peer.ask("open c"), "opened");
    QVERIFY(QCopChannel::sendLocally("c", "here"));
    QCOMPARE(namesIn(spy), QList<QByteArray>{"here"});
    QVERIFY(!QCopChannel::sendLocally("nobody", "here"));
    QVERIFY(QCopChannel::send("c", "everywhere"));
    QCOMPARE(peer.line(), "got c everywhere");
    QTRY_COMPARE(namesIn(spy), (QList<QByteArray>{"here", "everywhere"}));
}

void TstQCopChannel::impossibleNamesAndSizesAreRefused()
{
    const QCString longest(QByteArray(255, 'n'));
    const QCString tooLong(QByteArray(256, 'n'));
    QTest::ignoreMessage(QtWarningMsg, "bus: a channel name has 1 to 255 bytes: \"\"");
    const QCopChannel unnamed("");
    const QCopChannel named(longest);
    QVERIFY(QCopChannel::isRegistered(longest));
    for (const QCString &name : {QCString(), QCString(""), tooLong}) {
        QVERIFY(!QCopChannel::isRegistered(name));
        QVERIFY(!QCopChannel::send(name, "x"));
    }
    QCopChannel channel("c");
    QSignalSpy spy(&channel, &QCopChannel::received);
    const QByteArray largest(1024 * 1024 - 4 - 1 - 1 - 1 - 4 - 1, 'd');
    QVERIFY(!QCopChannel::send("c", "x", largest + 'd'));
    QVERIFY(QCopChannel::send("c", "x", largest));
    QTRY_COMPARE(spy.size(), 1);
    QCOMPARE(spy[0][1].toByteArray(), largest);
}

QTEST_GUILESS_MAIN(TstQCopChannel)
#include "tst_qcopchannel.moc"
