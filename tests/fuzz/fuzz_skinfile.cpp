// Any bytes as a skin file, with rectangles on an image that may be smaller than they say.
#include "res/files/imagedecoder.h"
#include "res/files/skinrect.h"
#include "res/share/pixelrow.h"
#include "res/skin/skincut.h"
#include "res/skin/skinfile.h"
#include "tests/fuzz/require.h"

#include <cstdint>

namespace {

using namespace res;

constexpr QSize kAtlas(37, 29); // whose rows and mask have padding

QImage filled(QImage::Format format)
{
    QImage image(kAtlas, format);
    for (int y = 0; y < kAtlas.height(); ++y) {
        for (int i = 0; i < image.bytesPerLine(); ++i)
            image.scanLine(y)[i] = uchar(i * 7 + y * 31);
    }
    return image;
}

void look(const ImageRect &rect)
{
    static const QImage atlas = filled(QImage::Format_ARGB32_Premultiplied);
    static const QImage mask = filled(QImage::Format_MonoLSB);
    const quint64 area = quint64{rect.width} * rect.height;
    const bool isTooLarge = area > quint64{kMaxImageBytes} / 4;
    if (!isTooLarge && area > 1 << 16)
        return; // for the speed
    const QImage plain = cut(atlas, {}, rect);
    const QImage masked = cut(atlas, mask, rect);
    require(plain.size() == masked.size());
    require(plain.size()
        == (isTooLarge      ? insideOf(kAtlas, rect).size()
                : area == 0 ? QSize(0, 0)
                            : QSize(int(rect.width), int(rect.height))));
    // Every pixel by itself, in the plainest way.
    for (int y = 0; y < masked.height(); ++y) {
        for (int x = 0; x < masked.width(); ++x) {
            const auto *pixels = pixelRow(masked, y);
            if (quint64{rect.x} + quint64(x) >= quint64(kAtlas.width())
                || quint64{rect.y} + quint64(y) >= quint64(kAtlas.height())) {
                require(pixels[x] == 0);
                continue;
            }
            const int column = int(rect.x) + x;
            const bool opaque = mask.constScanLine(int(rect.y) + y)[column / 8] >> (column % 8) & 1;
            const auto *all = pixelRow(atlas, int(rect.y) + y);
            require(pixels[x] == (opaque ? all[column] : 0));
        }
    }
    require(!isInside(kAtlas, rect) || colorIn(atlas, rect).isValid());
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const Bytes file = std::as_bytes(std::span(data, size));
    std::ignore = isMisaligned(file);
    const auto index = parseSkin(file);
    if (!index)
        return 0;
    if (const auto image = imageBlock(file, *index); image && !image->isEmpty())
        require(image->data() + image->size() <= reinterpret_cast<const char *>(data) + size);
    for (quint32 slot = 0; slot < std::min(index->slotCount(), 32U); ++slot)
        look(index->rectAt(slot));
    return 0;
}
