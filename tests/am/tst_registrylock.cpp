// The lock between processes, and `tyx lock`.
#include "tests/support/standarderror.h"
#include "tests/support/testfiles.h"

#include <AM_Global>
#include <AM_Mutex>
#include <QProcess>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <optional>
#include <sys/mman.h>
#include <sys/sem.h>
#include <sys/wait.h>

using namespace Qt::StringLiterals;

static std::optional<key_t> forcedKey;

// In place of the C library's, for the library under test as well: no file can be made to have a certain key.
extern "C" __attribute__((visibility("default"))) key_t ftok(const char *path, int project)
{
    struct stat status = {};
    if (::stat(path, &status) != 0)
        return -1;
    return forcedKey.value_or(
        key_t(quint32(status.st_ino & 0xFFFF) | quint32(status.st_dev & 0xFF) << 16 | quint32(project) << 24));
}

namespace {

constexpr char kDirectory[] = "/usr";
const QString kTyx = QStringLiteral(TYX_BINARY_DIR "/bin/tyx");

int setId() { return ::semget(::ftok(kDirectory, 0), 1, 0); }

// The answer and what is printed meanwhile.
QByteArray told(bool (*action)())
{
    const StandardError error;
    const bool answer = action();
    return (answer ? "true " : "false ") + StandardError::text();
}

// Another process that does this, then waits to be killed.
pid_t startChild(const auto &action)
{
    int ready[2] = {-1, -1};
    if (::pipe2(ready, O_CLOEXEC) != 0)
        return -1;
    const pid_t child = ::fork();
    if (child == 0) {
        action();
        ::close(ready[1]);
        ::pause();
    }
    char byte = 0;
    ::close(ready[1]);
    std::ignore = ::read(ready[0], &byte, 1); // until it is done
    ::close(ready[0]);
    return child;
}

void waitFor(pid_t child)
{
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) { } // the toolkit may be told of children by a signal
}

void kill(pid_t child)
{
    ::kill(child, SIGKILL);
    waitFor(child);
}

const char *const kExists = "semget error or sem already exists: File exists\n";

}

class TstRegistryLock : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qputenv("TYX_INSTALLED_QT_PATH", kDirectory); }
    void cleanup()
    {
        forcedKey.reset();
        qputenv("TYX_INSTALLED_QT_PATH", kDirectory);
        ::semctl(setId(), 0, IPC_RMID);
    }
    void statesAndMessages();
    void holdersThatDie();
    void neverTwoAtOnce();
    void theTool();
};

void TstRegistryLock::statesAndMessages()
{
    const QByteArray busy = QByteArray("false ") + kExists + "sem_wait error: Resource temporarily unavailable\n";
    QCOMPARE(told(AM_Mutex::setNotBusy), "false sem_post: Invalid argument\n"); // never taken
    QCOMPARE(told(AM_Mutex::isBusy), "false ");
    QCOMPARE(setId(), -1);
    QCOMPARE(told(AM_Mutex::setBusy), "true ");
    QCOMPARE(::semctl(setId(), 0, GETVAL), 0);
    semid_ds status = {};
    QVERIFY(::semctl(setId(), 0, IPC_STAT, &status) == 0);
    QCOMPARE(status.sem_perm.mode & 0777, 0777);
    QCOMPARE(told(AM_Mutex::setBusy), busy);
    QCOMPARE(told(AM_Mutex::isBusy), "true " + busy.mid(6));
    QCOMPARE(told(AM_Mutex::setNotBusy), "true ");
    QCOMPARE(setId(), -1);
    QCOMPARE(told(AM_Mutex::setNotBusy), "false sem_post: Invalid argument\n");

    forcedKey = IPC_PRIVATE;
    QCOMPARE(told(AM_Mutex::setBusy), "false ftokey error: Invalid argument\n");
    qputenv("TYX_INSTALLED_QT_PATH", "/none");
    QCOMPARE(told(AM_Mutex::setBusy), "false ftokey error: No such file or directory\n");
    qunsetenv("TYX_INSTALLED_QT_PATH");
    QVERIFY(AM_Global::getInstalledQtDir(1).isNull());
    QCOMPARE(told(AM_Mutex::setBusy), "false ");
    QCOMPARE(told(AM_Mutex::isBusy), "true ");
}

void TstRegistryLock::holdersThatDie()
{
    const auto take = [] { AM_Mutex::setBusy(); };
    const auto takeAndGive = [] {
        if (AM_Mutex::setBusy())
            AM_Mutex::setNotBusy();
    };
    const pid_t holder = startChild(take);
    QCOMPARE(told(AM_Mutex::isBusy).left(5), "true ");
    kill(holder);
    QCOMPARE(::semctl(setId(), 0, GETVAL), 1);
    QCOMPARE(told(AM_Mutex::setBusy), QByteArray("true ") + kExists);
    kill(startChild(takeAndGive)); // who finds it busy changes nothing
    QCOMPARE(::semctl(setId(), 0, GETVAL), 0);
    QVERIFY(AM_Mutex::setNotBusy());
    kill(startChild(takeAndGive));
    QCOMPARE(setId(), -1);
    // Killed before the set was made ready.
    QVERIFY(::semget(::ftok(kDirectory, 0), 1, IPC_CREAT | 0777) >= 0);
    QCOMPARE(told(AM_Mutex::setBusy).left(6), "false ");
    QVERIFY(run(kTyx, {u"lock"_s, u"status"_s}).out.contains("tyx doctor"));
}

void TstRegistryLock::neverTwoAtOnce()
{
    constexpr int kProcesses = 16;
    constexpr int kRounds = 300;
    struct Shared {
        std::atomic<int> holders, doubles, lost;
    };
    auto *shared = static_cast<Shared *>(
        ::mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    std::vector<pid_t> children(kProcesses);
    for (pid_t &child : children) {
        child = ::fork();
        if (child != 0)
            continue;
        ::dup2(::open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO);
        for (int i = 0; i < kRounds; ++i) {
            while (!AM_Mutex::setBusy())
                ::sched_yield();
            shared->doubles += shared->holders.fetch_add(1) > 0 ? 1 : 0;
            ::sched_yield();
            --shared->holders;
            shared->lost += AM_Mutex::setNotBusy() ? 0 : 1;
        }
        ::_exit(0);
    }
    for (const pid_t child : children)
        waitFor(child);
    QCOMPARE(shared->doubles.load(), 0);
    QCOMPARE(shared->lost.load(), 0);
    ::munmap(shared, sizeof(Shared));
}

void TstRegistryLock::theTool()
{
    const auto tyx = [](const QStringList &arguments, int status, const QByteArray &text) {
        const Outcome outcome = run(kTyx, QStringList{u"lock"_s} + arguments);
        QCOMPARE(outcome.status, status);
        const QByteArray all = outcome.out + outcome.err;
        QVERIFY2(all.startsWith(text) && all.count('\n') == (text.isEmpty() ? 0 : 1), all.constData());
    };
    const QStringList status{u"status"_s};
    tyx(status, 0, "free\n");
    for (const bool killed : {false, true}) {
        QProcess holder;
        holder.start(kTyx, {u"lock"_s, u"hold"_s});
        QVERIFY(holder.waitForReadyRead());
        const QByteArray process = QByteArray::number(holder.processId()) + " (tyx)";
        tyx(status, 1, "held by process " + process + '\n');
        tyx({u"hold"_s}, 1, "tyx: the registry is busy: process " + process + " has it;");
        tyx({u"run"_s, u"echo"_s, u"hello"_s}, 1, "tyx: the registry is busy: process " + process);
        if (killed)
            holder.terminate();
        else
            holder.closeWriteChannel();
        QVERIFY(holder.waitForFinished() && holder.exitStatus() == QProcess::NormalExit && holder.exitCode() == 0);
        QCOMPARE(setId(), -1);
    }
    tyx({u"run"_s, u"sh"_s, u"-c"_s, u"exit 7"_s}, 7, "");
    tyx({u"run"_s, u"sh"_s, u"-c"_s, u"kill -KILL $$"_s}, 137, "");
    tyx({u"run"_s, kTyx, u"lock"_s, u"status"_s}, 1, "held by process ");
#ifndef TYX_EMULATED // whose vfork() is a fork(): posix_spawn() does not learn that its exec failed
    tyx({u"run"_s, u"/none"_s}, 3, "tyx: /none: No such file");
#endif
    tyx({u"run"_s}, 2, "tyx: lock run: which program?");
    QCOMPARE(setId(), -1);
    QProcess program;
    program.start(
        kTyx, {u"lock"_s, u"run"_s, u"sh"_s, u"-c"_s, u"trap 'exit 5' TERM; echo; while :; do sleep 1; done"_s});
    QVERIFY(program.waitForReadyRead());
    program.terminate();
    QVERIFY(program.waitForFinished());
    QCOMPARE(program.exitCode(), 5); // the program's own answer to the signal
    qunsetenv("TYX_INSTALLED_QT_PATH");
    tyx(status, 3, "tyx: TYX_INSTALLED_QT_PATH is not set");
}

QTEST_GUILESS_MAIN(TstRegistryLock)
#include "tst_registrylock.moc"
