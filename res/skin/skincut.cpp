#include "res/skin/skincut.h"

#include "res/files/imagedecoder.h"
#include "res/files/skinrect.h"
#include "res/share/pixelrow.h"

#include <algorithm>
#include <cstring>

namespace res {

namespace {

constexpr int kBits = 8; // of a byte of the mask

struct MaskRow {
    const uchar *bytes;
    int size;

    // Eight bits from column `x` on, the first in the lowest; those behind the row are 0.
    [[nodiscard]] uint bitsAt(int x) const
    {
        const int byte = x / kBits;
        const uint high = byte + 1 < size ? bytes[byte + 1] : 0;
        return (bytes[byte] | high << kBits) >> (x % kBits) & 0xFF;
    }
};

// Eight pixels; with a number of turns that is known, the compiler does several at once.
void copyEight(quint32 *target, const quint32 *source, uint bits)
{
    for (uint i = 0; i < kBits; ++i)
        target[i] = (bits & 1U << i) != 0 ? source[i] : 0;
}

void copyMasked(quint32 *target, const quint32 *source, int width, MaskRow mask, int x)
{
    int done = 0;
    for (; done + kBits <= width; done += kBits) {
        const uint bits = mask.bitsAt(x + done);
        if (bits == 0xFF)
            std::memcpy(target + done, source + done, kBits * sizeof *target);
        else
            copyEight(target + done, source + done, bits);
    }
    if (done == width)
        return;
    const uint bits = mask.bitsAt(x + done);
    for (int i = done; i < width; ++i)
        target[i] = (bits >> (i - done) & 1U) != 0 ? source[i] : 0;
}

// A mask that is no mask of this image hides nothing.
bool fits(const QImage &mask, const QImage &image)
{
    return mask.format() == QImage::Format_MonoLSB && mask.size() == image.size();
}

constexpr auto kMasked = QImage::Format_ARGB32_Premultiplied;

QImage cutInside(const QImage &image, const QImage &mask, const QRect &part)
{
    if (part.isEmpty())
        return {};
    if (!fits(mask, image))
        return image.copy(part);
    if (image.depth() != 32)
        return cutInside(image.copy(part).convertToFormat(kMasked), mask.copy(part), QRect(QPoint(), part.size()));
    QImage result(part.size(), kMasked);
    if (result.isNull()) // no memory
        return {};
    for (int y = 0; y < part.height(); ++y)
        copyMasked(pixelRow(result, y), pixelRow(image, part.y() + y) + part.x(), part.width(),
            {mask.constScanLine(part.y() + y), int(mask.bytesPerLine())}, part.x());
    return result;
}

// Rectangles come from a file: nobody is asked for more memory than an image may have.
bool isTooLarge(const ImageRect &rect)
{
    return rect.height != 0 && rect.width > quint64{kMaxImageBytes} / sizeof(QRgb) / rect.height;
}

}

QImage cut(const QImage &image, const QImage &mask, const ImageRect &rect)
{
    QImage inside = cutInside(image, mask, insideOf(image.size(), rect));
    if (image.isNull() || rect.width == 0 || rect.height == 0 || isInside(image.size(), rect) || isTooLarge(rect))
        return inside;
    const QSize size(int(rect.width), int(rect.height));
    if (!inside.isNull())
        return inside.convertToFormat(kMasked).copy(QRect(QPoint(), size)); // 0 outside, which is transparent
    QImage nothing(size, kMasked);
    nothing.fill(0);
    return nothing;
}

QColor colorIn(const QImage &image, const ImageRect &rect)
{
    const quint64 x = quint64{rect.x} + rect.width / 2;
    const quint64 y = quint64{rect.y} + rect.height / 2;
    if (rect.width == 0 || rect.height == 0 || x >= quint64(image.width()) || y >= quint64(image.height()))
        return {};
    return image.pixelColor(int(x), int(y));
}

}
