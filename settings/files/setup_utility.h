// The settings of the system by name.
#pragma once

#include "platform/tyxexport.h"
#include "settings/files/settingtypes.h"

#include <QString>
#include <QStringList>

class QTime;

// The one place where the phone's settings are named: programs never name a file, group or key themselves.
//
//     QString name;
//     SETUP_Utility::getBluetoothName(name);
//     if (!SETUP_Utility::setBluetoothName(name + u"-2"))
//         ... // the disk is full, say
//
// A get reads its file afresh. It answers true, with the default when nothing is stored or the file is missing or
// cannot be read; false, leaving the value alone, only where its first argument names nothing that there is (a sound
// without a volume, a third voice mail box). Text and numbers come back as they are stored: a file may hold any number.
//
// A set has saved when it answers true. It answers false when a file could not be written, when there is a file that
// cannot be read (saving would lose what is in it), when a text would not come back as it was given (it has a line
// break or begins or ends with white space), and where a get answers false. Settings that a running phone works with
// have a working copy under /tmp: a set writes the settings file and then the copy, a get reads the copy. Of two
// processes that set something in one file at the same moment the later one wins; SettingsTransaction is for those who
// cannot have that.
//
// docs/settings.md lists all settings with file, group, key, type, default and range.
class TYX_EXPORT SETUP_Utility {
public:
    // Language. Codes are those of the directories of translations ("de-de").
    static bool getUserDefinedLanguageType(QString &code); // "auto-lang": the user left the choice to the card
    // The language of the phone, and the input language with it; tells the input method server.
    static bool setLanguageType(QString code);
    static bool verifyAutoLanguageCode(int code); // whether it is the number of a language that can be chosen

    // Power
    static bool getAutoPowerOffStatus(bool &on);
    static bool getAutoPowerOffTime(QTime &time); // midnight when what is stored is no time
    static bool getBatterySavedStatus(bool &on);
    static bool setBatterySavedStatus(bool on);

    // Pictures, as file names; empty: the default one
    static bool getWallpaperFileName(QString &file);
    static bool getPowerUpImage(QString &file);
    static bool getPowerDownImage(QString &file);
    static bool setAsWallpaper(QString file);
    static bool setAsPowerUpImage(QString file);
    static bool setAsPowerDownImage(QString file);

    // Sounds and alerts
    static bool getRingToneType(RING_TONE_TYPE_T &type);
    static bool setRingToneType(RING_TONE_TYPE_T type);
    static bool getSoundVolume(SETUP_SOUND_ALERT_TYPE_T sound, int &volume); // SETUP_SOUND_SPEAKER to _SYSTEM
    static bool setSoundVolume(SETUP_SOUND_ALERT_TYPE_T sound, int volume);
    static bool getSoundFile(SETUP_SOUND_ALERT_TYPE_T sound, QString &file); // SETUP_SOUND_RING_TONE_1 to _REMINDER
    static bool setAsRingTone(QString file); // of line 1; a working copy without an alert style gets the style too
    static bool getAlertStatus(SETUP_SOUND_ALERT_TYPE_T event, bool &on); // SETUP_ALERT_MESSAGE to _GENERAL
    static bool setAlertStatus(SETUP_SOUND_ALERT_TYPE_T event, bool on);
    static bool getVibrationStyle(int &style);
    static bool setVibrationStyle(int style);
    static bool getTouchScreenType(int &type);
    static bool setTouchScreenType(int type);
    static bool getKeyPadType(int &type);
    static bool getJavaSoundType(SETUP_JAVASOUND_TYPE_T &type);

    // Voice
    static bool getVRTalkingPhone(bool &on);
    static bool setVRTalkingPhone(bool on);
    static bool getVRTimeFormat(int &format); // 0: 12 hours, 1: 24 hours
    static bool getVRCommandTone(bool &on);
    static bool setVRCommandTone(bool on);
    static bool getVRHelpFlex(bool &on);
    static bool setVRHelpFlex(bool on);
    static bool getVoiceMailboxNumber(int line, QString &number); // line: 1 or 2
    static bool setVoiceMailboxNumber(int line, QString number);
    static bool getVoiceMailboxName(int line, QString &name);
    static bool setVoiceMailboxName(int line, QString name);
    static bool getImsiChangedFlag(); // the flag itself
    static bool setImsiChangedFlag(bool changed);

    // Screen
    static bool getLcdSleepTime(int &seconds); // 0: never
    static bool getLcdSleepTime(SETUP_LCD_SLEEP_TIME_T &seconds);
    static bool setLcdSleepTime(SETUP_LCD_SLEEP_TIME_T seconds);
    static bool getBackLightValue(int &percent);
    // Gives the stored brightness to the screen and the lights of the keys (docs/settings.md tells how). False, with a
    // line on standard error, where a device is missing or refuses it.
    static bool setBacklightValue();
    static bool getWallpaperTransparency(bool &on);
    static bool setWallpaperTransparency(bool on);
    static bool getBlendingColor(unsigned int &color); // 0xAARRGGBB
    static bool setBlendingColor(unsigned int color);
    static bool getBlendingPercentage(int &percent);
    static bool setBlendingPercentage(int percent);
    static bool getBlendingGNB(int &percent); // the title bar
    static bool setBlendingGNB(int percent);
    static bool getBlendingCST(int &percent); // the softkey area
    static bool setBlendingCST(int percent);
    static bool getBlendingStatusBar(int &percent);
    static bool setBlendingStatusBar(int percent);
    static bool getBlendingScrollBar(int &percent);
    static bool setBlendingScrollBar(int percent);

    // Security
    static bool getPhoneAutoLockTime(int &minutes); // 0: never
    static bool setPhoneAutoLockTime(SETUP_PHONELOCK_TYPE_T minutes);
    static bool getPhoneAutoLockStatus(bool &on); // whether there is a time; prints it
    static bool getPhoneLockFlags(bool &locked, bool &timedOut);
    static bool setPhoneLockFlag(bool locked);
    static bool setPhoneLockTimeOutFlag(bool timedOut);
    static bool getMinUnlockCodeLength(unsigned int &digits);
    static bool setMinUnlockCodeLength(unsigned int digits);
    static bool setPhoneLockCode(QString const &code); // false for an empty one
    // Whether a code is the stored one. While none is stored the unlock code is "1234", the security code "000000".
    static bool verifyUnlockCode(QString const &code, bool &right);
    static bool verifySecurityCode(QString const &code, bool &right);
    static bool getKeyLockTime(int &seconds); // 0: never
    static bool setKeyLockTime(int seconds);
    static bool getInstantPhoneLockStatus(bool &on);
    static bool setInstantPhoneLockStatus(bool on);
    // Of the running phone only: the card knows it after a restart.
    static bool getFixedDialingStatusFromFile(FIXED_DIAL_STATUS_T &status);
    static bool setFixedDialingStatusToFile(FIXED_DIAL_STATUS_T status);

    // Java
    static bool getJavaHeapSize(int &kibibytes);
    static bool getJavaOTATimeout(int &seconds);

    // Wireless and cable
    static bool getBluetoothName(QString &name);
    static bool setBluetoothName(QString name);
    static bool getBluetoothStatus(bool &on);
    static bool setBluetoothStatus(bool on);
    static bool getBluetoothNotify(bool &on);
    static bool setBluetoothNotify(bool on);
    static bool getIrdaStatus(bool &on);
    static bool setIrdaStatus(bool on);
    static bool getUSBStatus(int &use); // 0: modem, 1: storage
    static bool setUSBStatus(int use);

    // Browser. A block is at most 255 bytes; the one that a get hands out is new, and the caller deletes it with
    // delete[]. No bytes are a null block of length 0.
    static bool getBrowserFeatureValue(BROWSER_FEATURE_VALUE_T feature, unsigned int &value);
    static bool setBrowserFeatureValue(BROWSER_FEATURE_VALUE_T feature, unsigned int value);
    static bool getBrowserFeatureState(BROWSER_FEATURE_STATE_T feature, unsigned int &state);
    static bool setBrowserFeatureState(BROWSER_FEATURE_STATE_T feature, unsigned int state);
    static bool getBrowserFeatureString(BROWSER_FEATURE_STRING_T feature, QString &text);
    static bool setBrowserFeatureString(BROWSER_FEATURE_STRING_T feature, QString text);
    static bool getBrowserFeatureBlock(BROWSER_FEATURE_BLOCK_T feature, unsigned char *&block, unsigned char &length);
    static bool setBrowserFeatureBlock(
        BROWSER_FEATURE_BLOCK_T feature, const unsigned char *block, unsigned char length);
    // Shortcuts, ordered by name. The array is new, and the caller deletes it with delete[]; null when there are none.
    static bool shortcutGetAllRecords(unsigned char &count, SHORTCUT_RECORD *&records);
    // False when there is one of that name, or as many as BROWSER_SHORTCUT_MAX_NUMBER allows (255 at most).
    static bool shortcutCreateRecord(SHORTCUT_RECORD record);
    static bool shortcutDeleteRecord(QString name); // false when there is none
    static bool shortcutDeleteAllRecords();

    // Profiles of network services, by kind and name. False when there is no such profile (add and the new name of ren:
    // when there is one already) or a save failed.
    static bool getInvLProfiles(ENUM_INVL_T kind, QStringList &names); // always true for a kind that there is
    static bool addInvLProfile(ENUM_INVL_T kind, QString name);
    static bool delInvLProfile(ENUM_INVL_T kind, QString name);
    static bool renInvLProfile(ENUM_INVL_T kind, QString oldName, QString newName);
    static bool getServerAddrByInvLProfile(ENUM_INVL_T kind, QString name, QString &address);
    static bool setServerAddrByInvLProfile(ENUM_INVL_T kind, QString name, QString address);
    static bool getUrlByInvLProfile(ENUM_INVL_T kind, QString name, QString &url);
    static bool setUrlByInvLProfile(ENUM_INVL_T kind, QString name, QString url);
    static bool getDataByInvLProfile(ENUM_INVL_T kind, QString name, INVL_DATA_T &data);
    static bool setDataByInvLProfile(ENUM_INVL_T kind, QString name, INVL_DATA_T data);

    // Flex bits: what this model of the phone has.
    static bool getFlexBit(SETUP_FLEX_ID_T id, bool &set);
    static bool isFeatureAvailable(SETUP_FLEX_ID_T id); // the bit itself
    // Takes the bits over from the modem (docs/settings.md tells how) into the flex-bit file. False, with a line on
    // standard error and the file as it was, where there is no modem or the file cannot be written.
    static bool initFlexbitFromBP();
    // One bit of the 32 bytes that the modem hands out: 0 or 1. False for a null pointer.
    static bool getFlexBitFromBP(void *table, unsigned char id, unsigned char *bit);

    // Default directories and files, under $TYX_LANG
    static QString defaultSoundDir();
    static QString defaultPictureDir();
    static QString defaultAniDir();
    static QString getPreloadAppsPath();
    static QString defaultSoundFile();
    static QString defaultPictureFile();
    static QString defaultPowerOnFile();
    static QString defaultPowerOffFile();

    // File names, of which only the flex-bit file's has its directory
    static QString getShortcutFileName();
    static QString getFlexBitFileName();
    static QString getTimestampFileName();
    static QString getThemeTimestampFileName();
    static QString getAlertStyleTimestampFileName();

    // Start of the settings store, by the GUI server and before anybody asks for a setting: takes over what is new in
    // the factory's settings, makes the working copies and starts the converter where there is one. What a user set is
    // never lost. False when a step failed; the others are done, and the next start tries that one again.
    static bool setupInitialize();
    static bool systemDataInit(); // working copies, calibration
    static bool dcSetupInit(); // the factory's settings
    static bool dcThemeInit(); // those of the theme
    static bool dcAlertStyleInit(); // those of the alert styles
    // Starts the converter, as the owner of its file. False, with a line on standard error, when that cannot be done.
    static bool dcDSMInit();
    // Replaces `to` by a copy of the regular file `from`; a reader of `to` sees the old file or the new one.
    static bool copyFile(QString from, QString to);
};
