// The pipe through which test programs press keys on a phone under test.
#pragma once

#include "platform/system/fd.h"

namespace testpipe {

inline constexpr char kPath[] = "/tmp/TSTAGN_K";

// The environment says that this phone is under test: platform::isFlexBitSet(), or TYX_TEST_AGENT=1.
bool isEnabled();

// Opens the pipe, and makes it (everybody may write to it) if it is not there. What is no pipe is not used.
platform::Result<platform::Fd> open();

}
