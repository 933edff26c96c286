#include "appbase/application/themepaths.h"

#include "settings/status/systemstatus.h"

#include <QFile>

namespace {

constexpr char kSkinFile[] = "TYX_RES_SKIN_FILE";
constexpr char kIconPath[] = "TYX_DOWNLOAD_RES_ICON_PATH";

void publish(const char *variable, const QString &path)
{
    if (!path.isEmpty())
        qputenv(variable, QFile::encodeName(path));
}

}

ThemePaths themePaths()
{
    ThemeInfo theme;
    UTIL_GetThemeInfo(&theme);
    const auto path = [&](int text, const char *variable) {
        return QFile::decodeName(theme.texts[text][0] != 0 ? QByteArray(theme.texts[text]) : qgetenv(variable));
    };
    return {path(0, kSkinFile), path(1, kIconPath)};
}

void publishThemePaths(const ThemePaths &paths)
{
    publish(kSkinFile, paths.skinFile);
    publish(kIconPath, paths.iconPath);
}
