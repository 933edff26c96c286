#include "settings/files/setup_set_manager.h"

#include <QMap>
#include <algorithm>
#include <array>
#include <memory>

namespace {

struct SettingsFile {
    AM_Global::Apps app;
    QStringView name;
};

constexpr std::array kFiles{
    SettingsFile{AM_Global::Sms, u"tyx_sms.cfg"},
    SettingsFile{AM_Global::Call, u"tyx_call.cfg"},
    SettingsFile{AM_Global::Email, u"tyx_email.cfg"},
    SettingsFile{AM_Global::People, u"tyx_people.cfg"},
    SettingsFile{AM_Global::Calendar, u"tyx_calendar.cfg"},
    SettingsFile{AM_Global::MediaPlayer, u"tyx_mp.cfg"},
    SettingsFile{AM_Global::Camera, u"tyx_camera.cfg"},
    SettingsFile{AM_Global::Theme, u"tyx_theme.cfg"},
    SettingsFile{AM_Global::System, u"tyx_system.cfg"},
    SettingsFile{AM_Global::Connection, u"tyx_connection.cfg"},
    SettingsFile{AM_Global::Browser, u"tyx_browser.cfg"},
    SettingsFile{AM_Global::SyncML, u"tyx_syncml.cfg"},
    SettingsFile{AM_Global::Bluetooth, u"tyx_bluetooth.cfg"},
    SettingsFile{AM_Global::InstantMessaging, u"tyx_im.cfg"},
    SettingsFile{AM_Global::VideoShare, u"tyx_videoshare.cfg"},
    SettingsFile{AM_Global::Provision, u"tyx_provision.cfg"},
    SettingsFile{AM_Global::Vpn, u"tyx_vpn.cfg"},
    SettingsFile{AM_Global::AlertStyle, u"tyx_alertstyle.cfg"},
};

}

SETUP_SET_Manager::SETUP_SET_Manager(AM_Global::Apps app, bool flag) : ZConfig(getSettingFileName(app), flag) { }

SETUP_SET_Manager::SETUP_SET_Manager(QString fileName, bool flag) : ZConfig(fileName, flag) { }

SETUP_SET_Manager::~SETUP_SET_Manager() = default;

QString SETUP_SET_Manager::getSettingFileName(AM_Global::Apps app)
{
    const auto file = std::ranges::find(kFiles, app, &SettingsFile::app);
    return getSettingDirectory() % (file != kFiles.end() ? file->name : QStringView(u"tyx_others.cfg"));
}

bool SETUP_SET_Manager::getSettingInfo(QString group, QString key, QString &value, QString defaultValue, bool flag)
{
    value = readEntry(group.trimmed(), key.trimmed(), defaultValue);
    if (flag)
        value = value.trimmed();
    return true;
}

bool SETUP_SET_Manager::getSettingInfo(QString group, QString key, int &value, int defaultValue)
{
    value = readNumEntry(group.trimmed(), key.trimmed(), defaultValue);
    return true;
}

bool SETUP_SET_Manager::getSettingInfo(QString group, QString key, bool &value, bool defaultValue)
{
    value = readNumEntry(group.trimmed(), key.trimmed(), defaultValue ? 1 : 0) != 0;
    return true;
}

bool SETUP_SET_Manager::getSettingInfo(QString group, QString key, unsigned int &value, unsigned int defaultValue)
{
    value = readUIntEntry(group.trimmed(), key.trimmed(), defaultValue);
    return true;
}

bool SETUP_SET_Manager::getSettingInfo(QString group, QString key, unsigned short &value, unsigned short defaultValue)
{
    const QString text = readEntry(group.trimmed(), key.trimmed(), QString());
    value = text.isEmpty() ? defaultValue : text.toUShort();
    return true;
}

bool SETUP_SET_Manager::setSettingInfo(QString group, QString key, QString value, bool trimValue)
{
    return writeEntry(group.trimmed(), key.trimmed(), trimValue ? value.trimmed() : value);
}

bool SETUP_SET_Manager::setSettingInfo(QString group, QString key, int value)
{
    return writeEntry(group.trimmed(), key.trimmed(), value);
}

bool SETUP_SET_Manager::setSettingInfo(QString group, QString key, bool value)
{
    return writeEntry(group.trimmed(), key.trimmed(), value);
}

bool SETUP_SET_Manager::setSettingInfo(QString group, QString key, unsigned int value)
{
    return writeEntry(group.trimmed(), key.trimmed(), value);
}

bool SETUP_SET_Manager::setSettingInfo(QString group, QString key, unsigned short value)
{
    return setSettingInfo(group, key, QString::number(value), false);
}

QStringList *SETUP_SET_Manager::getEntryKeyList(QString group)
{
    auto names = std::make_unique<QStringList>();
    if (const auto *entries = getGroupEntriesKeyList(group.trimmed()))
        *names = entries->keys();
    return names.release();
}

bool SETUP_SET_Manager::removeEntry(const QString &group, const QString &key)
{
    return ZConfig::removeEntry(group.trimmed(), key.trimmed());
}

bool SETUP_SET_Manager::clearGroup(const QString &group) { return ZConfig::clearGroup(group.trimmed()); }

bool SETUP_SET_Manager::flush() { return ZConfig::flush(); }
