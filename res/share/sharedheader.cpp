#include "res/share/sharedheader.h"

#include <QString>
#include <atomic>

namespace res {

namespace {

qint32 loadSigned(std::span<const std::byte> segment, std::size_t offset)
{
    return qint32(loadWord(segment.data() + offset));
}

void storeSigned(std::span<std::byte> segment, std::size_t offset, qint32 value)
{
    storeWord(reinterpret_cast<char *>(segment.data() + offset), quint32(value));
}

// Other depths have no agreed form of their pixels.
bool isKnownDepth(qint32 depth) { return depth == 16 || depth == 32; }

bool isSound(const SharedHeader &header, std::size_t segmentSize)
{
    if (header.width < 1 || header.height < 1 || !isKnownDepth(header.depth))
        return false;
    if (header.bytesPerLine != qint64{header.depth / 8} * header.width)
        return false;
    if (header.maskSize != 0) {
        if (header.maskBytesPerLine < (qint64{header.width} + 7) / 8)
            return false;
        if (header.maskSize != qint64{header.height} * header.maskBytesPerLine)
            return false;
    }
    const qint64 needed =
        qint64{sharedimage::rows} + qint64{header.height} * header.bytesPerLine + qint64{header.maskSize};
    return quint64(needed) <= segmentSize;
}

}

tl::expected<SharedHeader, SharedImageFault> SharedHeader::parse(std::span<const std::byte> segment)
{
    if (segment.size() < sharedimage::rows || loadWord(segment.data() + sharedimage::magic) != sharedimage::kMagic)
        return tl::make_unexpected(SharedImageFault::Magic);
    std::atomic_thread_fence(std::memory_order_acquire);
    const SharedHeader header{
        .width = loadSigned(segment, sharedimage::width),
        .height = loadSigned(segment, sharedimage::height),
        .depth = loadSigned(segment, sharedimage::depth),
        .bytesPerLine = loadSigned(segment, sharedimage::bytesPerLine),
        .maskSize = loadSigned(segment, sharedimage::maskSize),
        .maskBytesPerLine = loadSigned(segment, sharedimage::maskBytesPerLine),
    };
    if (!isSound(header, segment.size()))
        return tl::make_unexpected(SharedImageFault::Size);
    return header;
}

void SharedHeader::store(std::span<std::byte> segment) const
{
    storeSigned(segment, sharedimage::width, width);
    storeSigned(segment, sharedimage::height, height);
    storeSigned(segment, sharedimage::depth, depth);
    storeSigned(segment, sharedimage::bytesPerLine, bytesPerLine);
    storeSigned(segment, sharedimage::maskSize, maskSize);
    storeSigned(segment, sharedimage::maskBytesPerLine, maskBytesPerLine);
}

void SharedHeader::clearMagic(std::span<std::byte> segment)
{
    storeWord(reinterpret_cast<char *>(segment.data() + sharedimage::magic), 0);
    std::atomic_thread_fence(std::memory_order_seq_cst); // before anything that is stored behind it
}

void SharedHeader::storeMagic(std::span<std::byte> segment)
{
    std::atomic_thread_fence(std::memory_order_release);
    storeWord(reinterpret_cast<char *>(segment.data() + sharedimage::magic), sharedimage::kMagic);
}

std::span<const std::byte> SharedHeader::imageRows(std::span<const std::byte> segment) const
{
    return segment.subspan(sharedimage::rows, std::size_t(height) * std::size_t(bytesPerLine));
}

std::span<const std::byte> SharedHeader::maskRows(std::span<const std::byte> segment) const
{
    return segment.last(std::size_t(maskSize));
}

QString describe(SharedImageFault fault)
{
    return fault == SharedImageFault::Magic ? QStringLiteral("holds no image")
                                            : QStringLiteral("says that it holds more than it has room for");
}

}
