// The accessors with a rule of their own.
#include "settings/status/statustable.h"
#include "settings/status/systemstatus.h"

#include <algorithm>

using namespace status;

namespace {

bool isCphsSim(quint8 simStatus) { return simStatus == 1 || simStatus == 2; }
constexpr quint8 kPhase2 = 2;

// One byte of the CPHS information together with the SIM status that it depends on, from one access.
bool cphsService(std::size_t index, bool phase2Only)
{
    const auto info = read(cphsInfo);
    return (phase2Only ? info[0] == kPhase2 : isCphsSim(info[0])) && info[index] == 1;
}

// Slots beyond the last, negative ones included, are nobody's.
bool isSlot(int priority) { return unsigned(priority) < std::tuple_size_v<decltype(dialogPriority.initial)>; }

}

void UTIL_SetSignalQuality(int bars) { write(signalQuality, quint8(std::clamp(bars, 0, int(signalQuality.max)))); }

void UTIL_GetBatteryPercent(quint8 *first, quint8 *second)
{
    const auto values = read(batteryPercent);
    if (first)
        *first = values[0];
    if (second)
        *second = values[1];
}

void UTIL_GetTotalDataBytes(quint32 *first, quint32 *second, quint32 *third)
{
    const auto values = read(totalDataBytes);
    if (first)
        *first = values[0];
    if (second)
        *second = values[1];
    if (third)
        *third = values[2];
}

void UTIL_GetThemeInfo(ThemeInfo *info)
{
    if (info)
        read(*info);
}

void UTIL_SetThemeInfo(const ThemeInfo *info)
{
    if (info)
        write(*info);
}

bool UTIL_GetDlgPriority(int priority)
{
    if (!isSlot(priority))
        return true;
    const auto slots = read(dialogPriority); // without a table none is up
    return std::find(slots.begin(), slots.begin() + priority, 1) == slots.begin() + priority;
}

void UTIL_SetDlgPriority(int priority)
{
    if (isSlot(priority))
        writeElement(dialogPriority, std::size_t(priority), 1);
}

void UTIL_ResetDlgPriority(int priority)
{
    if (isSlot(priority))
        writeElement(dialogPriority, std::size_t(priority), 0);
}

void UTIL_SetCphsInfo(const quint8 *info)
{
    if (!info)
        return;
    std::array<quint8, 6> bytes = {};
    std::copy_n(info, bytes.size(), bytes.begin());
    write(cphsInfo, bytes);
}

bool UTIL_GetCphsSimCardStatus() { return isCphsSim(read(cphsInfo)[0]); }
bool UTIL_GetCphsVMStatus() { return cphsService(1, false); }
bool UTIL_GetCphsOpnShortformSatus() { return cphsService(2, true); }
bool UTIL_GetCphsCspStatus() { return cphsService(3, false); }
bool UTIL_GetCphsInfoNumsStatus() { return cphsService(4, true); }

// Each question is an access of its own, as the other programs of the phone ask it: what decides first ends it.
bool UTIL_GetPhoneSystemStatus()
{
    if (UTIL_GetSimCardStatus() != 3 && UTIL_GetSimCardStatus() != 0)
        return true;
    if (UTIL_GetPinStatus() != 3 && UTIL_GetPinStatus() != 7)
        return true;
    return UTIL_GetRFMode() || UTIL_GetPhoneLockStatus();
}

bool UTIL_GetSIMPinBatteryStatus()
{
    const quint8 simStatus = UTIL_GetSimCardStatus();
    const quint8 pinStatus = UTIL_GetPinStatus();
    if (simStatus != 0 && simStatus != 3)
        return true;
    return pinStatus != 7 && pinStatus != 3;
}
