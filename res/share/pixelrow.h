// A row of an image as its pixels.
#pragma once

#include <QImage>

namespace res {

// Of images with 32 bits a pixel. The way leads over void because the toolkit hands out bytes; it begins every row at a
// multiple of four of them.
inline const QRgb *pixelRow(const QImage &image, int y)
{
    return static_cast<const QRgb *>(static_cast<const void *>(image.constScanLine(y)));
}
inline QRgb *pixelRow(QImage &image, int y) { return static_cast<QRgb *>(static_cast<void *>(image.scanLine(y))); }

}
