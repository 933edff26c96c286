#include "input/logic/touchfilter.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace touch {

namespace {

int middle(int a, int b, int c) { return std::max(std::min(a, b), std::min(std::max(a, b), c)); }

}

Sample Sample::decode(std::span<const std::byte, kSize> bytes)
{
    std::array<quint16, kSize / 2> numbers;
    std::memcpy(numbers.data(), bytes.data(), kSize);
    return {numbers[0], numbers[1], numbers[2]};
}

std::array<std::byte, Sample::kSize> Sample::encode() const
{
    const std::array<quint16, kSize / 2> numbers{pressure, x, y, 0};
    std::array<std::byte, kSize> bytes;
    std::memcpy(bytes.data(), numbers.data(), kSize);
    return bytes;
}

std::optional<PenMove> TouchFilter::feed(const Sample &sample)
{
    if (sample.pressure < m_settings.liftBelow)
        return lift();
    if (sample.pressure < m_settings.pressAt)
        return std::nullopt;
    return press(sample);
}

std::optional<PenMove> TouchFilter::lift()
{
    m_count = 0;
    if (!std::exchange(m_down, false))
        return std::nullopt;
    return PenMove{PenMove::Up, m_place};
}

std::optional<PenMove> TouchFilter::press(const Sample &sample)
{
    // At first the window is full of the first sample.
    if (m_count == 0)
        m_last.fill(sample);
    std::rotate(m_last.begin(), m_last.begin() + 1, m_last.end());
    m_last.back() = sample;
    m_count = std::min(m_count + 1, m_settings.settle);
    if (m_count < m_settings.settle)
        return std::nullopt;
    const QPoint place = median();
    if (m_down && std::abs(place.x() - m_place.x()) <= m_settings.jitter
        && std::abs(place.y() - m_place.y()) <= m_settings.jitter)
        return std::nullopt;
    m_place = place;
    return PenMove{std::exchange(m_down, true) ? PenMove::Move : PenMove::Down, place};
}

QPoint TouchFilter::median() const
{
    const auto &[a, b, c] = m_last;
    return {middle(a.x, b.x, c.x), middle(a.y, b.y, c.y)};
}

}
