#include "settings/files/settingkeys.h"

#include <array>

namespace settings {

namespace {

// Arrays of settings count as their elements.
template <typename S> constexpr std::size_t kCount = 1;
template <typename T, std::size_t N> constexpr std::size_t kCount<Setting<T>[N]> = N;

template <typename T> constexpr void append(Row *&end, const Setting<T> &setting) { *end++ = row(setting); }
template <typename T, std::size_t N> constexpr void append(Row *&end, const Setting<T> (&all)[N])
{
    for (const Setting<T> &setting : all)
        append(end, setting);
}

template <typename... S> constexpr auto joined(const S &...settings)
{
    std::array<Row, (kCount<S> + ...)> rows{};
    Row *end = rows.data();
    (append(end, settings), ...);
    return rows;
}

using namespace keys;

// clang-format off
constexpr auto kRows = joined(
    language, userLanguage,
    inputMethodType, inputWritingHand, inputWordCompletion, inputUserDictionary, inputWritingSpeed, inputWaterMark,
    inputLanguage, inputSecondLanguage, inputToolTip, inputNextWord, inputMethodOrder,
    powerOffStatus, powerOffHour, powerOffMinute, batterySaved, lcdSleepTime, backLight, timeFormat,
    wallpaper, powerUpImage, powerDownImage, wallpaperTransparency,
    blendingColor, blendingPercentage, blendingGNB, blendingCST, blendingStatusBar, blendingScrollBar,
    themeNumber, themeColors, themeStyle, themeSkin, themeIcons, themeSounds,
    ringToneType, speakerVolume, touchVolume, systemVolume,
    ringTone1, ringTone2, textMessageSound, instantMessageSound, pushToTalkSound, alarmSound, reminderSound,
    alertStyle, alertSystemVolume, touchScreenType, touchScreenTypeOfSystem, keyPadType, javaSound,
    messageAlert, missedEventAlert, generalAlert, vibrationStyle,
    talkingPhone, commandTone, voiceHelp,
    voiceMailNumber1, voiceMailNumber2, voiceMailName1, voiceMailName2, imsiChanged,
    autoLockTime, phoneLock, phoneLockTimeOut, minUnlockCodeLength, unlockCode, securityCode, keyLockTime,
    instantLock, fixedDial,
    javaHeapSize, javaOtaTimeout,
    bluetoothName, bluetooth, bluetoothNotify, irda, usb,
    browserValues, browserStates, browserStrings, browserBlocks, flexBits);
// clang-format on

}

std::span<const Row> allRows() { return kRows; }

}
