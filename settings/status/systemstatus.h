// The phone's live state, which all its processes share: a getter and a setter for each field.
//
// The state is a table in System V shared memory; docs/status.md lists its fields. The GUI server makes it. As long as
// there is none, getters answer their default (0, false or "", and 0xFF for power-on mode, SIM card and PIN) and
// setters do nothing.
//
// Every call finds the table anew (about 5 us), so that one that was made later is seen at once; who wants many fields
// takes a copy. May be called from any thread, without an application object. Nothing is locked: a reader may see a
// number of several bytes half written, and a field has one process that writes it. What the values of a field mean is
// a matter of the service that writes it.
#pragma once

#include "platform/tyxexport.h"

#include <QtGlobal>

// The names of all functions here are fixed, their spelling included.

// What the phone looks like, as the settings "theme-..." have it. A text of more than 255 characters is stored as an
// empty one.
struct ThemeInfo {
    quint32 numbers[9]; // the theme's own; seven colours as 0x00RRGGBB; how the colours are used
    char texts[3][256]; // the skin file, the folder of downloaded icons, the folder of the theme's sounds
};
static_assert(sizeof(ThemeInfo) == 804);

// The sound that a touch or a key makes.
struct SoundInfo {
    qint32 style; // of the touch panel 1 is a click, 2 a tone, all others none; of a key 0 is none
    qint32 volume; // 0 (silent) to 9
};

// All of the table in one access, as other processes see its bytes.
struct SystemTableCopy {
    quint8 bytes[1456]; // numbers are little-endian, at the offsets that docs/status.md lists
};

// Fills `copy`; false without a table, and then it holds what the getters answer.
TYX_EXPORT bool UTIL_CopySystemTable(SystemTableCopy *copy);

// Numbers and switches; a switch is set by any non-zero value.
// clang-format off
TYX_EXPORT quint32 UTIL_GetPhoneAudioPath();
TYX_EXPORT void UTIL_SetPhoneAudioPath(quint32 value);
TYX_EXPORT quint16 UTIL_GetEMUBus_Acc_Status();
TYX_EXPORT void UTIL_SetEMUBus_Acc_Status(quint16 value);
TYX_EXPORT quint8 UTIL_GetPowerOnMode();
TYX_EXPORT void UTIL_SetPowerOnMode(quint8 value);
TYX_EXPORT quint8 UTIL_GetPowerOnProcess();
TYX_EXPORT void UTIL_SetPowerOnProcess(quint8 value);
TYX_EXPORT bool UTIL_GetPhoneLockStatus();
TYX_EXPORT void UTIL_SetPhoneLockStatus(int value);
TYX_EXPORT bool UTIL_GetRFMode();
TYX_EXPORT void UTIL_SetRFMode(int value);
TYX_EXPORT quint8 UTIL_GetSimCardStatus();
TYX_EXPORT void UTIL_SetSimCardStatus(quint8 value);
TYX_EXPORT quint8 UTIL_GetPinStatus();
TYX_EXPORT void UTIL_SetPinStatus(quint8 value);
TYX_EXPORT quint8 UTIL_GetBatteryStatus();
TYX_EXPORT void UTIL_SetBatteryStatus(quint8 value);
TYX_EXPORT quint8 UTIL_GetBatteryLevel();
TYX_EXPORT void UTIL_SetBatteryLevel(quint8 value);
TYX_EXPORT quint8 UTIL_GetGprsFeatureStatus();
TYX_EXPORT void UTIL_SetGprsFeatureStatus(quint8 value);
TYX_EXPORT quint8 UTIL_GetBtStatus();
TYX_EXPORT void UTIL_SetBtStatus(quint8 value);
TYX_EXPORT quint8 UTIL_GetBtConnCount();
TYX_EXPORT void UTIL_SetBtConnCount(quint8 value);
TYX_EXPORT quint8 UTIL_GetRoamStatus();
TYX_EXPORT void UTIL_SetRoamStatus(quint8 value);
TYX_EXPORT quint8 UTIL_GetHomeZoneStatus();
TYX_EXPORT void UTIL_SetHomeZoneStatus(quint8 value);
TYX_EXPORT quint8 UTIL_GetNotificationStatus();
TYX_EXPORT void UTIL_SetNotificationStatus(quint8 value);
TYX_EXPORT quint8 UTIL_GetPhoneCallIconIndex();
TYX_EXPORT void UTIL_SetPhoneCallIconIndex(quint8 value);
TYX_EXPORT quint8 UTIL_GetMMSLaunchCamera();
TYX_EXPORT void UTIL_SetMMSLaunchCamera(quint8 value);
TYX_EXPORT quint8 UTIL_GetAddrLaunchCamera();
TYX_EXPORT void UTIL_SetAddrLaunchCamera(quint8 value);
TYX_EXPORT bool UTIL_GetIncomingCallStatus();
TYX_EXPORT void UTIL_SetIncomingCallStatus(int value);
TYX_EXPORT bool UTIL_GetBTHSStatus();
TYX_EXPORT void UTIL_SetBTHSStatus(int value);
TYX_EXPORT bool UTIL_GetHeadsetStatus();
TYX_EXPORT void UTIL_SetHeadsetStatus(int value);
TYX_EXPORT bool UTIL_GetPhoneAudioDeviceStatus();
TYX_EXPORT void UTIL_SetPhoneAudioDeviceStatus(int value);
TYX_EXPORT quint8 UTIL_GetPhoneLine();
TYX_EXPORT void UTIL_SetPhoneLine(quint8 value);
TYX_EXPORT bool UTIL_GetPhoneInCall();
TYX_EXPORT void UTIL_SetPhoneInCall(int value);
TYX_EXPORT bool UTIL_GetChargeStatus();
TYX_EXPORT void UTIL_SetChargeStatus(int value);
TYX_EXPORT quint8 UTIL_GetGprsServiceStatus();
TYX_EXPORT void UTIL_SetGprsServiceStatus(quint8 value);
TYX_EXPORT quint8 UTIL_GetGprsAttachStatus();
TYX_EXPORT void UTIL_SetGprsAttachStatus(quint8 value);
TYX_EXPORT quint8 UTIL_GetGprsActivatedStatus();
TYX_EXPORT void UTIL_SetGprsActivatedStatus(quint8 value);
TYX_EXPORT bool UTIL_GetFlipStatus();
TYX_EXPORT void UTIL_SetFlipStatus(int value);
TYX_EXPORT quint8 UTIL_GetDataConnStatus();
TYX_EXPORT void UTIL_SetDataConnStatus(quint8 value);
TYX_EXPORT bool UTIL_GetPhoneApplicationStatus();
TYX_EXPORT void UTIL_SetPhoneApplicationStatus(int value);
TYX_EXPORT quint8 UTIL_GetEgprsServiceStatus();
TYX_EXPORT void UTIL_SetEgprsServiceStatus(quint8 value);
TYX_EXPORT quint8 UTIL_GetEgprsTransStatus();
TYX_EXPORT void UTIL_SetEgprsTransStatus(quint8 value);
TYX_EXPORT quint8 UTIL_GetIrdaBusyStatus();
TYX_EXPORT void UTIL_SetIrdaBusyStatus(quint8 value);
TYX_EXPORT bool UTIL_GetAMApplicationStatus();
TYX_EXPORT void UTIL_SetAMApplicationStatus(int value);
TYX_EXPORT bool UTIL_GetPowerOffStatus();
TYX_EXPORT void UTIL_SetPowerOffStatus(int value);
TYX_EXPORT quint32 UTIL_GetCountryId();
TYX_EXPORT void UTIL_SetCountryId(quint32 value);
TYX_EXPORT quint8 UTIL_GetBtHandfreeStatus();
TYX_EXPORT void UTIL_SetBtHandfreeStatus(quint8 value);
TYX_EXPORT quint8 UTIL_GetCphsLineLockStatus();
TYX_EXPORT void UTIL_SetCphsLineLockStatus(quint8 value);
TYX_EXPORT bool UTIL_GetTTYDeviceStatus();
TYX_EXPORT void UTIL_SetTTYDeviceStatus(int value);
TYX_EXPORT quint32 UTIL_GetUSBConnectionStatus();
TYX_EXPORT void UTIL_SetUSBConnectionStatus(quint32 value);
TYX_EXPORT quint32 UTIL_GetUSBChargingStatus();
TYX_EXPORT void UTIL_SetUSBChargingStatus(quint32 value);
TYX_EXPORT quint32 UTIL_GetUSBDeviceType();
TYX_EXPORT void UTIL_SetUSBDeviceType(quint32 value);
TYX_EXPORT quint32 UTIL_GetEarpieceSafety();
TYX_EXPORT void UTIL_SetEarpieceSafety(quint32 value);
TYX_EXPORT quint8 UTIL_GetMMCSDStatus();
TYX_EXPORT void UTIL_SetMMCSDStatus(quint8 value);
TYX_EXPORT quint32 UTIL_GetA2dpStatus();
TYX_EXPORT void UTIL_SetA2dpStatus(quint32 value);
TYX_EXPORT quint8 UTIL_GetSignalQuality();
TYX_EXPORT void UTIL_SetSignalQuality(int bars); // 0..5; what is beyond becomes the nearest of these
TYX_EXPORT bool UTIL_GetTimingPhoneLock();
TYX_EXPORT void UTIL_SetTimingPhoneLock(bool value);
// clang-format on

// Getters that fill what they are given; a null pointer is left alone.
// clang-format off
TYX_EXPORT void UTIL_GetBatteryPercent(quint8 *first, quint8 *second);
TYX_EXPORT void UTIL_SetBatteryPercent(quint8 first, quint8 second);
TYX_EXPORT void UTIL_GetTotalDataBytes(quint32 *first, quint32 *second, quint32 *third);
TYX_EXPORT void UTIL_SetTotalDataBytes(quint32 first, quint32 second, quint32 third);
TYX_EXPORT void UTIL_GetTransparency(bool *value);
TYX_EXPORT void UTIL_SetTransparency(bool value);
TYX_EXPORT void UTIL_GetTotalDuration(quint32 *value);
TYX_EXPORT void UTIL_SetTotalDuration(quint32 value);
TYX_EXPORT void UTIL_GetDataCallStaus(quint8 *value); // name fixed
TYX_EXPORT void UTIL_SetDataCallStatus(quint8 value);
TYX_EXPORT void UTIL_GetBlendingColor(quint32 *value);
TYX_EXPORT void UTIL_SetBlendingColor(quint32 value);
TYX_EXPORT void UTIL_GetBlendingPercentage(quint32 *value);
TYX_EXPORT void UTIL_SetBlendingPercentage(quint32 value);
TYX_EXPORT void UTIL_GetBlendingGNB(quint32 *value);
TYX_EXPORT void UTIL_SetBlendingGNB(quint32 value);
TYX_EXPORT void UTIL_GetBlendingCST(quint32 *value);
TYX_EXPORT void UTIL_SetBlendingCST(quint32 value);
TYX_EXPORT void UTIL_GetBlendingStatusBar(quint32 *value);
TYX_EXPORT void UTIL_SetBlendingStatusBar(quint32 value);
TYX_EXPORT void UTIL_GetBlendingScrollBar(quint32 *value);
TYX_EXPORT void UTIL_SetBlendingScrollBar(quint32 value);
TYX_EXPORT void UTIL_GetUsbMassStorage(quint8 *value);
TYX_EXPORT void UTIL_SetUsbMassStorage(quint8 value);
// clang-format on

// Records, whole. A null pointer does nothing.
TYX_EXPORT void UTIL_GetThemeInfo(ThemeInfo *info);
TYX_EXPORT void UTIL_SetThemeInfo(const ThemeInfo *info);
TYX_EXPORT void UTIL_GetTPSoundInfo(SoundInfo *info); // touch panel
TYX_EXPORT void UTIL_SetTPSoundInfo(const SoundInfo *info);
TYX_EXPORT void UTIL_GetHKSoundInfo(SoundInfo *info); // hard keys
TYX_EXPORT void UTIL_SetHKSoundInfo(const SoundInfo *info);

// 8-bit texts. The buffer of a getter holds the bytes named here, all of which are written; the text is one shorter at
// most. A setter cuts what is longer; null clears.
TYX_EXPORT void UTIL_GetNetworkId(char *text); // 16 bytes
TYX_EXPORT void UTIL_SetNetworkId(const char *text);
TYX_EXPORT void UTIL_GetServiceName(char *text); // 61 bytes
TYX_EXPORT void UTIL_SetServiceName(const char *text);
TYX_EXPORT void UTIL_GetSpnName(char *text); // 61 bytes
TYX_EXPORT void UTIL_SetSpnName(const char *text);
TYX_EXPORT void UTIL_GetHomeZoneName(char *text); // 22 bytes
TYX_EXPORT void UTIL_SetHomeZoneName(const char *text);
TYX_EXPORT void UTIL_GetCphsOperatorName(char *text); // 61 bytes
TYX_EXPORT void UTIL_SetCphsOperatorName(const char *text);

// Dialogs of five priorities, 0 the most important. One may be shown while none of a more important priority is up;
// without a table, and for a priority beyond 4, always. Set and Reset tell that one is up and that it is gone; beyond 4
// they do nothing.
TYX_EXPORT bool UTIL_GetDlgPriority(int priority);
TYX_EXPORT void UTIL_SetDlgPriority(int priority);
TYX_EXPORT void UTIL_ResetDlgPriority(int priority);

// Services of the SIM card after CPHS. Six bytes: SIM status (1 or 2: a CPHS SIM, 2: of phase 2), voice-mail indicator,
// short operator name, customer service profile, information numbers, and one that only travels in the table.
TYX_EXPORT void UTIL_SetCphsInfo(const quint8 *info);
TYX_EXPORT bool UTIL_GetCphsSimCardStatus();
TYX_EXPORT bool UTIL_GetCphsVMStatus();
TYX_EXPORT bool UTIL_GetCphsOpnShortformSatus(); // phase 2 only
TYX_EXPORT bool UTIL_GetCphsCspStatus();
TYX_EXPORT bool UTIL_GetCphsInfoNumsStatus(); // phase 2 only

// False only while the SIM card is 3 or 0, the PIN 3 or 7, the radio off and the phone not locked.
TYX_EXPORT bool UTIL_GetPhoneSystemStatus();
// False only while the SIM card is 0 or 3 and the PIN 7 or 3.
TYX_EXPORT bool UTIL_GetSIMPinBatteryStatus();

// What follows is for the process that owns the tables, the GUI server, and its GUI thread.

// Makes the table, or opens the one that is there, and keeps it attached; its bytes are not touched. Ends the process
// with status -1 when the system refuses the memory.
TYX_EXPORT void UTIL_CreateSystemStatusTable();
// Stores the initial values; nothing before the table was created and after it was released.
TYX_EXPORT void UTIL_InitSystemTable();
// Takes the table away from all processes.
TYX_EXPORT void UTIL_ReleaseSystemTable();
// The same for the table of the application manager, 4096 bytes that start as zeros.
TYX_EXPORT void UTIL_CreateApplicationManagerStatusTable();
TYX_EXPORT void UTIL_ReleaseApplicationManagerStatusTable();

// An attachment of the caller's own, 4096 bytes, to be detached with shmdt(2); null when there is no table.
TYX_EXPORT void *UTIL_GetTableAddress();
TYX_EXPORT void *UTIL_GetApplicationManagerTableAddress(); // makes the segment when it is missing
