// The same work done by GKeyFile and by QSettings.
#include "bench/config/workload.h"

#include <QSettings>
#include <benchmark/benchmark.h>
#include <glib.h>
#include <memory>
#include <vector>

namespace {

constexpr int kAsked = 42;

struct FreeKeyFile {
    void operator()(GKeyFile *file) const { g_key_file_free(file); }
};
using KeyFile = std::unique_ptr<GKeyFile, FreeKeyFile>;

KeyFile load(const std::string &path)
{
    KeyFile file(g_key_file_new());
    g_key_file_load_from_file(file.get(), path.c_str(), G_KEY_FILE_NONE, nullptr);
    return file;
}

void oneQuestion_GKeyFile(benchmark::State &state)
{
    const std::string path = workload::file("gkeyfile", int(state.range(0)));
    const std::string group = workload::group(kAsked);
    const std::string key = workload::key(kAsked);
    for (auto _ : state) {
        const KeyFile file = load(path);
        if (g_key_file_get_integer(file.get(), group.c_str(), key.c_str(), nullptr) != workload::value(kAsked))
            state.SkipWithError("wrong answer");
    }
}

void everyEntry_GKeyFile(benchmark::State &state)
{
    const int entries = int(state.range(0));
    const std::string path = workload::file("gkeyfile", entries);
    std::vector<std::string> groups;
    std::vector<std::string> keys;
    for (int entry = 0; entry < entries; ++entry) {
        groups.push_back(workload::group(entry));
        keys.push_back(workload::key(entry));
    }
    for (auto _ : state) {
        const KeyFile file = load(path);
        for (size_t entry = 0; entry < size_t(entries); ++entry) {
            if (g_key_file_get_integer(file.get(), groups[entry].c_str(), keys[entry].c_str(), nullptr)
                != workload::value(int(entry)))
                state.SkipWithError("wrong answer");
        }
    }
}

// Without any fsync, unlike ours: a power cut may leave an empty file.
void save_GKeyFile(benchmark::State &state)
{
    const std::string path = workload::file("gkeyfile-save", int(state.range(0)));
    const std::string group = workload::group(kAsked);
    const std::string key = workload::key(kAsked);
    const KeyFile file = load(path);
    int value = 0;
    for (auto _ : state) {
        g_key_file_set_integer(file.get(), group.c_str(), key.c_str(), ++value);
        if (!g_key_file_save_to_file(file.get(), path.c_str(), nullptr))
            state.SkipWithError("not saved");
    }
}

QString settingName(int entry) { return QString::fromStdString(workload::group(entry) + "/" + workload::key(entry)); }

void everyEntry_QSettings(benchmark::State &state)
{
    const int entries = int(state.range(0));
    std::vector<QString> names;
    for (int entry = 0; entry < entries; ++entry)
        names.push_back(settingName(entry));
    for (auto _ : state) {
        state.PauseTiming();
        // QSettings keeps parsed files for the next object: only a changed file is read again.
        const QString path = QString::fromStdString(workload::file("qsettings", entries, "="));
        state.ResumeTiming();
        const QSettings settings(path, QSettings::IniFormat);
        for (size_t entry = 0; entry < size_t(entries); ++entry) {
            if (settings.value(names[entry]).toInt() != workload::value(int(entry)))
                state.SkipWithError("wrong answer");
        }
    }
}

void oneQuestion_QSettings(benchmark::State &state)
{
    const QString name = settingName(kAsked);
    for (auto _ : state) {
        state.PauseTiming();
        const QString path = QString::fromStdString(workload::file("qsettings", int(state.range(0)), "="));
        state.ResumeTiming();
        const QSettings settings(path, QSettings::IniFormat);
        if (settings.value(name).toInt() != workload::value(kAsked))
            state.SkipWithError("wrong answer");
    }
}

// Without any fsync, too.
void save_QSettings(benchmark::State &state)
{
    const QString path = QString::fromStdString(workload::file("qsettings-save", int(state.range(0)), "="));
    const QString name = settingName(kAsked);
    QSettings settings(path, QSettings::IniFormat);
    int value = 0;
    for (auto _ : state) {
        settings.setValue(name, ++value);
        settings.sync();
        if (settings.status() != QSettings::NoError)
            state.SkipWithError("not saved");
    }
}

}

BENCHMARK(oneQuestion_GKeyFile)->Arg(50)->Arg(1000);
BENCHMARK(oneQuestion_QSettings)->Arg(50)->Arg(1000);
BENCHMARK(everyEntry_GKeyFile)->Arg(50)->Arg(1000)->Arg(50000);
BENCHMARK(everyEntry_QSettings)->Arg(50)->Arg(1000)->Arg(50000);
BENCHMARK(save_GKeyFile)->Arg(50)->Arg(1000)->UseRealTime();
BENCHMARK(save_QSettings)->Arg(50)->Arg(1000)->UseRealTime();
