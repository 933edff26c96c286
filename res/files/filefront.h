// The beginning of an open file in memory, and the rest by reading.
#pragma once

#include "platform/system/fd.h"
#include "res/format/resindex.h"

#include <memory>
#include <optional>

namespace res {

// With one call a small file is there as a whole, of others what stands in front: header text, start block and the
// names of some hundred resources.
class FileFront {
public:
    static constexpr std::size_t kSize = 8192;

    // `fd` is open for reading and is closed with this object.
    explicit FileFront(platform::Fd fd);

    // As much as the file has from there on, `buffer.size()` bytes at most: in memory, or read into `buffer`.
    [[nodiscard]] Bytes at(quint64 offset, std::span<std::byte> buffer) const;

    // The file, when it is here as a whole: a read that gives less than was asked for has met its end.
    [[nodiscard]] std::optional<Bytes> whole() const
    {
        return m_size > 0 && m_size < kSize ? std::optional<Bytes>({m_bytes.get(), m_size}) : std::nullopt;
    }

    [[nodiscard]] const platform::Fd &fd() const { return m_fd; }
    void close() { m_fd.reset(); } // what is in memory stays

private:
    platform::Fd m_fd;
    std::unique_ptr<std::byte[]> m_bytes;
    std::size_t m_size = 0;
};

}
