// Rectangles of a skin's image, which come from a file and may be anything.
#pragma once

#include "res/format/resindex.h"

#include <QRect>
#include <algorithm>

namespace res {

// The part that lies in an image of that size; empty when none does.
inline QRect insideOf(QSize image, const ImageRect &rect)
{
    if (image.isEmpty() || rect.x >= quint32(image.width()) || rect.y >= quint32(image.height()))
        return {};
    const auto width = std::min(rect.width, quint32(image.width()) - rect.x);
    const auto height = std::min(rect.height, quint32(image.height()) - rect.y);
    return {int(rect.x), int(rect.y), int(width), int(height)};
}

inline bool isInside(QSize image, const ImageRect &rect)
{
    const QRect part = insideOf(image, rect);
    return !part.isEmpty() && quint32(part.width()) == rect.width && quint32(part.height()) == rect.height;
}

}
