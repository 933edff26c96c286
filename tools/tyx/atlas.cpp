#include "tools/tyx/atlas.h"

#include "res/files/imagedecoder.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>
#include <tuple>

namespace tyx {

namespace {

constexpr qint64 kMaxPixels = res::kMaxImageBytes / 4;
constexpr int kMaxEdge = 32767; // coordinates of the toolkit's painter have 16 bits

// The upper edge of what is placed so far, from left to right: a step for each stretch of equal height. What lies below
// it is given up, which for the pictures of a skin, placed from high to low, is a few per cent.
class Skyline {
public:
    explicit Skyline(QSize bounds) : m_bounds(bounds), m_steps{{0, 0, bounds.width()}} { }

    // The place whose lower edge is highest up, of several the leftmost.
    std::optional<QPoint> place(QSize size)
    {
        std::size_t best = m_steps.size();
        int bestY = m_bounds.height() - size.height() + 1;
        for (std::size_t i = 0; i < m_steps.size() && m_steps[i].x + size.width() <= m_bounds.width(); ++i) {
            if (const int y = top(i, size.width()); y < bestY) {
                best = i;
                bestY = y;
            }
        }
        if (best == m_steps.size())
            return {};
        const QPoint place(m_steps[best].x, bestY);
        raise(best, {place.x(), bestY + size.height(), size.width()});
        return place;
    }

private:
    struct Step {
        int x;
        int y;
        int width;
    };

    // Where something of this width can stand that begins with step `first`.
    [[nodiscard]] int top(std::size_t first, int width) const
    {
        int y = 0;
        for (std::size_t i = first; width > 0; width -= m_steps[i++].width)
            y = std::max(y, m_steps[i].y);
        return y;
    }

    void raise(std::size_t at, Step step)
    {
        const int end = step.x + step.width;
        std::size_t covered = at;
        while (covered < m_steps.size() && m_steps[covered].x + m_steps[covered].width <= end)
            ++covered;
        if (covered < m_steps.size() && m_steps[covered].x < end) {
            m_steps[covered].width -= end - m_steps[covered].x;
            m_steps[covered].x = end;
        }
        const auto place = m_steps.begin() + std::ptrdiff_t(at);
        m_steps.insert(m_steps.erase(place, m_steps.begin() + std::ptrdiff_t(covered)), step);
    }

    QSize m_bounds;
    std::vector<Step> m_steps;
};

// The size that is used of `bounds`; from the highest to the lowest, since those leave the fewest holes.
std::optional<AtlasPlan> placedIn(QSize bounds, const std::vector<QSize> &sizes)
{
    std::vector<std::size_t> order(sizes.size());
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return std::tuple(sizes[a].height(), sizes[a].width()) > std::tuple(sizes[b].height(), sizes[b].width());
    });
    Skyline skyline(bounds);
    AtlasPlan plan{{0, 0}, std::vector<QPoint>(sizes.size())};
    for (const std::size_t i : order) {
        const auto place = skyline.place(sizes[i]);
        if (!place)
            return {};
        plan.places[i] = *place;
        plan.size = plan.size.expandedTo({place->x() + sizes[i].width(), place->y() + sizes[i].height()});
    }
    return plan;
}

qint64 areaOf(QSize size) { return qint64{size.width()} * size.height(); }

}

std::optional<AtlasPlan> planned(const std::vector<QSize> &sizes, std::optional<QSize> atlas)
{
    if (atlas) {
        auto plan = placedIn(*atlas, sizes);
        if (plan)
            plan->size = *atlas;
        return plan;
    }
    qint64 area = 0;
    int widest = 1;
    for (const QSize &size : sizes) {
        area += areaOf(size);
        widest = std::max(widest, size.width());
    }
    if (area > kMaxPixels)
        return {};
    // From a column to something twice as wide as high.
    constexpr int kTries = 24;
    const int least = std::max(widest, int(std::sqrt(double(area)) / 2));
    const int most = std::min(kMaxEdge, std::max(widest, int(std::sqrt(double(area)) * 1.5)));
    std::optional<AtlasPlan> best;
    for (int i = 0; i <= kTries; ++i) {
        const int width = least + (most - least) * i / kTries;
        const int height = int(std::min<qint64>(kMaxEdge, kMaxPixels / width));
        auto plan = placedIn({width, height}, sizes);
        if (plan && (!best || areaOf(plan->size) < areaOf(best->size)))
            best = std::move(plan);
    }
    return best;
}

QImage drawn(const AtlasPlan &plan, std::span<const QImage> images)
{
    QImage atlas(plan.size, QImage::Format_ARGB32);
    atlas.fill(0);
    for (std::size_t i = 0; i < images.size(); ++i) {
        const QPoint place = plan.places[i];
        for (int y = 0; y < images[i].height(); ++y)
            std::memcpy(atlas.scanLine(place.y() + y) + std::ptrdiff_t{4} * place.x(), images[i].constScanLine(y),
                std::size_t(images[i].width()) * 4);
    }
    return atlas;
}

}
