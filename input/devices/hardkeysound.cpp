#include "input/devices/hardkeysound.h"

#include "appbase/messaging/soundqueue.h"
#include "settings/status/systemstatus.h"

#include <Qt>
#include <optional>

namespace {

constexpr std::size_t kMostWaiting = 6;

std::optional<SoundInfo> theInfo;

SoundQueue &queue()
{
    static SoundQueue theQueue;
    return theQueue;
}

const char *soundFile(int key)
{
    switch (key) {
    case Qt::Key_F6:
        return "Hard_Key_Send.wav";
    case Qt::Key_Backspace:
        return "Hard_Key_Clear.wav";
    case Qt::Key_F7:
        return "Hard_Key_End.wav";
    default:
        return "Hard_Key_Default.wav";
    }
}

}

void UTIL_HardKeySound::getHKSoundInfo()
{
    SoundInfo info;
    UTIL_GetHKSoundInfo(&info);
    theInfo = info;
}

void UTIL_HardKeySound::soundHardKey(int key)
{
    if (!theInfo)
        getHKSoundInfo();
    const SoundInfo &info = *theInfo; // NOLINT(bugprone-unchecked-optional-access): just read
    if (info.style == 0)
        return;
    const auto waiting = queue().waiting();
    if (waiting && *waiting <= kMostWaiting)
        queue().send({quint32(info.style), quint32(info.volume), soundFile(key)});
}
