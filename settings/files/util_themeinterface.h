// The theme that the phone shows.
#pragma once

#include "platform/tyxexport.h"

struct ThemeInfo; // of <SystemStatus>

class TYX_EXPORT UTIL_ThemeInterface {
public:
    // Reads the theme from "/tmp/tyx_theme.cfg", group "THEME_CONFIG_TABLE": "ThemeId", "ThemeColor1" to
    // "ThemeColor7", "ThemeStyle", "ThemeSkinFile", "ThemeIconPath" and "ThemeSoundPath". What is missing is 0, white,
    // 1 and empty; so is a text of more than 255 bytes. Always true.
    static bool getThemeInfo(ThemeInfo &info);
};
