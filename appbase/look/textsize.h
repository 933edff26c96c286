// How large the user wants texts to be.
#pragma once

// As the setting "TextSize" says it: group "SYS_SYSTEM_SET" of "/tmp/tyx_system.cfg".
enum class TextSize { Small = 0, Normal = 1, Large = 2 };

TextSize currentTextSize(); // read afresh; Normal when the setting is missing or none of the above

int decipointsOf(TextSize size); // tenths of a point, on a screen of 96 dots an inch
