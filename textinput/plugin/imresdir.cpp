#include "textinput/plugin/imresdir.h"

#include <QDir>

namespace {

constexpr qsizetype kMostLibraries = 100; // a folder full of them must not keep the phone busy

}

QString IM_ResDir::getIMPluginDir(int kind)
{
    const QString folder = QStringLiteral("/inputmethods/");
    switch (kind) {
    case Phone:
        return qEnvironmentVariable("QTDIR") + QStringLiteral("/lib") + folder;
    case Language:
        return qEnvironmentVariable("TYX_LANG") + folder;
    case Downloaded:
        return qEnvironmentVariable("TYX_LOCAL_DOWNLOAD_PATH") + folder;
    default:
        return qEnvironmentVariable("TYX_APP_WRITE_PATH") + folder;
    }
}

QStringList IM_ResDir::libraries(int kind)
{
    const QDir folder(getIMPluginDir(kind));
    QStringList paths;
    for (const QString &name : folder.entryList({QStringLiteral("lib*.so")}, QDir::Files, QDir::Name)) {
        if (paths.size() < kMostLibraries)
            paths.append(folder.absoluteFilePath(name));
    }
    return paths;
}
