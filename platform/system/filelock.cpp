#include "platform/system/filelock.h"

#include <fcntl.h>
#include <sys/file.h>

namespace platform {

namespace {

Result<> changeRecordLock(int fd, short type, int command)
{
    struct flock wholeFile = {};
    wholeFile.l_type = type;
    wholeFile.l_whence = SEEK_SET;
    while (::fcntl(fd, command, &wholeFile) != 0) {
        if (errno != EINTR)
            return failed("fcntl");
    }
    return {};
}

}

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

Result<> lockRecordShared(int fd) { return changeRecordLock(fd, F_RDLCK, F_SETLKW); }
Result<> unlockRecord(int fd) { return changeRecordLock(fd, F_UNLCK, F_SETLK); }

}
