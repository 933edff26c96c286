#include "input/logic/recording.h"

#include <QTest>

class TstRecording : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatIsWrittenIsRead();
    void errorsNameTheLine();
    void pausesInWhichSomethingIsHeldStay();
};

void TstRecording::whatIsWrittenIsRead()
{
    using namespace recording;
    const QList<Event> events{{0, Key{keypad::Device::Button, 0xFFFF}}, {0, Key{keypad::Device::Keypad, 0}},
        {7, Touch{{65535, 0, 1}}}, {8, Message{false, "TYX/System", "a b\n%\xFF", QByteArray("\0\xFF", 2)}},
        {9, Message{true, "c", "d()", {}}}, {1'000'000'000'000, Status{"signal", "\4"}}};
    QByteArray text = header();
    for (const Event &event : events)
        text += format(event);
    QCOMPARE(text,
        "tyx-recording 1\n0 key button 0xffff\n0 key keypad 0x0\n7 touch 65535 0 1\n"
        "8 message TYX/System a%20b%0A%25%FF 00ff\n9 effect c d() -\n1000000000000 status signal 04\n");
    const auto read = parse(text);
    QVERIFY2(read, read ? "" : qPrintable(read.error()));
    QCOMPARE(*read, events);
}

void TstRecording::errorsNameTheLine()
{
    const auto error = [](const QByteArray &text) {
        const auto read = recording::parse(text);
        return read ? QString() : read.error();
    };
    QCOMPARE(error(""), QStringLiteral("line 1: a recording begins with \"tyx-recording 1\""));
    QCOMPARE(error("tyx-recording 1\n5 key button 1\n4 key button 1"),
        QStringLiteral("line 3: it is earlier than the line before"));
    for (const char *line : {"x", "1", "-1 key button 1", "1 key other 1", "1 key button 65536", "1 key button",
             "1 touch 1 2", "1 touch 1 2 -3", "1 message a b", "1 message a - 00", "1 message a b 0", "1 status a 0g",
             "1 other a", "1 key button 1 2", "1000000000001 key button 1", "99999999999999999999 key button 1"})
        QVERIFY2(error(QByteArray("tyx-recording 1\n# a word\n") + line) == u"line 3: this is no event", line);
}

void TstRecording::pausesInWhichSomethingIsHeldStay()
{
    const auto events = recording::parse("tyx-recording 1\n"
                                         "1000 key keypad 0x800d\n1300 key keypad 0xd\n9000 key button 0x8080\n"
                                         "10000 touch 90 1 1\n10100 touch 90 1 1\n10200 touch 0 1 1\n"
                                         "10300 touch 90 1 1\n10400 touch 0 1 1\n15000 touch 90 1 1\n");
    QCOMPARE(recording::shortenedPauses(*events), (QList<qint64>{0, 300, 0, 0, 100, 100, 100, 100, 500}));
}

QTEST_APPLESS_MAIN(TstRecording)
#include "tst_recording.moc"
