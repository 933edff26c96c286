#include "appbase/application/touchsound.h"

const char *touchSoundFile(quint32 style)
{
    switch (style) {
    case 1:
        return "/usr/SYSqtapp/setup/soundfile/Touch_Scr_Click.wav";
    case 2:
        return "/usr/SYSqtapp/setup/soundfile/Touch_Scr_Tone.wav";
    default:
        return nullptr;
    }
}

void TouchSound::play()
{
    if (const char *file = touchSoundFile(m_info.style))
        m_queue.send({quint32(m_info.style), quint32(m_info.volume), file});
}
