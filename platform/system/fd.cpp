#include "platform/system/fd.h"

#include <fcntl.h>
#include <unistd.h>

namespace platform {

Result<Fd> Fd::open(const char *path, int flags, mode_t mode)
{
    int fd = -1;
    do {
        fd = ::open(path, flags | O_CLOEXEC, mode);
    } while (fd < 0 && errno == EINTR);
    if (fd < 0)
        return failed("open");
    return Fd(fd);
}

void Fd::closeOwn() { ::close(m_fd); }

Result<> Fd::close()
{
    // Linux releases the descriptor even when close() reports an error: it is never tried twice.
    if (::close(give()) != 0 && errno != EINTR)
        return failed("close");
    return {};
}

Result<> writeAll(int fd, std::span<const std::byte> bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(fd, bytes.data(), bytes.size());
        if (written < 0) {
            if (errno == EINTR)
                continue;
            return failed("write");
        }
        if (written == 0)
            return failed("write", ENOSPC);
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
    return {};
}

}
