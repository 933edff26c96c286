// Makes a pen of the samples of a touch panel: samples in, the pen's moves out; no device, no clock, no calibration.
//
// A sample of the device is 8 bytes, four numbers of 16 bits in the machine's byte order:
//
//   offset  what
//        0  pressure: 0 when nothing touches the panel
//        2  x, as the panel counts
//        4  y
//        6  not used
//
// The device sends one for each measurement while it is touched, a hundred in a second as a rule, and at least one of
// pressure 0 when it is left.
//
// clang-format off
//   | pen is   | under `liftBelow` | between         | `pressAt` and more                                        |
//   |----------|-------------------|-----------------|-----------------------------------------------------------|
//   | up       |                   |                 | settles: samples are collected                            |
//   | settling | up: a spike       |                 | Down at the median, with the `settle`th                   |
//   | down     | Up, at last place | nothing: drifts | Move, if the median of three is over `jitter` from there  |
// clang-format on
//
// The median (of x and of y) takes out single wild samples, the distance takes out noise, and the two thresholds keep a
// light touch from falling apart into many.
#pragma once

#include <QPoint>
#include <QtGlobal>
#include <array>
#include <cstddef>
#include <optional>
#include <span>

namespace touch {

struct Sample {
    static constexpr std::size_t kSize = 8;

    quint16 pressure = 0;
    quint16 x = 0;
    quint16 y = 0;

    static Sample decode(std::span<const std::byte, kSize> bytes);
    [[nodiscard]] std::array<std::byte, kSize> encode() const;
};

struct PenMove {
    enum Kind { Down, Move, Up } kind;
    QPoint place; // as the device counts

    bool operator==(const PenMove &) const = default;
};

// In units of the device. These fit panels that count from 0 to 4095 along each side and press up to a few hundred.
struct FilterSettings {
    quint16 pressAt = 16;
    quint16 liftBelow = 8;
    int settle = 3; // at least 1
    int jitter = 4;
};

class TouchFilter {
public:
    explicit TouchFilter(const FilterSettings &settings = {}) : m_settings(settings) { }

    std::optional<PenMove> feed(const Sample &sample);

    // The device is gone.
    std::optional<PenMove> lift();

private:
    static constexpr std::size_t kWindow = 3;

    std::optional<PenMove> press(const Sample &sample);
    [[nodiscard]] QPoint median() const;

    FilterSettings m_settings;
    std::array<Sample, kWindow> m_last{};
    int m_count = 0; // samples since it was up, as far as that matters; 0: it is up
    bool m_down = false;
    QPoint m_place; // that was told last
};

}
