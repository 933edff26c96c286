// Every named setting against the place that other programs know it by.
#include "settings/files/settingkeys.h"
#include "settings/files/setup_set_manager.h"
#include "settings/files/setup_utility.h"
#include "tests/support/testfiles.h"

#include <QDir>
#include <QSet>
#include <QTime>
#include <functional>

using namespace Qt::StringLiterals;
using S = SETUP_Utility;

namespace {

const QString kSystem = u"/setup/tyx_system.cfg"_s;
const QString kTheme = u"/setup/tyx_theme.cfg"_s;
const QString kAlert = u"/setup/tyx_alertstyle.cfg"_s;
const QString kSms = u"/setup/tyx_sms.cfg"_s;
const QString kBrowser = u"/setup/tyx_browser.cfg"_s;
const QString kTmpSystem = u"/tmp/tyx_system.cfg"_s;
const QString kTmpTheme = u"/tmp/tyx_theme.cfg"_s;
const QString kTmpAlert = u"/tmp/tyx_alertstyle.cfg"_s;
const QString kTmpDial = u"/tmp/tyx_fixeddial.cfg"_s;
const QString kFlex = u"/usr/setup/tyx_flexbit.cfg"_s;

const QStringList kAllFiles{kSystem, kTheme, kAlert, kSms, kBrowser, kTmpSystem, kTmpTheme, kTmpAlert, kTmpDial, kFlex};

// A setting as another program sees it: the files that a set writes, the file that a get reads, group and key.
struct In {
    QStringList written;
    QString read;
    QString group;
};
struct Known : In {
    const char *key;
    QString absent; // the default, as text
    QString sample;
    std::function<QString()> get; // none, and the next: there is no such accessor
    std::function<bool()> set; // the sample
};

template <typename T> QString asText(const T &value)
{
    if constexpr (std::is_same_v<T, QString>)
        return value;
    else
        return QString::number(static_cast<qint64>(value));
}
template <typename T> std::function<QString()> get(const std::function<bool(T &)> &getter)
{
    return [=] {
        T value{};
        return getter(value) ? asText(value) : u"(false)"_s;
    };
}

const In kSystemSet{{kSystem}, kSystem, u"SYS_SYSTEM_SET"_s};
const In kWorking{{kSystem, kTmpSystem}, kTmpSystem, u"SYS_SYSTEM_SET"_s};
const In kPower{{kSystem}, kSystem, u"SYS_POWER_MANAGEMENT"_s};
const In kThemeTable{{kTheme}, kTheme, u"THEME_CONFIG_TABLE"_s};
const In kThemeWorking{{kTheme, kTmpTheme}, kTmpTheme, u"THEME_CONFIG_TABLE"_s};
const In kAlertTable{{kAlert}, kAlert, u"ALERTSTYLE_CONFIG_TABLE"_s};
const In kAlertWorking{{kAlert, kTmpAlert}, kTmpAlert, u"ALERTSTYLE_CONFIG_TABLE"_s};
const In kSecurity{{kSystem}, kSystem, u"SYS_SECURITY"_s};
const In kJava{{kSystem}, kSystem, u"SYS_JAVA"_s};
const In kWireless{{kSystem}, kSystem, u"SYS_IRDA_BT"_s};
const In kVoiceMail{{kSms}, kSms, u"GROUP_MSGCTR_VM"_s};
const In kBrw{{kBrowser}, kBrowser, u"BRW_FEATURE_TABLE"_s};

// The rows, each from a getter, a setter (or none) and what distinguishes them.
class Table {
public:
    QList<Known> rows;

    template <typename T>
    void add(const In &in, const char *key, T absent, T sample, std::type_identity_t<bool (*)(T &)> getter,
        std::type_identity_t<bool (*)(T)> setter)
    {
        push(in, key, asText(absent), asText(sample), get<T>(getter),
            setter ? std::function([=] { return setter(sample); }) : nullptr);
    }
    // With a first argument that chooses the key. Its getter and setter fit any of them.
    template <typename Choice, typename T>
    void chosen(const In &in, const char *key, T absent, T sample, Choice choice,
        std::type_identity_t<bool (*)(Choice, T &)> getter, std::type_identity_t<bool (*)(Choice, T)> setter)
    {
        push(in, key, asText(absent), asText(sample), get<T>([=](T &value) { return getter(choice, value); }),
            setter ? std::function([=] { return setter(choice, sample); }) : nullptr);
    }
    void push(const In &in, const char *key, const QString &absent, const QString &sample,
        std::function<QString()> getter, std::function<bool()> setter)
    {
        rows.append({in, key, absent, sample, std::move(getter), std::move(setter)});
    }
};

// clang-format off
void addPlain(Table &t)
{
    t.add(kSystemSet, "UserDefinedLanguageType", u"auto-lang"_s, u"de-de"_s, S::getUserDefinedLanguageType, nullptr);
    t.push(kWorking, "LanguageType", u"en-us"_s, u"fr-fr"_s, nullptr, [] { return S::setLanguageType(u"fr-fr"_s); });
    t.add(kPower, "PowerOffStatus", false, true, S::getAutoPowerOffStatus, nullptr);
    t.add(kPower, "BatterySaved", false, true, S::getBatterySavedStatus, S::setBatterySavedStatus);
    t.add(kThemeWorking, "ThemeWallpaperFile", u""_s, u"/a b.png"_s, S::getWallpaperFileName, S::setAsWallpaper);
    t.add(kThemeWorking, "ThemePowerUpImage", u""_s, u"/up"_s, S::getPowerUpImage, S::setAsPowerUpImage);
    t.add(kThemeWorking, "ThemePowerDownImage", u""_s, u"/down"_s, S::getPowerDownImage, S::setAsPowerDownImage);
    t.add(In{{kSystem, kTmpSystem}, kTmpSystem, u"SYS_THEME_SET"_s}, "RingToneType", RING_TONE_RING, RING_TONE_SILENT, S::getRingToneType, S::setRingToneType);
    t.push(kAlertWorking, "AlertRingTone1", u""_s, u"/tone"_s, nullptr, [] { return S::setAsRingTone(u"/tone"_s); });
    t.add(kSystemSet, "TTSTalkingPhone", false, true, S::getVRTalkingPhone, S::setVRTalkingPhone);
    t.add(kSystemSet, "TimeFormat", 0, 1, S::getVRTimeFormat, nullptr);
    t.add(kSystemSet, "VRCommandTone", true, false, S::getVRCommandTone, S::setVRCommandTone);
    t.add(kSystemSet, "VRHelpFlex", true, false, S::getVRHelpFlex, S::setVRHelpFlex);
    t.add<int>(kSystemSet, "LcdSleepTime", 0, 15, S::getLcdSleepTime, nullptr);
    t.add(kSystemSet, "LcdSleepTime", SETUP_LCD_SLEEP_NEVER, SETUP_LCD_SLEEP_5_MINUTES, S::getLcdSleepTime, S::setLcdSleepTime);
    t.add(kSystemSet, "VibrationStyle", 0, 3, S::getVibrationStyle, S::setVibrationStyle);
    t.add(kSystemSet, "BackLight", 60, 80, S::getBackLightValue, nullptr);
    t.add(kSystemSet, "WallpaperTransparency", true, false, S::getWallpaperTransparency, S::setWallpaperTransparency);
    t.add(In{{kAlert, kTmpAlert}, kAlert, u"ALERTSTYLE_CONFIG_TABLE"_s}, "AlertTouchScreenStyle", 2, 1, S::getTouchScreenType, S::setTouchScreenType);
    t.push(kSystemSet, "TouchScreenType", {}, u"1"_s, nullptr, [] { return S::setTouchScreenType(1); });
    t.add(kAlertTable, "AlertKeypadStyle", 2, 1, S::getKeyPadType, nullptr);
    t.add(kAlertTable, "JavaSound", SETUP_JAVASOUND_AS_RING_TONE, SETUP_JAVASOUND_OFF, S::getJavaSoundType, nullptr);
    t.push(kVoiceMail, "IMSI_CHANGED_FLAG", u"0"_s, u"1"_s, [] { return asText(S::getImsiChangedFlag()); }, [] { return S::setImsiChangedFlag(true); });
    t.push(kSecurity, "SecurityAutoLockStatus", u"0"_s, u"10"_s, get<int>(S::getPhoneAutoLockTime), [] { return S::setPhoneAutoLockTime(SETUP_PHONELOCK_10_MINUTES); });
    t.add(kSecurity, "SecurityMinUnlockPwdLength", 4U, 6U, S::getMinUnlockCodeLength, S::setMinUnlockCodeLength);
    t.add(kSecurity, "KeyLockStatus", 0, -30, S::getKeyLockTime, S::setKeyLockTime);
    t.add(kSecurity, "InstantPhoneLockStatus", false, true, S::getInstantPhoneLockStatus, S::setInstantPhoneLockStatus);
    t.add(In{{kTmpDial}, kTmpDial, u"SYS_SECURITY"_s}, "SecurityFixedDialStatus", FIXED_DIAL_OFF, FIXED_DIAL_ON, S::getFixedDialingStatusFromFile, S::setFixedDialingStatusToFile);
    t.push(kSecurity, "SecurityAutoLockFlag", u"0"_s, u"1"_s, [] { bool on = false, other = false; S::getPhoneLockFlags(on, other); return asText(on); }, [] { return S::setPhoneLockFlag(true); });
    t.push(kSecurity, "SecurityAutoLockTimeoutFlag", u"0"_s, u"1"_s, [] { bool on = false, other = false; S::getPhoneLockFlags(other, on); return asText(on); }, [] { return S::setPhoneLockTimeOutFlag(true); });
    t.push(kSecurity, "SecurityUnlockCode", {}, u"4711"_s, nullptr, [] { return S::setPhoneLockCode(u"4711"_s); });
    t.add(kJava, "JavaHeapSize", 2048, 4096, S::getJavaHeapSize, nullptr);
    t.add(kJava, "JavaOtaTimeout", 60, 30, S::getJavaOTATimeout, nullptr);
    t.add(kWireless, "BluetoothName", u"Q300 BT"_s, u"\u00fc = [x]"_s, S::getBluetoothName, S::setBluetoothName);
    t.add(kWireless, "BluetoothStatus", false, true, S::getBluetoothStatus, S::setBluetoothStatus);
    t.add(kWireless, "BluetoothNotify", true, false, S::getBluetoothNotify, S::setBluetoothNotify);
    t.add(kWireless, "IrDaStatus", false, true, S::getIrdaStatus, S::setIrdaStatus);
    t.add(kWireless, "USBStatus", 0, 1, S::getUSBStatus, S::setUSBStatus);
    t.add(kThemeTable, "BlendingColor", 0xFFFFFFFFU, 0x80000001U, S::getBlendingColor, S::setBlendingColor);
    t.add(kThemeTable, "BlendingPercentage", 30, 40, S::getBlendingPercentage, S::setBlendingPercentage);
    t.add(kThemeTable, "BlendingGNB", 0, 1, S::getBlendingGNB, S::setBlendingGNB);
    t.add(kThemeTable, "BlendingCST", 0, 2, S::getBlendingCST, S::setBlendingCST);
    t.add(kThemeTable, "BlendingStatusBar", 0, 3, S::getBlendingStatusBar, S::setBlendingStatusBar);
    t.add(kThemeTable, "BlendingScrollBar", 0, 4, S::getBlendingScrollBar, S::setBlendingScrollBar);
}

void addChosen(Table &t)
{
    const std::pair<const char *, SETUP_SOUND_ALERT_TYPE_T> files[] = {{"AlertRingTone1", SETUP_SOUND_RING_TONE_1}, {"AlertRingTone2", SETUP_SOUND_RING_TONE_2},
        {"AlertTextMsg", SETUP_SOUND_TEXT_MESSAGE}, {"AlertIM", SETUP_SOUND_INSTANT_MESSAGE}, {"AlertP2P", SETUP_SOUND_PUSH_TO_TALK},
        {"AlarmsSound", SETUP_SOUND_ALARM}, {"RemindersSound", SETUP_SOUND_REMINDER}};
    for (const auto &[key, sound] : files)
        t.chosen(kAlertWorking, key, u""_s, u"/s"_s, sound, S::getSoundFile, nullptr);
    t.chosen(kWorking, "SpeakerVolume", 5, 1, SETUP_SOUND_SPEAKER, S::getSoundVolume, S::setSoundVolume);
    t.chosen(kWorking, "TouchScreenVolume", 5, 1, SETUP_SOUND_TOUCH_SCREEN, S::getSoundVolume, S::setSoundVolume);
    t.chosen(kWorking, "SystemVolume", 9, 1, SETUP_SOUND_SYSTEM, S::getSoundVolume, S::setSoundVolume);
    t.chosen(kWorking, "MessageAlertStatus", true, false, SETUP_ALERT_MESSAGE, S::getAlertStatus, S::setAlertStatus);
    t.chosen(kWorking, "MissedEventStatus", true, false, SETUP_ALERT_MISSED_EVENT, S::getAlertStatus, S::setAlertStatus);
    t.chosen(kWorking, "GeneralAlertStatus", true, false, SETUP_ALERT_GENERAL, S::getAlertStatus, S::setAlertStatus);
    t.chosen(kVoiceMail, "VOICE_MAIL_SRV_CTR_NUMBER", u""_s, u"+49 1"_s, 1, S::getVoiceMailboxNumber, S::setVoiceMailboxNumber);
    t.chosen(kVoiceMail, "VOICE_MAIL_SRV_CTR_NUMBER2", u""_s, u"2"_s, 2, S::getVoiceMailboxNumber, S::setVoiceMailboxNumber);
    t.chosen(kVoiceMail, "VOICE_MAIL_SRV_CTR_NAME", u""_s, u"one"_s, 1, S::getVoiceMailboxName, S::setVoiceMailboxName);
    t.chosen(kVoiceMail, "VOICE_MAIL_SRV_CTR_NAME2", u""_s, u"two"_s, 2, S::getVoiceMailboxName, S::setVoiceMailboxName);
    const In flex{{}, kFlex, u"SYS_FLEX_TABLE"_s};
    t.chosen(flex, "200", false, true, SETUP_FLEX_ID_T(200), S::getFlexBit, nullptr);
    t.push(flex, "5", u"0"_s, u"1"_s, [] { return asText(S::isFeatureAvailable(SETUP_FLEX_CAMERA)); }, nullptr);

    const char *const values[] = {"BrwIdleTimeout", "BrwWtatConfig", "BrwConfirmValue", "BrwShortCutMaxNumber", "BrwMMSSizeLimit", "BrwServiceLoadValue",
        "BrwPhoneNumberDisplayFormat", "BrwCurrentScroll", "BrwCurrentZoom", "Brw22BacklightValue", "BrwCurrentBacklight", "BrwCardSlot"};
    for (int i = 0; i < int(std::size(values)); ++i)
        t.chosen(kBrw, values[i], 0U, 4294967295U, BROWSER_FEATURE_VALUE_T(i), S::getBrowserFeatureValue, S::setBrowserFeatureValue);
    const char *const states[] = {"BrwWebAccessLock", "BrwUpdatePending", "BrwImageInfo", "BrwSoundInfo", "BrwCacheStartup", "BrwLock",
        "BrwWtlsClass_3_Status", "BrwCurrentAnimation", "BrwSignTextSelect", "BrwWebSessionLock", "BrwShortcutsLock"};
    for (int i = 0; i < int(std::size(states)); ++i)
        t.chosen(kBrw, states[i], 0U, 1U, BROWSER_FEATURE_STATE_T(i), S::getBrowserFeatureState, S::setBrowserFeatureState);
    t.chosen(kBrw, "BrwOperatorUrl", u""_s, u"http://o/?a=b"_s, BROWSER_OPERATOR_URL, S::getBrowserFeatureString, S::setBrowserFeatureString);
    t.chosen(kBrw, "BrwHomepage", u""_s, u"http://h"_s, BROWSER_HOMEPAGE, S::getBrowserFeatureString, S::setBrowserFeatureString);
    const std::pair<const char *, BROWSER_FEATURE_BLOCK_T> blocks[] = {{"BrwQosMin", BROWSER_QOS_MIN}, {"BrwQosReq", BROWSER_QOS_REQUESTED}};
    for (const auto &[key, number] : blocks)
        t.push(kBrw, key, u""_s, u"00ff7f"_s, [number = number] {
            unsigned char *block = nullptr;
            unsigned char length = 0;
            S::getBrowserFeatureBlock(number, block, length);
            const std::unique_ptr<unsigned char[]> owned(block);
            return QString::fromLatin1(QByteArray(reinterpret_cast<const char *>(block), length).toHex());
        }, [number = number] { const unsigned char bytes[] = {0, 0xFF, 0x7F}; return S::setBrowserFeatureBlock(number, bytes, 3); });
}
// clang-format on

QString stored(const QString &file, const QString &group, const char *key)
{
    return ZConfig(file, false).readEntry(group, QString::fromLatin1(key), u"(none)"_s);
}

// Forgets everything that was set.
void forget()
{
    for (const QString &file : kAllFiles)
        QFile::remove(file);
}

// What is wrong with the way in which a setting is read; null when nothing is.
QString wrongAtGet(const Known &known)
{
    forget();
    if (known.get() != known.absent)
        return u"another default: "_s + known.get();
    const QByteArray header = '[' + known.group.toUtf8() + "]\n";
    fill(known.read, "junk\n" + header + known.key + "=1\n");
    if (known.get() != known.absent)
        return u"not the default of a broken file: "_s + known.get();
    fill(known.read, header + "other = 1\n" + known.key + " = " + known.sample.toUtf8() + '\n');
    return known.get() == known.sample ? QString() : u"not what is stored: "_s + known.get();
}

QString wrongAtSet(const Known &known)
{
    forget();
    fill(known.written.first(), "[G]\nk = v\n");
    if (!known.set())
        return u"cannot be set"_s;
    for (const QString &file : kAllFiles) {
        const bool isHere = stored(file, known.group, known.key) == known.sample;
        if (isHere != known.written.contains(file))
            return (isHere ? u"also in "_s : u"not in "_s) + file;
    }
    if (stored(known.written.first(), u"G"_s, "k") != u"v"_s)
        return u"another setting is lost"_s;
    return !known.get || known.get() == known.sample ? QString() : u"does not come back"_s;
}

}

class TstSettingAccessors : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { forget(); }
    void eachAccessorMeansItsPlace();
    void theTableHasEachKeyOnce();
};

void TstSettingAccessors::eachAccessorMeansItsPlace()
{
    Table table;
    addPlain(table);
    addChosen(table);
    QStringList wrong;
    for (const Known &known : table.rows) {
        for (const QString &what :
            {known.get ? wrongAtGet(known) : QString(), known.set ? wrongAtSet(known) : QString()}) {
            if (!what.isNull())
                wrong += QString::fromLatin1(known.key) + u" of "_s + known.group + u": "_s + what;
        }
    }
    QCOMPARE(wrong, QStringList());
}

void TstSettingAccessors::theTableHasEachKeyOnce()
{
    QSet<QString> places;
    QSet<QString> names;
    for (const settings::Row &row : settings::allRows()) {
        places += QString::number(int(row.place.file)) + row.place.group + row.key;
        names += QString::fromLatin1(row.name);
    }
    QCOMPARE(size_t(places.size()), settings::allRows().size());
    QCOMPARE(size_t(names.size()), settings::allRows().size());
}

QTEST_GUILESS_MAIN(TstSettingAccessors)
#include "tst_settingaccessors.moc"
