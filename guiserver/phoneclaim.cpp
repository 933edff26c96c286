#include "guiserver/phoneclaim.h"

#include "settings/status/statustable.h"

#include <fcntl.h>

using platform::Fd;
using platform::FileLock;
using platform::Result;

Result<PhoneClaim> PhoneClaim::take()
{
    auto file = Fd::open(status::kKeyFile, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
    if (!file)
        return tl::make_unexpected(file.error());
    auto lock = FileLock::exclusive(file->get(), FileLock::Wait::No);
    if (!lock)
        return tl::make_unexpected(lock.error());
    return PhoneClaim(std::move(*file), std::move(*lock));
}
