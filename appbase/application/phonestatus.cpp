#include "appbase/application/phonestatus.h"

SoundInfo touchPanelSoundInfo()
{
    SoundInfo info;
    UTIL_GetTPSoundInfo(&info);
    return info;
}

bool callComesIn() { return UTIL_GetIncomingCallStatus(); }
