#include "appbase/config/configfile.h"

#include "platform/system/fd.h"

#include <QFile>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace config {

using platform::failed;

namespace {

// The size is a hint: the file may grow or shrink meanwhile, and some file systems do not know it. There is room for a
// byte more, so that a file of just that size needs no second call.
platform::Result<QByteArray> readToEnd(int fd, qint64 sizeHint, qint64 maxBytes)
{
    QByteArray bytes(sizeHint + 1, Qt::Uninitialized);
    qsizetype filled = 0;
    for (;;) {
        const ssize_t count = ::read(fd, bytes.data() + filled, static_cast<size_t>(bytes.size() - filled));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return failed("read");
        filled += count;
        if (count == 0 || filled == sizeHint)
            break;
        if (filled > maxBytes)
            return failed("read", EFBIG);
        if (filled == bytes.size())
            bytes.resize(2 * filled);
    }
    bytes.truncate(filled);
    return bytes;
}

}

platform::Result<QByteArray> readFile(const QString &path, qint64 maxBytes)
{
    if (path.contains(QChar::Null))
        return failed("open", EINVAL);
    const auto file = platform::Fd::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY);
    if (!file)
        return tl::make_unexpected(file.error());
    struct stat status = {};
    if (::fstat(file->get(), &status) != 0)
        return failed("fstat");
    if (!S_ISREG(status.st_mode))
        return failed("open", S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
    if (status.st_size > maxBytes)
        return failed("read", EFBIG);
    return readToEnd(file->get(), status.st_size, maxBytes);
}

}
