#include "appbase/application/themepaths.h"

#include "res/share/util_shareimage.h"
#include "res/skin/skinshare.h"
#include "res/skin/util_skinfilereader.h"
#include "settings/status/systemstatus.h"

#include <QFile>
#include <algorithm>

namespace {

// `given` is what `name` was before a theme of the phone took its place; the programs that this one starts know it too.
struct Variable {
    const char *name;
    const char *given;
};

constexpr Variable skinFile{"TYX_RES_SKIN_FILE", "TYX_GIVEN_RES_SKIN_FILE"};
constexpr Variable iconPath{"TYX_DOWNLOAD_RES_ICON_PATH", "TYX_GIVEN_DOWNLOAD_RES_ICON_PATH"};

QString pathOf(const char (&ofTheme)[256], const Variable &variable)
{
    if (!qEnvironmentVariableIsSet(variable.given))
        qputenv(variable.given, qgetenv(variable.name));
    return QFile::decodeName(ofTheme[0] != 0 ? QByteArray(ofTheme) : qgetenv(variable.given));
}

void publish(const Variable &variable, const QString &path)
{
    if (!path.isEmpty())
        qputenv(variable.name, QFile::encodeName(path));
    else if (!qEnvironmentVariableIsEmpty(variable.name))
        qunsetenv(variable.name); // of a theme that was taken off
}

}

ThemePaths themePaths()
{
    ThemeInfo theme;
    UTIL_GetThemeInfo(&theme);
    return {pathOf(theme.texts[0], skinFile), pathOf(theme.texts[1], iconPath)};
}

void publishThemePaths(const ThemePaths &paths)
{
    publish(skinFile, paths.skinFile);
    publish(iconPath, paths.iconPath);
}

bool shareSkin(const QString &file)
{
    QPixmap image;
    return res::shareSkin(file) && UTIL_SkinFileReader::pSkinImage->getImage(image) && !image.isNull();
}

void keepSkin(const QString &file)
{
    ThemeInfo theme;
    UTIL_GetThemeInfo(&theme);
    const QByteArray path = QFile::encodeName(file);
    std::ranges::fill(theme.texts[0], 0);
    if (path.size() < qsizetype(sizeof(theme.texts[0])))
        std::ranges::copy(path, theme.texts[0]);
    UTIL_SetThemeInfo(&theme);
}
