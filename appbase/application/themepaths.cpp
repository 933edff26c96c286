#include "appbase/application/themepaths.h"

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

ThemePaths themePaths() { return {QFile::decodeName(qgetenv(kSkinFile)), QFile::decodeName(qgetenv(kIconPath))}; }

void publishThemePaths(const ThemePaths &paths)
{
    publish(kSkinFile, paths.skinFile);
    publish(kIconPath, paths.iconPath);
}
