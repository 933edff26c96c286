#include "settings/files/util_themeinterface.h"

#include "settings/files/settingaccess.h"
#include "settings/files/settingkeys.h"
#include "settings/status/systemstatus.h"

#include <QFile>
#include <algorithm>

using settings::loadFrom;
namespace keys = settings::keys;

namespace {

quint32 number(SETUP_SET_Manager &file, const settings::Setting<int> &key)
{
    int value = 0;
    loadFrom(file, key, value);
    return quint32(value);
}

void path(SETUP_SET_Manager &file, const settings::Setting<QStringView> &key, char (&field)[256])
{
    QString value;
    loadFrom(file, key, value);
    const QByteArray bytes = QFile::encodeName(value);
    std::ranges::fill(field, 0);
    if (bytes.size() < qsizetype(sizeof(field))) // half a path is another one
        std::ranges::copy(bytes, field);
}

}

bool UTIL_ThemeInterface::getThemeInfo(ThemeInfo &info)
{
    SETUP_SET_Manager file(settings::copyName(settings::File::Theme), false);
    auto *next = info.numbers;
    *next++ = number(file, keys::themeNumber);
    for (const auto &color : keys::themeColors)
        *next++ = number(file, color);
    *next = number(file, keys::themeStyle);
    path(file, keys::themeSkin, info.texts[0]);
    path(file, keys::themeIcons, info.texts[1]);
    path(file, keys::themeSounds, info.texts[2]);
    return true;
}
