// The broker with clients that misbehave: each is told why and sent away, and the others do not notice.
#include "platform/bus/buslink.h"
#include "platform/bus/warninglimit.h"
#include "tests/support/rawbusclient.h"

#include <QTest>
#include <memory>
#include <thread>
#include <vector>

using namespace std::chrono_literals;
using namespace platform::bus;
using platform::BusBroker;
using platform::BusOptions;

// The broker and its clients in one process, without an event loop: the test says when the broker works.
class TstBusBroker : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void strangersAreToldWhyAndNobodyNotices_data();
    void strangersAreToldWhyAndNobodyNotices();
    void halfAFrameStallsNobody();
    void silentStrangerIsSentAway();
    void greetingMayComeInPieces();
    void clientThatNeverReadsIsSentAwayAlone();
    void farewellEndsEvenWhenItIsNotRead();
    void oneClientTooManyIsRefused();
    void channelsOfAClientAreLimited();
    void endingBrokerWaitsForSlowReaders();
    void floodOfWarningsIsCut();

private:
    void listen(const BusOptions &options);
    void checkOthersAreServed();

    std::unique_ptr<BusBroker> m_broker;
    std::unique_ptr<RawBusClient> m_bystander;
};

namespace {

QByteArray hex(const char *text) { return QByteArray::fromHex(text); }

constexpr auto kUnknown = "X a frame that the bus does not know, or with contents that cannot be";
constexpr auto kNoGreeting = "X the first frame was no greeting of this bus";
constexpr auto kImpossible = "X a frame with an impossible length";

}

void TstBusBroker::listen(const BusOptions &options)
{
    cleanup();
    auto broker = BusBroker::listen(options);
    QVERIFY(broker);
    m_broker = std::move(*broker);
    m_bystander = std::make_unique<RawBusClient>(*m_broker);
    QVERIFY(m_bystander->greet());
    m_bystander->open("by");
}

void TstBusBroker::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral("^(?!bus: )")));
    listen({.socketPath = "/tmp/tst-bus"});
}

void TstBusBroker::cleanup()
{
    m_bystander.reset();
    m_broker.reset();
}

void TstBusBroker::checkOthersAreServed()
{
    QVERIFY(m_bystander->send("by", "still here"));
    QCOMPARE(m_bystander->next(), "M still here");
}

void TstBusBroker::strangersAreToldWhyAndNobodyNotices_data()
{
    QTest::addColumn<bool>("greeted");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("garbage") << false << QByteArray("GET / HTTP/1.1\r\n") << QByteArray(kImpossible);
    QTest::newRow("a frame instead of a greeting") << false << hex("00000003 52 6162") << QByteArray(kNoGreeting);
    QTest::newRow("greeting of another bus")
        << false << hex("00000009 48 545958425500 0001") << QByteArray(kNoGreeting);
    QTest::newRow("large frame before the greeting") << false << hex("00010000 48") << QByteArray(kImpossible);
    QTest::newRow("length of 2 GiB") << true << hex("80000000 4d") << QByteArray(kImpossible);
    QTest::newRow("unknown frame") << true << hex("00000001 7a") << QByteArray(kUnknown);
    QTest::newRow("frame of the broker's") << true << hex("00000003 57 0001") << QByteArray(kUnknown);
    QTest::newRow("message that is cut") << true << hex("00000003 4d 05 61") << QByteArray(kUnknown);
}

void TstBusBroker::strangersAreToldWhyAndNobodyNotices()
{
    QFETCH(bool, greeted);
    QFETCH(QByteArray, bytes);
    RawBusClient stranger(*m_broker);
    QVERIFY(!greeted || stranger.greet());
    QVERIFY(stranger.write(bytes));
    QTEST(stranger.next(), "answer");
    QCOMPARE(stranger.next(), "end");
    checkOthersAreServed();
}

void TstBusBroker::halfAFrameStallsNobody()
{
    RawBusClient half(*m_broker);
    QVERIFY(half.greet());
    half.open("half");
    QVERIFY(half.write(hex("000fffff 4d 02 62")));
    checkOthersAreServed();
    QVERIFY(m_bystander->send("half", "to you")); // and it goes on being served
    QCOMPARE(half.next(), "M to you");
}

void TstBusBroker::silentStrangerIsSentAway()
{
    listen({.socketPath = "/tmp/tst-bus", .greetingWait = 1ms});
    RawBusClient silent(*m_broker);
    QCOMPARE(silent.next(), "X no greeting in time");
    QCOMPARE(silent.next(), "end");
    checkOthersAreServed();
}

void TstBusBroker::greetingMayComeInPieces()
{
    RawBusClient slow(*m_broker);
    const QByteArray bytes = hex("00000009 48 545958425553 0001 00000002 52 63 00000007 4d 01 63 00000000");
    for (const char byte : bytes)
        QVERIFY(slow.write(QByteArrayView(&byte, 1)));
    QCOMPARE(slow.next(), "W");
    QCOMPARE(slow.next(), "M ");
}

void TstBusBroker::clientThatNeverReadsIsSentAwayAlone()
{
    RawBusClient lazy(*m_broker);
    RawBusClient busy(*m_broker);
    for (RawBusClient *client : {&lazy, &busy}) {
        QVERIFY(client->greet());
        client->open("flood");
    }
    const QByteArray data(60'000, 'd');
    int sent = 0;
    for (; m_broker->registrations().size() == 3 && sent < 200; ++sent) {
        QVERIFY(m_bystander->send("flood", QByteArray::number(sent), data));
        QCOMPARE(busy.next(), "M " + QByteArray::number(sent));
    }
    QVERIFY(sent > 60); // 4 MiB were kept for it
    QVERIFY(sent < 100);

    // What it finds when it wakes up: whole messages in order, then why, then the end.
    int kept = 0;
    QByteArray line = lazy.next();
    for (; line == "M " + QByteArray::number(kept); line = lazy.next())
        ++kept;
    QCOMPARE(line, "X 4 MiB of messages were left unread");
    QVERIFY(kept < sent / 2); // what its socket held; the rest was not kept for it any longer
    QCOMPARE(lazy.next(), "end");
    QVERIFY(m_bystander->send("flood", "after"));
    QCOMPARE(busy.next(), "M after");
}

void TstBusBroker::farewellEndsEvenWhenItIsNotRead()
{
    listen({.socketPath = "/tmp/tst-bus", .farewellWait = 1ms});
    RawBusClient lazy(*m_broker);
    QVERIFY(lazy.greet());
    lazy.open("flood");
    const QByteArray data(1'000'000, 'd');
    for (int i = 0; i < 8; ++i)
        QVERIFY(m_bystander->send("flood", "m", data));
    while (lazy.send("by", "still connected?")) // until its socket is closed behind it
        m_broker->process(10ms);
    checkOthersAreServed();
}

void TstBusBroker::oneClientTooManyIsRefused()
{
    std::vector<std::unique_ptr<RawBusClient>> all;
    for (int i = 1; i < 256; ++i) { // the bystander is one already
        all.push_back(std::make_unique<RawBusClient>(*m_broker));
        QVERIFY(all.back()->greet());
    }
    RawBusClient tooMany(*m_broker);
    QCOMPARE(tooMany.next(), "X too many clients, the bus serves 256");
    QCOMPARE(tooMany.next(), "end");
    checkOthersAreServed();
    all.clear();
    m_broker->process(10ms);
    RawBusClient again(*m_broker);
    QVERIFY(again.greet());
}

void TstBusBroker::channelsOfAClientAreLimited()
{
    RawBusClient greedy(*m_broker);
    QVERIFY(greedy.greet());
    for (int i = 0; i < 1024; ++i)
        greedy.open(QByteArray::number(i));
    greedy.open("0"); // one that it has already
    QCOMPARE(m_broker->registrations().size(), 1024 + 1);
    greedy.open("one more");
    QCOMPARE(greedy.next(), "X too many channels, a client may have 1024");
    QCOMPARE(m_broker->registrations().size(), 1);
}

void TstBusBroker::endingBrokerWaitsForSlowReaders()
{
    listen({.socketPath = "/tmp/tst-bus", .endingWait = 60s});
    const auto slow = BusLink::open(m_broker->socketPath());
    QVERIFY(slow);
    putChannel((*slow)->tail(), FrameType::Register, "slow");
    QCOMPARE((*slow)->flush(), SendBuffer::State::Empty);
    QTRY_VERIFY((m_broker->process(), m_broker->isRegistered("slow")));
    const QByteArray data(100'000, 'd');
    for (int i = 0; i < 20; ++i) // more than its socket holds
        QVERIFY(m_bystander->send("slow", "m", data));
    m_bystander->open("behind them");
    QTRY_VERIFY((m_broker->process(), m_broker->isRegistered("behind them")));

    int messages = 0;
    std::thread reading([&] {
        while ((*slow)->receive([&](const Frame &frame) { messages += int(frame.type == FrameType::Message); }))
            std::ignore = (*slow)->waitForInput(-1ms);
    });
    m_broker.reset();
    reading.join();
    QCOMPARE(messages, 20);
}

void TstBusBroker::floodOfWarningsIsCut()
{
    WarningLimit limit;
    std::chrono::steady_clock::time_point now(1h);
    const auto told = [&](int warnings) {
        int count = 0;
        for (int i = 0; i < warnings; ++i)
            count += limit.ask(now).tell ? 1 : 0;
        return count;
    };
    QCOMPARE(told(1000), 20);
    now += 9s;
    QCOMPARE(told(5), 0);
    now += 1s;
    QCOMPARE(limit.ask(now).untold, 985);
    QCOMPARE(told(1000), 19);
    now += 20s;
    QCOMPARE(limit.ask(now).untold, 981);
    QCOMPARE(limit.ask(now).untold, 0);
}

QTEST_GUILESS_MAIN(TstBusBroker)
#include "tst_busbroker.moc"
