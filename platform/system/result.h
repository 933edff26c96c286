// The answer of everything that calls the system: a value, or which call failed and why.
#pragma once

#include "platform/tyxexport.h"

#include <QString>
#include <cerrno>
#include <tl/expected.hpp>

namespace platform {

// `call` is a literal naming the system call ("open", "rename"); `number` is its errno.
struct SysError {
    const char *call = "";
    int number = 0;

    [[nodiscard]] TYX_EXPORT QString text() const; // "rename: Permission denied"
};

template <typename T = void> using Result = tl::expected<T, SysError>;

// Keeps errno at the place of the failure: `return failed("open");`
[[nodiscard]] inline tl::unexpected<SysError> failed(const char *call, int number = errno)
{
    return tl::make_unexpected(SysError{call, number});
}

}
