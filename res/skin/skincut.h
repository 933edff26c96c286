// Cuts pictures and colours out of the image of a skin.
#pragma once

#include "res/format/resindex.h"

#include <QColor>
#include <QImage>

namespace res {

// A rectangle of the image, in memory of its own; null when it has no width or height, or there is no image. With a
// mask (1 is opaque, of the image's size) its other pixels are transparent, and those inside have the alpha that the
// image has. What lies outside of the image is transparent; of a rectangle of more than kMaxImageBytes there is only
// the part inside, possibly null. The format is Format_ARGB32_Premultiplied with a mask or with pixels outside,
// otherwise that of the image.
QImage cut(const QImage &image, const QImage &mask, const ImageRect &rect);

// The pixel in the middle of a rectangle, at half its width and height, rounded down; invalid when that lies outside of
// the image, or the rectangle is empty.
QColor colorIn(const QImage &image, const ImageRect &rect);

}
