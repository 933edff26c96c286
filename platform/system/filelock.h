// A whole-file lock between processes.
#pragma once

#include "platform/system/result.h"
#include "platform/tyxexport.h"

#include <utility>

namespace platform {

// flock(2) on a descriptor that stays the caller's: it belongs to the open file, so it also excludes a second
// descriptor of the same process, and the kernel drops it when the last copy of the descriptor closes. Exported
// for the server.
class TYX_EXPORT FileLock {
public:
    enum class Wait { No, Yes };

    // Without waiting, EWOULDBLOCK says that somebody else holds it.
    static Result<FileLock> exclusive(int fd, Wait wait);

    FileLock(FileLock &&other) noexcept : m_fd(std::exchange(other.m_fd, -1)) { }
    FileLock &operator=(FileLock &&other) noexcept
    {
        std::swap(m_fd, other.m_fd);
        return *this;
    }
    ~FileLock();

private:
    explicit FileLock(int fd) : m_fd(fd) { }

    int m_fd;
};

// A record lock of fcntl(2) over the whole file, shared with others that ask for it so. It belongs to the process: the
// kernel drops it when the process closes any descriptor of the file. Waits for one that locked it for writing.
Result<> lockRecordShared(int fd);
Result<> unlockRecord(int fd);

}
