// What a fuzz target holds to be true: if it is not, the fuzzer has found something.
#pragma once

#include <cstdlib>

inline void require(bool condition)
{
    if (!condition)
        std::abort();
}
