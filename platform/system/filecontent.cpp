#include "platform/system/filecontent.h"

#include "platform/system/fd.h"

#include <QFile>
#include <algorithm>
#include <fcntl.h>
#include <new>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {

namespace {

constexpr qsizetype kFirstRoom = 4096; // for a file that does not tell its size
constexpr qsizetype kSmall = 1 << 20; // a program that has not as much left does not go on anyway

constexpr std::size_t kHugePage = 2U << 20;
constexpr std::size_t kPiece = 2 * kHugePage;
static_assert(kPiece >= std::size_t{kSmall});

// The toolkit's own containers end the program where there is no memory.
bool isRoomFor(qsizetype size)
{
    if (size <= kSmall)
        return true;
    const std::unique_ptr<char[]> tried(new (std::nothrow) char[static_cast<std::size_t>(size)]);
    return tried != nullptr;
}

// The size is a hint: the file may grow or shrink meanwhile, and some file systems do not know it. There is room for a
// byte more, so that a file of just that size needs no second call.
Result<QByteArray> readToEnd(int fd, qsizetype sizeHint, qint64 maxBytes)
{
    QByteArray bytes;
    qsizetype filled = 0;
    for (;;) {
        if (filled == bytes.size()) {
            const qsizetype room = filled > 0 ? 2 * filled : sizeHint > 0 ? sizeHint + 1 : kFirstRoom;
            if (!isRoomFor(room))
                return failed("read", ENOMEM);
            bytes.reserve(room); // of just this size: by itself resize() takes up to twice as much
            bytes.resize(room);
        }
        const ssize_t count = ::read(fd, bytes.data() + filled, static_cast<std::size_t>(bytes.size() - filled));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return failed("read");
        filled += count;
        if (filled > maxBytes)
            return failed("read", EFBIG);
        if (count == 0 || filled == sizeHint)
            break;
    }
    bytes.truncate(filled);
    return bytes;
}

struct OpenFile {
    Fd fd;
    qsizetype size = 0;
};

Result<OpenFile> openRegular(const QString &path, qint64 maxBytes)
{
    if (path.contains(QChar::Null))
        return failed("open", EINVAL);
    auto file = Fd::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY);
    if (!file)
        return tl::make_unexpected(file.error());
    struct stat status = {};
    if (::fstat(file->get(), &status) != 0)
        return failed("fstat");
    if (!S_ISREG(status.st_mode))
        return failed("open", S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
    if (status.st_size > maxBytes)
        return failed("read", EFBIG);
    return OpenFile{std::move(*file), static_cast<qsizetype>(status.st_size)};
}

// Fills `room`, or as much of it as there is.
Result<std::size_t> readInto(std::span<std::byte> room, int fd)
{
    std::size_t filled = 0;
    while (filled < room.size()) {
        const ssize_t count = ::read(fd, room.data() + filled, room.size() - filled);
        if (count < 0 && errno != EINTR)
            return failed("read");
        if (count == 0)
            break;
        filled += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
    return filled;
}

}

Result<QByteArray> fileContent(const QString &path, qint64 maxBytes)
{
    return openRegular(path, maxBytes).and_then([&](const OpenFile &file) {
        return readToEnd(file.fd.get(), file.size, maxBytes);
    });
}

Result<QByteArray> FileContents::read(const QString &path, qint64 maxBytes)
{
    return openRegular(path, maxBytes).and_then([&](const OpenFile &file) -> Result<QByteArray> {
        if (file.size == 0 || file.size > kSmall) // a size of 0 may mean that it is not known
            return readToEnd(file.fd.get(), file.size, maxBytes);
        const std::span<std::byte> bytes = room(static_cast<std::size_t>(file.size));
        if (bytes.empty())
            return failed("read", ENOMEM);
        return readInto(bytes, file.fd.get()).map([&](std::size_t size) {
            m_free = m_free.subspan(size);
            return QByteArray::fromRawData(reinterpret_cast<const char *>(bytes.data()), static_cast<qsizetype>(size));
        });
    });
}

std::span<std::byte> FileContents::room(std::size_t size)
{
    if (size > m_free.size()) {
        m_pieces.emplace_back(static_cast<std::byte *>(std::aligned_alloc(kHugePage, kPiece)));
        std::byte *piece = m_pieces.back().get();
        if (!piece)
            return {};
        ::madvise(piece, kPiece, MADV_HUGEPAGE); // where there are none, small ones do
        m_free = {piece, kPiece};
    }
    return m_free.first(size);
}

}
