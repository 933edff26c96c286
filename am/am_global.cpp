#include "am/am_global.h"

#include "am/registrylock.h"

#include <cstdlib>

QString AM_Global::getInstalledQtDir(int device) { return QString::fromLocal8Bit(am::installedQtDirectory(device)); }

const char *am::installedQtDirectory(int device)
{
    constexpr int kPhone = 1;
    return device == kPhone ? std::getenv("TYX_INSTALLED_QT_PATH") : nullptr;
}
