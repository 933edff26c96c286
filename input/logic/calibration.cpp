#include "input/logic/calibration.h"

#include <QByteArrayList>
#include <algorithm>
#include <charconv>
#include <limits>

namespace calibration {

namespace {

constexpr qint64 kScale = 65536; // s of a calibration that is computed here

qint32 fitted(qint64 value)
{
    using Limits = std::numeric_limits<qint32>;
    return qint32(std::clamp<qint64>(value, Limits::min(), Limits::max()));
}

bool fits(qint64 value) { return value == fitted(value); }

// The two products are 2^62 at most, and their sum is too large by one in a single case: all four are -2^31. The
// quotient is out of range by far then, and stays so with the largest sum that there is.
qint32 along(qint64 factorX, qint64 factorY, qint64 offset, qint64 divisor, QPoint device)
{
    qint64 sum = 0;
    if (__builtin_add_overflow(factorX * device.x(), factorY * device.y(), &sum)
        || __builtin_add_overflow(sum, offset, &sum))
        sum = std::numeric_limits<qint64>::max();
    return fitted(sum / divisor);
}

struct Axis {
    qint32 factor;
    qint32 offset;
};

std::optional<Axis> axis(std::pair<qint64, qint64> device, std::pair<qint64, qint64> screen)
{
    if (device.first == device.second)
        return std::nullopt;
    const qint64 factor = (screen.first - screen.second) * kScale / (device.first - device.second);
    if (factor == 0 || !fits(factor))
        return std::nullopt;
    const qint64 offset = screen.first * kScale - device.first * factor;
    if (!fits(offset))
        return std::nullopt;
    return Axis{qint32(factor), qint32(offset)};
}

// First and second device coordinate.
std::pair<qint32, qint32> inverse(const Axis &axis, qint64 scale, std::pair<qint64, qint64> screen)
{
    const qint64 first = (screen.first * scale - axis.offset) / axis.factor;
    // Both terms are below 2^63, their difference may not be.
    qint64 second = 0;
    const qint64 way = (screen.first - screen.second) * scale / axis.factor;
    if (__builtin_sub_overflow(first, way, &second))
        second = way > 0 ? std::numeric_limits<qint64>::min() : std::numeric_limits<qint64>::max();
    return {fitted(first), fitted(second)};
}

bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

}

QPoint map(const Parameters &p, QPoint device)
{
    // What panels count, with the divisor of our own calibrations: nothing can overflow, and to divide is to shift.
    constexpr quint32 kUsual = 1U << 20;
    if (p.s == kScale && (quint32(device.x()) | quint32(device.y())) < kUsual) {
        const qint64 x = device.x();
        const qint64 y = device.y();
        return {fitted((p.a * x + p.b * y + p.c) / kScale), fitted((p.d * x + p.e * y + p.f) / kScale)};
    }
    if (p.s == 0)
        return device;
    return {along(p.a, p.b, p.c, p.s, device), along(p.d, p.e, p.f, p.s, device)};
}

std::optional<Parameters> fromCorners(const Corners &device, const Corners &screen)
{
    const auto x = axis({device.topLeft.x(), device.bottomRight.x()}, {screen.topLeft.x(), screen.bottomRight.x()});
    const auto y = axis({device.topLeft.y(), device.bottomRight.y()}, {screen.topLeft.y(), screen.bottomRight.y()});
    if (!x || !y)
        return std::nullopt;
    return Parameters{x->factor, 0, x->offset, 0, y->factor, y->offset, qint32(kScale)};
}

std::optional<Corners> deviceCorners(const Parameters &p, const Corners &screen)
{
    if (p.a == 0 || p.e == 0 || p.s == 0)
        return std::nullopt;
    const auto x = inverse({p.a, p.c}, p.s, {screen.topLeft.x(), screen.bottomRight.x()});
    const auto y = inverse({p.e, p.f}, p.s, {screen.topLeft.y(), screen.bottomRight.y()});
    return Corners{{x.first, y.first}, {x.second, y.second}};
}

std::optional<Parameters> parse(QByteArrayView text)
{
    Parameters p;
    const char *at = text.begin();
    for (qint32 *number : {&p.a, &p.b, &p.c, &p.d, &p.e, &p.f, &p.s}) {
        while (at != text.end() && isSpace(*at))
            ++at;
        if (at != text.end() && *at == '+' && text.end() - at > 1 && at[1] != '-')
            ++at;
        const auto [end, error] = std::from_chars(at, text.end(), *number);
        if (error != std::errc() || (end != text.end() && !isSpace(*end)))
            return std::nullopt;
        at = end;
    }
    return p.s == 0 ? std::nullopt : std::optional(p);
}

QByteArray format(const Parameters &p)
{
    QByteArrayList numbers;
    for (const qint32 number : {p.a, p.b, p.c, p.d, p.e, p.f, p.s})
        numbers.append(QByteArray::number(number));
    return numbers.join(' ') + '\n';
}

}
