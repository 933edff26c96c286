// The sounds of the phone's own keys.
#pragma once

#include "platform/tyxexport.h"

// Puts them into the queue of the phone's player, the one that the touch panel's sounds go into. Never waits. GUI
// thread only.
class TYX_EXPORT UTIL_HardKeySound { // name fixed
public:
    // The sound of a key (Qt::Key), as the setting says; none while that is silence, and none when more than six sounds
    // are waiting: clicks that come late are worse than none.
    static void soundHardKey(int key);

    // Reads the setting again; soundHardKey() does it when it is first called.
    static void getHKSoundInfo();
};
