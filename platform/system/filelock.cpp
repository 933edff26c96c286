#include "platform/system/filelock.h"

#include <sys/file.h>

namespace platform {

Result<FileLock> FileLock::exclusive(int fd, Wait wait)
{
    const int operation = LOCK_EX | (wait == Wait::No ? LOCK_NB : 0);
    while (::flock(fd, operation) != 0) {
        if (errno != EINTR)
            return failed("flock");
    }
    return FileLock(fd);
}

FileLock::~FileLock()
{
    if (m_fd >= 0)
        ::flock(m_fd, LOCK_UN);
}

}
