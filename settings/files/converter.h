// Where the converter is. Not installed.
#pragma once

namespace settings {

inline constexpr const char *kConverter = "/usr/SYStapi/converter";

}
