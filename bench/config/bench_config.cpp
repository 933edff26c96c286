// ZConfig beside what the system calls alone cost.
#include "appbase/config/zconfig.h"
#include "bench/config/workload.h"

#include <benchmark/benchmark.h>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int kAsked = 42; // the entry that a single question is for

std::vector<QString> names(int entries, std::string (*name)(int))
{
    std::vector<QString> all;
    for (int entry = 0; entry < entries; ++entry)
        all.push_back(QString::fromStdString(name(entry)));
    return all;
}

// Reads the file and looks at every line of it.
void oneQuestion_floor(benchmark::State &state)
{
    const std::string path = workload::file("floor", int(state.range(0)));
    std::vector<char> bytes(1 << 20);
    for (auto _ : state) {
        const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
        const auto size = size_t(::read(fd, bytes.data(), bytes.size()));
        ::close(fd);
        int lines = 0;
        for (const char *at = bytes.data(), *end = at + size; at != end; ++lines)
            at = static_cast<const char *>(std::memchr(at, '\n', size_t(end - at))) + 1;
        benchmark::DoNotOptimize(lines);
    }
}

void oneQuestion_ZConfig(benchmark::State &state)
{
    const QString path = QString::fromStdString(workload::file("zconfig", int(state.range(0))));
    const QString group = QString::fromStdString(workload::group(kAsked));
    const QString key = QString::fromStdString(workload::key(kAsked));
    for (auto _ : state) {
        ZConfig config(path, false);
        if (config.readNumEntry(group, key, -1) != workload::value(kAsked))
            state.SkipWithError("wrong answer");
    }
}

void everyEntry_ZConfig(benchmark::State &state)
{
    const int entries = int(state.range(0));
    const QString path = QString::fromStdString(workload::file("zconfig", entries));
    const auto groups = names(entries, workload::group);
    const auto keys = names(entries, workload::key);
    for (auto _ : state) {
        ZConfig config(path, false);
        for (size_t entry = 0; entry < size_t(entries); ++entry) {
            if (config.readNumEntry(groups[entry], keys[entry], -1) != workload::value(int(entry)))
                state.SkipWithError("wrong answer");
        }
    }
}

void save_floor(benchmark::State &state)
{
    const std::string text = workload::text(int(state.range(0)));
    for (auto _ : state) {
        const int fd = ::open("floor-save.new", O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
        if (::write(fd, text.data(), text.size()) != ssize_t(text.size()) || ::fsync(fd) != 0)
            state.SkipWithError("no disk");
        ::close(fd);
        ::rename("floor-save.new", "floor-save.cfg");
        const int folder = ::open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ::fsync(folder);
        ::close(folder);
    }
}

void save_ZConfig(benchmark::State &state)
{
    const QString path = QString::fromStdString(workload::file("zconfig-save", int(state.range(0))));
    const QString group = QString::fromStdString(workload::group(kAsked));
    const QString key = QString::fromStdString(workload::key(kAsked));
    ZConfig config(path, false);
    int value = 0;
    for (auto _ : state) {
        config.writeEntry(group, key, ++value);
        if (!config.flush())
            state.SkipWithError("not saved");
    }
}

}

BENCHMARK(oneQuestion_floor)->Arg(50)->Arg(1000);
BENCHMARK(oneQuestion_ZConfig)->Arg(50)->Arg(1000);
BENCHMARK(everyEntry_ZConfig)->Arg(50)->Arg(1000)->Arg(50000);
BENCHMARK(save_floor)->Arg(50)->Arg(1000)->UseRealTime();
BENCHMARK(save_ZConfig)->Arg(50)->Arg(1000)->UseRealTime();
BENCHMARK_MAIN();
