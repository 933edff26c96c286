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
    void channelMayBeDeletedWhileItReceives();
    void nestedLoopKeepsTheOrderForAll();
    void impossibleNamesAndSizesAreRefused();

private:
    std::unique_ptr<PeerProcess> m_server;
};

namespace {

// A channel, and what it heard.
struct Listener : QCopChannel {
    using QCopChannel::QCopChannel;

    [[nodiscard]] QList<QByteArray> names() const
    {
        QList<QByteArray> all;
        for (const auto &call : heard)
            all.append(call.at(0).value<QCString>());
        return all;
    }

    QSignalSpy heard{this, &QCopChannel::received};
};

}

void TstQCopChannel::init()
{
    m_server = std::make_unique<PeerProcess>(QStringLiteral("buspeer"));
    QCOMPARE(m_server->ask("host"), "hosting");
}

void TstQCopChannel::cleanup() { m_server.reset(); }

void TstQCopChannel::messageReachesEveryProcessThatHasTheChannel()
{
    const Listener first("TYX/System");
    const Listener second("TYX/System");
    const Listener other("TYX/Other");
    PeerProcess peer(QStringLiteral("buspeer"));
    QCOMPARE(peer.ask("open TYX/System"), "opened");
    QCOMPARE(m_server->ask("open TYX/System"), "opened");

    QVERIFY(QCopChannel::send("TYX/System", "applyStyle()", QByteArray("\0\1\xFF", 3)));

    QCOMPARE(peer.line(), "got TYX/System applyStyle() 0001ff");
    QCOMPARE(m_server->line(), "got TYX/System applyStyle() 0001ff");
    QTRY_COMPARE(first.heard.size(), 1);
    QTRY_COMPARE(second.heard.size(), 1);
    QCOMPARE(first.heard[0][0].value<QCString>(), "applyStyle()");
    QCOMPARE(first.heard[0][1].toByteArray(), QByteArray("\0\1\xFF", 3));
    QCOMPARE(other.heard.size(), 0);

    QCOMPARE(m_server->ask("send TYX/Other fromServer 00"), "sent 1");
    QTRY_COMPARE(other.names(), QList<QByteArray>{"fromServer"});
}

void TstQCopChannel::senderKeepsItsOrderAroundAQuestion()
{
    const Listener channel("c");
    QVERIFY(QCopChannel::send("c", "1"));
    QVERIFY(QCopChannel::isRegistered("c"));
    QCOMPARE(channel.heard.size(), 0); // what came with the answer waits for the event loop,
    QTRY_COMPARE(channel.names(), QList<QByteArray>{"1"}); // and for nothing else
    QVERIFY(QCopChannel::send("c", "2"));
    QTRY_COMPARE(channel.names(), (QList<QByteArray>{"1", "2"}));
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
    const Listener channel("c");
    PeerProcess peer(QStringLiteral("buspeer"));
    peer.tell("die c last 00112233445566778899 " + QByteArray::number(kCount));
    QVERIFY(peer.waitForEnd());
    QTRY_COMPARE(channel.heard.size(), kCount);
    for (int i = 0; i < kCount; ++i)
        QCOMPARE(channel.heard[i][1].toByteArray().right(4).toHex().toInt(nullptr, 16), i);
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
    const Listener channel("c");
    QVERIFY(QCopChannel::isRegistered("c"));
    m_server->kill();
    QTRY_VERIFY(!QCopChannel::send("c", "lost"));

    init();
    // Nothing is called here: the channel finds the way back by itself.
    PeerProcess peer(QStringLiteral("buspeer"));
    QTRY_COMPARE(peer.ask("registered c"), "registered 1");
    QCOMPARE(peer.ask("send c again 00"), "sent 1");
    QTRY_COMPARE(channel.names(), QList<QByteArray>{"again"});

    m_server->kill();
    init();
    QVERIFY(QCopChannel::send("c", "at once")); // over a connection that is dead already
    QTRY_COMPARE(channel.names(), (QList<QByteArray>{"again", "at once"}));
}

void TstQCopChannel::oneProcessMayHostAndTakePart()
{
    m_server.reset();
    auto broker = BusBroker::listen();
    QVERIFY(broker);
    const Listener channel("c");
    QVERIFY(QCopChannel::isRegistered("c"));
    PeerProcess peer(QStringLiteral("buspeer"));
    peer.tell("open p");
    QTRY_VERIFY(QCopChannel::isRegistered("p"));
    for (const char *name : {"1", "2", "3"}) {
        QVERIFY(QCopChannel::send("c", name));
        QVERIFY(QCopChannel::send("p", name));
        QVERIFY(!QCopChannel::isRegistered("nobody"));
    }
    QCOMPARE(channel.heard.size(), 0);
    QTRY_COMPARE(channel.names(), (QList<QByteArray>{"1", "2", "3"}));
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
    const Listener channel("c");
    QVERIFY(QCopChannel::isRegistered("c"));
    m_server->kill();
    {
        const auto broker = BusBroker::listen(); // the dead server's socket is still there
        QVERIFY(broker);
        QVERIFY(QCopChannel::isRegistered("c"));
        QVERIFY(QCopChannel::send("c", "here"));
        QTRY_COMPARE(channel.names(), QList<QByteArray>{"here"});
    }
    QVERIFY(!QCopChannel::send("c", "nobody"));
    init();
    QVERIFY(QCopChannel::send("c", "there"));
    QTRY_COMPARE(channel.names(), (QList<QByteArray>{"here", "there"}));
}

void TstQCopChannel::stoppedServerGetsWhatWasSentMeanwhile()
{
    const Listener channel("c");
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
    QTRY_COMPARE(channel.heard.size(), sent);
    for (int i = 0; i < sent; ++i)
        QCOMPARE(channel.heard[i][0].value<QCString>(), QByteArray::number(i));
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

void TstQCopChannel::channelMayBeDeletedWhileItReceives()
{
    auto *first = new QCopChannel("c");
    auto *second = new QCopChannel("c");
    const Listener third("c");
    connect(first, &QCopChannel::received, this, [&] {
        delete second; // it waits for the same message
        delete first;
    });
    QVERIFY(QCopChannel::send("c", "1"));
    QVERIFY(QCopChannel::send("c", "2"));
    QTRY_COMPARE(third.names(), (QList<QByteArray>{"1", "2"}));
}

void TstQCopChannel::nestedLoopKeepsTheOrderForAll()
{
    const Listener first("c");
    const Listener second("c");
    QEventLoop nested;
    connect(&first, &QCopChannel::received, this, [&](const QCString &name) {
        if (name == "1")
            nested.exec(); // like a dialog that a message opens and a later message closes
        else if (name == "3")
            nested.quit();
    });
    for (const char *name : {"1", "2", "3"})
        QVERIFY(QCopChannel::send("c", name));
    QTRY_COMPARE(second.names(), (QList<QByteArray>{"1", "2", "3"}));
    QCOMPARE(first.names(), (QList<QByteArray>{"1", "2", "3"}));
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
    const Listener channel("c");
    const QByteArray largest(1024 * 1024 - 4 - 1 - 1 - 1 - 4 - 1, 'd');
    QVERIFY(!QCopChannel::send("c", "x", largest + 'd'));
    QVERIFY(QCopChannel::send("c", "x", largest));
    QTRY_COMPARE(channel.heard.size(), 1);
    QCOMPARE(channel.heard[0][1].toByteArray(), largest);
}

QTEST_GUILESS_MAIN(TstQCopChannel)
#include "tst_qcopchannel.moc"
