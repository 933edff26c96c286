#include "platform/system/lockedfile.h"

namespace platform {

Result<LockedFile> LockedFile::open(const char *path, int flags, mode_t mode)
{
    auto file = Fd::open(path, flags, mode);
    if (!file)
        return tl::make_unexpected(file.error());
    auto lock = FileLock::exclusive(file->get(), FileLock::Wait::No);
    if (!lock)
        return tl::make_unexpected(lock.error());
    return LockedFile(std::move(*file), std::move(*lock));
}

}
