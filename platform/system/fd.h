// A file descriptor with one owner.
#pragma once

#include "platform/system/result.h"
#include "platform/tyxexport.h"

#include <cstddef>
#include <span>
#include <sys/types.h>
#include <utility>

namespace platform {

class TYX_EXPORT Fd {
public:
    Fd() = default;
    static Fd own(int fd) { return Fd(fd); } // takes over what another call opened; -1 owns nothing

    // open(2) with O_CLOEXEC, retried after a signal.
    static Result<Fd> open(const char *path, int flags, mode_t mode = 0);

    Fd(Fd &&other) noexcept : m_fd(other.give()) { }
    Fd &operator=(Fd &&other) noexcept
    {
        reset(other.give());
        return *this;
    }
    ~Fd() { reset(); }

    [[nodiscard]] int get() const { return m_fd; }
    [[nodiscard]] int give() { return std::exchange(m_fd, -1); } // the caller closes it
    explicit operator bool() const { return m_fd >= 0; }
    void reset(int fd = -1)
    {
        if (m_fd >= 0 && m_fd != fd)
            closeOwn();
        m_fd = fd;
    }

    // close(2) with its answer, for writers: a full quota or a lost server shows only here.
    Result<> close();

private:
    explicit Fd(int fd) : m_fd(fd) { }
    void closeOwn();

    int m_fd = -1;
};

// Writes all of `bytes`, whatever pieces the system takes them in.
TYX_EXPORT Result<> writeAll(int fd, std::span<const std::byte> bytes);

}
