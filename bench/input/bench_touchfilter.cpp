// How well the touch filter follows a pen on a panel that is as noisy as real ones are, beside tslib's chains. Run it
// with bench/run-input. The panel is made up: a pen that taps and draws lines, of which each sample has noise, one in
// fifty is wild, the first and the last of a stroke are light and off, and pressure dips now and then.
#include "bench/input/tslibmodule.h"
#include "input/logic/touchfilter.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <optional>
#include <random>
#include <vector>

namespace {

struct Truth {
    touch::Sample sample;
    double x = 0;
    double y = 0;
    bool down = false;
    bool first = false; // of a stroke
    bool moves = false; // a line, not a tap
};

class Panel {
public:
    std::vector<Truth> strokes(int count)
    {
        for (int i = 0; i < count; ++i)
            stroke(i % 2 == 1);
        return std::move(m_all);
    }

private:
    double any(double from, double to) { return std::uniform_real_distribution(from, to)(m_random); }
    quint16 unit(double value) { return quint16(std::clamp(value, 0.0, 4095.0)); }

    void add(Truth truth, int pressure, double off)
    {
        const bool wild = any(0, 1) < 0.02;
        std::normal_distribution noise(0.0, 6.0);
        truth.sample = {quint16(pressure), unit(wild ? any(0, 4095) : truth.x + noise(m_random) + off),
            unit(wild ? any(0, 4095) : truth.y + noise(m_random) + off)};
        m_all.push_back(truth);
    }

    void stroke(bool line)
    {
        const int length = line ? 60 : 15;
        const double stepX = line ? any(-15, 15) : 0;
        const double stepY = line ? any(-15, 15) : 0;
        Truth at{{}, any(1000, 3000), any(1000, 3000), true, true, line};
        for (int i = 0; i < length; ++i) {
            const bool edge = i == 0 || i >= length - 2;
            const bool dips = any(0, 1) < 0.03;
            add(at, edge ? 10 : dips ? 12 : 200, edge ? 80 : 0);
            at.first = false;
            at.x += stepX;
            at.y += stepY;
        }
        at.down = false;
        for (int i = 0; i < 5; ++i) {
            at.sample = {};
            m_all.push_back(at);
        }
    }

    std::mt19937 m_random{20};
    std::vector<Truth> m_all;
};

struct Pen {
    bool down = false;
    double x = 0;
    double y = 0;
};
using Filter = std::function<std::optional<Pen>(const touch::Sample &)>; // nothing: as before

Filter ours()
{
    return [filter = touch::TouchFilter()](const touch::Sample &sample) mutable -> std::optional<Pen> {
        const auto move = filter.feed(sample);
        if (!move)
            return {};
        return Pen{move->kind != touch::PenMove::Up, double(move->place.x()), double(move->place.y())};
    };
}

const touch::Sample *next = nullptr; // for the module at the bottom

int nextSample(tslib_module_info * /*info*/, ts_sample *samples, int /*count*/)
{
    *samples = {};
    samples->x = next->x;
    samples->y = next->y;
    samples->pressure = next->pressure;
    return 1;
}

Filter tslib(const std::vector<std::pair<std::string, const char *>> &chain)
{
    static const tslib_ops source{&nextSample, nullptr, nullptr};
    static tslib_module_info below{nullptr, nullptr, nullptr, &source};
    tslib_module_info *top = &below;
    for (const auto &[name, parameters] : chain) {
        top = loadModule(name, parameters, top);
        if (!top) {
            std::fprintf(stderr, "no module %s\n", name.c_str());
            std::exit(1);
        }
    }
    return [top](const touch::Sample &sample) -> std::optional<Pen> {
        next = &sample;
        ts_sample read{};
        if (top->ops->read(top, &read, 1) != 1)
            return {};
        return Pen{read.pressure > 0, double(read.x), double(read.y)};
    };
}

void judge(const char *name, const std::vector<Truth> &trace, Filter filter)
{
    Pen pen;
    int downs = 0;
    int strokes = 0;
    int restless = 0; // moves while the pen stood still
    int wild = 0; // told places that are more than 100 units off
    std::vector<double> errors;
    for (const Truth &truth : trace) {
        strokes += truth.first ? 1 : 0;
        const Pen before = pen;
        pen = filter(truth.sample).value_or(pen);
        if (pen.down && !before.down)
            ++downs;
        if (!pen.down || !truth.down)
            continue;
        const bool told = !before.down || pen.x != before.x || pen.y != before.y;
        restless += before.down && told && !truth.moves ? 1 : 0;
        const double error = std::hypot(pen.x - truth.x, pen.y - truth.y);
        wild += told && error > 100 ? 1 : 0;
        errors.push_back(error);
    }
    std::ranges::sort(errors);
    std::printf("%-34s %6d %8d %8.1f %8.1f %8d %10d\n", name, strokes, downs, errors[errors.size() / 2],
        errors[errors.size() * 95 / 100], wild, restless);
}

}

int main()
{
    const std::vector<Truth> trace = Panel().strokes(2000);
    std::printf("%-34s %6s %8s %8s %8s %8s %10s\n", "", "strokes", "pen down", "median", "95 %", "wild", "restless");
    judge("ours", trace, ours());
    judge("tslib as Debian sets it up", trace, tslib({{"pthres", "pmin=1"}, {"dejitter", "delta=100"}}));
    judge("tslib with median and threshold", trace,
        tslib({{"pthres", "pmin=16"}, {"median", "depth=3"}, {"dejitter", "delta=100"}}));
    return 0;
}
