// tyx keys and tyx touch on a whole phone, and a recording of it played on another one.
#include "tests/support/peerprocess.h"
#include "tests/support/testfiles.h"

#include <QImage>

using namespace Qt::StringLiterals;

namespace {

Outcome tyx(const QString &line) { return run(QStringLiteral(TYX_BINARY_DIR "/bin/tyx"), line.split(u' ')); }

bool isRecording(QProcess &recorder)
{
    QByteArray said;
    return QTest::qWaitFor(
        [&] {
            said += recorder.readAllStandardError();
            return said.contains("recording");
        },
        20'000);
}

// A phone that nobody used before.
struct Phone {
    Phone()
    {
        QTRY_VERIFY(tyx(u"bus list"_s).status == 3); // the one before has ended
        server = std::make_unique<PeerProcess>(u"../bin/tyx-guiserver"_s, QStringList{u"--platform"_s, u"offscreen"_s});
        QVERIFY(server->line().startsWith("tyx-guiserver: ready on "));
        doodle = std::make_unique<PeerProcess>(u"../bin/doodle"_s);
        QTRY_VERIFY(tyx(u"screen list"_s).out.contains("active  Doodle"));
        hint = screen();
    }
    static QImage screen()
    {
        return tyx(u"screen shot /tmp/screen.png"_s).status == 0 ? QImage(u"/tmp/screen.png"_s).copy(0, 20, 240, 300)
                                                                 : QImage();
    }
    std::unique_ptr<PeerProcess> server;
    std::unique_ptr<PeerProcess> doodle;
    QImage hint;
};

}

class TstTyxInput : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void withoutAPhoneItSaysSo();
    void whatIsWrongIsNamed();
    void aReplayEndsLikeTheOriginal();
    void aPanelIsCalibrated();
};

void TstTyxInput::withoutAPhoneItSaysSo()
{
    fill(u"/tmp/good"_s, "tyx-recording 1\n0 key keypad 1\n");
    for (const char *line : {"keys press left", "touch tap 10 10", "keys record /tmp/r", "keys replay /tmp/good"}) {
        const Outcome outcome = tyx(QLatin1String(line));
        QCOMPARE(outcome.status, 3);
        QVERIFY2(outcome.err.contains("start tyx-guiserver"), outcome.err.constData());
    }
    QCOMPARE(::mkfifo("/tmp/fifo", 0600), 0);
    QVERIFY(QFile::resize(u"/tmp/good"_s, 257LL << 20));
    for (const auto &[line, reason] : {std::pair("keys replay /tmp/fifo", "Invalid argument; name a regular file"),
             std::pair("keys replay /tmp/good", "File too large")}) {
        const Outcome outcome = tyx(QLatin1String(line));
        QCOMPARE(outcome.status, 3);
        QVERIFY2(outcome.err.contains(reason), outcome.err.constData());
    }
    QFile::remove(u"/tmp/good"_s);
    QCOMPARE(tyx(u"touch show"_s).out, "1 0 0 0 1 0 1  (none is stored)\n");
    QCOMPARE(tyx(u"touch calibrate 300 250 3700 3800 20 20 219 299"_s).out, "3835 0 160220 0 5150 23220 65536\n");
    QCOMPARE(tyx(u"touch show"_s).status, 0);
}

void TstTyxInput::whatIsWrongIsNamed()
{
    const std::pair<QString, const char *> rows[] = {{u"keys press nokey"_s, "\"nokey\" is no key of this phone"},
        {u"keys press 0x1000"_s, "\"0x1000\" is no key of this phone"},
        {u"keys type 12a"_s, "the keypad has the digits, * and #"}, {u"keys flip ajar"_s, "POSITION: ajar not in"},
        {u"touch tap 9000 20"_s, "the panel does not reach 9000, 20"},
        {u"touch drag 1 2 3 4 5"_s, "the last point lacks its second number"},
        {u"touch calibrate 1 2 1 4 20 20 219 299"_s, "these points give no calibration"}};
    for (const auto &[line, error] : rows) {
        const Outcome outcome = tyx(line);
        QCOMPARE(outcome.status, 2);
        QVERIFY2(outcome.err.contains(error), outcome.err.constData());
    }
}

void TstTyxInput::aReplayEndsLikeTheOriginal()
{
    qputenv("TYX_TEST_AGENT", "1");
    QImage drawn;
    QByteArray status;
    {
        const Phone phone;
        QProcess recorder;
        recorder.start(QStringLiteral(TYX_BINARY_DIR "/bin/tyx"), {u"keys"_s, u"record"_s, u"/tmp/recording"_s});
        QVERIFY(isRecording(recorder));
        QProcess cut; // for which there is no room
        cut.start(u"/bin/sh"_s,
            {u"-c"_s, u"trap '' XFSZ; ulimit -f 1; exec " TYX_BINARY_DIR "/bin/tyx keys record /tmp/cut"_s});
        QVERIFY(isRecording(cut));
        for (const char *line : {"touch drag 40 240 60 120 120 220", "status set signal 4", "keys flip close",
                 "keys press F9 side", "keys flip open", "bus send TYX/System setOneEnv() qstring:A=b", "keys type 1",
                 "touch drag --for 50 180 120 200 240"})
            QCOMPARE(tyx(QLatin1String(line)).status, 0);
        QTRY_VERIFY(content(u"/tmp/recording"_s).contains(" touch 0 "));
        drawn = Phone::screen();
        status = tyx(u"status dump"_s).out;
        QVERIFY(drawn != phone.hint);
        recorder.terminate();
        QVERIFY(recorder.waitForFinished());
        QCOMPARE(recorder.exitCode(), 0);
        QVERIFY(cut.state() == QProcess::NotRunning || cut.waitForFinished());
        QCOMPARE(cut.exitCode(), 3);
        QVERIFY(cut.readAllStandardError().contains("/tmp/cut: File too large"));
        QVERIFY(tyx(u"keys record /dev/full"_s).err.contains("No space left on device"));
    }
    const QByteArray text = content(u"/tmp/recording"_s);
    for (const char *part : {" key button 0x8080\n", " key keypad 0x801f\n", " status signal 04\n", " status flip 01\n",
             " message TYX/System setOneEnv() 00000006", " effect Q400_DEVICE_REPORT FLIP 00000001\n"})
        QVERIFY2(text.contains(part), part);
    for (const char *how : {"keys replay /tmp/recording --fast", "touch replay /tmp/recording"}) {
        const Phone phone;
        QVERIFY(drawn != phone.screen());
        const Outcome outcome = tyx(QLatin1String(how));
        QVERIFY2(outcome.status == 0, outcome.err.constData());
        QTRY_COMPARE(Phone::screen(), drawn);
        QCOMPARE(tyx(u"status dump"_s).out, status);
    }
}

void TstTyxInput::aPanelIsCalibrated()
{
    QFile::remove(u"/setup/pointercal"_s);
    const Phone phone;
    // Nothing can be reached, and the pen is held for help.
    QCOMPARE(tyx(u"touch drag --raw --for 3500 2000 2000 2001 2001"_s).status, 0);
    QTRY_VERIFY(tyx(u"screen list"_s).out.contains("active  Touch panel"));
    for (const QByteArray &line : tyx(u"bus list"_s).out.split('\n')) {
        if (line.contains("TYX/Application/tyx-calibrate"))
            tyx(u"bus send TYX/Application/%1 quickQuit()"_s.arg(QString::fromLatin1(line.trimmed().split(' ')[0])));
    }
    QTRY_VERIFY(!tyx(u"screen list"_s).out.contains("Touch panel"));

    PeerProcess program(u"../bin/tyx-calibrate"_s);
    QCOMPARE(program.line(), "cross 1");
    QTRY_VERIFY(tyx(u"screen list"_s).out.contains("active  Touch panel"));
    // The panel is mounted upside down: a pixel is 12 units wide and -10 high. Crosses are 24 pixels from the edges.
    const QList<QPoint> crosses{{24, 24}, {24, 295}, {215, 295}, {215, 24}, {119, 159}};
    const auto touch = [&](int i, int shift) {
        return tyx(u"touch tap --raw %1 %2"_s.arg(500 + 12 * crosses[i].x() + shift).arg(3800 - 10 * crosses[i].y()));
    };
    for (int i = 0; i < 5; ++i) {
        QCOMPARE(touch(i == 4 ? 0 : i, 0).status, 0); // a corner instead of the middle
        QCOMPARE(program.line(), i == 4 ? QByteArray("refused") : "cross " + QByteArray::number(i + 2));
    }
    QCOMPARE(tyx(u"touch show"_s).status, 1);
    for (int i = 0; i < 5; ++i) {
        QCOMPARE(touch(i, i == 4 ? 30 : 0).status, 0); // a trembling hand
        QCOMPARE(program.line(), i == 4 ? QByteArray("stored") : "cross " + QByteArray::number(i + 2));
    }
    QCOMPARE(tyx(u"touch show"_s).out, "5461 0 -2730404 0 -6553 24901544 65536\n");
    QCOMPARE(tyx(u"touch tap 120 200"_s).status, 0); // which it can be closed with
    QVERIFY(program.waitForEnd());
}

QTEST_GUILESS_MAIN(TstTyxInput)
#include "tst_tyxinput.moc"
