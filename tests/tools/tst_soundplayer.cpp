#include "appbase/messaging/soundqueue.h"
#include "platform/system/keyfile.h"
#include "tests/support/columns.h"
#include "tests/support/testfiles.h"
#include "tools/soundplayer/soundrequest.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace {

const QString kSounds = QStringLiteral(TYX_BINARY_DIR "/share/tyxappbase/soundfile");

Outcome play(int count, const QStringList &more = {})
{
    return run(QStringLiteral(TYX_BINARY_DIR "/bin/tyx-soundplayer"),
        QStringList{u"--folder"_s, kSounds, u"--count"_s, QString::number(count)} + more);
}

}

class TstSoundPlayer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void messagesAreRead_data();
    void messagesAreRead();
    void soundsReachTheDevice();
    void withoutADeviceItTellsWhatItWouldPlay();
};

void TstSoundPlayer::messagesAreRead_data()
{
    // message: what its zeros at the end are cut off from
    const auto row = columns<QByteArray, int, QByteArray>("message", "size", "read");
    const QByteArray loud("\2\0\0\0\x09\0\0\0", 8);
    row("a name", loud + "a.wav", 260, "/s/a.wav 1");
    row("a path", QByteArray("\1\0\0\0\3\0\0\0/t/b", 12), 260, "/t/b 0.111");
    row("too loud", QByteArray("\1\0\0\0\0\0\0\xFF/t/b", 12), 260, "/t/b 1");
    row("silent style", QByteArray("\0\0\0\0\3\0\0\0/t/b", 12), 260, {});
    row("volume 0", QByteArray("\1\0\0\0\0\0\0\0/t/b", 12), 260, {});
    row("a way out", loud + "../b", 260, {});
    row("no name", loud, 260, {});
    row("no end", loud + QByteArray(252, 'x'), 260, {});
    row("cut", loud + "a.wav", 259, {});
    row("empty", {}, 0, {});
}

void TstSoundPlayer::messagesAreRead()
{
    QFETCH(QByteArray, message);
    QFETCH(int, size);
    message.resize(size, '\0');
    const auto request = soundRequest(std::as_bytes(std::span(message.constData(), size_t(size))), "/s");
    QTEST(request ? request->path + ' ' + QByteArray::number(request->gain, 'g', 3) : QByteArray(), "read");
}

void TstSoundPlayer::soundsReachTheDevice()
{
    QVERIFY(platform::makeKeyFile(SoundQueue::kKeyFile));
    QDir().mkpath(u"/tmp/home"_s);
    // A device that writes into a file what it is given.
    fill(u"/tmp/home/.asoundrc"_s, "pcm.ear { type file file \"/tmp/heard\" format raw slave.pcm { type null } }\n");
    SoundQueue queue;
    QVERIFY(queue.send({1, 9, "Hard_Key_Send.wav"}));
    QCOMPARE(play(1, {u"--device"_s, u"ear"_s}).out, "played " + kSounds.toUtf8() + "/Hard_Key_Send.wav\n");
    const QByteArray samples = content(kSounds + u"/Hard_Key_Send.wav"_s).mid(44);
    QVERIFY(samples.size() > 1000);
    QVERIFY(content(u"/tmp/heard"_s).startsWith(samples));
}

void TstSoundPlayer::withoutADeviceItTellsWhatItWouldPlay()
{
    QVERIFY(platform::makeKeyFile(SoundQueue::kKeyFile));
    SoundQueue queue;
    fill(u"/tmp/text"_s, "no sound");
    QByteArray fast = content(kSounds + u"/Hard_Key_End.wav"_s);
    fill(u"/tmp/fast.wav"_s, fast.replace(24, 4, "\0\0\0\x40", 4));
    const auto key = platform::keyOfFile(SoundQueue::kKeyFile, SoundQueue::kProject);
    const auto shared = platform::MessageQueue::open({*key, IPC_CREAT | 0666});
    QVERIFY(shared->send(1, std::array<std::byte, SoundMessage::kSize + 1>{}));
    QVERIFY(queue.send({1, 5, "Hard_Key_End.wav"}));
    QVERIFY(queue.send({1, 5, "missing.wav"}));
    QVERIFY(queue.send({1, 5, "/tmp/text"}));
    QVERIFY(queue.send({1, 5, "/dev/keypad0"}));
    QVERIFY(queue.send({1, 5, "/tmp/fast.wav"}));
    const QByteArrayList lines = play(6, {u"--device"_s, u"none"_s}).out.split('\n');
    const QByteArray folder = kSounds.toUtf8();
    QCOMPARE(lines.size(), 6);
    QVERIFY2(lines[0].startsWith(QByteArray("would play " + folder + "/Hard_Key_End.wav: ")), lines[0].constData());
    QCOMPARE(lines[1], "cannot play " + folder + "/missing.wav: open: No such file or directory");
    QVERIFY2(lines[2].startsWith("cannot play /tmp/text: "), lines[2].constData());
    QCOMPARE(lines[3], "cannot play /dev/keypad0: it is no ordinary file");
    QCOMPARE(lines[4], "cannot play /tmp/fast.wav: it has 1 channels of 1073741824 Hz");
    QFile::remove(QString::fromLatin1(SoundQueue::kKeyFile));
    QCOMPARE(play(1).status, 3);
    const Outcome wrong = play(0);
    QCOMPARE(wrong.status, 2);
    QVERIFY2(wrong.err.startsWith("tyx-soundplayer: --count: ") && wrong.err.count('\n') == 1, wrong.err.constData());
}

QTEST_GUILESS_MAIN(TstSoundPlayer)
#include "tst_soundplayer.moc"
