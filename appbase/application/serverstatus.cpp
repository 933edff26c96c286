#include "appbase/application/serverstatus.h"

#include "appbase/config/zconfig.h"
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

}

ServerStatus::ServerStatus()
{
    UTIL_CreateSystemStatusTable();
    UTIL_InitSystemTable();
    UTIL_CreateApplicationManagerStatusTable();
    handOverSounds();
}

ServerStatus::~ServerStatus()
{
    UTIL_ReleaseApplicationManagerStatusTable();
    UTIL_ReleaseSystemTable();
}
