// The bytes of each frame, damaged frames, and what becomes of half-written ones.
#include "platform/bus/busframe.h"
#include "platform/bus/bussendbuffer.h"
#include "platform/system/fd.h"

#include <QTest>
#include <map>
#include <sys/socket.h>
#include <unistd.h>

using namespace platform::bus;

class TstBusFrame : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writtenBytes_data();
    void writtenBytes();
    void damagedPayloadsAreNothing_data();
    void damagedPayloadsAreNothing();
    void lengthsAreJudgedBeforeTheBytesAreThere();
    void largestMessageFitsForObserversToo();
    void farewellFollowsTheHalfWrittenFrame();
};

namespace {

QByteArray hex(const char *text) { return QByteArray::fromHex(text); }

// The frame that a put function appends for this.
template <typename Put, typename... What> QByteArray made(Put put, const What &...what)
{
    QByteArray out;
    put(out, what...);
    return out;
}

template <auto read> bool isNothing(QByteArrayView payload) { return !read(payload); }

// By type, of the frames that somebody reads.
const std::map<FrameType, bool (*)(QByteArrayView)> refuses{{FrameType::Hello, isNothing<readHello>},
    {FrameType::Register, isNothing<readChannel>}, {FrameType::Message, isNothing<readMessage>},
    {FrameType::Query, isNothing<readQuery>}, {FrameType::Answer, isNothing<readAnswer>},
    {FrameType::List, isNothing<readToken>}, {FrameType::Entry, isNothing<readEntry>},
    {FrameType::Seen, isNothing<readSeen>}};

}

void TstBusFrame::writtenBytes_data()
{
    QTest::addColumn<QByteArray>("frame");
    QTest::addColumn<QByteArray>("expected");
    const auto row = [](const char *name, const QByteArray &frame, const char *bytes) {
        QTest::newRow(name) << frame << hex(bytes);
    };
    row("hello", made(putHello), "00000009 48 545958425553 0001");
    row("welcome", made(putWelcome), "00000003 57 0001");
    row("register", made(putChannel, FrameType::Register, "ab"), "00000003 52 6162");
    row("message", made(putMessage, Message{"ab", "m()", hex("0001")}), "0000000d 4d 02 6162 00000003 6d2829 0001");
    row("query", made(putQuery, Query{7, "a"}), "00000006 51 00000007 61");
    row("answer", made(putAnswer, Answer{7, true}), "00000006 41 00000007 01");
    row("list", made(putToken, FrameType::List, 7U), "00000005 4c 00000007");
    row("entry", made(putEntry, Entry{7, 258, "a"}), "0000000a 45 00000007 00000102 61");
    row("observe", made(putObserve), "00000001 4f");
    row("seen", made(putSeen, 258U, hex("01 61 00000001 6d")), "0000000c 53 00000102 01 61 00000001 6d");
    row("goodbye", made(putGoodbye, "why"), "00000004 58 776879");
}

void TstBusFrame::writtenBytes()
{
    QFETCH(QByteArray, frame);
    QTEST(frame, "expected");
    const Cut cut = cutFrame(frame);
    QCOMPARE(cut.state, Cut::Whole);
    QCOMPARE(cut.frame.bytes, frame);
    QVERIFY(!refuses.contains(cut.frame.type) || !refuses.at(cut.frame.type)(cut.frame.payload));
    for (qsizetype size = 0; size < frame.size(); ++size)
        QCOMPARE(cutFrame(frame.first(size)).state, Cut::Incomplete);
}

void TstBusFrame::damagedPayloadsAreNothing_data()
{
    QTest::addColumn<char>("type");
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("hello of another bus") << 'H' << hex("545958425554 0001");
    QTest::newRow("hello without version") << 'H' << hex("545958425553 00");
    QTest::newRow("channel without name") << 'R' << QByteArray();
    QTest::newRow("channel with a NUL") << 'R' << hex("610062");
    QTest::newRow("channel too long") << 'R' << QByteArray(256, 'a');
    QTest::newRow("message without anything") << 'M' << QByteArray();
    QTest::newRow("message without channel") << 'M' << hex("00 00000001 6d");
    QTest::newRow("message, channel cut") << 'M' << hex("02 61");
    QTest::newRow("message, name length cut") << 'M' << hex("01 61 0000");
    QTest::newRow("message, name length 2^32 - 1") << 'M' << hex("01 61 ffffffff 6d");
    QTest::newRow("message, name length one too many") << 'M' << hex("01 61 00000002 6d");
    QTest::newRow("query without channel") << 'Q' << hex("00000007");
    QTest::newRow("answer with too much") << 'A' << hex("00000007 01 00");
    QTest::newRow("token cut") << 'L' << hex("000007");
    QTest::newRow("entry without channel") << 'E' << hex("00000007 00000001");
    QTest::newRow("seen without message") << 'S' << hex("00000001");
}

void TstBusFrame::damagedPayloadsAreNothing()
{
    QFETCH(char, type);
    QFETCH(QByteArray, payload);
    QVERIFY(refuses.at(FrameType(type))(payload));
}

void TstBusFrame::lengthsAreJudgedBeforeTheBytesAreThere()
{
    for (const char *length : {"00000000", "80000000", "ffffffff", "00100001"})
        QCOMPARE(cutFrame(hex(length)).state, Cut::Impossible);
    QCOMPARE(cutFrame(hex("00100000")).state, Cut::Incomplete);
    QCOMPARE(cutFrame(hex("00000041"), kMaxGreeting).state, Cut::Impossible);
}

void TstBusFrame::largestMessageFitsForObserversToo()
{
    const QByteArray data(qsizetype(kMaxMessage) - 1 - 1 - 1 - 4 - 1, 'd');
    QVERIFY(fitsFrame({"c", "m", data}));
    QVERIFY(!fitsFrame({"c", "mm", data}));
    const QByteArray message = made(putMessage, Message{"c", "m", data});
    QCOMPARE(cutFrame(made(putSeen, 1U, cutFrame(message).frame.payload)).state, Cut::Whole);
}

void TstBusFrame::farewellFollowsTheHalfWrittenFrame()
{
    int pair[2];
    QVERIFY(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, pair) == 0);
    const platform::Fd writer = platform::Fd::own(pair[0]);
    const platform::Fd reader = platform::Fd::own(pair[1]);
    SendBuffer out;
    for (int i = 0; i < 20; ++i)
        putMessage(out.tail(), {"c", QByteArray::number(i), QByteArray(100'000, 'd')});
    QCOMPARE(out.flush(writer.get()), SendBuffer::State::Blocked);
    const qsizetype before = out.backlog();
    out.finishWith(made(putGoodbye, "enough"));
    QVERIFY(out.backlog() < before);

    FrameReader frames;
    QList<QByteArray> seen;
    QByteArray buffer(65536, 0);
    for (auto state = SendBuffer::State::Blocked; state == SendBuffer::State::Blocked;) {
        state = out.flush(writer.get());
        for (ssize_t n = 0; (n = read(reader.get(), buffer.data(), size_t(buffer.size()))) > 0;)
            QVERIFY(frames.feed(buffer.first(n), [&](const Frame &frame) {
                seen += frame.type == FrameType::Goodbye ? frame.payload.toByteArray()
                                                         : readMessage(frame.payload)->name.toByteArray();
                return true;
            }));
    }
    QVERIFY(seen.size() > 1);
    QCOMPARE(seen.takeLast(), "enough");
    for (qsizetype i = 0; i < seen.size(); ++i)
        QCOMPARE(seen[i], QByteArray::number(i));
}

QTEST_GUILESS_MAIN(TstBusFrame)
#include "tst_busframe.moc"
