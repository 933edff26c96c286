// How one kind of sound is set.
#pragma once

#include <QtGlobal>

struct SoundInfo {
    qint32 style = 2; // of touch sounds: 0 silent, 1 a click, 2 a tone
    qint32 volume = 7; // 0 to 9
};
