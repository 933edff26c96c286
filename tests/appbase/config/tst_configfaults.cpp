// What a save leaves when the disk, the system or the process fails in the middle of it.
#include "appbase/config/zconfig.h"
#include "tests/support/testfiles.h"

#include <QDir>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QString kPath = QStringLiteral("/tmp/test.cfg");
const QString kTemporary = QStringLiteral("/tmp/test.cfg.new");
const QByteArray kOld = "[G]\nk = old\n";
const QByteArray kNew = "[G]\nk = new\n";

// A system call of the save: its name, and the how manieth of that name it is in the process's life.
struct Call {
    QString name;
    int ordinal = 0;
};

// Runs the writer under strace with further options; yields what it printed.
QByteArray runWriter(const QStringList &options)
{
    const QStringList noLeaks{u"-E"_s, u"ASAN_OPTIONS=detect_leaks=0"_s}; // nobody can look for them while it is traced
    const QStringList writer{QStringLiteral(TYX_BINARY_DIR "/tests/configwriter"), kPath, u"new"_s};
    return run(u"strace"_s, noLeaks + options + writer).out;
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
        if ((!calls.isEmpty() || line.contains(kTemporary)) && !isAllocation(call))
            calls.append(call);
        if (line.contains(u"true"_s) && name == u"write"_s)
            break;
    }
    return calls;
}

// What is wrong after a fault at one of the calls, each of which finds the old file alone.
QStringList wrongAfter(QString (*fault)(const Call &), const QList<Call> &calls)
{
    QStringList wrong;
    for (const Call &call : calls) {
        QFile::remove(kTemporary);
        fill(kPath, kOld);
        const QString found = fault(call);
        if (!found.isEmpty())
            wrong << call.name + u": " + found;
    }
    return wrong;
}

// What is wrong when the writer was killed at a call; empty when nothing is.
QString wrongAfterKill(const Call &call)
{
    if (!runWithFault(call, u"signal=SIGKILL"_s).isEmpty())
        return u"it was not killed"_s;
    if (content(kPath) != kOld && content(kPath) != kNew)
        return u"neither the old file nor the new one"_s;
    // What the dead one left stops nobody.
    if (runWriter({u"-o"_s, u"/dev/null"_s}) != "true\n" || content(kPath) != kNew)
        return u"the next save failed"_s;
    return QFile::exists(kTemporary) ? u"the temporary is still there"_s : QString();
}

QString wrongAfterError(const Call &call)
{
    const QByteArray answer = runWithFault(call, u"error=ENOSPC"_s);
    // Promised: a failed rename counts as saved, and the old file is everyone's.
    const bool promised = call.name.startsWith(u"rename"_s);
    if (promised && (answer != "true\n" || modeOf(kPath) != (S_IFREG | 0666)))
        return u"the promise is broken"_s;
    if (content(kPath) != (answer == "true\n" && !promised ? kNew : kOld))
        return u"the answer is not true: "_s + QString::fromUtf8(answer);
    // What could not be locked may be another writer's by now.
    return QFile::exists(kTemporary) && call.name != u"flock"_s ? u"the temporary is still there"_s : QString();
}

}

class TstConfigFaults : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void killedAnywhereTheOldOrTheNewFileStands();
    void anErrorAnywhereIsAnsweredTruly();
    void aFullDiskKeepsTheOldFile();

private:
    QList<Call> m_calls; // empty when whyNotTraced()
};

void TstConfigFaults::initTestCase()
{
    if (whyNotTraced())
        return;
    m_calls = callsOfASave();
    QVERIFY2(!m_calls.isEmpty(), "the writer does not save even when nothing fails");
}

void TstConfigFaults::killedAnywhereTheOldOrTheNewFileStands()
{
    if (const char *reason = whyNotTraced())
        QSKIP(reason);
    QCOMPARE(wrongAfter(wrongAfterKill, m_calls), QStringList());
}

void TstConfigFaults::anErrorAnywhereIsAnsweredTruly()
{
    if (const char *reason = whyNotTraced())
        QSKIP(reason);
    QVERIFY(std::ranges::any_of(m_calls, [](const Call &call) { return call.name.startsWith(u"rename"_s); }));
    // The last one prints the answer.
    QCOMPARE(wrongAfter(wrongAfterError, m_calls.first(m_calls.size() - 1)), QStringList());
}

// /tmp is small here.
void TstConfigFaults::aFullDiskKeepsTheOldFile()
{
    fill(kPath, kOld);
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
        QVERIFY(!QFile::exists(kTemporary));
        QVERIFY(file.remove());
        QVERIFY(config.removeEntry(u"G"_s, u"long"_s));
    }
    QCOMPARE(content(kPath), kNew);
}

QTEST_APPLESS_MAIN(TstConfigFaults)
#include "tst_configfaults.moc"
