// Files of waiting messages: their bytes, who may use them when, and what is wrong with them.
#include "appbase/messaging/queuefile.h"
#include "tests/support/testfiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;
using queue::LockedFile;
using queue::Record;

namespace {

const QString kPath = u"/tmp/qcop-msg-app"_s;
const QByteArray kChannel = "00000014 5459582f4170706c69636174696f6e2f61707000"; // "TYX/Application/app"

Record record(const char *message, const QByteArray &data = {}) { return {"TYX/Application/app", message, data}; }

LockedFile::TimePoint now() { return std::chrono::system_clock::now(); }

void store(const Record &record, LockedFile::TimePoint when = now())
{
    auto file = LockedFile::forAppending("app", when);
    QVERIFY(file);
    QVERIFY(file->append(record));
}

QList<QByteArray> messages(const QList<Record> &records)
{
    QList<QByteArray> names;
    for (const Record &record : records)
        names.append(record.message);
    return names;
}

}

class TstQueueFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void recordsAreLaidOutAsDocumented();
    void whatStandsBeforeTheDamageIsTaken_data();
    void whatStandsBeforeTheDamageIsTaken();
    void everybodyMayAppend();
    void messagesAreDiscardedAfterSixtySeconds();
    void aFileMayBearAnyDate();
    void aLockedFileIsLeftAlone();
    void whatIsStoredWhileOthersTakeIsNotLost();
    void onlyRegularFilesOfOneNameAreOpened_data();
    void onlyRegularFilesOfOneNameAreOpened();
    void aFileNeverOutgrowsItsLimit();
};

void TstQueueFile::cleanup()
{
    QFile::remove(kPath);
    ::rmdir(QFile::encodeName(kPath).constData());
}

void TstQueueFile::recordsAreLaidOutAsDocumented()
{
    const QByteArray bytes = QByteArray::fromHex(kChannel + "00000003 6d3100" + "00000002 00ff");
    store(record("m1", QByteArray("\0\xFF", 2)));
    QCOMPARE(content(kPath).toHex(' '), bytes.toHex(' '));
    store(record("m2"));
    QCOMPARE(content(kPath), bytes + QByteArray::fromHex(kChannel + "00000003 6d3200" + "00000000"));
    const auto glance = queue::glance("app");
    QVERIFY(glance);
    QCOMPARE(glance->bytes, content(kPath).size());
    QCOMPARE(glance->contents.records, (QList{record("m1", QByteArray("\0\xFF", 2)), record("m2")}));
    QCOMPARE(queue::take("app"), glance->contents.records);
    QCOMPARE(content(kPath), QByteArray("(no file)"));
}

void TstQueueFile::whatStandsBeforeTheDamageIsTaken_data()
{
    QTest::addColumn<QByteArray>("tail");
    QTest::newRow("cut in the data") << queue::encode(record("lost", "data")).chopped(1);
    QTest::newRow("cut in the name") << queue::encode(record("lost")).first(27);
    QTest::newRow("cut in a length") << queue::encode(record("lost")).first(2);
    QTest::newRow("a length of 4 GiB") << QByteArray::fromHex(kChannel + "ffffffff") + queue::encode(record("lost"));
    QTest::newRow("zeros") << QByteArray(64, '\0');
    QTest::newRow("beyond the limit") << queue::encode(record("lost", QByteArray(queue::kMaxFileBytes, 'x')));
}

void TstQueueFile::whatStandsBeforeTheDamageIsTaken()
{
    QFETCH(QByteArray, tail);
    fill(kPath, queue::encode(record("one")) + queue::encode(record("two")) + tail);
    QTest::ignoreMessage(QtWarningMsg, "queue: /tmp/qcop-msg-app: damaged behind message 2, the rest is dropped");
    QCOMPARE(messages(queue::take("app")), (QList<QByteArray>{"one", "two"}));
    QCOMPARE(content(kPath), QByteArray("(no file)"));
}

void TstQueueFile::everybodyMayAppend()
{
    const mode_t before = ::umask(0077);
    store(record("m"));
    ::umask(before);
    QCOMPARE(modeOf(kPath), mode_t(S_IFREG | 0666));
}

void TstQueueFile::messagesAreDiscardedAfterSixtySeconds()
{
    store(record("first"));
    const auto modified = queue::glance("app")->modified;
    QVERIFY(LockedFile::forAppending("app", modified + 60s));
    QVERIFY(LockedFile::forAppending("app", modified - 1h)); // the clock was set back
    QCOMPARE(queue::glance("app")->contents.records.size(), 1);
    store(record("second"), modified + 61s);
    QCOMPARE(messages(queue::take("app")), QList<QByteArray>{"second"});
}

void TstQueueFile::aFileMayBearAnyDate()
{
    store(record("m"));
    const auto kept = [](time_t date) {
        const timespec times[] = {{date, 0}, {date, 0}};
        return ::utimensat(AT_FDCWD, qPrintable(kPath), times, 0) == 0 && LockedFile::forAppending("app", now())
            ? queue::glance("app")->contents.records.size()
            : -1;
    };
    QCOMPARE(kept(10'413'792'000), 1); // in 2300
    QCOMPARE(kept(-10'000'000'000), 0); // in 1653
}

void TstQueueFile::aLockedFileIsLeftAlone()
{
    store(record("m"));
    const QByteArray before = content(kPath);
    {
        const auto held = LockedFile::forTaking("app");
        QVERIFY(held);
        const auto sender = LockedFile::forAppending("app", now() + 1h);
        QVERIFY(!sender && sender.error().number == EWOULDBLOCK);
        QVERIFY(queue::take("app").isEmpty());
        QCOMPARE(content(kPath), before);
    }
    QCOMPARE(queue::take("app").size(), 1);
}

// The sender opens files that are removed before it has their lock; what it wrote into one would be gone.
void TstQueueFile::whatIsStoredWhileOthersTakeIsNotLost()
{
    constexpr int kCount = 3'000;
    const pid_t sender = ::fork();
    if (sender == 0) {
        for (int i = 0; i < kCount;) {
            auto file = LockedFile::forAppending("app", now());
            i += file && file->append(record("m", QByteArray::number(i))) ? 1 : 0;
        }
        ::_exit(0);
    }
    QVERIFY(sender > 0);
    QList<Record> taken;
    for (bool ended = false; !ended;) {
        ended = ::waitpid(sender, nullptr, WNOHANG) != 0;
        taken += queue::take("app");
    }
    QCOMPARE(taken.size(), kCount);
    for (int i = 0; i < kCount; ++i)
        QCOMPARE(taken[i].data.toInt(), i);
}

void TstQueueFile::onlyRegularFilesOfOneNameAreOpened_data()
{
    QTest::addColumn<QString>("make"); // a shell command
    QTest::newRow("link") << u"echo kept > /tmp/other; ln -s /tmp/other /tmp/qcop-msg-app"_s;
    QTest::newRow("link to nothing") << u"ln -s /tmp/missing /tmp/qcop-msg-app"_s;
    QTest::newRow("second name") << u"echo kept > /tmp/other; ln /tmp/other /tmp/qcop-msg-app"_s;
    QTest::newRow("FIFO") << u"mkfifo /tmp/qcop-msg-app"_s;
    QTest::newRow("folder") << u"mkdir /tmp/qcop-msg-app"_s;
}

void TstQueueFile::onlyRegularFilesOfOneNameAreOpened()
{
    QFETCH(QString, make);
    QCOMPARE(std::system(qPrintable(u"rm -f /tmp/other; "_s + make)), 0);
    const auto sender = LockedFile::forAppending("app", now() + 1h);
    QVERIFY(!sender && sender.error().number != EWOULDBLOCK);
    QVERIFY(!LockedFile::forTaking("app") && !queue::glance("app"));
    QVERIFY(!QFile::exists(u"/tmp/missing"_s));
    QVERIFY(!QFile::exists(u"/tmp/other"_s) || QFile(u"/tmp/other"_s).size() == 5);

    QVERIFY(!LockedFile::forAppending("../var/tmp/x", now()));
    QVERIFY(!LockedFile::forAppending(QByteArray(300, 'x'), now()));
}

void TstQueueFile::aFileNeverOutgrowsItsLimit()
{
    store(record("m"));
    const QByteArray before = content(kPath);
    auto file = LockedFile::forAppending("app", now());
    QVERIFY(file);
    const auto large = file->append(record("large", QByteArray(queue::kMaxFileBytes - before.size(), 'x')));
    QVERIFY(!large && large.error().number == EFBIG);
    QCOMPARE(content(kPath), before);
    const auto rest = qsizetype(queue::kMaxFileBytes) - before.size() - queue::encode(record("fits")).size();
    QVERIFY(file->append(record("fits", QByteArray(rest, 'x'))));
    QVERIFY(!file->append(record("m")));
    QVERIFY(!queue::glance("app")->contents.damaged);
}

QTEST_GUILESS_MAIN(TstQueueFile)
#include "tst_queuefile.moc"
