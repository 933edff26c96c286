#include "res/files/filecontent.h"

#include "platform/system/fd.h"

#include <QFile>
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

namespace res {

using platform::failed;
using platform::Fd;
using platform::Result;

namespace {

// The toolkit's own containers end the program where there is no memory.
Result<QByteArray> room(qsizetype size)
{
    const std::unique_ptr<char[]> tried(new (std::nothrow) char[size_t(size)]);
    if (!tried)
        return failed("read", ENOMEM);
    return QByteArray(size, Qt::Uninitialized);
}

// Fills `all`, or cuts it down to what there is.
Result<> readInto(QByteArray &all, int fd)
{
    qsizetype size = 0;
    while (size < all.size()) {
        const ssize_t got = ::read(fd, all.data() + size, size_t(all.size() - size));
        if (got < 0 && errno != EINTR)
            return failed("read");
        if (got == 0)
            break;
        size += std::max<ssize_t>(got, 0);
    }
    all.truncate(size);
    return {};
}

}

Result<QByteArray> fileContent(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    if (name.contains('\0'))
        return failed("open", EINVAL);
    const auto file = Fd::open(name.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY);
    if (!file)
        return tl::make_unexpected(file.error());
    struct stat status = {};
    if (::fstat(file->get(), &status) != 0)
        return failed("fstat");
    if (!S_ISREG(status.st_mode))
        return failed("open", EINVAL);
    if (status.st_size > kMaxResourceBytes)
        return failed("read", EFBIG);
    auto bytes = room(qsizetype(status.st_size));
    if (!bytes)
        return bytes;
    return readInto(*bytes, file->get()).map([&] { return std::move(*bytes); });
}

}
