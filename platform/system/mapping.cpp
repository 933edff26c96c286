#include "platform/system/mapping.h"

#include <limits>
#include <sys/mman.h>
#include <sys/stat.h>

namespace platform {

Result<Mapping> Mapping::readOnly(int fd)
{
    struct stat status = {};
    if (::fstat(fd, &status) != 0)
        return failed("fstat");
    if (!S_ISREG(status.st_mode))
        return failed("mmap", ENODEV);
    if (static_cast<unsigned long long>(status.st_size) > std::numeric_limits<std::size_t>::max())
        return failed("mmap", EFBIG);
    const auto size = static_cast<std::size_t>(status.st_size);
    if (size == 0)
        return Mapping(std::span<std::byte>{}); // mmap refuses an empty range
    void *address = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, fd, 0);
    if (address == MAP_FAILED)
        return failed("mmap");
    return Mapping(std::span(static_cast<std::byte *>(address), size));
}

Mapping::~Mapping()
{
    if (!m_bytes.empty())
        ::munmap(m_bytes.data(), m_bytes.size());
}

}
