// A file's bytes in memory.
#pragma once

#include "platform/system/result.h"
#include "platform/tyxexport.h"

#include <cstddef>
#include <span>
#include <utility>

namespace platform {

// Unmapped with the object; the descriptor may be closed before. Reading past the end of a file that somebody cut
// short meanwhile is SIGBUS: files that are mapped are replaced as a whole, never rewritten in place.
class Mapping {
public:
    // The whole file, read-only. A file of zero bytes gives an empty span.
    static Result<Mapping> readOnly(int fd);

    Mapping(Mapping &&other) noexcept : m_bytes(std::exchange(other.m_bytes, {})) { }
    Mapping &operator=(Mapping &&other) noexcept
    {
        std::swap(m_bytes, other.m_bytes);
        return *this;
    }
    TYX_EXPORT ~Mapping();

    [[nodiscard]] std::span<const std::byte> bytes() const { return m_bytes; }

private:
    explicit Mapping(std::span<std::byte> bytes) : m_bytes(bytes) { }

    std::span<std::byte> m_bytes;
};

}
