// The settings of the system: file, group, key, type and default of each. Not installed; SETUP_Utility is the way to
// them for programs, `tyx settings` for people, docs/settings.md the list to read.
#pragma once

#include "platform/tyxexport.h"
#include "settings/files/settingrow.h"
#include "settings/files/settingtypes.h"

namespace settings::keys {

// clang-format off
inline constexpr Place systemSet    {File::System,       Copy::None,    u"SYS_SYSTEM_SET"};
inline constexpr Place systemWorking{File::System,       Copy::Read,    u"SYS_SYSTEM_SET"};
inline constexpr Place power        {File::System,       Copy::None,    u"SYS_POWER_MANAGEMENT"};
inline constexpr Place soundWorking {File::System,       Copy::Read,    u"SYS_THEME_SET"};
inline constexpr Place security     {File::System,       Copy::None,    u"SYS_SECURITY"};
inline constexpr Place java         {File::System,       Copy::None,    u"SYS_JAVA"};
inline constexpr Place wireless     {File::System,       Copy::None,    u"SYS_IRDA_BT"};
inline constexpr Place theme        {File::Theme,        Copy::None,    u"THEME_CONFIG_TABLE"};
inline constexpr Place themeWorking {File::Theme,        Copy::Read,    u"THEME_CONFIG_TABLE"};
inline constexpr Place alert        {File::AlertStyle,   Copy::None,    u"ALERTSTYLE_CONFIG_TABLE"};
inline constexpr Place alertWritten {File::AlertStyle,   Copy::Written, u"ALERTSTYLE_CONFIG_TABLE"};
inline constexpr Place alertWorking {File::AlertStyle,   Copy::Read,    u"ALERTSTYLE_CONFIG_TABLE"};
inline constexpr Place voiceMail    {File::Sms,          Copy::None,    u"GROUP_MSGCTR_VM"};
inline constexpr Place fixedDialing {File::FixedDialing, Copy::None,    u"SYS_SECURITY"};
inline constexpr Place browser      {File::Browser,      Copy::None,    u"BRW_FEATURE_TABLE"};
inline constexpr Place flex         {File::FlexBits,     Copy::None,    u"SYS_FLEX_TABLE"};

inline constexpr Choice ringTones[] = {
    {RING_TONE_RING, "ring"}, {RING_TONE_VIBRATE, "vibrate"}, {RING_TONE_VIBRATE_THEN_RING, "vibrate-then-ring"},
    {RING_TONE_VIBRATE_AND_RING, "vibrate-and-ring"}, {RING_TONE_SILENT, "silent"}};
inline constexpr Choice sleepTimes[] = {
    {SETUP_LCD_SLEEP_NEVER, "never"}, {SETUP_LCD_SLEEP_15_SECONDS, "15s"}, {SETUP_LCD_SLEEP_30_SECONDS, "30s"},
    {SETUP_LCD_SLEEP_1_MINUTE, "1min"}, {SETUP_LCD_SLEEP_2_MINUTES, "2min"}, {SETUP_LCD_SLEEP_5_MINUTES, "5min"}};
inline constexpr Choice lockTimes[] = {
    {SETUP_PHONELOCK_NEVER, "never"}, {SETUP_PHONELOCK_1_MINUTE, "1min"}, {SETUP_PHONELOCK_5_MINUTES, "5min"},
    {SETUP_PHONELOCK_10_MINUTES, "10min"}, {SETUP_PHONELOCK_30_MINUTES, "30min"}};
inline constexpr Choice javaSounds[] = {
    {SETUP_JAVASOUND_AS_RING_TONE, "as-ring-tone"}, {SETUP_JAVASOUND_ON, "on"}, {SETUP_JAVASOUND_OFF, "off"}};
inline constexpr Choice fixedDialStates[] = {
    {FIXED_DIAL_OFF, "off"}, {FIXED_DIAL_ON, "on"}, {FIXED_DIAL_UNSUPPORTED, "unsupported"}};
inline constexpr Choice timeFormats[] = {{0, "12h"}, {1, "24h"}};
inline constexpr Choice usbUses[] = {{0, "modem"}, {1, "storage"}};

inline constexpr Values volume{0, 9};
inline constexpr Values percent{0, 100};

// Language
inline constexpr Setting<QStringView> language{"language", systemWorking, u"LanguageType", u"en-us",
    "the language that the phone speaks, as its code", {}, Effect::FollowLanguage};
inline constexpr Setting<QStringView> userLanguage{"language-user", systemSet, u"UserDefinedLanguageType", u"auto-lang",
    "the language that the user chose; auto-lang: the one of the card"};

// Input methods
inline constexpr Setting<unsigned> inputMethodType{"input-method", systemWorking, u"PreferedInputMethodType", 0,
    "the preferred kind of input method", {0, 255}, Effect::TellInputMethods};
inline constexpr Setting<bool> inputWritingHand{"input-writing-hand", systemWorking, u"WritingHand", true,
    "the user writes with the right hand", {}, Effect::TellInputMethods};
inline constexpr Setting<bool> inputWordCompletion{"input-word-completion", systemWorking, u"WordCompletion", true,
    "words are completed", {}, Effect::TellInputMethods};
inline constexpr Setting<bool> inputUserDictionary{"input-user-dictionary", systemWorking, u"UserDict", true,
    "words of the user are learnt", {}, Effect::TellInputMethods};
inline constexpr Setting<int> inputWritingSpeed{"input-writing-speed", systemWorking, u"WritingSpeed", 50,
    "how fast the user writes", percent, Effect::TellInputMethods};
inline constexpr Setting<bool> inputWaterMark{"input-water-mark", systemWorking, u"WaterMark", true,
    "the writing area shows a mark", {}, Effect::TellInputMethods};
inline constexpr Setting<unsigned> inputLanguage{"input-language", systemWorking, u"preferedInputLanguage", 0,
    "number of the preferred input language", {0, 255}, Effect::TellInputMethods};
inline constexpr Setting<unsigned> inputSecondLanguage{"input-second-language", systemWorking,
    u"secondaryInputLanguage", 0, "number of the second input language", {0, 255}, Effect::TellInputMethods};
inline constexpr Setting<bool> inputToolTip{"input-tool-tip", systemWorking, u"ToolTip", true,
    "completions are shown beside the cursor", {}, Effect::TellInputMethods};
inline constexpr Setting<bool> inputNextWord{"input-next-word", systemWorking, u"NextWordPredict", true,
    "the next word is guessed", {}, Effect::TellInputMethods};
inline constexpr Setting<QStringView> inputMethodOrder{"input-predictive-order", systemWorking, u"iWexMethodOrder", u"",
    "order of the predictive methods", {}, Effect::TellInputMethods};

// Power and screen
inline constexpr Setting<bool> powerOffStatus{"power-off", power, u"PowerOffStatus", false,
    "the phone switches itself off at the time of power-off-hour and -minute"};
inline constexpr Setting<int> powerOffHour{"power-off-hour", power, u"PowerOffTimeHour", 0, "hour", {0, 23}};
inline constexpr Setting<int> powerOffMinute{"power-off-minute", power, u"PowerOffTimeMinute", 0, "minute", {0, 59}};
inline constexpr Setting<bool> batterySaved{"battery-saving", power, u"BatterySaved", false,
    "the phone saves its battery"};
inline constexpr Setting<int> lcdSleepTime{"screen-sleep", systemSet, u"LcdSleepTime", 0,
    "seconds without key or pen until the screen goes dark", {.choices = sleepTimes}};
inline constexpr Setting<int> backLight{"backlight", systemSet, u"BackLight", 60, "brightness in percent", percent};
inline constexpr Setting<int> timeFormat{"time-format", systemSet, u"TimeFormat", 0, "how a time is read out",
    {.choices = timeFormats}};

// Theme
inline constexpr Setting<QStringView> wallpaper{"wallpaper", themeWorking, u"ThemeWallpaperFile", u"",
    "picture file; empty: the default picture"};
inline constexpr Setting<QStringView> powerUpImage{"picture-power-on", themeWorking, u"ThemePowerUpImage", u"",
    "picture file; empty: the default picture"};
inline constexpr Setting<QStringView> powerDownImage{"picture-power-off", themeWorking, u"ThemePowerDownImage", u"",
    "picture file; empty: the default picture"};
inline constexpr Setting<bool> wallpaperTransparency{"wallpaper-transparency", systemSet, u"WallpaperTransparency",
    true, "the wallpaper shines through lists"};
inline constexpr Setting<unsigned> blendingColor{"blending-color", theme, u"BlendingColor", 0xFFFFFFFF,
    "colour that is blended over the wallpaper, as a number 0xAARRGGBB"};
inline constexpr Setting<int> blendingPercentage{"blending", theme, u"BlendingPercentage", 30,
    "how much of that colour, in percent", percent};
inline constexpr Setting<int> blendingGNB{"blending-title-bar", theme, u"BlendingGNB", 0, "in percent", percent};
inline constexpr Setting<int> blendingCST{"blending-softkeys", theme, u"BlendingCST", 0, "in percent", percent};
inline constexpr Setting<int> blendingStatusBar{"blending-status-bar", theme, u"BlendingStatusBar", 0, "in percent",
    percent};
inline constexpr Setting<int> blendingScrollBar{"blending-scroll-bar", theme, u"BlendingScrollBar", 0, "in percent",
    percent};
inline constexpr Setting<int> themeNumber{"theme", themeWorking, u"ThemeId", 0, "number of the theme"};
inline constexpr Setting<int> themeColors[] = {
    {"theme-color-1", themeWorking, u"ThemeColor1", 0x00FFFFFF, "colour 0xRRGGBB", {0, 0xFFFFFF}},
    {"theme-color-2", themeWorking, u"ThemeColor2", 0x00FFFFFF, "colour 0xRRGGBB", {0, 0xFFFFFF}},
    {"theme-color-3", themeWorking, u"ThemeColor3", 0x00FFFFFF, "colour 0xRRGGBB", {0, 0xFFFFFF}},
    {"theme-color-4", themeWorking, u"ThemeColor4", 0x00FFFFFF, "colour 0xRRGGBB", {0, 0xFFFFFF}},
    {"theme-color-5", themeWorking, u"ThemeColor5", 0x00FFFFFF, "colour 0xRRGGBB", {0, 0xFFFFFF}},
    {"theme-color-6", themeWorking, u"ThemeColor6", 0x00FFFFFF, "colour 0xRRGGBB", {0, 0xFFFFFF}},
    {"theme-color-7", themeWorking, u"ThemeColor7", 0x00FFFFFF, "colour 0xRRGGBB", {0, 0xFFFFFF}},
};
inline constexpr Setting<int> themeStyle{"theme-style", themeWorking, u"ThemeStyle", 1, "how the colours are used"};
inline constexpr Setting<QStringView> themeSkin{"theme-skin", themeWorking, u"ThemeSkinFile", u"",
    "skin file, by its absolute path; empty: the one of the phone", {}, Effect::TellServer};
inline constexpr Setting<QStringView> themeIcons{"theme-icons", themeWorking, u"ThemeIconPath", u"",
    "directory of downloaded icons", {}, Effect::TellServer};
inline constexpr Setting<QStringView> themeSounds{"theme-sounds", themeWorking, u"ThemeSoundPath", u"",
    "directory of the theme's sounds"};

// Sounds and alerts
inline constexpr Setting<unsigned> ringToneType{"ring-tone-type", soundWorking, u"RingToneType", 0,
    "how a call is announced", {.choices = ringTones}};
inline constexpr Setting<int> speakerVolume{"volume-speaker", systemWorking, u"SpeakerVolume", 5, "loudness", volume};
inline constexpr Setting<int> touchVolume{"volume-touch-screen", systemWorking, u"TouchScreenVolume", 5, "loudness",
    volume};
inline constexpr Setting<int> systemVolume{"volume-system", systemWorking, u"SystemVolume", 9, "loudness", volume};
inline constexpr Setting<QStringView> ringTone1{"sound-ring-tone-1", alertWorking, u"AlertRingTone1", u"",
    "sound file of line 1"};
inline constexpr Setting<QStringView> ringTone2{"sound-ring-tone-2", alertWorking, u"AlertRingTone2", u"",
    "sound file of line 2"};
inline constexpr Setting<QStringView> textMessageSound{"sound-text-message", alertWorking, u"AlertTextMsg", u"",
    "sound file"};
inline constexpr Setting<QStringView> instantMessageSound{"sound-instant-message", alertWorking, u"AlertIM", u"",
    "sound file"};
inline constexpr Setting<QStringView> pushToTalkSound{"sound-push-to-talk", alertWorking, u"AlertP2P", u"",
    "sound file"};
inline constexpr Setting<QStringView> alarmSound{"sound-alarm", alertWorking, u"AlarmsSound", u"", "sound file"};
inline constexpr Setting<QStringView> reminderSound{"sound-reminder", alertWorking, u"RemindersSound", u"",
    "sound file"};
inline constexpr Setting<int> alertStyle{"alert-style", alertWorking, u"AlertStyleCurrentUse", 0,
    "number of the alert style in use"};
inline constexpr Setting<int> alertSystemVolume{"alert-volume", alertWorking, u"AlertSystemVolume", 9,
    "loudness of keys and pen", volume};
inline constexpr Setting<int> touchScreenType{"alert-touch-screen", alertWritten, u"AlertTouchScreenStyle", 2,
    "sound of the pen", {0, 255}, Effect::TellSystem};
inline constexpr Setting<int> touchScreenTypeOfSystem{"touch-screen-type", systemSet, u"TouchScreenType", 2,
    "sound of the pen, for programs that look here; follows alert-touch-screen", {0, 255}};
inline constexpr Setting<int> keyPadType{"alert-keypad", alert, u"AlertKeypadStyle", 2, "sound of the keys", {0, 255}};
inline constexpr Setting<int> javaSound{"java-sound", alert, u"JavaSound", 0, "whether Java programs make sounds",
    {.choices = javaSounds}};
inline constexpr Setting<bool> messageAlert{"alert-message", systemWorking, u"MessageAlertStatus", true,
    "messages are announced"};
inline constexpr Setting<bool> missedEventAlert{"alert-missed-event", systemWorking, u"MissedEventStatus", true,
    "missed events are announced"};
inline constexpr Setting<bool> generalAlert{"alert-general", systemWorking, u"GeneralAlertStatus", true,
    "everything else is announced"};
inline constexpr Setting<int> vibrationStyle{"vibration", systemSet, u"VibrationStyle", 0, "number of the pattern"};

// Voice
inline constexpr Setting<bool> talkingPhone{"voice-talking-phone", systemSet, u"TTSTalkingPhone", false,
    "the phone reads out what it shows"};
inline constexpr Setting<bool> commandTone{"voice-command-tone", systemSet, u"VRCommandTone", true,
    "a tone invites to speak"};
inline constexpr Setting<bool> voiceHelp{"voice-help", systemSet, u"VRHelpFlex", true, "voice commands have help"};
inline constexpr Setting<QStringView> voiceMailNumber1{"voice-mail-number-1", voiceMail, u"VOICE_MAIL_SRV_CTR_NUMBER",
    u"", "number of the voice mail box of line 1"};
inline constexpr Setting<QStringView> voiceMailNumber2{"voice-mail-number-2", voiceMail, u"VOICE_MAIL_SRV_CTR_NUMBER2",
    u"", "number of the voice mail box of line 2"};
inline constexpr Setting<QStringView> voiceMailName1{"voice-mail-name-1", voiceMail, u"VOICE_MAIL_SRV_CTR_NAME", u"",
    "name of the voice mail box of line 1"};
inline constexpr Setting<QStringView> voiceMailName2{"voice-mail-name-2", voiceMail, u"VOICE_MAIL_SRV_CTR_NAME2", u"",
    "name of the voice mail box of line 2"};
inline constexpr Setting<bool> imsiChanged{"imsi-changed", voiceMail, u"IMSI_CHANGED_FLAG", false,
    "another card was put in"};

// Security
inline constexpr Setting<int> autoLockTime{"lock-after", security, u"SecurityAutoLockStatus", 0,
    "minutes without key or pen until the phone locks itself", {.choices = lockTimes}};
inline constexpr Setting<bool> phoneLock{"lock", security, u"SecurityAutoLockFlag", false, "the phone is locked"};
inline constexpr Setting<bool> phoneLockTimeOut{"lock-timed-out", security, u"SecurityAutoLockTimeoutFlag", false,
    "the phone locked itself"};
inline constexpr Setting<unsigned> minUnlockCodeLength{"lock-code-length", security, u"SecurityMinUnlockPwdLength", 4,
    "least number of digits of the unlock code", {1, 32}};
inline constexpr Setting<QStringView> unlockCode{"lock-code", security, u"SecurityUnlockCode", u"1234",
    "the code that unlocks the phone", {}, Effect::None, true};
inline constexpr Setting<QStringView> securityCode{"security-code", security, u"SecuritySecurityCode", u"000000",
    "the code that opens the security settings", {}, Effect::None, true};
inline constexpr Setting<int> keyLockTime{"key-lock-after", security, u"KeyLockStatus", 0,
    "seconds without a key until the keys lock; 0: never"};
inline constexpr Setting<bool> instantLock{"lock-instantly", security, u"InstantPhoneLockStatus", false,
    "the phone locks when its flip closes"};
inline constexpr Setting<unsigned> fixedDial{"fixed-dialing", fixedDialing, u"SecurityFixedDialStatus", 0,
    "only numbers of the card's list can be called", {.choices = fixedDialStates}};

// Java
inline constexpr Setting<int> javaHeapSize{"java-heap-size", java, u"JavaHeapSize", 2048, "KiB", {64, 65536}};
inline constexpr Setting<int> javaOtaTimeout{"java-ota-timeout", java, u"JavaOtaTimeout", 60, "seconds", {0, 3600}};

// Wireless and cable
inline constexpr Setting<QStringView> bluetoothName{"bluetooth-name", wireless, u"BluetoothName", u"Q300 BT",
    "the name that other devices see"};
inline constexpr Setting<bool> bluetooth{"bluetooth", wireless, u"BluetoothStatus", false, "Bluetooth is on"};
inline constexpr Setting<bool> bluetoothNotify{"bluetooth-notify", wireless, u"BluetoothNotify", true,
    "connections are announced"};
inline constexpr Setting<bool> irda{"irda", wireless, u"IrDaStatus", false, "infrared is on"};
inline constexpr Setting<int> usb{"usb", wireless, u"USBStatus", 0, "what the phone is at the other end of a USB cable",
    {.choices = usbUses}};

// Browser, in the order of its enumerations
inline constexpr Setting<unsigned> browserValues[] = {
    {"browser-idle-timeout", browser, u"BrwIdleTimeout", 0, "seconds"},
    {"browser-wtat", browser, u"BrwWtatConfig", 0, "telephony applications"},
    {"browser-confirm", browser, u"BrwConfirmValue", 0, "what is asked before"},
    {"browser-shortcut-number", browser, u"BrwShortCutMaxNumber", 0, "most shortcuts; 0: as many as there is room for",
        {0, 255}},
    {"browser-mms-size", browser, u"BrwMMSSizeLimit", 0, "bytes; 0: no limit"},
    {"browser-service-load", browser, u"BrwServiceLoadValue", 0, "what pushed services may load"},
    {"browser-phone-numbers", browser, u"BrwPhoneNumberDisplayFormat", 0, "how phone numbers look"},
    {"browser-scroll", browser, u"BrwCurrentScroll", 0, "how the page scrolls"},
    {"browser-zoom", browser, u"BrwCurrentZoom", 0, "size of the page"},
    {"browser-22-backlight", browser, u"Brw22BacklightValue", 0, "backlight of pages of version 2.2"},
    {"browser-backlight", browser, u"BrwCurrentBacklight", 0, "backlight while a page is shown"},
    {"browser-card-slot", browser, u"BrwCardSlot", 0, "slot of the card with certificates"},
};
inline constexpr Values onOff{0, 1};
inline constexpr Setting<unsigned> browserStates[] = {
    {"browser-access-lock", browser, u"BrwWebAccessLock", 0, "access is locked", onOff},
    {"browser-update-pending", browser, u"BrwUpdatePending", 0, "an update waits", onOff},
    {"browser-images", browser, u"BrwImageInfo", 0, "pictures are loaded", onOff},
    {"browser-sounds", browser, u"BrwSoundInfo", 0, "sounds are loaded", onOff},
    {"browser-cache-startup", browser, u"BrwCacheStartup", 0, "the cache is cleared at the start", onOff},
    {"browser-lock", browser, u"BrwLock", 0, "the browser is locked", onOff},
    {"browser-wtls-class-3", browser, u"BrwWtlsClass_3_Status", 0, "client certificates are used", onOff},
    {"browser-animation", browser, u"BrwCurrentAnimation", 0, "animations play", onOff},
    {"browser-sign-text", browser, u"BrwSignTextSelect", 0, "texts can be signed", onOff},
    {"browser-session-lock", browser, u"BrwWebSessionLock", 0, "the session is locked", onOff},
    {"browser-shortcuts-lock", browser, u"BrwShortcutsLock", 0, "shortcuts are locked", onOff},
};
inline constexpr Setting<QStringView> browserStrings[] = {
    {"browser-operator-url", browser, u"BrwOperatorUrl", u"", "page of the operator"},
    {"browser-homepage", browser, u"BrwHomepage", u"", "first page"},
};
inline constexpr Setting<Bytes> browserBlocks[] = {
    {"browser-qos-min", browser, u"BrwQosMin", {}, "least quality of service, in hexadecimal"},
    {"browser-qos-requested", browser, u"BrwQosReq", {}, "wanted quality of service, in hexadecimal"},
};

// What the phone has; written by its maker
inline constexpr Setting<unsigned> flexBits[] = {
    {"has-bluetooth", flex, u"0", 0, "flex bit 0", onOff},
    {"has-irda", flex, u"1", 0, "flex bit 1", onOff},
    {"has-usb", flex, u"2", 0, "flex bit 2", onOff},
    {"has-java", flex, u"3", 0, "flex bit 3", onOff},
    {"has-browser", flex, u"4", 0, "flex bit 4", onOff},
    {"has-camera", flex, u"5", 0, "flex bit 5", onOff},
    {"has-instant-messaging", flex, u"6", 0, "flex bit 6", onOff},
    {"has-voice-recognition", flex, u"7", 0, "flex bit 7", onOff},
};
// clang-format on

}

namespace settings {

// Every row once, in the order of `tyx settings list`.
TYX_EXPORT std::span<const Row> allRows(); // exported for the tools

}
