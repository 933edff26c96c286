// The queue of the phone's sound player: the bytes of a sound, and everything that can be wrong with queue and key
// file.
#include "appbase/messaging/soundqueue.h"
#include "platform/system/keyfile.h"

#include <QFile>
#include <QTest>
#include <sys/msg.h>

using namespace Qt::StringLiterals;

namespace {

constexpr char kKeyFile[] = "/tmp/touch_sound_msg";
const SoundMessage kSound{2, 7, "a.wav"};

// As another program opens it.
platform::MessageQueue theQueue(int flags = 0)
{
    return *platform::MessageQueue::open({*platform::ipcKey(kKeyFile, 't'), flags});
}

QByteArray received(const platform::MessageQueue &queue)
{
    const auto message = queue.receive(1000);
    if (!message || message->type != 1)
        return "nothing";
    return {reinterpret_cast<const char *>(message->bytes.data()), qsizetype(message->bytes.size())};
}

}

class TstSoundQueue : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void aSoundHas260Bytes();
    void aNameThatDoesNotFitIsNotSent_data();
    void aNameThatDoesNotFitIsNotSent();
    void theKeyFileMayAppearLater();
    void foreignKeyFilesMakeNoQueue_data();
    void foreignKeyFilesMakeNoQueue();
    void aFullQueueDropsTheSound();
    void aRemovedQueueIsReplaced();
    void aQueueOfAnotherModeIsLeftAlone();
};

void TstSoundQueue::cleanup()
{
    if (const auto key = platform::ipcKey(kKeyFile, 't')) {
        if (const auto queue = platform::MessageQueue::open({*key, 0}))
            std::ignore = queue->remove();
    }
    std::ignore = std::system("rm -rf /tmp/touch_sound_msg /tmp/other");
}

void TstSoundQueue::aSoundHas260Bytes()
{
    QVERIFY(platform::makeKeyFile(kKeyFile));
    SoundQueue queue;
    QVERIFY(queue.send(kSound));
    QCOMPARE(received(theQueue()), QByteArray::fromHex("0200000007000000612e776176") + QByteArray(247, '\0'));
    msqid_ds status{};
    QCOMPARE(::msgctl(theQueue().id(), IPC_STAT, &status), 0);
    QCOMPARE(status.msg_perm.mode & 0777, 0666);
}

void TstSoundQueue::aNameThatDoesNotFitIsNotSent_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("fits");
    QTest::newRow("longest") << QByteArray(251, 'a') << true;
    QTest::newRow("too long") << QByteArray(252, 'a') << false;
    QTest::newRow("NUL inside") << QByteArray("a\0b", 3) << false;
}

void TstSoundQueue::aNameThatDoesNotFitIsNotSent()
{
    QFETCH(QByteArray, name);
    QVERIFY(platform::makeKeyFile(kKeyFile));
    QTEST(SoundQueue().send({1, 1, name}), "fits");
}

void TstSoundQueue::theKeyFileMayAppearLater()
{
    SoundQueue queue;
    QVERIFY(!queue.open());
    QVERIFY(!queue.send(kSound));
    QVERIFY(platform::makeKeyFile(kKeyFile));
    QVERIFY(platform::makeKeyFile(kKeyFile)); // it is there already
    QVERIFY(queue.send(kSound));
    QCOMPARE(queue.waiting(), 1U);
}

void TstSoundQueue::foreignKeyFilesMakeNoQueue_data()
{
    QTest::addColumn<QByteArray>("make");
    QTest::newRow("link") << QByteArray("touch /tmp/other; ln -s /tmp/other /tmp/touch_sound_msg");
    QTest::newRow("link to nothing") << QByteArray("ln -s /tmp/other /tmp/touch_sound_msg");
    QTest::newRow("FIFO") << QByteArray("mkfifo /tmp/touch_sound_msg");
    QTest::newRow("folder") << QByteArray("mkdir /tmp/touch_sound_msg");
}

void TstSoundQueue::foreignKeyFilesMakeNoQueue()
{
    QFETCH(QByteArray, make);
    QCOMPARE(std::system(make.constData()), 0);
    const bool otherWasThere = QFile::exists(u"/tmp/other"_s);
    const auto made = platform::makeKeyFile(kKeyFile);
    QVERIFY(!made && made.error().number == EEXIST);
    QCOMPARE(QFile::exists(u"/tmp/other"_s), otherWasThere);
    QVERIFY(!SoundQueue().open());
}

void TstSoundQueue::aFullQueueDropsTheSound()
{
    QVERIFY(platform::makeKeyFile(kKeyFile));
    SoundQueue queue;
    std::size_t sent = 0;
    while (queue.send(kSound))
        ++sent;
    QVERIFY(sent > 6);
    QCOMPARE(queue.waiting(), sent);
    received(theQueue());
    QVERIFY(queue.send(kSound));
}

void TstSoundQueue::aRemovedQueueIsReplaced()
{
    QVERIFY(platform::makeKeyFile(kKeyFile));
    SoundQueue queue;
    QVERIFY(queue.send(kSound));
    QVERIFY(theQueue().remove());
    QVERIFY(!queue.send(kSound)); // this one is lost
    QVERIFY(queue.send(kSound));
    QCOMPARE(queue.waiting(), 1U);
    QVERIFY(theQueue().remove());
    QVERIFY(!queue.waiting());
    QCOMPARE(queue.waiting(), 0U);
}

void TstSoundQueue::aQueueOfAnotherModeIsLeftAlone()
{
    QVERIFY(platform::makeKeyFile(kKeyFile));
    const platform::MessageQueue other = theQueue(IPC_CREAT | 0200); // its owner may write, and not look
    SoundQueue queue;
    QVERIFY(!queue.open());
    QVERIFY(!queue.send(kSound));
    QVERIFY(other.remove());
    QVERIFY(queue.send(kSound));
}

QTEST_GUILESS_MAIN(TstSoundQueue)
#include "tst_soundqueue.moc"
