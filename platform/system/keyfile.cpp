#include "platform/system/keyfile.h"

#include "platform/system/fd.h"
#include "platform/system/sysv.h"

#include <fcntl.h>
#include <string>
#include <sys/stat.h>

namespace platform {

namespace {

bool isOrdinary(const struct stat &status) { return S_ISREG(status.st_mode); }

}

Result<> makeKeyFile(const char *path)
{
    constexpr mode_t kMode = 0666;
    const auto made = Fd::open(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, kMode);
    if (made) {
        if (::fchmod(made->get(), kMode) != 0) // whatever the umask
            return failed("fchmod");
        return {};
    }
    struct stat status = {};
    if (made.error().number != EEXIST || ::lstat(path, &status) != 0 || !isOrdinary(status))
        return tl::make_unexpected(made.error());
    return {};
}

Result<key_t> keyOfFile(const char *path, char project)
{
    // Held open, so that the key is that of the file that was looked at.
    const auto file = Fd::open(path, O_PATH | O_NOFOLLOW);
    if (!file)
        return tl::make_unexpected(file.error());
    struct stat status = {};
    if (::fstat(file->get(), &status) != 0)
        return failed("fstat");
    if (!isOrdinary(status))
        return failed("open", EINVAL);
    return ipcKey(("/proc/self/fd/" + std::to_string(file->get())).c_str(), project);
}

}
