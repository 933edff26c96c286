#include "res/share/sharedpixels.h"

#include "res/files/imagedecoder.h"
#include "res/share/pixelrow.h"

#include <algorithm>
#include <cstring>

namespace res {

namespace {

using Segment = std::shared_ptr<const platform::ShmAttachment>;

// What the toolkit takes for the mask of a pixmap: every pixel that is not wholly transparent. Null when all are
// opaque.
QImage maskOf(const QImage &image)
{
    if (!image.hasAlphaChannel())
        return {};
    QImage mask(image.size(), QImage::Format_MonoLSB);
    if (mask.isNull()) // no memory
        return {};
    mask.fill(0);
    bool allOpaque = true;
    for (int y = 0; y < image.height(); ++y) {
        const auto *pixels = pixelRow(image, y);
        uchar *bits = mask.scanLine(y);
        for (int x = 0; x < image.width(); ++x) {
            const int alpha = qAlpha(pixels[x]);
            allOpaque = allOpaque && alpha == 255;
            bits[x / 8] |= uchar(uint{alpha > 0} << (x % 8));
        }
    }
    return allOpaque ? QImage() : mask;
}

// Rows of the source, each `step` behind the one before, as far as there is room. Not what pads them: that may be
// anything that was in this process's memory. The source may be the segment itself.
void copyRows(const QImage &source, std::size_t step, std::span<std::byte> target)
{
    const auto used = (std::size_t(source.width()) * std::size_t(source.depth()) + 7) / 8;
    for (int y = 0; y < source.height(); ++y) {
        const std::size_t offset = std::size_t(y) * step;
        if (offset >= target.size())
            return;
        std::memmove(target.data() + offset, source.constScanLine(y), std::min(used, target.size() - offset));
    }
}

SharedHeader headerOf(const SharedPixels &pixels)
{
    const int height = pixels.image.height();
    const auto maskPitch = pixels.mask.isNull() ? 0 : int(pixels.mask.bytesPerLine());
    return {
        .width = pixels.image.width(),
        .height = height,
        .depth = pixels.image.depth(),
        .bytesPerLine = (pixels.image.depth() + 7) / 8 * pixels.image.width(),
        .maskSize = height * maskPitch,
        .maskBytesPerLine = maskPitch,
    };
}

// An image over bytes of the segment, which stays attached as long as the image or a copy of it lives.
QImage over(
    const Segment &segment, std::span<const std::byte> rows, QSize size, int bytesPerLine, QImage::Format format)
{
    auto keep = std::make_unique<Segment>(segment);
    const auto release = [](void *kept) { delete static_cast<Segment *>(kept); };
    // The constructor for constant bytes: the toolkit then copies before it draws on them.
    QImage image(reinterpret_cast<const uchar *>(rows.data()), size.width(), size.height(), bytesPerLine, format,
        release, keep.get());
    if (!image.isNull())
        std::ignore = keep.release(); // the image has it now
    return image;
}

QImage::Format formatOf(const SharedHeader &header)
{
    if (header.depth == 16)
        return QImage::Format_RGB16;
    return header.maskSize != 0 ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
}

}

SharedPixels SharedPixels::decode(QByteArrayView bytes)
{
    SharedPixels pixels{decodeImage(bytes), {}};
    if (pixels.image.hasAlphaChannel()) {
        pixels.image.convertTo(QImage::Format_ARGB32_Premultiplied);
        pixels.mask = maskOf(pixels.image);
    }
    if (pixels.mask.isNull())
        pixels.image.convertTo(QImage::Format_RGB32);
    return pixels;
}

SharedPixels SharedPixels::of(const QPixmap &pixmap, const QBitmap &mask)
{
    SharedPixels pixels{pixmap.toImage(), mask.toImage()};
    if (pixels.image.isNull())
        return {};
    if (pixels.image.format() != QImage::Format_RGB16)
        pixels.image.convertTo(mask.isNull() ? QImage::Format_RGB32 : QImage::Format_ARGB32_Premultiplied);
    if (!mask.isNull() && mask.size() != pixmap.size())
        pixels.mask = pixels.mask.copy(QRect(QPoint(), pixmap.size())); // what it does not cover is transparent
    return pixels;
}

std::size_t SharedPixels::segmentSize() const
{
    return sharedimage::rows + std::size_t(image.sizeInBytes()) + std::size_t(mask.sizeInBytes());
}

void SharedPixels::store(std::span<std::byte> segment) const
{
    if (segment.size() < sharedimage::rows)
        return;
    const SharedHeader header = headerOf(*this);
    SharedHeader::clearMagic(segment);
    header.store(segment);
    copyRows(image, std::size_t(header.bytesPerLine), segment.subspan(sharedimage::rows));
    const auto maskSize = std::size_t(header.maskSize);
    if (maskSize <= segment.size() - sharedimage::rows)
        copyRows(mask, std::size_t(header.maskBytesPerLine), segment.last(maskSize));
    SharedHeader::storeMagic(segment);
}

QImage sharedImage(const Segment &segment)
{
    const auto header = SharedHeader::parse(segment->bytes());
    if (!header)
        return {};
    return over(segment, header->imageRows(segment->bytes()), {header->width, header->height}, header->bytesPerLine,
        formatOf(*header));
}

QImage sharedMask(const Segment &segment)
{
    const auto header = SharedHeader::parse(segment->bytes());
    if (!header || header->maskSize == 0)
        return {};
    QImage mask = over(segment, header->maskRows(segment->bytes()), {header->width, header->height},
        header->maskBytesPerLine, QImage::Format_MonoLSB);
    mask.setColorTable({0xFFFFFFFF, 0xFF000000}); // with any other, making a bitmap copies it
    return mask;
}

QImage copyWithMask(const Segment &segment)
{
    const QImage image = sharedImage(segment);
    const QImage mask = sharedMask(segment);
    if (image.isNull() || mask.size() != image.size())
        return image.copy();
    QImage copy = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < copy.height(); ++y) {
        auto *pixels = pixelRow(copy, y);
        for (int x = 0; x < copy.width(); ++x) {
            if (mask.pixelIndex(x, y) == 0)
                pixels[x] = 0;
        }
    }
    return copy;
}

}
