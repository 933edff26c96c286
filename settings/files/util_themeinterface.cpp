#include "settings/files/util_themeinterface.h"

#include "settings/files/settingaccess.h"
#include "settings/files/settingkeys.h"

using settings::loadFrom;
namespace keys = settings::keys;

bool UTIL_ThemeInterface::getThemeInfo(ThemeFiles &info)
{
    SETUP_SET_Manager file(settings::copyName(settings::File::Theme), false);
    auto number = info.numbers.begin();
    loadFrom(file, keys::themeNumber, *number++);
    for (const auto &color : keys::themeColors)
        loadFrom(file, color, *number++);
    loadFrom(file, keys::themeStyle, *number);
    loadFrom(file, keys::themeSkin, info.skinFile);
    loadFrom(file, keys::themeIcons, info.iconPath);
    loadFrom(file, keys::themeSounds, info.soundPath);
    return true;
}
