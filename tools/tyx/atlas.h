// Puts many small images into one large one.
#pragma once

#include <QImage>
#include <QPoint>
#include <QSize>
#include <optional>
#include <span>
#include <vector>

namespace tyx {

// Where each of the images goes: in their order, without overlap, inside of `size`.
struct AtlasPlan {
    QSize size;
    std::vector<QPoint> places;
};

// With the size that is given, or with one that wastes little; none when they do not fit, or would need an image that
// readers refuse. The same sizes give the same places.
std::optional<AtlasPlan> planned(const std::vector<QSize> &sizes, std::optional<QSize> atlas);

// The images at their places, bit by bit; transparent between them. They are Format_ARGB32.
QImage drawn(const AtlasPlan &plan, std::span<const QImage> images);

}
