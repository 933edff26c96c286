// The bytes of a shared image. docs/formats/shared-image.md shows the same table.
//
// Any process may write to the segment at any time, and anything may lie under its key: no word of it is believed, and
// all sums are made in 64 bits, where 32-bit words cannot wrap.
#pragma once

#include "platform/tyxexport.h"
#include "res/format/reslayout.h"

#include <span>
#include <tl/expected.hpp>

namespace res {

// Offsets in the segment. Words are signed, least significant byte first.
namespace sharedimage {
inline constexpr std::size_t magic = 0;
inline constexpr std::size_t width = magic + kWord; // pixels
inline constexpr std::size_t height = width + kWord;
inline constexpr std::size_t depth = height + kWord; // bits of a pixel
inline constexpr std::size_t bytesPerLine = depth + kWord;
inline constexpr std::size_t maskSize = bytesPerLine + kWord; // bytes; the mask rows end with the segment
inline constexpr std::size_t maskBytesPerLine = maskSize + kWord;
inline constexpr std::size_t rows = maskBytesPerLine + kWord; // of the image
static_assert(rows == 28);
inline constexpr quint32 kMagic = 0xDACABAAA;
}

enum class SharedImageFault {
    Magic, // nobody has stored an image there, or not to the end; or the segment has no room for a header
    Size, // sizes that are none, or that the segment has no room for
};

// What a segment holds, as far as it lies inside of the segment.
struct SharedHeader {
    qint32 width = 0; // 1 or more, like height
    qint32 height = 0;
    qint32 depth = 0; // 16 or 32
    qint32 bytesPerLine = 0;
    qint32 maskSize = 0; // 0: there is no mask
    qint32 maskBytesPerLine = 0;

    // Reads the header once, so that what was checked is what is used.
    static tl::expected<SharedHeader, SharedImageFault> parse(std::span<const std::byte> segment);

    // Everything but the magic word, which says that the rest is there. The segment has room for a header.
    void store(std::span<std::byte> segment) const;
    static void clearMagic(std::span<std::byte> segment); // before the rest is overwritten
    static void storeMagic(std::span<std::byte> segment);

    // Of the segment that was parsed.
    [[nodiscard]] std::span<const std::byte> imageRows(std::span<const std::byte> segment) const;
    [[nodiscard]] std::span<const std::byte> maskRows(std::span<const std::byte> segment) const;
};

// For people.
QString describe(SharedImageFault fault);

}
