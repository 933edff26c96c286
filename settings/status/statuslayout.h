// The system status table byte by byte: one row a field, and every byte of the used part in exactly one row.
//
// Unrelated processes share these bytes, each with its own copy of the library: offsets, widths and byte order never
// change. docs/status.md shows the same table, made from these rows.
#pragma once

#include "settings/status/systemstatus.h"

#include <QtGlobal>
#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <numeric>
#include <span>
#include <string_view>

namespace status {

inline constexpr std::size_t kTableBytes = 4096;
inline constexpr std::size_t kUsedBytes = sizeof(SystemTableCopy::bytes);

// A little-endian number. `absent` is what a getter answers when there is no table, `initial` what initialisation
// stores, `max` what the field may hold by its meaning.
template <typename T> struct Scalar {
    quint16 offset;
    T absent = 0;
    T initial = 0;
    T max = std::numeric_limits<T>::max();
};

// One byte, stored as 0 or 1.
struct Flag {
    enum Truth { AnyNonZero, OneOnly }; // which stored values read as true
    quint16 offset;
    Truth truth = AnyNonZero;
    quint8 initial = 0;
};

// 8-bit text; the size includes the NUL. What is in no table reads as "".
struct Text {
    quint16 offset;
    quint16 size;
};

template <typename T, std::size_t N> struct Array {
    quint16 offset;
    std::array<T, N> initial = {};
};

inline constexpr quint32 kWhite = 0x00FFFFFF;

// clang-format off
inline constexpr Scalar<quint32>   phoneAudioPath       {0x000};
inline constexpr Scalar<quint16>   emuBusAccessory      {0x006};
inline constexpr Scalar<quint8>    powerOnMode          {0x008, 0xFF, 0xFF};
inline constexpr Scalar<quint8>    powerOnProcess       {0x009};
inline constexpr Flag              phoneLock            {0x00A};
inline constexpr Flag              rfMode               {0x00B};
inline constexpr Scalar<quint8>    simCard              {0x00C, 0xFF, 0xFF};
inline constexpr Scalar<quint8>    pin                  {0x00D, 0xFF, 0xFF};
inline constexpr Scalar<quint8>    battery              {0x00E, 0, 0xFF};
inline constexpr Scalar<quint8>    batteryLevel         {0x00F};
inline constexpr Array<quint8, 2>  batteryPercent       {0x010};
inline constexpr Scalar<quint8>    gprsFeature          {0x012};
inline constexpr Scalar<quint8>    bluetooth            {0x013};
inline constexpr Scalar<quint8>    bluetoothConnections {0x014};
inline constexpr Scalar<quint8>    roaming              {0x015};
inline constexpr Scalar<quint8>    homeZone             {0x016};
inline constexpr Scalar<quint8>    signalQuality        {0x017, 0, 0, 5};
inline constexpr Scalar<quint8>    notification         {0x018};
inline constexpr Scalar<quint8>    phoneCallIcon        {0x019};
inline constexpr Scalar<quint8>    mmsLaunchesCamera    {0x01A};
inline constexpr Scalar<quint8>    addressLaunchesCamera{0x01B};
inline constexpr Flag              incomingCall         {0x01C};
inline constexpr Flag              bluetoothHeadset     {0x01D};
inline constexpr Flag              headset              {0x01E};
inline constexpr Flag              phoneAudioDevice     {0x01F};
inline constexpr Scalar<quint8>    phoneLine            {0x020};
inline constexpr Flag              phoneInCall          {0x021, Flag::OneOnly};
inline constexpr Flag              charging             {0x022};
inline constexpr Scalar<quint8>    gprsService          {0x023};
inline constexpr Scalar<quint8>    gprsAttach           {0x024};
inline constexpr Scalar<quint8>    gprsActivated        {0x025};
inline constexpr Flag              flip                 {0x026};
inline constexpr Scalar<quint8>    dataConnection       {0x027};
inline constexpr Flag              phoneApplication     {0x028};
inline constexpr Scalar<quint8>    egprsService         {0x029};
inline constexpr Scalar<quint8>    egprsTransfer        {0x02A};
inline constexpr Scalar<quint8>    irdaBusy             {0x02B};
inline constexpr Flag              amApplication        {0x02C};
inline constexpr Flag              powerOff             {0x02D};
inline constexpr Scalar<quint32>   countryId            {0x02E};
inline constexpr Array<quint32, 9> themeNumbers         {0x032, {0, kWhite, kWhite, kWhite, kWhite, kWhite, kWhite, kWhite, 1}};
inline constexpr Text              themeTexts[]         {{0x056, 256}, {0x156, 256}, {0x256, 256}};
inline constexpr Array<quint32, 2> touchSound           {0x356, {2, 7}};
inline constexpr Array<quint32, 2> keySound             {0x35E};
inline constexpr Text              networkId            {0x366, 16};
inline constexpr Text              serviceName          {0x376, 61};
inline constexpr Text              spnName              {0x3B3, 61};
inline constexpr Text              homeZoneName         {0x3F0, 22};
inline constexpr Scalar<quint8>    bluetoothHandsFree   {0x406};
inline constexpr Array<quint8, 5>  dialogPriority       {0x407};
inline constexpr Array<quint8, 6>  cphsInfo             {0x40C};
inline constexpr Scalar<quint8>    cphsLineLock         {0x4F0};
inline constexpr Text              cphsOperatorName     {0x4F1, 61};
inline constexpr Flag              ttyDevice            {0x56B, Flag::OneOnly};
inline constexpr Scalar<quint32>   totalDuration        {0x56C};
inline constexpr Array<quint32, 3> totalDataBytes       {0x570};
inline constexpr Scalar<quint8>    dataCall             {0x57C};
inline constexpr Flag              transparency         {0x57D, Flag::OneOnly, 1};
inline constexpr Scalar<quint32>   blendingColor        {0x57E, 0, 0xFFFFFFFF};
inline constexpr Scalar<quint32>   blendingPercentage   {0x582, 0, 100};
inline constexpr Scalar<quint32>   blendingGnb          {0x586, 0, 100};
inline constexpr Scalar<quint32>   blendingCst          {0x58A, 0, 100};
inline constexpr Scalar<quint32>   blendingStatusBar    {0x58E, 0, 100};
inline constexpr Scalar<quint32>   blendingScrollBar    {0x592, 0, 100};
inline constexpr Scalar<quint32>   usbConnection        {0x596};
inline constexpr Scalar<quint32>   usbCharging          {0x59A};
inline constexpr Scalar<quint32>   usbDeviceType        {0x59E};
inline constexpr Scalar<quint32>   earpieceSafety       {0x5A2};
inline constexpr Scalar<quint8>    usbMassStorage       {0x5A6};
inline constexpr Scalar<quint32>   timingPhoneLock      {0x5A7, 0, 0, 1};
inline constexpr Scalar<quint8>    memoryCard           {0x5AB};
inline constexpr Scalar<quint32>   a2dp                 {0x5AC};
// clang-format on

// A field as tools, tests and initialisation walk it: all of them alike.
struct Row {
    enum Kind { Number, Boolean, Characters, Unused };
    static constexpr std::size_t kMostElements = 9;

    std::string_view name;
    std::string_view about;
    Kind kind = Unused;
    quint16 offset = 0;
    quint16 width = 1; // bytes of one element
    quint16 count = 1; // elements; of a text its bytes
    quint32 absent = 0;
    quint32 max = 0; // of one element
    std::array<quint32, kMostElements> initial = {};

    [[nodiscard]] constexpr std::size_t size() const { return std::size_t(width) * count; }
};

template <typename T> constexpr Row row(std::string_view name, Scalar<T> field, std::string_view about)
{
    return {name, about, Row::Number, field.offset, sizeof(T), 1, field.absent, field.max, {field.initial}};
}

constexpr Row row(std::string_view name, Flag field, std::string_view about)
{
    return {name, about, Row::Boolean, field.offset, 1, 1, 0, 1, {field.initial}};
}

constexpr Row row(std::string_view name, Text field, std::string_view about)
{
    return {name, about, Row::Characters, field.offset, 1, field.size, 0, 0xFF, {}};
}

template <typename T, std::size_t N> constexpr Row row(std::string_view name, Array<T, N> field, std::string_view about)
{
    Row made{name, about, Row::Number, field.offset, sizeof(T), N, 0, std::numeric_limits<T>::max(), {}};
    std::copy(field.initial.begin(), field.initial.end(), made.initial.begin());
    return made;
}

constexpr Row unused(quint16 offset, quint16 size) { return {"", "", Row::Unused, offset, 1, size, 0, 0, {}}; }

// The names are those of `tyx status`: stable, since scripts use them.
// clang-format off
inline constexpr Row rows[] = {
    row("audio-path",              phoneAudioPath,        "where the sound of a call goes"),
    unused(0x004, 2),
    row("emu-bus-accessory",       emuBusAccessory,       "accessory on the EMU bus"),
    row("power-on-mode",           powerOnMode,           "why the phone was switched on"),
    row("power-on-process",        powerOnProcess,        "how far switching on has come"),
    row("phone-lock",              phoneLock,             "the phone is locked"),
    row("rf-mode",                 rfMode,                "the radio is on"),
    row("sim-card",                simCard,               "SIM card; 0xFF: not known yet"),
    row("pin",                     pin,                   "PIN; 0xFF: not known yet"),
    row("battery",                 battery,               "battery; 0xFF: not known yet"),
    row("battery-level",           batteryLevel,          "battery level"),
    row("battery-percent",         batteryPercent,        "battery in percent, two values"),
    row("gprs-feature",            gprsFeature,           "GPRS feature"),
    row("bluetooth",               bluetooth,             "Bluetooth"),
    row("bluetooth-connections",   bluetoothConnections,  "number of Bluetooth connections"),
    row("roaming",                 roaming,               "roaming"),
    row("home-zone",               homeZone,              "home zone"),
    row("signal",                  signalQuality,         "signal bars"),
    row("notification",            notification,          "notification"),
    row("call-icon",               phoneCallIcon,         "icon of the call"),
    row("mms-launches-camera",     mmsLaunchesCamera,     "a picture message wants the camera"),
    row("address-launches-camera", addressLaunchesCamera, "the address book wants the camera"),
    row("incoming-call",           incomingCall,          "a call comes in"),
    row("bluetooth-headset",       bluetoothHeadset,      "a Bluetooth headset is connected"),
    row("headset",                 headset,               "a wired headset is plugged in; initially as the keypad says"),
    row("audio-device",            phoneAudioDevice,      "the audio device is in use"),
    row("phone-line",              phoneLine,             "line of the phone"),
    row("in-call",                 phoneInCall,           "a call is up"),
    row("charging",                charging,              "the battery is being charged"),
    row("gprs-service",            gprsService,           "GPRS service"),
    row("gprs-attach",             gprsAttach,            "attached to GPRS"),
    row("gprs-activated",          gprsActivated,         "GPRS is activated"),
    row("flip",                    flip,                  "the flip; initially the opposite of the keypad's flip word"),
    row("data-connection",         dataConnection,        "data connection"),
    row("phone-application",       phoneApplication,      "the phone application"),
    row("egprs-service",           egprsService,          "EGPRS service"),
    row("egprs-transfer",          egprsTransfer,         "EGPRS transfer"),
    row("irda-busy",               irdaBusy,              "the infrared port is busy"),
    row("am-application",          amApplication,         "application of the application manager"),
    row("power-off",               powerOff,              "the phone is being switched off"),
    row("country",                 countryId,             "country"),
    row("theme-numbers",           themeNumbers,          "theme: a number, seven RGB colours, a number"),
    row("theme-skin",              themeTexts[0],         "theme, first text: the skin file"),
    row("theme-icons",             themeTexts[1],         "theme, second text: folder of downloaded icons"),
    row("theme-text",              themeTexts[2],         "theme, third text"),
    row("touch-sound",             touchSound,            "sound of the touch panel: style, volume"),
    row("key-sound",               keySound,              "sound of the hard keys: style, volume"),
    row("network-id",              networkId,             "network"),
    row("service-name",            serviceName,           "operator"),
    row("spn-name",                spnName,               "operator as the SIM card calls it"),
    row("home-zone-name",          homeZoneName,          "name of the home zone"),
    row("bluetooth-handsfree",     bluetoothHandsFree,    "Bluetooth hands-free set"),
    row("dialog-priority",         dialogPriority,        "1 where a dialog of that priority is up"),
    row("cphs-info",               cphsInfo,              "CPHS: SIM, voice mail, short name, service profile, numbers, sixth"),
    unused(0x412, 222),
    row("cphs-line-lock",          cphsLineLock,          "CPHS line lock"),
    row("cphs-operator-name",      cphsOperatorName,      "CPHS operator"),
    unused(0x52E, 61),
    row("tty-device",              ttyDevice,             "a text telephone is connected"),
    row("total-duration",          totalDuration,         "duration of all calls"),
    row("total-data-bytes",        totalDataBytes,        "three counters of data bytes"),
    row("data-call",               dataCall,              "data call"),
    row("transparency",            transparency,          "transparency is enabled"),
    row("blending-color",          blendingColor,         "colour that is blended in"),
    row("blending-percentage",     blendingPercentage,    "blending in percent, in general"),
    row("blending-gnb",            blendingGnb,           "blending in percent, title bar"),
    row("blending-cst",            blendingCst,           "blending in percent, softkey area"),
    row("blending-status-bar",     blendingStatusBar,     "blending in percent, status bar"),
    row("blending-scroll-bar",     blendingScrollBar,     "blending in percent, scroll bar"),
    row("usb-connection",          usbConnection,         "USB connection"),
    row("usb-charging",            usbCharging,           "charging over USB"),
    row("usb-device-type",         usbDeviceType,         "accessory at the USB port"),
    row("earpiece-safety",         earpieceSafety,        "earpiece safety"),
    row("usb-mass-storage",        usbMassStorage,        "USB mass storage"),
    row("timing-phone-lock",       timingPhoneLock,       "the phone locks itself after a time"),
    row("memory-card",             memoryCard,            "MMC or SD card"),
    row("a2dp",                    a2dp,                  "Bluetooth stereo sound"),
};
// clang-format on

constexpr bool tilesExactly(std::span<const Row> all, std::size_t bytes)
{
    std::size_t next = 0;
    for (const Row &each : all) {
        if (each.offset != next)
            return false;
        next += each.size();
    }
    return next == bytes;
}
static_assert(tilesExactly(rows, kUsedBytes), "a byte of the table belongs to no row, or to two");
static_assert(kUsedBytes == 0x5B0);

// Bytes of a table or of a copy of it. Numbers are not aligned: they are put together byte by byte.
template <typename T> constexpr T loadLe(std::span<const quint8> table, std::size_t offset)
{
    T value = 0;
    for (std::size_t i = sizeof(T); i-- > 0;)
        value = T(quint64(value) << 8 | table[offset + i]);
    return value;
}

template <typename T> constexpr T valueOf(const SystemTableCopy &copy, Scalar<T> field)
{
    return loadLe<T>(copy.bytes, field.offset);
}

constexpr bool isTrue(quint8 stored, Flag field) { return field.truth == Flag::OneOnly ? stored == 1 : stored != 0; }

constexpr bool valueOf(const SystemTableCopy &copy, Flag field) { return isTrue(copy.bytes[field.offset], field); }

template <typename T, std::size_t N> constexpr std::array<T, N> valueOf(const SystemTableCopy &copy, Array<T, N> field)
{
    std::array<T, N> values = {};
    for (std::size_t i = 0; i < N; ++i)
        values[i] = loadLe<T>(copy.bytes, field.offset + i * sizeof(T));
    return values;
}

// Up to its NUL; a text without one ends with its field. Valid as long as the copy.
inline std::string_view valueOf(const SystemTableCopy &copy, Text field)
{
    const std::string_view characters(reinterpret_cast<const char *>(copy.bytes) + field.offset, field.size - 1U);
    return characters.substr(0, characters.find('\0'));
}

}
