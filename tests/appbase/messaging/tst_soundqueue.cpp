// The queue of the phone's sound player: the bytes of a sound, and everything that can be wrong with queue and key
// file.
#include "appbase/messaging/soundqueue.h"
#include "platform/system/keyfile.h"

#include <QTest>
#include <sys/msg.h>

namespace {

const SoundMessage kSound{2, 7, "a.wav"};

// As another program opens it.
platform::MessageQueue theQueue(int flags = 0)
{
    return *platform::MessageQueue::open({*platform::ipcKey("/tmp/touch_sound_msg", 't'), flags});
}

}

class TstSoundQueue : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QVERIFY(platform::makeKeyFile(SoundQueue::kKeyFile)); }
    void cleanup() { std::ignore = theQueue(IPC_CREAT | 0600).remove(); }
    void aSoundHas260Bytes();
    void foreignKeyFilesMakeNoQueue();
    void aFullQueueDropsTheSound();
    void aRemovedQueueIsReplaced();
    void aQueueOfAnotherModeIsLeftAlone();
};

void TstSoundQueue::aSoundHas260Bytes()
{
    SoundQueue queue;
    QVERIFY(queue.send(kSound));
    const auto message = theQueue().receive(1000);
    QCOMPARE(message->type, 1);
    QCOMPARE(QByteArray(reinterpret_cast<const char *>(message->bytes.data()), qsizetype(message->bytes.size())),
        QByteArray::fromHex("0200000007000000612e776176") + QByteArray(247, '\0'));
    msqid_ds status{};
    QCOMPARE(::msgctl(theQueue().id(), IPC_STAT, &status), 0);
    QCOMPARE(status.msg_perm.mode & 0777, 0666);
    QVERIFY(queue.send({1, 1, QByteArray(251, 'a')}));
    QVERIFY(!queue.send({1, 1, QByteArray(252, 'a')}));
    QVERIFY(!queue.send({1, 1, QByteArrayView("a\0b", 3)}));
}

void TstSoundQueue::foreignKeyFilesMakeNoQueue()
{
    SoundQueue queue;
    for (const char *make :
        {"touch /tmp/other; ln -s /tmp/other $f", "ln -s /tmp/nothing $f", "mkfifo $f", "mkdir $f"}) {
        QCOMPARE(std::system(QByteArray("f=/tmp/touch_sound_msg; rm -r $f; ").append(make)), 0);
        const auto made = platform::makeKeyFile(SoundQueue::kKeyFile);
        QVERIFY2(!made && made.error().number == EEXIST, make);
        QVERIFY2(!queue.send(kSound), make);
    }
    QCOMPARE(std::system("rm -r /tmp/touch_sound_msg && test ! -e /tmp/nothing"), 0);
    QVERIFY(!queue.send(kSound)); // without a key file too
    QVERIFY(platform::makeKeyFile(SoundQueue::kKeyFile));
    QVERIFY(platform::makeKeyFile(SoundQueue::kKeyFile)); // it is there already
    QVERIFY(queue.send(kSound));
}

void TstSoundQueue::aFullQueueDropsTheSound()
{
    SoundQueue queue;
    std::size_t sent = 0;
    while (queue.send(kSound))
        ++sent;
    QVERIFY(sent > 6);
    QCOMPARE(queue.waiting(), sent);
    QVERIFY(theQueue().receive(1000));
    QVERIFY(queue.send(kSound));
}

void TstSoundQueue::aRemovedQueueIsReplaced()
{
    SoundQueue queue;
    QVERIFY(queue.send(kSound));
    QVERIFY(theQueue().remove());
    QVERIFY(!queue.send(kSound)); // this one is lost
    QVERIFY(queue.send(kSound));
    QCOMPARE(queue.waiting(), 1U);
}

void TstSoundQueue::aQueueOfAnotherModeIsLeftAlone()
{
    const platform::MessageQueue other = theQueue(IPC_CREAT | 0200); // its owner may write, and not look
    SoundQueue queue;
    QVERIFY(!queue.send(kSound));
    QVERIFY(other.remove());
    QVERIFY(queue.send(kSound));
}

QTEST_GUILESS_MAIN(TstSoundQueue)
#include "tst_soundqueue.moc"
