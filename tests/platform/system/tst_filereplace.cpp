// Replacing a file: what its writers, killed ones and what stands in their way leave at its name.
#include "platform/system/filereplace.h"
#include "tests/support/testfiles.h"

#include <QDir>
#include <cstdlib>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using platform::FileReplacement;

namespace {

const QString kPath = QStringLiteral("/tmp/file");
const QString kNew = QStringLiteral("/tmp/file.new");

platform::Result<> replace(const QByteArray &bytes, mode_t mode = 0644)
{
    return platform::replaceFile(kPath, std::as_bytes(std::span(bytes)), mode);
}

using Failure = std::pair<QByteArray, int>;
Failure failure(const platform::Result<> &result)
{
    return result ? Failure("none", 0) : Failure(result.error().call, result.error().number);
}

// One that has waited long enough says so, and has its turn later: a busy machine may keep it from the lock.
auto inItsTurn(auto action)
{
    for (;;) {
        auto result = action();
        if (result || result.error().number != EWOULDBLOCK)
            return result;
    }
}

// A process that replaces the file again and again with texts of one letter and different lengths.
[[noreturn]] void writeOftenAndDie(int writer)
{
    for (int round = 0; round < 60; ++round) {
        const QByteArray text(1 + (writer * 7919 + round * 104729) % 30000, char('a' + writer));
        if (!inItsTurn([&] { return replace(text); }))
            ::_exit(1);
    }
    auto killed = inItsTurn([] { return FileReplacement::begin(kPath, 0644); });
    std::ignore = killed->write(std::as_bytes(std::span("x")));
    ::_exit(0); // no destructor: the temporary is left as a kill leaves it
}

}

class TstFileReplace : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void theModeIsWhatWasAskedFor();
    void aDroppedReplacementChangesNothing();
    void leftoversAreRemovedNotReused();
    void whatCannotBeATemporaryStays();
    void aLinkIsReplacedNotFollowed();
    void namesThatAreNone();
    void aHeldLockIsAnAnswer();
    void manyWritersNeverTearTheFile();
};

void TstFileReplace::init()
{
    QDir().rmdir(kNew);
    for (const QString &name : QDir(QStringLiteral("/tmp")).entryList(QDir::Files | QDir::System | QDir::Hidden))
        QVERIFY(QFile::remove(QStringLiteral("/tmp/") + name));
}

void TstFileReplace::theModeIsWhatWasAskedFor()
{
    fill(kPath, "old");
    QVERIFY(QFile::setPermissions(kPath, QFile::ReadOwner));
    const mode_t umaskBefore = ::umask(077);
    QVERIFY(replace("new", 0666));
    ::umask(umaskBefore);
    QCOMPARE(modeOf(kPath), mode_t(S_IFREG | 0666));
    QCOMPARE(content(kPath), QByteArray("new"));
}

void TstFileReplace::aDroppedReplacementChangesNothing()
{
    fill(kPath, "old");
    {
        auto replacement = FileReplacement::begin(kPath, 0644);
        QVERIFY(replacement);
        QVERIFY(replacement->write(std::as_bytes(std::span("half of it"))));
        QVERIFY(QFile::exists(kNew));
        const FileReplacement moved = std::move(*replacement);
    }
    QVERIFY(!QFile::exists(kNew));
    QCOMPARE(content(kPath), QByteArray("old"));
}

// A writer that was killed left its temporary; it may be unreadable, or have a second name by now.
void TstFileReplace::leftoversAreRemovedNotReused()
{
    fill(kNew, "much longer than what is written now");
    QCOMPARE(::link("/tmp/file.new", "/tmp/precious"), 0);
    QVERIFY(replace("short"));
    QCOMPARE(content(kPath), QByteArray("short"));
    QCOMPARE(content(QStringLiteral("/tmp/precious")), QByteArray("much longer than what is written now"));
}

void TstFileReplace::whatCannotBeATemporaryStays()
{
    fill(kPath, "old");
    fill(QStringLiteral("/tmp/target"), "target");
    QCOMPARE(::symlink("/tmp/target", "/tmp/file.new"), 0);
    QCOMPARE(failure(replace("new")), Failure("open", ELOOP));
    QVERIFY(QFile::remove(kNew));
    QVERIFY(QDir().mkdir(kNew));
    QCOMPARE(failure(replace("new")), Failure("open", EISDIR));
    QVERIFY(QDir().rmdir(kNew));
    QCOMPARE(::mkfifo("/tmp/file.new", 0666), 0);
    QCOMPARE(failure(replace("new")), Failure("open", EEXIST));
    QVERIFY(S_ISFIFO(modeOf(kNew)));
    QCOMPARE(content(kPath), QByteArray("old"));
    QCOMPARE(content(QStringLiteral("/tmp/target")), QByteArray("target"));
}

void TstFileReplace::aLinkIsReplacedNotFollowed()
{
    fill(QStringLiteral("/tmp/target"), "target");
    QCOMPARE(::symlink("/tmp/target", "/tmp/file"), 0);
    QVERIFY(replace("new"));
    QVERIFY(S_ISREG(modeOf(kPath)));
    QCOMPARE(content(QStringLiteral("/tmp/target")), QByteArray("target"));
}

void TstFileReplace::namesThatAreNone()
{
    fill(kPath, "old");
    // Cut off at the NUL, the temporary's name would be that of the file.
    QCOMPARE(failure(platform::replaceFile(kPath + QChar::Null, {}, 0644)), Failure("open", EINVAL));
    QCOMPARE(content(kPath), QByteArray("old"));
    QCOMPARE(failure(platform::replaceFile(QString(), {}, 0644)), Failure("rename", ENOENT));
    QCOMPARE(failure(platform::replaceFile(QStringLiteral("/none/x"), {}, 0644)), Failure("open", ENOENT));
    QVERIFY(!QFile::exists(QStringLiteral("/tmp/.new")));
}

// Whoever may read the temporary can lock it, and the name stays as it is for as long as he does.
void TstFileReplace::aHeldLockIsAnAnswer()
{
    fill(kPath, "old");
    fill(kNew, "held");
    QFile holder(kNew);
    QVERIFY(holder.open(QIODevice::ReadOnly));
    QCOMPARE(::flock(holder.handle(), LOCK_SH), 0);
    QCOMPARE(failure(replace("new")), Failure("flock", EWOULDBLOCK));
    QCOMPARE(content(kNew), QByteArray("held"));
    QCOMPARE(content(kPath), QByteArray("old"));
    holder.close();
    QVERIFY(replace("new"));
}

void TstFileReplace::manyWritersNeverTearTheFile()
{
    constexpr int writers = 6;
    QVERIFY(replace("0"));
    for (int writer = 0; writer < writers; ++writer) {
        if (::fork() == 0)
            writeOftenAndDie(writer);
    }
    bool torn = false;
    bool failed = false;
    for (int running = writers; running > 0;) {
        const QByteArray bytes = content(kPath);
        torn |= bytes.isEmpty() || bytes.count(bytes.at(0)) != bytes.size();
        int status = 0;
        while (::waitpid(-1, &status, WNOHANG) > 0) {
            --running;
            failed |= status != 0;
        }
    }
    QVERIFY(!torn);
    QVERIFY(!failed);
    QVERIFY(replace("last"));
    QCOMPARE(content(kPath), QByteArray("last"));
    QVERIFY(!QFile::exists(kNew));
}

QTEST_APPLESS_MAIN(TstFileReplace)
#include "tst_filereplace.moc"
