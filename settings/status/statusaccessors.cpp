// The accessors that are nothing but their field; those with a rule of their own are in statusrules.cpp.
#include "settings/status/statustable.h"
#include "settings/status/systemstatus.h"

using namespace status;

namespace {

template <typename T> void fill(T *value, Scalar<T> field)
{
    if (value)
        *value = read(field);
}

void fill(bool *value, Flag field)
{
    if (value)
        *value = read(field);
}

void fill(char *text, Text field)
{
    if (text)
        read(field, text);
}

void fill(SoundInfo *info, Array<quint32, 2> field)
{
    if (!info)
        return;
    const auto [style, volume] = read(field);
    *info = {qint32(style), qint32(volume)};
}

void store(Array<quint32, 2> field, const SoundInfo *info)
{
    if (info)
        write(field, {quint32(info->style), quint32(info->volume)});
}

}

// clang-format off
quint32 UTIL_GetPhoneAudioPath() { return read(phoneAudioPath); }
void UTIL_SetPhoneAudioPath(quint32 value) { write(phoneAudioPath, value); }
quint16 UTIL_GetEMUBus_Acc_Status() { return read(emuBusAccessory); }
void UTIL_SetEMUBus_Acc_Status(quint16 value) { write(emuBusAccessory, value); }
quint8 UTIL_GetPowerOnMode() { return read(powerOnMode); }
void UTIL_SetPowerOnMode(quint8 value) { write(powerOnMode, value); }
quint8 UTIL_GetPowerOnProcess() { return read(powerOnProcess); }
void UTIL_SetPowerOnProcess(quint8 value) { write(powerOnProcess, value); }
bool UTIL_GetPhoneLockStatus() { return read(phoneLock); }
void UTIL_SetPhoneLockStatus(int value) { write(phoneLock, value != 0); }
bool UTIL_GetRFMode() { return read(rfMode); }
void UTIL_SetRFMode(int value) { write(rfMode, value != 0); }
quint8 UTIL_GetSimCardStatus() { return read(simCard); }
void UTIL_SetSimCardStatus(quint8 value) { write(simCard, value); }
quint8 UTIL_GetPinStatus() { return read(pin); }
void UTIL_SetPinStatus(quint8 value) { write(pin, value); }
quint8 UTIL_GetBatteryStatus() { return read(battery); }
void UTIL_SetBatteryStatus(quint8 value) { write(battery, value); }
quint8 UTIL_GetBatteryLevel() { return read(batteryLevel); }
void UTIL_SetBatteryLevel(quint8 value) { write(batteryLevel, value); }
quint8 UTIL_GetGprsFeatureStatus() { return read(gprsFeature); }
void UTIL_SetGprsFeatureStatus(quint8 value) { write(gprsFeature, value); }
quint8 UTIL_GetBtStatus() { return read(bluetooth); }
void UTIL_SetBtStatus(quint8 value) { write(bluetooth, value); }
quint8 UTIL_GetBtConnCount() { return read(bluetoothConnections); }
void UTIL_SetBtConnCount(quint8 value) { write(bluetoothConnections, value); }
quint8 UTIL_GetRoamStatus() { return read(roaming); }
void UTIL_SetRoamStatus(quint8 value) { write(roaming, value); }
quint8 UTIL_GetHomeZoneStatus() { return read(homeZone); }
void UTIL_SetHomeZoneStatus(quint8 value) { write(homeZone, value); }
quint8 UTIL_GetNotificationStatus() { return read(notification); }
void UTIL_SetNotificationStatus(quint8 value) { write(notification, value); }
quint8 UTIL_GetPhoneCallIconIndex() { return read(phoneCallIcon); }
void UTIL_SetPhoneCallIconIndex(quint8 value) { write(phoneCallIcon, value); }
quint8 UTIL_GetMMSLaunchCamera() { return read(mmsLaunchesCamera); }
void UTIL_SetMMSLaunchCamera(quint8 value) { write(mmsLaunchesCamera, value); }
quint8 UTIL_GetAddrLaunchCamera() { return read(addressLaunchesCamera); }
void UTIL_SetAddrLaunchCamera(quint8 value) { write(addressLaunchesCamera, value); }
bool UTIL_GetIncomingCallStatus() { return read(incomingCall); }
void UTIL_SetIncomingCallStatus(int value) { write(incomingCall, value != 0); }
bool UTIL_GetBTHSStatus() { return read(bluetoothHeadset); }
void UTIL_SetBTHSStatus(int value) { write(bluetoothHeadset, value != 0); }
bool UTIL_GetHeadsetStatus() { return read(headset); }
void UTIL_SetHeadsetStatus(int value) { write(headset, value != 0); }
bool UTIL_GetPhoneAudioDeviceStatus() { return read(phoneAudioDevice); }
void UTIL_SetPhoneAudioDeviceStatus(int value) { write(phoneAudioDevice, value != 0); }
quint8 UTIL_GetPhoneLine() { return read(phoneLine); }
void UTIL_SetPhoneLine(quint8 value) { write(phoneLine, value); }
bool UTIL_GetPhoneInCall() { return read(phoneInCall); }
void UTIL_SetPhoneInCall(int value) { write(phoneInCall, value != 0); }
bool UTIL_GetChargeStatus() { return read(charging); }
void UTIL_SetChargeStatus(int value) { write(charging, value != 0); }
quint8 UTIL_GetGprsServiceStatus() { return read(gprsService); }
void UTIL_SetGprsServiceStatus(quint8 value) { write(gprsService, value); }
quint8 UTIL_GetGprsAttachStatus() { return read(gprsAttach); }
void UTIL_SetGprsAttachStatus(quint8 value) { write(gprsAttach, value); }
quint8 UTIL_GetGprsActivatedStatus() { return read(gprsActivated); }
void UTIL_SetGprsActivatedStatus(quint8 value) { write(gprsActivated, value); }
bool UTIL_GetFlipStatus() { return read(flip); }
void UTIL_SetFlipStatus(int value) { write(flip, value != 0); }
quint8 UTIL_GetDataConnStatus() { return read(dataConnection); }
void UTIL_SetDataConnStatus(quint8 value) { write(dataConnection, value); }
bool UTIL_GetPhoneApplicationStatus() { return read(phoneApplication); }
void UTIL_SetPhoneApplicationStatus(int value) { write(phoneApplication, value != 0); }
quint8 UTIL_GetEgprsServiceStatus() { return read(egprsService); }
void UTIL_SetEgprsServiceStatus(quint8 value) { write(egprsService, value); }
quint8 UTIL_GetEgprsTransStatus() { return read(egprsTransfer); }
void UTIL_SetEgprsTransStatus(quint8 value) { write(egprsTransfer, value); }
quint8 UTIL_GetIrdaBusyStatus() { return read(irdaBusy); }
void UTIL_SetIrdaBusyStatus(quint8 value) { write(irdaBusy, value); }
bool UTIL_GetAMApplicationStatus() { return read(amApplication); }
void UTIL_SetAMApplicationStatus(int value) { write(amApplication, value != 0); }
bool UTIL_GetPowerOffStatus() { return read(powerOff); }
void UTIL_SetPowerOffStatus(int value) { write(powerOff, value != 0); }
quint32 UTIL_GetCountryId() { return read(countryId); }
void UTIL_SetCountryId(quint32 value) { write(countryId, value); }
quint8 UTIL_GetBtHandfreeStatus() { return read(bluetoothHandsFree); }
void UTIL_SetBtHandfreeStatus(quint8 value) { write(bluetoothHandsFree, value); }
quint8 UTIL_GetCphsLineLockStatus() { return read(cphsLineLock); }
void UTIL_SetCphsLineLockStatus(quint8 value) { write(cphsLineLock, value); }
bool UTIL_GetTTYDeviceStatus() { return read(ttyDevice); }
void UTIL_SetTTYDeviceStatus(int value) { write(ttyDevice, value != 0); }
quint32 UTIL_GetUSBConnectionStatus() { return read(usbConnection); }
void UTIL_SetUSBConnectionStatus(quint32 value) { write(usbConnection, value); }
quint32 UTIL_GetUSBChargingStatus() { return read(usbCharging); }
void UTIL_SetUSBChargingStatus(quint32 value) { write(usbCharging, value); }
quint32 UTIL_GetUSBDeviceType() { return read(usbDeviceType); }
void UTIL_SetUSBDeviceType(quint32 value) { write(usbDeviceType, value); }
quint32 UTIL_GetEarpieceSafety() { return read(earpieceSafety); }
void UTIL_SetEarpieceSafety(quint32 value) { write(earpieceSafety, value); }
quint8 UTIL_GetMMCSDStatus() { return read(memoryCard); }
void UTIL_SetMMCSDStatus(quint8 value) { write(memoryCard, value); }
quint32 UTIL_GetA2dpStatus() { return read(a2dp); }
void UTIL_SetA2dpStatus(quint32 value) { write(a2dp, value); }

bool UTIL_GetTimingPhoneLock() { return read(timingPhoneLock) != 0; }
void UTIL_SetTimingPhoneLock(bool value) { write(timingPhoneLock, quint32(value)); }
quint8 UTIL_GetSignalQuality() { return read(signalQuality); }

void UTIL_SetBatteryPercent(quint8 first, quint8 second) { write(batteryPercent, {first, second}); }
void UTIL_SetTotalDataBytes(quint32 first, quint32 second, quint32 third) { write(totalDataBytes, {first, second, third}); }
void UTIL_GetTransparency(bool *value) { fill(value, transparency); }
void UTIL_SetTransparency(bool value) { write(transparency, value); }
void UTIL_GetTotalDuration(quint32 *value) { fill(value, totalDuration); }
void UTIL_SetTotalDuration(quint32 value) { write(totalDuration, value); }
void UTIL_GetDataCallStaus(quint8 *value) { fill(value, dataCall); }
void UTIL_SetDataCallStatus(quint8 value) { write(dataCall, value); }
void UTIL_GetBlendingColor(quint32 *value) { fill(value, blendingColor); }
void UTIL_SetBlendingColor(quint32 value) { write(blendingColor, value); }
void UTIL_GetBlendingPercentage(quint32 *value) { fill(value, blendingPercentage); }
void UTIL_SetBlendingPercentage(quint32 value) { write(blendingPercentage, value); }
void UTIL_GetBlendingGNB(quint32 *value) { fill(value, blendingGnb); }
void UTIL_SetBlendingGNB(quint32 value) { write(blendingGnb, value); }
void UTIL_GetBlendingCST(quint32 *value) { fill(value, blendingCst); }
void UTIL_SetBlendingCST(quint32 value) { write(blendingCst, value); }
void UTIL_GetBlendingStatusBar(quint32 *value) { fill(value, blendingStatusBar); }
void UTIL_SetBlendingStatusBar(quint32 value) { write(blendingStatusBar, value); }
void UTIL_GetBlendingScrollBar(quint32 *value) { fill(value, blendingScrollBar); }
void UTIL_SetBlendingScrollBar(quint32 value) { write(blendingScrollBar, value); }
void UTIL_GetUsbMassStorage(quint8 *value) { fill(value, usbMassStorage); }
void UTIL_SetUsbMassStorage(quint8 value) { write(usbMassStorage, value); }

void UTIL_GetNetworkId(char *text) { fill(text, networkId); }
void UTIL_SetNetworkId(const char *text) { write(networkId, text); }
void UTIL_GetServiceName(char *text) { fill(text, serviceName); }
void UTIL_SetServiceName(const char *text) { write(serviceName, text); }
void UTIL_GetSpnName(char *text) { fill(text, spnName); }
void UTIL_SetSpnName(const char *text) { write(spnName, text); }
void UTIL_GetHomeZoneName(char *text) { fill(text, homeZoneName); }
void UTIL_SetHomeZoneName(const char *text) { write(homeZoneName, text); }
void UTIL_GetCphsOperatorName(char *text) { fill(text, cphsOperatorName); }
void UTIL_SetCphsOperatorName(const char *text) { write(cphsOperatorName, text); }

void UTIL_GetTPSoundInfo(SoundInfo *info) { fill(info, touchSound); }
void UTIL_SetTPSoundInfo(const SoundInfo *info) { store(touchSound, info); }
void UTIL_GetHKSoundInfo(SoundInfo *info) { fill(info, keySound); }
void UTIL_SetHKSoundInfo(const SoundInfo *info) { store(keySound, info); }
// clang-format on
