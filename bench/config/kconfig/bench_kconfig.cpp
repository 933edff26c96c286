// The same work done by KConfig.
#include "bench/config/workload.h"

#include <KConfig>
#include <KConfigGroup>
#include <benchmark/benchmark.h>
#include <vector>

namespace {

constexpr int kAsked = 42;

QString absolute(const std::string &path)
{
    char *full = ::realpath(path.c_str(), nullptr);
    const QString name = QString::fromLocal8Bit(full);
    ::free(full);
    return name;
}

void oneQuestion_KConfig(benchmark::State &state)
{
    const QString path = absolute(workload::file("kconfig", int(state.range(0)), "="));
    const QString group = QString::fromStdString(workload::group(kAsked));
    const QString key = QString::fromStdString(workload::key(kAsked));
    for (auto _ : state) {
        const KConfig config(path, KConfig::SimpleConfig);
        if (config.group(group).readEntry(key, -1) != workload::value(kAsked))
            state.SkipWithError("wrong answer");
    }
}

void everyEntry_KConfig(benchmark::State &state)
{
    const int entries = int(state.range(0));
    const QString path = absolute(workload::file("kconfig", entries, "="));
    std::vector<QString> groups;
    std::vector<QString> keys;
    for (int entry = 0; entry < entries; ++entry) {
        groups.push_back(QString::fromStdString(workload::group(entry)));
        keys.push_back(QString::fromStdString(workload::key(entry)));
    }
    for (auto _ : state) {
        const KConfig config(path, KConfig::SimpleConfig);
        for (size_t entry = 0; entry < size_t(entries); ++entry) {
            if (config.group(groups[entry]).readEntry(keys[entry], -1) != workload::value(int(entry)))
                state.SkipWithError("wrong answer");
        }
    }
}

void save_KConfig(benchmark::State &state)
{
    const QString path = absolute(workload::file("kconfig-save", int(state.range(0)), "="));
    KConfig config(path, KConfig::SimpleConfig);
    KConfigGroup group = config.group(QString::fromStdString(workload::group(kAsked)));
    const QString key = QString::fromStdString(workload::key(kAsked));
    int value = 0;
    for (auto _ : state) {
        group.writeEntry(key, ++value);
        if (!config.sync())
            state.SkipWithError("not saved");
    }
}

}

BENCHMARK(oneQuestion_KConfig)->Arg(50)->Arg(1000);
BENCHMARK(everyEntry_KConfig)->Arg(50)->Arg(1000)->Arg(50000);
BENCHMARK(save_KConfig)->Arg(50)->Arg(1000)->UseRealTime();
BENCHMARK_MAIN();
