// A file that is open and locked, both for as long as an object lives.
#pragma once

#include "platform/system/fd.h"
#include "platform/system/filelock.h"

namespace platform {

class TYX_EXPORT LockedFile {
public:
    // Fd::open(), then FileLock::exclusive(): who does not get it at once is told EWOULDBLOCK.
    static Result<LockedFile> open(const char *path, int flags, mode_t mode = 0);

private:
    LockedFile(Fd file, FileLock lock) : m_file(std::move(file)), m_lock(std::move(lock)) { }

    Fd m_file;
    FileLock m_lock; // goes before the descriptor that it sits on
};

}
