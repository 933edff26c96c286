// Any bytes as a calibration file, and as four points that are to give one; and recordings, which are texts too.
#include "input/logic/calibration.h"
#include "input/logic/recording.h"
#include "tests/fuzz/require.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <limits>

namespace {

void use(const TP_Calibration_Parameter_T &p)
{
    constexpr int kMin = std::numeric_limits<int>::min();
    constexpr int kMax = std::numeric_limits<int>::max();
    for (const QPoint point : {QPoint(0, 0), QPoint(kMin, kMin), QPoint(kMax, kMin), QPoint(kMax, kMax)})
        std::ignore = calibration::map(p, point);
    std::ignore = calibration::deviceCorners(p, {{kMin, kMax}, {kMax, kMin}});
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArrayView text(data, qsizetype(size));
    if (const auto p = calibration::parse(text)) {
        use(*p);
        require(calibration::parse(calibration::format(*p)) == *p);
    }
    std::array<int, 8> numbers{};
    std::memcpy(numbers.data(), data, std::min(size, sizeof numbers));
    const auto &[a, b, c, d, e, f, g, h] = numbers;
    if (const auto p = calibration::fromCorners({{a, b}, {c, d}}, {{e, f}, {g, h}})) {
        require(p->a != 0 && p->e != 0);
        use(*p);
    }
    if (const auto events = recording::parse(text)) {
        QByteArray again = recording::header();
        for (const recording::Event &event : *events)
            again += recording::format(event);
        require(recording::parse(again) == *events);
        require(recording::shortenedPauses(*events).size() == events->size());
    }
    return 0;
}
