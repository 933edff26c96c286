#include "settings/files/setup_utility.h"

#include "settings/files/inputsetting.h"
#include "settings/files/settingaccess.h"
#include "settings/files/settingkeys.h"

#include <QFile>
#include <QTime>

using settings::load;
using settings::Setting;
using settings::store;
namespace keys = settings::keys;

namespace {

// An enumeration's number.
template <typename T, typename Enum> bool loadNumber(const Setting<T> &setting, Enum &value)
{
    T number = setting.absent;
    const bool done = load(setting, number);
    value = Enum(number);
    return done;
}

const Setting<int> *volumeOf(SETUP_SOUND_ALERT_TYPE_T sound)
{
    switch (sound) {
    case SETUP_SOUND_SPEAKER:
        return &keys::speakerVolume;
    case SETUP_SOUND_TOUCH_SCREEN:
        return &keys::touchVolume;
    case SETUP_SOUND_SYSTEM:
        return &keys::systemVolume;
    default:
        return nullptr;
    }
}

const Setting<QStringView> *soundFileOf(SETUP_SOUND_ALERT_TYPE_T sound)
{
    switch (sound) {
    case SETUP_SOUND_RING_TONE_1:
        return &keys::ringTone1;
    case SETUP_SOUND_RING_TONE_2:
        return &keys::ringTone2;
    case SETUP_SOUND_TEXT_MESSAGE:
        return &keys::textMessageSound;
    case SETUP_SOUND_INSTANT_MESSAGE:
        return &keys::instantMessageSound;
    case SETUP_SOUND_PUSH_TO_TALK:
        return &keys::pushToTalkSound;
    case SETUP_SOUND_ALARM:
        return &keys::alarmSound;
    case SETUP_SOUND_REMINDER:
        return &keys::reminderSound;
    default:
        return nullptr;
    }
}

const Setting<bool> *alertOf(SETUP_SOUND_ALERT_TYPE_T event)
{
    switch (event) {
    case SETUP_ALERT_MESSAGE:
        return &keys::messageAlert;
    case SETUP_ALERT_MISSED_EVENT:
        return &keys::missedEventAlert;
    case SETUP_ALERT_GENERAL:
        return &keys::generalAlert;
    default:
        return nullptr;
    }
}

const Setting<QStringView> *ofLine(int line, const Setting<QStringView> &first, const Setting<QStringView> &second)
{
    return line == 1 ? &first : line == 2 ? &second : nullptr;
}

template <typename T, typename Value> bool load(const Setting<T> *setting, Value &value)
{
    return setting != nullptr && load(*setting, value);
}
template <typename T, typename Value> bool store(const Setting<T> *setting, const Value &value)
{
    return setting != nullptr && store(*setting, value);
}

// A working copy that names no alert style does not know whose tone it is about to get.
bool tellStyleToCopy()
{
    const QString group = settings::literal(keys::alertStyle.place.group);
    const QString key = settings::literal(keys::alertStyle.key);
    SETUP_SET_Manager settings(AM_Global::AlertStyle, false);
    SETUP_SET_Manager copy(settings::copyName(settings::File::AlertStyle), true);
    const QString style = settings.readEntry(group, key);
    return style.isEmpty() || !copy.readEntry(group, key).isEmpty() || copy.writeEntry(group, key, style);
}

QString ofLanguage(QStringView path)
{
    const QString directory = QFile::decodeName(qgetenv("TYX_LANG"));
    const bool isWhole = directory.isEmpty() || directory.endsWith(u'/');
    return directory % (isWhole ? u"" : u"/") % path;
}

}

// clang-format off
bool SETUP_Utility::getUserDefinedLanguageType(QString &code) { return load(keys::userLanguage, code); }
bool SETUP_Utility::setLanguageType(QString code) { return store(keys::language, code); }
bool SETUP_Utility::verifyAutoLanguageCode(int code) { return !settings::inputLanguageCode(code).isNull(); }

bool SETUP_Utility::getAutoPowerOffStatus(bool &on) { return load(keys::powerOffStatus, on); }
bool SETUP_Utility::getBatterySavedStatus(bool &on) { return load(keys::batterySaved, on); }
bool SETUP_Utility::setBatterySavedStatus(bool on) { return store(keys::batterySaved, on); }

bool SETUP_Utility::getWallpaperFileName(QString &file) { return load(keys::wallpaper, file); }
bool SETUP_Utility::getPowerUpImage(QString &file) { return load(keys::powerUpImage, file); }
bool SETUP_Utility::getPowerDownImage(QString &file) { return load(keys::powerDownImage, file); }
bool SETUP_Utility::setAsWallpaper(QString file) { return store(keys::wallpaper, file); }
bool SETUP_Utility::setAsPowerUpImage(QString file) { return store(keys::powerUpImage, file); }
bool SETUP_Utility::setAsPowerDownImage(QString file) { return store(keys::powerDownImage, file); }

bool SETUP_Utility::getRingToneType(RING_TONE_TYPE_T &type) { return loadNumber(keys::ringToneType, type); }
bool SETUP_Utility::setRingToneType(RING_TONE_TYPE_T type) { return store(keys::ringToneType, unsigned(type)); }
bool SETUP_Utility::getSoundVolume(SETUP_SOUND_ALERT_TYPE_T sound, int &volume) { return load(volumeOf(sound), volume); }
bool SETUP_Utility::setSoundVolume(SETUP_SOUND_ALERT_TYPE_T sound, int volume) { return store(volumeOf(sound), volume); }
bool SETUP_Utility::getSoundFile(SETUP_SOUND_ALERT_TYPE_T sound, QString &file) { return load(soundFileOf(sound), file); }
bool SETUP_Utility::setAsRingTone(QString file) { return store(keys::ringTone1, file) && tellStyleToCopy(); }
bool SETUP_Utility::getAlertStatus(SETUP_SOUND_ALERT_TYPE_T event, bool &on) { return load(alertOf(event), on); }
bool SETUP_Utility::setAlertStatus(SETUP_SOUND_ALERT_TYPE_T event, bool on) { return store(alertOf(event), on); }
bool SETUP_Utility::getVibrationStyle(int &style) { return load(keys::vibrationStyle, style); }
bool SETUP_Utility::setVibrationStyle(int style) { return store(keys::vibrationStyle, style); }
bool SETUP_Utility::getTouchScreenType(int &type) { return load(keys::touchScreenType, type); }
bool SETUP_Utility::setTouchScreenType(int type) { return store(keys::touchScreenType, type); }
bool SETUP_Utility::getKeyPadType(int &type) { return load(keys::keyPadType, type); }
bool SETUP_Utility::getJavaSoundType(SETUP_JAVASOUND_TYPE_T &type) { return loadNumber(keys::javaSound, type); }

bool SETUP_Utility::getVRTalkingPhone(bool &on) { return load(keys::talkingPhone, on); }
bool SETUP_Utility::setVRTalkingPhone(bool on) { return store(keys::talkingPhone, on); }
bool SETUP_Utility::getVRTimeFormat(int &format) { return load(keys::timeFormat, format); }
bool SETUP_Utility::getVRCommandTone(bool &on) { return load(keys::commandTone, on); }
bool SETUP_Utility::setVRCommandTone(bool on) { return store(keys::commandTone, on); }
bool SETUP_Utility::getVRHelpFlex(bool &on) { return load(keys::voiceHelp, on); }
bool SETUP_Utility::setVRHelpFlex(bool on) { return store(keys::voiceHelp, on); }
bool SETUP_Utility::getVoiceMailboxNumber(int line, QString &number) { return load(ofLine(line, keys::voiceMailNumber1, keys::voiceMailNumber2), number); }
bool SETUP_Utility::setVoiceMailboxNumber(int line, QString number) { return store(ofLine(line, keys::voiceMailNumber1, keys::voiceMailNumber2), number); }
bool SETUP_Utility::getVoiceMailboxName(int line, QString &name) { return load(ofLine(line, keys::voiceMailName1, keys::voiceMailName2), name); }
bool SETUP_Utility::setVoiceMailboxName(int line, QString name) { return store(ofLine(line, keys::voiceMailName1, keys::voiceMailName2), name); }
bool SETUP_Utility::getImsiChangedFlag() { bool changed = false; return load(keys::imsiChanged, changed) && changed; }
bool SETUP_Utility::setImsiChangedFlag(bool changed) { return store(keys::imsiChanged, changed); }

bool SETUP_Utility::getLcdSleepTime(int &seconds) { return load(keys::lcdSleepTime, seconds); }
bool SETUP_Utility::getLcdSleepTime(SETUP_LCD_SLEEP_TIME_T &seconds) { return loadNumber(keys::lcdSleepTime, seconds); }
bool SETUP_Utility::setLcdSleepTime(SETUP_LCD_SLEEP_TIME_T seconds) { return store(keys::lcdSleepTime, int(seconds)); }
bool SETUP_Utility::getBackLightValue(int &percent) { return load(keys::backLight, percent); }
bool SETUP_Utility::getWallpaperTransparency(bool &on) { return load(keys::wallpaperTransparency, on); }
bool SETUP_Utility::setWallpaperTransparency(bool on) { return store(keys::wallpaperTransparency, on); }
bool SETUP_Utility::getBlendingColor(unsigned int &color) { return load(keys::blendingColor, color); }
bool SETUP_Utility::setBlendingColor(unsigned int color) { return store(keys::blendingColor, color); }
bool SETUP_Utility::getBlendingPercentage(int &percent) { return load(keys::blendingPercentage, percent); }
bool SETUP_Utility::setBlendingPercentage(int percent) { return store(keys::blendingPercentage, percent); }
bool SETUP_Utility::getBlendingGNB(int &percent) { return load(keys::blendingGNB, percent); }
bool SETUP_Utility::setBlendingGNB(int percent) { return store(keys::blendingGNB, percent); }
bool SETUP_Utility::getBlendingCST(int &percent) { return load(keys::blendingCST, percent); }
bool SETUP_Utility::setBlendingCST(int percent) { return store(keys::blendingCST, percent); }
bool SETUP_Utility::getBlendingStatusBar(int &percent) { return load(keys::blendingStatusBar, percent); }
bool SETUP_Utility::setBlendingStatusBar(int percent) { return store(keys::blendingStatusBar, percent); }
bool SETUP_Utility::getBlendingScrollBar(int &percent) { return load(keys::blendingScrollBar, percent); }
bool SETUP_Utility::setBlendingScrollBar(int percent) { return store(keys::blendingScrollBar, percent); }

bool SETUP_Utility::getFixedDialingStatusFromFile(FIXED_DIAL_STATUS_T &status) { return loadNumber(keys::fixedDial, status); }
bool SETUP_Utility::setFixedDialingStatusToFile(FIXED_DIAL_STATUS_T status) { return store(keys::fixedDial, unsigned(status)); }

bool SETUP_Utility::getJavaHeapSize(int &kibibytes) { return load(keys::javaHeapSize, kibibytes); }
bool SETUP_Utility::getJavaOTATimeout(int &seconds) { return load(keys::javaOtaTimeout, seconds); }

bool SETUP_Utility::getBluetoothName(QString &name) { return load(keys::bluetoothName, name); }
bool SETUP_Utility::setBluetoothName(QString name) { return store(keys::bluetoothName, name); }
bool SETUP_Utility::getBluetoothStatus(bool &on) { return load(keys::bluetooth, on); }
bool SETUP_Utility::setBluetoothStatus(bool on) { return store(keys::bluetooth, on); }
bool SETUP_Utility::getBluetoothNotify(bool &on) { return load(keys::bluetoothNotify, on); }
bool SETUP_Utility::setBluetoothNotify(bool on) { return store(keys::bluetoothNotify, on); }
bool SETUP_Utility::getIrdaStatus(bool &on) { return load(keys::irda, on); }
bool SETUP_Utility::setIrdaStatus(bool on) { return store(keys::irda, on); }
bool SETUP_Utility::getUSBStatus(int &use) { return load(keys::usb, use); }
bool SETUP_Utility::setUSBStatus(int use) { return store(keys::usb, use); }

QString SETUP_Utility::defaultSoundDir() { return ofLanguage(u"ringtone/"); }
QString SETUP_Utility::defaultPictureDir() { return ofLanguage(u"picture/"); }
QString SETUP_Utility::defaultAniDir() { return ofLanguage(u"animation/"); }
QString SETUP_Utility::getPreloadAppsPath() { return ofLanguage(u"preloadapps/"); }
QString SETUP_Utility::defaultSoundFile() { return ofLanguage(u"ringtone/default.mid"); }
QString SETUP_Utility::defaultPictureFile() { return ofLanguage(u"picture/default.jpg"); }
QString SETUP_Utility::defaultPowerOnFile() { return ofLanguage(u"animation/poweron.gif"); }
QString SETUP_Utility::defaultPowerOffFile() { return ofLanguage(u"animation/poweroff.gif"); }

QString SETUP_Utility::getShortcutFileName() { return QStringLiteral("tyx_shortcut.cfg"); }
QString SETUP_Utility::getFlexBitFileName() { return QStringLiteral("/usr/setup/tyx_flexbit.cfg"); }
QString SETUP_Utility::getTimestampFileName() { return QStringLiteral("tyx_timestamp.cfg"); }
QString SETUP_Utility::getThemeTimestampFileName() { return QStringLiteral("theme_timestamp.cfg"); }
QString SETUP_Utility::getAlertStyleTimestampFileName() { return QStringLiteral("alertstyle_timestamp.cfg"); }
// clang-format on

bool SETUP_Utility::getAutoPowerOffTime(QTime &time)
{
    SETUP_SET_Manager system(AM_Global::System, false);
    int hour = 0;
    int minute = 0;
    settings::loadFrom(system, keys::powerOffHour, hour);
    settings::loadFrom(system, keys::powerOffMinute, minute);
    time = QTime::isValid(hour, minute, 0) ? QTime(hour, minute) : QTime(0, 0);
    return true;
}
