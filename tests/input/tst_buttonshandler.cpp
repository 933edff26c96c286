// The keypad's driver in a GUI server, its devices, and an application that gets the keys.
#include "appbase/messaging/wire.h"
#include "platform/system/fd.h"
#include "settings/status/systemstatus.h"
#include "tests/platform/window/windowtest.h"
#include "tests/support/testfiles.h"

#include <QCopChannel>
#include <QWSTyxButtonsHandler>
#include <Suspension>
#include <UTIL_HardKeySound>
#include <ZApplication>
#include <fcntl.h>
#include <sys/ipc.h>
#include <sys/msg.h>

using namespace Qt::StringLiterals;

namespace {

constexpr char kKeypad[] = "/dev/keypad0";
constexpr char kButton[] = "/dev/button";
constexpr char kTestPipe[] = "/tmp/TSTAGN_K";
constexpr quint16 kDown = 0x8000;
constexpr quint16 kLeft = 0x0D;
constexpr quint16 kFlip = 0x80;

void feed(const char *device, const QList<quint16> &records)
{
    const auto fd = platform::Fd::open(device, O_WRONLY | O_NONBLOCK);
    QVERIFY2(fd, device);
    QCOMPARE(::write(fd->get(), records.constData(), size_t(2 * records.size())), 2 * records.size());
}

// What is said on a channel, as "message int".
struct Listener {
    explicit Listener(const char *name) : channel(name)
    {
        QObject::connect(&channel, &QCopChannel::received, &channel, [this](const QCString &m, const QByteArray &data) {
            qint32 argument = 0;
            heard.append(m + (wire::unpack(data, argument) ? ' ' + QByteArray::number(argument) : QByteArray()));
        });
    }
    QCopChannel channel;
    QByteArrayList heard;
};

int soundQueue() { return ::msgget(::ftok("/tmp/touch_sound_msg", 't'), IPC_CREAT | 0666); }

}

class TstButtonsHandler : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itAsksAndSetsUpItsDevices();
    void keysComeFromAllDevices();
    void theFlipIsTold();
    void theFlipWakesASuspendedPhone();
    void keysClick();
    void aFloodNeitherKillsNorIsLost();
};

void TstButtonsHandler::itAsksAndSetsUpItsDevices()
{
    QCOMPARE(QWSTyxButtonsHandler::TYXflipStatus, -1); // a FIFO does not answer
    QCOMPARE(QWSTyxButtonsHandler::TYXHeadset, 0);
    QVERIFY(UTIL_GetHeadsetStatus() == false);
    short flip = 7;
    QVERIFY(!hardkeyHandler->getFlipStatus(&flip));
    QCOMPARE(flip, 7);
    if (const char *reason = whyNotTraced())
        QSKIP(reason);
    run(u"strace"_s,
        {u"-o"_s, u"/tmp/trace"_s, u"-e"_s, u"trace=ioctl"_s, u"-X"_s, u"raw"_s,
            QCoreApplication::applicationFilePath(), u"-construct"_s});
    QStringList seen;
    for (const QByteArray &line : content(u"/tmp/trace"_s).split('\n')) {
        if (line.contains("0x8004de") || line.contains("0x40046b") || line.contains("0x40026b")
            || line.contains("0x80046b"))
            seen.append(QString::fromLatin1(line.split(',').value(1).trimmed()));
    }
    QCOMPARE(seen, (QStringList{u"0x8004de01"_s, u"0x8004de02"_s, u"0x40046b06"_s, u"0x40026b04"_s, u"0x80046b04"_s}));
}

void TstButtonsHandler::keysComeFromAllDevices()
{
    Client client;
    QVERIFY(client.shows(u"win"_s, u"main"_s));
    for (const char *device : {kKeypad, kButton, kTestPipe}) {
        feed(device, {kLeft | kDown, kLeft | kDown, kLeft});
        QVERIFY2(client.says(u"win press"_s), device);
        QVERIFY(client.line().endsWith(u" 0"_s));
        QVERIFY2(client.says(u"win press"_s), device);
        QVERIFY(client.line().endsWith(u" 1"_s)); // a repeat
        QVERIFY(client.says(u"win release %1"_s.arg(Qt::Key_Left)));
    }
    QCOMPARE(modeOf(QString::fromLatin1(kTestPipe)), mode_t(S_IFIFO | 0666));
    QCOMPARE(hardkeyHandler->getHardkeyEvent(), Qt::Key_Left);
    QVERIFY(!hardkeyHandler->hasHardkeyEvent() && hardkeyHandler->IsKeyListEmpty());
}

void TstButtonsHandler::theFlipIsTold()
{
    Listener reports("Q400_DEVICE_REPORT");
    Listener launcher("/AM/Launcher");
    feed(kButton, {kFlip | kDown, kFlip});
    QTRY_COMPARE(reports.heard, (QByteArrayList{"FLIP 1", "FLIP 0"}));
    QCOMPARE(QWSTyxButtonsHandler::TYXflipStatus, 1);
    QVERIFY(!UTIL_GetFlipStatus());
    feed(kKeypad, {0x23 | kDown, 0x23 | kDown, 0x23 | kDown, 0x23});
    QTRY_COMPARE(launcher.heard, (QByteArrayList{"VR Activate"})); // nobody is there to be deactivated
    Listener voice("TYX/Application/VR");
    feed(kKeypad, {0x23 | kDown, 0x23 | kDown, 0x23 | kDown, 0x23});
    QTRY_COMPARE(launcher.heard, (QByteArrayList{"VR Activate", "VR Activate", "VR DeActivate"}));
    feed(kButton, {kFlip | kDown, 0x82 | kDown, 0x81 | kDown, 0xA6 | kDown});
    QTRY_COMPARE(UTIL_GetUSBDeviceType(), 3U);
    QCOMPARE(voice.heard, (QByteArrayList{"VR TTS Interrupt"}));
    QCOMPARE(reports.heard.mid(2), (QByteArrayList{"FLIP 1", "HEADSET STATUS 1", "HEADSET ANSWER 1"}));
    QVERIFY(UTIL_GetFlipStatus() && UTIL_GetHeadsetStatus());
}

void TstButtonsHandler::theFlipWakesASuspendedPhone()
{
    Client client;
    QVERIFY(client.shows(u"win"_s, u"main"_s));
    SetGuiToSuspension();
    feed(kKeypad, {kLeft | kDown, kLeft});
    feed(kButton, {kFlip | kDown, kFlip});
    QTRY_VERIFY(!isGuiSuspended());
    QCOMPARE(QWSTyxButtonsHandler::TYXflipStatus, 1);
    QVERIFY(!UTIL_GetFlipStatus());
    feed(kButton, {kFlip | kDown});
    QVERIFY(client.says(u"win press"_s));
    QVERIFY2(client.line().startsWith(u"win press %1 "_s.arg(Qt::Key_F3)), qPrintable(client.line()));
}

void TstButtonsHandler::keysClick()
{
    fill(u"/tmp/touch_sound_msg"_s, {});
    const int queue = soundQueue();
    QVERIFY(queue >= 0);
    const SoundInfo sound{1, 5};
    UTIL_SetHKSoundInfo(&sound);
    QWSTyxButtonsHandler::reloadKeySound();
    for (const int key :
        {Qt::Key_F6, Qt::Key_F7, Qt::Key_Backspace, Qt::Key_1, Qt::Key_1, Qt::Key_1, Qt::Key_1, Qt::Key_1, Qt::Key_1})
        UTIL_HardKeySound::soundHardKey(key);
    struct {
        long type;
        char bytes[300];
    } message{};
    QByteArrayList names;
    while (::msgrcv(queue, &message, sizeof message.bytes, 0, IPC_NOWAIT) == 260) {
        QCOMPARE(QByteArray(message.bytes, 8), QByteArray("\1\0\0\0\5\0\0\0", 8));
        names.append(message.bytes + 8);
    }
    QCOMPARE(names,
        (QByteArrayList{"Hard_Key_Send.wav", "Hard_Key_End.wav", "Hard_Key_Clear.wav"}
            + QByteArrayList(4, "Hard_Key_Default.wav"))); // those behind the seventh were dropped
    feed(kButton, {kFlip | kDown, 0x25 | kDown, 0x25}); // through the device, with the flip closed
    msqid_ds status{};
    QTRY_VERIFY(::msgctl(queue, IPC_STAT, &status) == 0 && status.msg_qnum == 1);
    ::msgctl(queue, IPC_RMID, nullptr);
    UTIL_HardKeySound::soundHardKey(Qt::Key_1); // finds that it is gone
    UTIL_HardKeySound::soundHardKey(Qt::Key_1);
    QCOMPARE(int(::msgrcv(soundQueue(), &message, sizeof message.bytes, 0, IPC_NOWAIT)), 260);
    const SoundInfo silence{0, 5};
    UTIL_SetHKSoundInfo(&silence);
    QVERIFY(QCopChannel::send("TYX/QtServer", "HardkeySoundChanged()"));
    QTRY_VERIFY((UTIL_HardKeySound::soundHardKey(Qt::Key_1),
        ::msgrcv(soundQueue(), &message, sizeof message.bytes, 0, IPC_NOWAIT) < 0));
}

void TstButtonsHandler::aFloodNeitherKillsNorIsLost()
{
    constexpr int kRecords = 100'000;
    QWSTyxButtonsHandler::TYXflipStatus = -1; // silent
    Client client;
    QVERIFY(client.shows(u"win"_s, u"main"_s));
    const auto fd = platform::Fd::open(kKeypad, O_WRONLY | O_NONBLOCK);
    int presses = 0;
    int written = 0;
    connect(&server(), &QWSServer::keySent, &client.process(),
        [&](int, int, int, bool isPress) { presses += isPress ? 1 : 0; });
    while (written < kRecords) {
        const quint16 record = written % 2 == 0 ? kLeft | kDown : kLeft;
        if (::write(fd->get(), &record, sizeof record) == sizeof record)
            ++written;
        else
            QTest::qWait(0); // the server reads
    }
    QTRY_COMPARE_WITH_TIMEOUT(presses, kRecords / 2, 60'000);
    feed(kKeypad, {0x0C | kDown});
    QVERIFY(client.says(u"win press %1"_s.arg(Qt::Key_Down)));
}

int main(int argc, char **argv)
{
    qputenv("TYX_TEST_AGENT", "1");
    if (QByteArray(argv[argc - 1]) == "-construct") {
        const QWSTyxButtonsHandler handler;
        return 0;
    }
    return runOnServer<TstButtonsHandler, ZApplication>(argc, argv);
}

#include "tst_buttonshandler.moc"
