#include "res/files/filefront.h"

#include <algorithm>
#include <unistd.h>

namespace res {

namespace {

std::size_t read(const platform::Fd &fd, quint64 offset, std::span<std::byte> buffer)
{
    return std::size_t(std::max<ssize_t>(::pread(fd.get(), buffer.data(), buffer.size(), off_t(offset)), 0));
}

}

FileFront::FileFront(platform::Fd fd)
    : m_fd(std::move(fd))
    , m_bytes(std::make_unique_for_overwrite<std::byte[]>(kSize))
    , m_size(read(m_fd, 0, {m_bytes.get(), kSize}))
{
}

Bytes FileFront::at(quint64 offset, std::span<std::byte> buffer) const
{
    if (offset + buffer.size() <= m_size)
        return {m_bytes.get() + std::size_t(offset), buffer.size()};
    return buffer.first(read(m_fd, offset, buffer));
}

}
