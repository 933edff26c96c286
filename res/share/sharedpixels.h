// Between images in the toolkit's form and the bytes of a shared image.
#pragma once

#include "platform/system/sysv.h"
#include "res/share/sharedheader.h"

#include <QBitmap>
#include <QByteArrayView>
#include <QImage>
#include <QPixmap>
#include <memory>

namespace res {

// An image as it is shared. With a mask its format is Format_ARGB32_Premultiplied, so that soft edges keep their alpha;
// without one Format_RGB32. Pixmaps of 16 bits stay Format_RGB16 in both cases.
struct SharedPixels {
    QImage image; // null: none
    QImage mask; // Format_MonoLSB, 1 is opaque; null when all of the image is

    // Encoded bytes; no image when they do not decode.
    static SharedPixels decode(QByteArrayView bytes);
    static SharedPixels of(const QPixmap &pixmap, const QBitmap &mask);

    // Of a segment that this fits into exactly.
    [[nodiscard]] std::size_t segmentSize() const;
    // Copies what the segment has room for; the header tells of the whole image in any case.
    void store(std::span<std::byte> segment) const;
};

// An image over the segment's own rows, not a copy: it shows what is written there later, and keeps the segment
// attached. Whoever draws on it gets a copy of his own first. Null when the segment holds no image.
QImage sharedImage(const std::shared_ptr<const platform::ShmAttachment> &segment);
// The same of the mask, in the form of QBitmap. Null when there is none.
QImage sharedMask(const std::shared_ptr<const platform::ShmAttachment> &segment);
// A copy that needs no mask: what is not opaque in it is transparent in the image. Null like sharedImage().
QImage copyWithMask(const std::shared_ptr<const platform::ShmAttachment> &segment);

}
