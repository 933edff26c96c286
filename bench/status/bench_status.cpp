// The status table's accessors beside the system calls that they cannot do without.
#include "settings/status/systemstatus.h"
#include "settings/status/systemstatuswatcher.h"

#include <QCoreApplication>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <functional>
#include <spawn.h>
#include <string>
#include <sys/shm.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr char kKeyFile[] = "/tmp/key_testcommand";
constexpr std::size_t kBatteryLevel = 0x00F;
constexpr int kRounds = 61;

long allocations = 0;

}

extern "C" {
void *__libc_malloc(std::size_t size); // NOLINT: the C library's own
void *malloc(std::size_t size)
{
    ++allocations;
    return __libc_malloc(size);
}
}

namespace {

struct Work {
    const char *name;
    std::function<void()> once;
    int times; // a round
    std::function<void()> between = {}; // not measured
    std::vector<double> rounds = {}; // microseconds each
    long allocations = 0;
};

using Clock = std::chrono::steady_clock;

void measure(Work &work)
{
    const long before = allocations;
    Clock::duration took = {};
    for (int left = work.times; left > 0;) {
        const int atOnce = work.between ? 1 : left;
        if (work.between)
            work.between();
        const auto start = Clock::now();
        for (int i = 0; i < atOnce; ++i)
            work.once();
        took += Clock::now() - start;
        left -= atOnce;
    }
    work.allocations = work.between ? 0 : allocations - before;
    work.rounds.push_back(std::chrono::duration<double, std::micro>(took).count() / work.times);
}

double median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + long(values.size() / 2), values.end());
    return values[values.size() / 2];
}

// In turns, so that whatever else the machine does meets all of them; the ratio is the median of each round's.
void compare(std::vector<Work> works)
{
    for (int round = 0; round < kRounds; ++round) {
        for (Work &work : works)
            measure(work);
    }
    for (const Work &work : works) {
        std::vector<double> ratios;
        for (std::size_t i = 0; i < work.rounds.size(); ++i)
            ratios.push_back(work.rounds[i] / works.front().rounds[i]);
        std::printf("%-44s %9.3f us  %5.2fx  %ld allocations\n", work.name, median(work.rounds), median(ratios),
            work.allocations);
    }
    std::printf("\n");
}

// What no accessor can do without: look the table up, attach it, detach it.
template <typename Touch> void floorAccess(Touch touch)
{
    const int id = ::shmget(::ftok(kKeyFile, 'm'), 4096, 0666);
    auto *table = static_cast<volatile quint8 *>(::shmat(id, nullptr, 0));
    touch(table[kBatteryLevel]);
    ::shmdt(const_cast<quint8 *>(table));
}

void run(const std::vector<std::string> &command)
{
    std::vector<char *> arguments;
    for (const std::string &argument : command)
        arguments.push_back(const_cast<char *>(argument.c_str()));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t silent;
    posix_spawn_file_actions_init(&silent);
    posix_spawn_file_actions_addopen(&silent, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = -1;
    int status = -1;
    if (::posix_spawn(&child, arguments[0], &silent, nullptr, arguments.data(), environ) == 0)
        ::waitpid(child, &status, 0);
    posix_spawn_file_actions_destroy(&silent);
    if (status != 0)
        std::fprintf(stderr, "%s does not work\n", arguments[0]);
}

}

int main(int argc, char **argv)
{
    constexpr int kTimes = 2000;
    const QCoreApplication application(argc, argv);
    ::close(::open(kKeyFile, O_CREAT | O_WRONLY | O_CLOEXEC, 0666));
    UTIL_CreateSystemStatusTable();
    UTIL_InitSystemTable();
    quint8 sink = 0;
    quint8 value = 0;
    SystemTableCopy copy;
    const auto read = [&] { floorAccess([&](volatile quint8 &cell) { sink = cell; }); };
    const auto write = [&] { floorAccess([&](volatile quint8 &cell) { cell = ++value; }); };
    const auto set = [&] { UTIL_SetBatteryLevel(++value); };

    compare({{"system calls of a getter", read, kTimes}, {"getter", [&] { sink = UTIL_GetBatteryLevel(); }, kTimes}});
    compare({{"getter", [&] { sink = UTIL_GetBatteryLevel(); }, kTimes},
        {"copy of the whole table", [&] { UTIL_CopySystemTable(&copy); }, kTimes}});
    compare({{"system calls of a setter", write, kTimes}, {"setter, nobody watches", set, kTimes}});
    {
        SystemStatusWatcher watcher;
        compare({{"system calls of a setter", write, kTimes}, {"setter, watched, many in a row", set, kTimes}});
        const auto handle = [] { QCoreApplication::processEvents(); };
        compare({{"system calls of a setter, one by one", write, kTimes, handle},
            {"setter, watched, each wakes the watcher", set, kTimes, handle}});
    }
    const std::string programs = TYX_BINARY_DIR "/bin/";
    compare({{"/bin/true, from exec to exit", [] { run({"/bin/true"}); }, 1},
        {"tyx status get, from exec to exit",
            [&] {
                run({programs + "tyx", "status", "get", "battery-level"});
            },
            1}});
    UTIL_ReleaseSystemTable();
    ::unlink(kKeyFile);
    return 0;
}
