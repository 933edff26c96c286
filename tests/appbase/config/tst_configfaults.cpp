// What a save leaves when the disk, the system or the process fails in the middle of it.
#include "appbase/config/zconfig.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

const QString kPath = QStringLiteral("/tmp/test.cfg");
const QByteArray kOld = "[G]\nk = old\n";
const QByteArray kNew = "[G]\nk = new\n";

QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

void fill(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

// A system call of the save: its name, and the how manieth of that name it is in the process's life.
struct Call {
    QString name;
    int ordinal = 0;
};

// Runs the writer under strace with further options; yields what it printed.
QByteArray runWriter(const QStringList &options)
{
    QProcess strace;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"ASAN_OPTIONS"_s, u"detect_leaks=0"_s); // it cannot look for leaks while it is traced
    strace.setProcessEnvironment(environment);
    strace.start(
        u"strace"_s, options + QStringList{QStringLiteral(TYX_BINARY_DIR "/tests/configwriter"), kPath, u"new"_s});
    strace.waitForFinished();
    return strace.readAllStandardOutput();
}

// The allocator's calls come and go with the build (a sanitizer ends the process when one fails); the save makes none.
bool isAllocation(const Call &call)
{
    static const QStringList names{u"brk"_s, u"madvise"_s, u"mmap"_s, u"mprotect"_s, u"mremap"_s, u"munmap"_s};
    return names.contains(call.name);
}

QByteArray runWithFault(const Call &call, const QString &fault)
{
    return runWriter(
        {u"-o"_s, u"/dev/null"_s, u"-e"_s, u"inject=%1:%2:when=%3"_s.arg(call.name, fault).arg(call.ordinal)});
}

// Everything from the first look at the temporary to the answer.
QList<Call> callsOfASave()
{
    fill(kPath, kOld);
    if (runWriter({u"-o"_s, u"/tmp/log"_s}) != "true\n")
        return {};
    QList<Call> calls;
    QMap<QString, int> seen;
    static const QRegularExpression form(u"^(\\w+)\\("_s);
    for (const QString &line : QString::fromUtf8(content(u"/tmp/log"_s)).split(u'\n')) {
        const QString name = form.match(line).captured(1);
        const Call call{name, ++seen[name]};
        if ((!calls.isEmpty() || line.contains(kPath + u".new")) && !isAllocation(call))
            calls.append(call);
        if (line.contains(u"true"_s) && name == u"write"_s)
            break;
    }
    return calls;
}

}

class TstConfigFaults : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void killedAnywhereTheOldOrTheNewFileStands();
    void anErrorAnywhereIsAnsweredTruly();
    void aFullDiskKeepsTheOldFile();

private:
    QList<Call> m_calls;
};

void TstConfigFaults::initTestCase() { m_calls = callsOfASave(); }

void TstConfigFaults::init()
{
    QFile::remove(kPath + u".new");
    fill(kPath, kOld);
}

void TstConfigFaults::killedAnywhereTheOldOrTheNewFileStands()
{
    if (m_calls.isEmpty())
        QSKIP("nothing can be traced here (strace is missing or ptrace is forbidden)");
    int oldOnes = 0;
    for (const Call &call : m_calls) {
        fill(kPath, kOld);
        QCOMPARE(runWithFault(call, u"signal=SIGKILL"_s), QByteArray());
        const QByteArray left = content(kPath);
        QVERIFY2(left == kOld || left == kNew, qPrintable(call.name));
        oldOnes += left == kOld;
        // What the dead one left stops nobody.
        QCOMPARE(runWriter({u"-o"_s, u"/dev/null"_s}), QByteArray("true\n"));
        QCOMPARE(content(kPath), kNew);
        QVERIFY(!QFile::exists(kPath + u".new"));
    }
    QVERIFY(oldOnes > 0 && oldOnes < m_calls.size()); // the rename was among them
}

void TstConfigFaults::anErrorAnywhereIsAnsweredTruly()
{
    if (m_calls.isEmpty())
        QSKIP("nothing can be traced here (strace is missing or ptrace is forbidden)");
    for (const Call &call : m_calls.first(m_calls.size() - 1)) {
        init();
        const QByteArray answer = runWithFault(call, u"error=ENOSPC"_s);
        const QByteArray where = call.name.toUtf8() + QByteArray::number(call.ordinal) + answer;
        struct stat status = {};
        ::stat(QFile::encodeName(kPath).constData(), &status);
        // Promised: a failed rename counts as saved, and the old file is everyone's.
        if (call.name.startsWith(u"rename"_s)) {
            QCOMPARE(answer, QByteArray("true\n"));
            QCOMPARE(content(kPath), kOld);
            QCOMPARE(status.st_mode & 0777, mode_t(0666));
        } else {
            QVERIFY2(answer == "true\n" || answer == "false\n", where.constData());
            QVERIFY2(content(kPath) == (answer == "true\n" ? kNew : kOld), where.constData());
        }
        // What could not be locked may be another writer's by now.
        QVERIFY2(!QFile::exists(kPath + u".new") || call.name == u"flock"_s, where.constData());
    }
}

// /tmp is small here.
void TstConfigFaults::aFullDiskKeepsTheOldFile()
{
    const QString ballast = u"/tmp/ballast"_s;
    QFile file(ballast);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    while (file.write(QByteArray(4096, 'x')) == 4096) { }
    {
        ZConfig config(kPath, true);
        QVERIFY(!config.writeEntry(u"G"_s, u"k"_s, u"new"_s));
        QVERIFY(!config.writeEntry(u"G"_s, u"long"_s, QString(200000, u'x')));
        QVERIFY(!config.flush());
        QCOMPARE(content(kPath), kOld);
        QVERIFY(!QFile::exists(kPath + u".new"));
        QVERIFY(file.remove());
        QVERIFY(config.removeEntry(u"G"_s, u"long"_s));
    }
    QCOMPARE(content(kPath), kNew);
}

QTEST_APPLESS_MAIN(TstConfigFaults)
#include "tst_configfaults.moc"
