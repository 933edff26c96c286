// Settings files beyond the single value: the manager, lists of records, codes, and what a failing disk or a hostile
// text does.
#include "settings/files/inputsetting.h"
#include "settings/files/setup_set_manager.h"
#include "settings/files/setup_utility.h"
#include "settings/files/util_themeinterface.h"
#include "settings/status/systemstatus.h"
#include "tests/support/testfiles.h"

#include <QDir>
#include <QTime>
#include <memory>

using namespace Qt::StringLiterals;
using S = SETUP_Utility;

const QString kFile = u"/tmp/t.cfg"_s;

class TstSettingsFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void theManagerKnowsFilesAndStripsNames();
    void shortNumbers();
    void textsThatWouldNotComeBackAreRefused();
    void aSetThatCannotSaveSaysSo();
    void whatNamesNothingIsRefused();
    void languageTakesTheInputLanguageAlong();
    void inputSettingTravels();
    void codesAndTimes();
    void shortcuts();
    void profiles();
    void flexBits();
    void theTheme();
    void defaultsFollowTheLanguageDirectory();
};

void TstSettingsFiles::init()
{
    QDir(u"/setup"_s).removeRecursively();
    for (const QString &file : QDir(u"/tmp"_s).entryList({u"*.cfg"_s}))
        QFile::remove(u"/tmp/"_s + file);
    QVERIFY(QDir().mkpath(u"/setup"_s));
}

void TstSettingsFiles::theManagerKnowsFilesAndStripsNames()
{
    const std::pair<int, QString> files[] = {{3, u"sms"_s}, {4, u"call"_s}, {5, u"others"_s}, {64, u"email"_s},
        {65, u"people"_s}, {66, u"calendar"_s}, {71, u"mp"_s}, {72, u"camera"_s}, {76, u"theme"_s}, {77, u"system"_s},
        {82, u"connection"_s}, {85, u"browser"_s}, {88, u"syncml"_s}, {92, u"bluetooth"_s}, {100, u"im"_s},
        {101, u"videoshare"_s}, {102, u"provision"_s}, {600, u"vpn"_s}, {604, u"alertstyle"_s}, {-1, u"others"_s}};
    for (const auto &[app, word] : files)
        QCOMPARE(SETUP_SET_Manager::getSettingFileName(AM_Global::Apps(app)), u"/setup/tyx_"_s + word + u".cfg"_s);
    SETUP_SET_Manager manager(kFile, true);
    QVERIFY(manager.setSettingInfo(u" G\t"_s, u" k "_s, 5));
    QVERIFY(manager.setSettingInfo(u"G"_s, u"trimmed"_s, u" a "_s, true));
    QVERIFY(manager.setSettingInfo(u"G"_s, u"whole"_s, u" a "_s, false));
    QVERIFY(manager.setSettingInfo(u"G"_s, u"short"_s, ushort(65535)));
    QCOMPARE(content(kFile), "[G]\nk = 5\nshort = 65535\ntrimmed = a\nwhole =  a \n");
    int number = 0;
    QVERIFY(manager.getSettingInfo(u" G"_s, u"\tk"_s, number, 1) && number == 5);
    const std::unique_ptr<QStringList> keys(manager.getEntryKeyList(u" G"_s));
    QCOMPARE(*keys, QStringList({u"k"_s, u"short"_s, u"trimmed"_s, u"whole"_s}));
    QVERIFY(std::unique_ptr<QStringList>(manager.getEntryKeyList(u"none"_s))->isEmpty());
    ZConfig &base = manager; // virtual
    QVERIFY(base.removeEntry(u"G "_s, u" k"_s) && !content(kFile).contains("k = 5"));
    QVERIFY(base.clearGroup(u"G "_s) && content(kFile).isEmpty());
}

void TstSettingsFiles::shortNumbers()
{
    fill(kFile, "[G]\nempty =\nshort = 65535\nword = x\nlarge = 65536\n");
    SETUP_SET_Manager manager(kFile, false);
    const std::pair<QString, int> known[] = {
        {u"short"_s, 65535}, {u"empty"_s, 7}, {u"none"_s, 7}, {u"word"_s, 0}, {u"large"_s, 0}};
    for (const auto &[key, expected] : known) {
        ushort value = 0;
        QVERIFY(manager.getSettingInfo(u"G"_s, key, value, ushort(7)));
        QCOMPARE(int(value), expected);
    }
}

void TstSettingsFiles::textsThatWouldNotComeBackAreRefused()
{
    const QByteArray old = "[SYS_IRDA_BT]\nBluetoothName = old\n";
    fill(u"/setup/tyx_system.cfg"_s, old);
    QVERIFY(S::addInvLProfile(INVL_BLOG, u"p"_s));
    for (const QString &text : {u"x\n[SYS_SECURITY]\nSecurityUnlockCode = 1"_s, u"x\ry"_s, u" x"_s, u"x\u00a0"_s}) {
        QVERIFY(!S::setBluetoothName(text) && !S::setLanguageType(text) && !S::setPhoneLockCode(text));
        QVERIFY(!S::shortcutCreateRecord({u"name"_s, text}) && !S::setUrlByInvLProfile(INVL_BLOG, u"p"_s, text));
    }
    QCOMPARE(content(u"/setup/tyx_system.cfg"_s), old);
}

// A directory stands for a file that its owner alone may read: the tests may run as root.
void TstSettingsFiles::aSetThatCannotSaveSaysSo()
{
    QVERIFY(QDir().mkpath(u"/setup/tyx_system.cfg"_s));
    QVERIFY(!S::setBluetoothStatus(true) && !S::setSoundVolume(SETUP_SOUND_SPEAKER, 3));
    QVERIFY(!QFile::exists(u"/tmp/tyx_system.cfg"_s)); // the copy does not get ahead of the settings
    bool on = true;
    QVERIFY(S::getBluetoothStatus(on) && !on);
    QDir(u"/setup"_s).removeRecursively();
    QVERIFY(!S::setBatterySavedStatus(true) && !S::setAsWallpaper(u"/w"_s));
    QVERIFY(!S::addInvLProfile(INVL_GAME, u"p"_s) && !S::shortcutCreateRecord({u"n"_s, u"u"_s}));
    QVERIFY(S::setFixedDialingStatusToFile(FIXED_DIAL_ON)); // which is elsewhere
}

void TstSettingsFiles::whatNamesNothingIsRefused()
{
    int number = 77;
    QString text = u"untouched"_s;
    bool flag = true;
    QStringList names{u"untouched"_s};
    QVERIFY(!S::getSoundVolume(SETUP_SOUND_ALARM, number) && !S::setSoundVolume(SETUP_ALERT_GENERAL, 1));
    QVERIFY(!S::getSoundFile(SETUP_SOUND_SPEAKER, text) && !S::getAlertStatus(SETUP_SOUND_SYSTEM, flag));
    QVERIFY(!S::getVoiceMailboxName(3, text) && !S::setVoiceMailboxNumber(0, text));
    QVERIFY(!S::getBrowserFeatureString(BROWSER_FEATURE_STRING_T(2), text));
    QVERIFY(!S::setBrowserFeatureState(BROWSER_FEATURE_STATE_T(-1), 1));
    QVERIFY(!S::getInvLProfiles(ENUM_INVL_T(5), names) && !S::addInvLProfile(ENUM_INVL_T(5), u"p"_s));
    QVERIFY(number == 77 && flag && text == u"untouched"_s && names.size() == 1);
}

void TstSettingsFiles::languageTakesTheInputLanguageAlong()
{
    const std::pair<QString, unsigned> numbers[] = {
        {u"en-us"_s, 0}, {u"de-de"_s, 5}, {u"de-at"_s, 5}, {u"pt"_s, 10}, {u"tlh"_s, 0}};
    for (const auto &[code, number] : numbers) {
        QVERIFY(S::setLanguageType(code));
        for (const QString &file : {u"/setup/tyx_system.cfg"_s, u"/tmp/tyx_system.cfg"_s}) {
            ZConfig config(file, false);
            QCOMPARE(config.readEntry(u"SYS_SYSTEM_SET"_s, u"LanguageType"_s), code);
            QCOMPARE(config.readUIntEntry(u"SYS_SYSTEM_SET"_s, u"preferedInputLanguage"_s, 99), number);
        }
        QCOMPARE(settings::loadInputSetting().preferredInputLanguage, number);
    }
    QVERIFY(!S::setLanguageType(QString()));
    QVERIFY(S::verifyAutoLanguageCode(0) && S::verifyAutoLanguageCode(27));
    QVERIFY(!S::verifyAutoLanguageCode(-1) && !S::verifyAutoLanguageCode(28));
}

void TstSettingsFiles::inputSettingTravels()
{
    INPUT_SETTING_T setting{0x1FE, false, true, false, -2, true, 3, 0x104, false, true, u"ab"_s};
    const QByteArray bytes = QByteArray::fromHex("fe 00 01 00 fffffffe 01 03 04 00 01 00000004 00610062");
    QCOMPARE(settings::packInputSetting(setting).toHex(), bytes.toHex());
    INPUT_SETTING_T read;
    for (qsizetype size = 0; size < bytes.size(); ++size)
        QVERIFY(!settings::unpackInputSetting(bytes.left(size), read));
    QVERIFY(settings::unpackInputSetting(bytes, read));
    QCOMPARE(read.preferredInputMethodType, 0xFEU);
    QCOMPARE(settings::loadInputSetting(), INPUT_SETTING_T());
    QVERIFY(settings::saveInputSetting(setting));
    QCOMPARE(settings::loadInputSetting(), setting);
    QCOMPARE(content(u"/setup/tyx_system.cfg"_s),
        "[SYS_SYSTEM_SET]\nNextWordPredict = 0\nPreferedInputMethodType = 510\nToolTip = 1\nUserDict = 0\n"
        "WaterMark = 1\nWordCompletion = 1\nWritingHand = 0\nWritingSpeed = -2\niWexMethodOrder = ab\n"
        "preferedInputLanguage = 3\nsecondaryInputLanguage = 260\n");
}

void TstSettingsFiles::codesAndTimes()
{
    const auto unlocks = [](const QString &code) {
        bool right = false;
        return S::verifyUnlockCode(code, right) && right;
    };
    bool right = false;
    QVERIFY(unlocks(u"1234"_s) && S::verifySecurityCode(u"000000"_s, right) && right);
    QVERIFY(S::setPhoneLockCode(u"00471"_s) && !S::setPhoneLockCode(QString()));
    QVERIFY(unlocks(u"00471"_s));
    for (const QString &wrong : {QString(), u"0047"_s, u"004711"_s, u"00472"_s, u"1234"_s, u"471"_s})
        QVERIFY(!unlocks(wrong));
    fill(u"/setup/tyx_system.cfg"_s, "[SYS_SECURITY]\nSecurityUnlockCode =\nSecurityAutoLockStatus = 5\n");
    QVERIFY(!unlocks(QString()) && unlocks(u"1234"_s));
    QVERIFY(S::getPhoneAutoLockStatus(right) && right);
    for (const auto &[hour, time] : {std::pair("22", QTime(22, 7)), std::pair("25", QTime(0, 0))}) {
        QTime read(1, 1);
        fill(u"/setup/tyx_system.cfg"_s,
            QByteArray("[SYS_POWER_MANAGEMENT]\nPowerOffTimeHour=") + hour + "\nPowerOffTimeMinute=7\n");
        QVERIFY(S::getAutoPowerOffTime(read));
        QCOMPARE(read, time);
    }
}

void TstSettingsFiles::shortcuts()
{
    const QString odd = u" [a=b]%0041 \u00fc\n"_s;
    QVERIFY(S::shortcutCreateRecord({u"b"_s, u"http://b/?x=y"_s}) && S::shortcutCreateRecord({odd, QString()}));
    QVERIFY(!S::shortcutCreateRecord({u"b"_s, u"http://c"_s}) && !S::shortcutCreateRecord({QString(), u"http://c"_s}));
    unsigned char count = 9;
    SHORTCUT_RECORD *records = nullptr;
    QVERIFY(S::shortcutGetAllRecords(count, records));
    std::unique_ptr<SHORTCUT_RECORD[]> owned(records);
    QVERIFY(count == 2 && owned[0].name == odd && owned[1].url == u"http://b/?x=y"_s);
    QVERIFY(S::setBrowserFeatureValue(BROWSER_SHORTCUT_MAX_NUMBER, 2));
    QVERIFY(!S::shortcutCreateRecord({u"c"_s, u"http://c"_s}));
    QVERIFY(S::shortcutDeleteRecord(odd) && !S::shortcutDeleteRecord(odd));
    QVERIFY(S::shortcutDeleteAllRecords() && S::shortcutGetAllRecords(count, records));
    QVERIFY(count == 0 && records == nullptr);
    QByteArray many = "[BRW_SHORTCUT_TABLE]\n"; // more than can be counted
    for (int i = 0; i < 300; ++i)
        many += QByteArray::number(i) + "=u\n";
    fill(u"/setup/tyx_shortcut.cfg"_s, many);
    QVERIFY(S::shortcutGetAllRecords(count, records));
    owned.reset(records);
    QCOMPARE(int(count), 255);
}

void TstSettingsFiles::profiles()
{
    const QString odd = u"a]=[ "_s;
    QVERIFY(S::addInvLProfile(INVL_BLOG, odd) && S::addInvLProfile(INVL_GAME, odd));
    QVERIFY(!S::addInvLProfile(INVL_BLOG, odd));
    QVERIFY(S::setServerAddrByInvLProfile(INVL_BLOG, odd, u"server"_s));
    QVERIFY(S::setUrlByInvLProfile(INVL_BLOG, odd, u"url"_s));
    QVERIFY(S::addInvLProfile(INVL_BLOG, u"b"_s) && !S::renInvLProfile(INVL_BLOG, odd, u"b"_s));
    QVERIFY(S::renInvLProfile(INVL_BLOG, odd, u"c"_s));
    QStringList names;
    INVL_DATA_T data;
    QVERIFY(S::getInvLProfiles(INVL_BLOG, names) && S::getDataByInvLProfile(INVL_BLOG, u"c"_s, data));
    QVERIFY(names == QStringList({u"b"_s, u"c"_s}) && data.serviceAddress == u"server"_s && data.url == u"url"_s);
    QVERIFY(S::setDataByInvLProfile(INVL_BLOG, u"c"_s, {u"s2"_s, QString()}));
    QVERIFY(S::getServerAddrByInvLProfile(INVL_BLOG, u"c"_s, data.serviceAddress));
    QVERIFY(S::getUrlByInvLProfile(INVL_BLOG, u"c"_s, data.url) && !S::getUrlByInvLProfile(INVL_BLOG, odd, data.url));
    QVERIFY(data.serviceAddress == u"s2"_s && data.url.isEmpty());
    QVERIFY(S::delInvLProfile(INVL_BLOG, u"c"_s) && !S::delInvLProfile(INVL_BLOG, u"c"_s));
    QVERIFY(S::getInvLProfiles(INVL_GAME, names) && names == QStringList{odd});
    const QByteArray file = content(u"/setup/tyx_invnet.cfg"_s);
    QVERIFY2(file.contains("[Invl_Game_Profile_List]\n") && !file.contains("Blog_Profile_List:c"), file);
}

void TstSettingsFiles::flexBits()
{
    unsigned char table[32] = {0x21};
    table[31] = 0x80;
    unsigned char value = 9;
    QVERIFY(S::getFlexBitFromBP(table, 255, &value) && value == 1);
    QVERIFY(S::getFlexBitFromBP(table, 1, &value) && value == 0);
    QVERIFY(!S::getFlexBitFromBP(nullptr, 0, &value) && !S::getFlexBitFromBP(table, 0, nullptr));
    const QString device = u"/dev/tyx_flexbits"_s;
    QVERIFY(!S::initFlexbitFromBP()); // no modem
    fill(device, QByteArray(31, '\xff'));
    QVERIFY(!S::initFlexbitFromBP() && !QFile::exists(S::getFlexBitFileName()));
    fill(device, QByteArray(reinterpret_cast<const char *>(table), 32));
    QVERIFY(S::initFlexbitFromBP() && QFile::remove(device));
    QVERIFY(S::isFeatureAvailable(SETUP_FLEX_ID_T(255)) && S::isFeatureAvailable(SETUP_FLEX_CAMERA));
    QVERIFY(!S::isFeatureAvailable(SETUP_FLEX_IRDA));
    QVERIFY(!S::setBacklightValue()); // no lights
}

void TstSettingsFiles::theTheme()
{
    ThemeInfo info;
    QVERIFY(UTIL_ThemeInterface::getThemeInfo(info));
    QCOMPARE(std::to_array(info.numbers),
        (std::array<quint32, 9>{0, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 1}));
    QCOMPARE(info.texts[0], "");
    fill(u"/tmp/tyx_theme.cfg"_s,
        "[THEME_CONFIG_TABLE]\nThemeId=3\nThemeColor7=255\nThemeStyle=2\nThemeSkinFile=/s\nThemeIconPath=/"
        "i\nThemeSoundPath=/"
            + QByteArray(255, 'x') + '\n');
    QVERIFY(UTIL_ThemeInterface::getThemeInfo(info));
    QVERIFY(info.numbers[0] == 3 && info.numbers[7] == 255 && info.numbers[8] == 2);
    QCOMPARE(info.texts[0], "/s");
    QCOMPARE(info.texts[1], "/i");
    QCOMPARE(info.texts[2], "");
}

void TstSettingsFiles::defaultsFollowTheLanguageDirectory()
{
    for (const char *directory : {"/lang", "/lang/"}) {
        qputenv("TYX_LANG", directory);
        QCOMPARE(S::defaultSoundDir(), u"/lang/ringtone/"_s);
        QCOMPARE(S::getPreloadAppsPath(), u"/lang/preloadapps/"_s);
        QVERIFY(S::defaultPictureFile().startsWith(S::defaultPictureDir()));
        QVERIFY(S::defaultSoundFile().startsWith(S::defaultSoundDir()));
        QVERIFY(S::defaultPowerOnFile().startsWith(S::defaultAniDir()));
        QVERIFY(S::defaultPowerOffFile().startsWith(S::defaultAniDir()));
    }
    qunsetenv("TYX_LANG");
    QCOMPARE(S::defaultAniDir(), u"animation/"_s);
}

QTEST_GUILESS_MAIN(TstSettingsFiles)
#include "tst_settingsfiles.moc"
