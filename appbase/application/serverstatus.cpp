#include "appbase/application/serverstatus.h"

#include "appbase/config/zconfig.h"
#include "settings/files/setup_utility.h"
#include "settings/files/util_themeinterface.h"
#include "settings/status/systemstatus.h"

namespace {

// Both kinds of sound have the volume of the system.
void handOverSounds()
{
    ZConfig alerts(QStringLiteral("/tmp/tyx_alertstyle.cfg"), false);
    const auto number = [&](const QString &key, int absent) {
        return alerts.readNumEntry(QStringLiteral("ALERTSTYLE_CONFIG_TABLE"), key, absent);
    };
    const int volume = number(QStringLiteral("AlertSystemVolume"), 9);
    const SoundInfo touchPanel{number(QStringLiteral("AlertTouchScreenStyle"), 2), volume};
    const SoundInfo hardKeys{number(QStringLiteral("AlertKeypadStyle"), 2), volume};
    UTIL_SetTPSoundInfo(&touchPanel);
    UTIL_SetHKSoundInfo(&hardKeys);
}

void handOver(bool (*get)(int &), void (*set)(quint32))
{
    int percent = 0;
    get(percent);
    set(quint32(percent));
}

void handOverBlending()
{
    using S = SETUP_Utility;
    bool transparent = true;
    S::getWallpaperTransparency(transparent);
    UTIL_SetTransparency(transparent);
    unsigned color = 0;
    S::getBlendingColor(color);
    UTIL_SetBlendingColor(color);
    handOver(S::getBlendingPercentage, UTIL_SetBlendingPercentage);
    handOver(S::getBlendingCST, UTIL_SetBlendingCST);
    handOver(S::getBlendingGNB, UTIL_SetBlendingGNB);
    handOver(S::getBlendingStatusBar, UTIL_SetBlendingStatusBar);
    handOver(S::getBlendingScrollBar, UTIL_SetBlendingScrollBar);
}

}

ServerStatus::ServerStatus()
{
    UTIL_CreateSystemStatusTable();
    UTIL_InitSystemTable();
    UTIL_CreateApplicationManagerStatusTable();
}

ServerStatus::~ServerStatus()
{
    UTIL_ReleaseApplicationManagerStatusTable();
    UTIL_ReleaseSystemTable();
}

void handOverTheme()
{
    ThemeInfo theme;
    UTIL_ThemeInterface::getThemeInfo(theme);
    UTIL_SetThemeInfo(&theme);
}

void handOverSettings()
{
    handOverTheme();
    handOverSounds();
    handOverBlending();
}
