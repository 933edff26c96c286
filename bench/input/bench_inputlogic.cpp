// The arithmetic of keys and touches: beside what the integers alone would take, and beside tslib's linear module.
#include "bench/input/tslibmodule.h"
#include "input/logic/calibration.h"
#include "input/logic/keymap.h"
#include "input/logic/keypadlogic.h"
#include "input/logic/touchfilter.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr calibration::Parameters kParameters{5461, 3, -2730404, 5, -6553, 24901544, 65536};
constexpr int kPoints = 4096;

std::vector<QPoint> points()
{
    std::vector<QPoint> all;
    for (int i = 0; i < kPoints; ++i)
        all.emplace_back(i * 7919 % 4096, i * 104729 % 4096);
    return all;
}

void perItem(benchmark::State &state, int items) { state.SetItemsProcessed(state.iterations() * items); }

void mapOurs(benchmark::State &state)
{
    const auto all = points();
    for (auto _ : state) {
        for (const QPoint &point : all)
            benchmark::DoNotOptimize(calibration::map(kParameters, point));
    }
    perItem(state, kPoints);
}

// Not inlined, as the other two are not.
[[gnu::noipa]] QPoint bare(const calibration::Parameters &p, QPoint point)
{
    const auto along = [&](qint64 x, qint64 y, qint64 offset) {
        return int((x * point.x() + y * point.y() + offset) / p.s);
    };
    return {along(p.a, p.b, p.c), along(p.d, p.e, p.f)};
}

void mapFloor(benchmark::State &state)
{
    const auto all = points();
    for (auto _ : state) {
        for (const QPoint &point : all)
            benchmark::DoNotOptimize(bare(kParameters, point));
    }
    perItem(state, kPoints);
}

int nextPoint(tslib_module_info * /*info*/, ts_sample *samples, int count)
{
    static int at = 0;
    for (int i = 0; i < count; ++i, at = (at + 1) % kPoints) {
        samples[i].x = at * 7919 % 4096;
        samples[i].y = at * 104729 % 4096;
        samples[i].pressure = 200;
    }
    return count;
}

// The module alone, with points instead of a device below it; what making the points takes is measured beside it.
void mapTslib(benchmark::State &state)
{
    std::FILE *file = std::fopen("/tmp/tslib.cal", "w");
    std::fputs("5461 3 -2730404 5 -6553 24901544 65536", file);
    std::fclose(file);
    ::setenv("TSLIB_CALIBFILE", "/tmp/tslib.cal", 1);
    static const tslib_ops source{&nextPoint, nullptr, nullptr};
    static tslib_module_info below{nullptr, nullptr, nullptr, &source};
    tslib_module_info *module = loadModule("linear", "", &below);
    if (!module) {
        state.SkipWithError("no linear module");
        return;
    }
    std::vector<ts_sample> samples(kPoints);
    for (auto _ : state) {
        module->ops->read(module, samples.data(), kPoints);
        benchmark::DoNotOptimize(samples.data());
    }
    perItem(state, kPoints);
}

void pointsForTslib(benchmark::State &state)
{
    std::vector<ts_sample> samples(kPoints);
    for (auto _ : state) {
        nextPoint(nullptr, samples.data(), kPoints);
        benchmark::DoNotOptimize(samples.data());
    }
    perItem(state, kPoints);
}

void keys(benchmark::State &state)
{
    struct AwakePhone : keypad::Phone {
        bool isSuspended() const override { return false; }
        bool isInCall() const override { return false; }
        bool hasWindowServer() const override { return true; }
    } phone;
    keypad::KeypadLogic logic;
    std::vector<quint16> records;
    for (int i = 0; i < 100'000; ++i)
        records.push_back(quint16(
            keypad::rawKeys()[size_t(i / 2) % keypad::rawKeys().size()].number | (i % 2 == 0 ? keypad::kPressed : 0)));
    std::vector<keypad::Action> actions;
    for (auto _ : state) {
        for (const quint16 record : records) {
            actions.clear();
            logic.feed(record, phone, actions);
            benchmark::DoNotOptimize(actions.data());
        }
    }
    perItem(state, int(records.size()));
}

void filter(benchmark::State &state)
{
    touch::TouchFilter chain;
    const auto all = points();
    for (auto _ : state) {
        for (const QPoint &point : all)
            benchmark::DoNotOptimize(chain.feed({200, quint16(point.x()), quint16(point.y())}));
    }
    perItem(state, kPoints);
}

}

BENCHMARK(mapFloor);
BENCHMARK(mapOurs);
BENCHMARK(mapTslib);
BENCHMARK(pointsForTslib);
BENCHMARK(keys);
BENCHMARK(filter);
BENCHMARK_MAIN();
