// The registry lock beside the system calls that it cannot do without, and beside other locks; and whether it holds.
#include <AM_Mutex>
#include <QSystemSemaphore>
#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/sem.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr char kDirectory[] = "/usr";
constexpr int kRounds = 61;
constexpr int kTimes = 500; // a round

void require(bool condition)
{
    if (!condition)
        std::abort();
}

bool change(int set, short by)
{
    sembuf operation{0, by, IPC_NOWAIT | SEM_UNDO};
    return ::semop(set, &operation, 1) == 0;
}

void floorOfOurs()
{
    const int set = ::semget(::ftok(kDirectory, 0), 1, IPC_CREAT | IPC_EXCL | 0777);
    require(set >= 0 && ::semctl(set, 0, SETVAL, 1) == 0 && change(set, -1) && ::semctl(set, 0, IPC_RMID) == 0);
}

void ours() { require(AM_Mutex::setBusy() && AM_Mutex::setNotBusy()); }

void flockOfAFile()
{
    const int file = ::open("/tmp/lock", O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    require(file >= 0 && ::flock(file, LOCK_EX | LOCK_NB) == 0 && ::flock(file, LOCK_UN) == 0);
    ::close(file);
}

void systemSemaphore()
{
    QSystemSemaphore semaphore(QStringLiteral("bench"), 1, QSystemSemaphore::Open);
    require(semaphore.acquire() && semaphore.release());
}

struct Work {
    const char *name;
    void (*once)();
    std::vector<double> rounds = {}; // microseconds each
};

void measure(Work &work)
{
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < kTimes; ++i)
        work.once();
    const auto took = std::chrono::steady_clock::now() - start;
    work.rounds.push_back(std::chrono::duration<double, std::micro>(took).count() / kTimes);
}

double median(const Work &work)
{
    std::vector<double> rounds = work.rounds;
    std::nth_element(rounds.begin(), rounds.begin() + kRounds / 2, rounds.end());
    return rounds[kRounds / 2];
}

void compareTimes()
{
    std::array works{Work{"the system calls of the registry lock", floorOfOurs}, Work{"the registry lock", ours},
        Work{"open, flock, close", flockOfAFile}, Work{"QSystemSemaphore, made and dropped", systemSemaphore}};
    for (int round = 0; round < kRounds; ++round) {
        for (Work &work : works)
            measure(work);
    }
    std::printf("taking and giving back, median of %d rounds of %d\n", kRounds, kTimes);
    for (const Work &work : works)
        std::printf("  %-40s %8.2f us   %.2f\n", work.name, median(work), median(work) / median(works[0]));
}

// The same lock with a moment between giving back and removing.
int opened = -1;
bool takeInSteps()
{
    const key_t key = ::ftok(kDirectory, 0);
    opened = ::semget(key, 1, IPC_CREAT | IPC_EXCL | 0777);
    if (opened >= 0)
        ::semctl(opened, 0, SETVAL, 1);
    else if (errno == EEXIST)
        opened = ::semget(key, 1, 0);
    return opened >= 0 && change(opened, -1);
}
bool giveBackInSteps() { return change(opened, 1) && ::semctl(opened, 0, IPC_RMID) == 0; }

struct Count {
    std::atomic<int> holders, busy, doubles, lost;
};

void contend(const char *name, bool (*take)(), bool (*giveBack)(), int rounds)
{
    constexpr int kProcesses = 16;
    auto *count =
        static_cast<Count *>(::mmap(nullptr, sizeof(Count), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    std::vector<pid_t> children(kProcesses);
    for (pid_t &child : children) {
        child = ::fork();
        if (child != 0)
            continue;
        for (int i = 0; i < rounds; ++i) {
            for (; !take(); ::sched_yield())
                ++count->busy;
            count->doubles += count->holders.fetch_add(1) > 0 ? 1 : 0;
            ::sched_yield(); // lets another one try
            --count->holders;
            count->lost += giveBack() ? 0 : 1;
        }
        ::_exit(0);
    }
    for (const pid_t child : children)
        ::waitpid(child, nullptr, 0);
    std::printf("  %-32s taken %d times, found busy %d times, held by two at once %d times, vanished %d times\n", name,
        kProcesses * rounds, count->busy.load(), count->doubles.load(), count->lost.load());
    ::munmap(count, sizeof(Count));
    ::semctl(::semget(::ftok(kDirectory, 0), 1, 0), 0, IPC_RMID);
}

}

int main(int argc, char **argv)
{
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 10000;
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    std::freopen("/dev/null", "w", stderr); // a busy lock tells so each time
    compareTimes();
    std::printf("16 processes that take it over and over\n");
    contend("the registry lock", AM_Mutex::setBusy, AM_Mutex::setNotBusy, rounds);
    contend("given back first, then removed", takeInSteps, giveBackInSteps, rounds);
    return 0;
}
