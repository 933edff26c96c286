// The theme that the phone shows.
#pragma once

#include "platform/tyxexport.h"

#include <QString>
#include <QtGlobal>
#include <array>

// As it stands in the settings; the status table keeps the same, with texts cut to their fields.
struct ThemeFiles {
    std::array<qint32, 9> numbers{}; // the theme's number, seven colours 0xRRGGBB, how they are used
    QString skinFile;
    QString iconPath;
    QString soundPath;
};

class TYX_EXPORT UTIL_ThemeInterface {
public:
    // Reads the theme from "/tmp/tyx_theme.cfg", group "THEME_CONFIG_TABLE": "ThemeId", "ThemeColor1" to
    // "ThemeColor7", "ThemeStyle", "ThemeSkinFile", "ThemeIconPath" and "ThemeSoundPath". What is missing is 0, white,
    // 1 and empty. Always true.
    static bool getThemeInfo(ThemeFiles &info);
};
