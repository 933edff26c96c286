// What tyx settings does, for other sub-commands about some of the settings.
#pragma once

#include <string>

namespace tyx {

// Both yield an exit status.
[[nodiscard]] int listSettings(const std::string &prefix, bool json); // those whose names begin so
[[nodiscard]] int setSetting(const std::string &name, const std::string &value);

}
