// The sound of the pen on the screen.
#pragma once

#include "appbase/messaging/soundqueue.h"
#include "settings/status/systemstatus.h"

// What each style plays; null for silence, which every other number means too.
const char *touchSoundFile(quint32 style);

// One in the application object.
class TouchSound {
public:
    void open() { m_queue.open(); }
    void set(const SoundInfo &info) { m_info = info; }
    void play();

private:
    SoundQueue m_queue;
    SoundInfo m_info{};
};
