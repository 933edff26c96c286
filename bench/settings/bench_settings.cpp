// One setting of the system, read and written: by its accessor, by the configuration file under it, and as one would do
// it with QSettings and GKeyFile. Runs in a sandbox, since accessors know their files.
#include "appbase/config/zconfig.h"
#include "settings/files/setup_utility.h"

#include <QSettings>
#include <benchmark/benchmark.h>
#include <fstream>
#include <glib.h>
#include <memory>
#include <string>

namespace {

constexpr int kStored = 120;
const std::string kPath = "/setup/tyx_system.cfg";
const QString kGroup = QStringLiteral("SYS_SYSTEM_SET");
const QString kKey = QStringLiteral("LcdSleepTime");

// What a phone's system settings look like: five groups, 60 entries, the one that is asked for in the middle.
void makeFile(const char *separator = " = ")
{
    // QSettings takes a file of the same size and millisecond for the same.
    static int made = 0;
    std::ofstream file(kPath, std::ios::trunc);
    file << (++made % 2 == 0 ? "\n" : "");
    for (const char *group :
        {"SYS_IRDA_BT", "SYS_POWER_MANAGEMENT", "SYS_SECURITY", "SYS_SYSTEM_SET", "SYS_THEME_SET"}) {
        file << '[' << group << "]\n";
        for (int entry = 0; entry < 12; ++entry)
            file << "SettingName" << entry << separator << entry * 37 << '\n';
        if (std::string(group) == "SYS_SYSTEM_SET")
            file << "LcdSleepTime" << separator << kStored << '\n';
    }
}

void read_accessor(benchmark::State &state)
{
    makeFile();
    for (auto _ : state) {
        int seconds = 0;
        if (!SETUP_Utility::getLcdSleepTime(seconds) || seconds != kStored)
            state.SkipWithError("wrong answer");
    }
}

void read_ZConfig(benchmark::State &state)
{
    makeFile();
    const QString path = QString::fromStdString(kPath);
    for (auto _ : state) {
        ZConfig config(path, false);
        if (config.readNumEntry(kGroup, kKey, 0) != kStored)
            state.SkipWithError("wrong answer");
    }
}

// The parsed file stays in memory for the next object: this is what a program pays that asks again and again.
void read_QSettingsAgain(benchmark::State &state)
{
    makeFile("=");
    const QString path = QString::fromStdString(kPath);
    const QString name = kGroup + u'/' + kKey;
    const QSettings kept(path, QSettings::IniFormat);
    for (auto _ : state) {
        const QSettings settings(path, QSettings::IniFormat);
        if (settings.value(name).toInt() != kStored)
            state.SkipWithError("wrong answer");
    }
}

// And this what one pays that asks once: it parses.
void read_QSettings(benchmark::State &state)
{
    const QString path = QString::fromStdString(kPath);
    const QString name = kGroup + u'/' + kKey;
    for (auto _ : state) {
        state.PauseTiming();
        makeFile("=");
        state.ResumeTiming();
        const QSettings settings(path, QSettings::IniFormat);
        if (settings.value(name).toInt() != kStored)
            state.SkipWithError("wrong answer");
    }
}

struct FreeKeyFile {
    void operator()(GKeyFile *file) const { g_key_file_free(file); }
};
using KeyFile = std::unique_ptr<GKeyFile, FreeKeyFile>;

void read_GKeyFile(benchmark::State &state)
{
    makeFile();
    for (auto _ : state) {
        const KeyFile file(g_key_file_new());
        g_key_file_load_from_file(file.get(), kPath.c_str(), G_KEY_FILE_NONE, nullptr);
        if (g_key_file_get_integer(file.get(), "SYS_SYSTEM_SET", "LcdSleepTime", nullptr) != kStored)
            state.SkipWithError("wrong answer");
    }
}

void write_accessor(benchmark::State &state)
{
    makeFile();
    int seconds = 0;
    for (auto _ : state) {
        if (!SETUP_Utility::setLcdSleepTime(SETUP_LCD_SLEEP_TIME_T(++seconds)))
            state.SkipWithError("not saved");
    }
}

void write_ZConfig(benchmark::State &state)
{
    makeFile();
    const QString path = QString::fromStdString(kPath);
    int seconds = 0;
    for (auto _ : state) {
        ZConfig config(path, true);
        if (!config.writeEntry(kGroup, kKey, ++seconds))
            state.SkipWithError("not saved");
    }
}

void write_GKeyFile(benchmark::State &state)
{
    makeFile();
    int seconds = 0;
    for (auto _ : state) {
        const KeyFile file(g_key_file_new());
        g_key_file_load_from_file(file.get(), kPath.c_str(), G_KEY_FILE_NONE, nullptr);
        g_key_file_set_integer(file.get(), "SYS_SYSTEM_SET", "LcdSleepTime", ++seconds);
        if (!g_key_file_save_to_file(file.get(), kPath.c_str(), nullptr))
            state.SkipWithError("not saved");
    }
}

void write_QSettings(benchmark::State &state)
{
    makeFile("=");
    const QString path = QString::fromStdString(kPath);
    const QString name = kGroup + u'/' + kKey;
    int seconds = 0;
    for (auto _ : state) {
        QSettings settings(path, QSettings::IniFormat);
        settings.setValue(name, ++seconds);
        settings.sync();
        if (settings.status() != QSettings::NoError)
            state.SkipWithError("not saved");
    }
}

}

BENCHMARK(read_ZConfig);
BENCHMARK(read_accessor);
BENCHMARK(read_GKeyFile);
BENCHMARK(read_QSettings);
BENCHMARK(read_QSettingsAgain);
BENCHMARK(write_ZConfig);
BENCHMARK(write_accessor);
BENCHMARK(write_GKeyFile);
BENCHMARK(write_QSettings);
BENCHMARK_MAIN();
