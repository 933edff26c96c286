#include "platform/system/filecontent.h"

#include "platform/system/fd.h"

#include <QFile>
#include <fcntl.h>
#include <memory>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {

namespace {

constexpr qsizetype kFirstRoom = 4096; // for a file that does not tell its size
constexpr qsizetype kSmall = 1 << 20; // a program that has not as much left does not go on anyway

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

}

Result<QByteArray> fileContent(const QString &path, qint64 maxBytes)
{
    if (path.contains(QChar::Null))
        return failed("open", EINVAL);
    const auto file = Fd::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY);
    if (!file)
        return tl::make_unexpected(file.error());
    struct stat status = {};
    if (::fstat(file->get(), &status) != 0)
        return failed("fstat");
    if (!S_ISREG(status.st_mode))
        return failed("open", S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
    if (status.st_size > maxBytes)
        return failed("read", EFBIG);
    return readToEnd(file->get(), static_cast<qsizetype>(status.st_size), maxBytes);
}

}
