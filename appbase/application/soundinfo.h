// How one kind of sound is set.
#pragma once

#include <QtGlobal>

struct SoundInfo {
    quint32 style; // of touch sounds: 0 silent, 1 a click, 2 a tone
    quint32 volume;
};
