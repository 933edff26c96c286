// The settings file of one application.
#pragma once

#include "am/am_global.h"
#include "appbase/config/zconfig.h"
#include "platform/tyxexport.h"

#include <QString>
#include <QStringList>

// A ZConfig that knows which file belongs to which application, and that strips white space from the ends of every
// group's and key's name before it uses them. One lives for one question or change: it reads its file afresh.
//
//     SETUP_SET_Manager mail(AM_Global::Email, true);
//     QString signature;
//     mail.getSettingInfo(QStringLiteral("COMPOSE"), QStringLiteral("Signature"), signature, QString(), false);
//
// The settings of the system have names in SETUP_Utility; use those.
class TYX_EXPORT SETUP_SET_Manager : public ZConfig {
public:
    // `flag`: whether every operation that modifies something saves the file at once (see ZConfig).
    SETUP_SET_Manager(AM_Global::Apps app, bool flag);
    SETUP_SET_Manager(QString fileName, bool flag);
    ~SETUP_SET_Manager() override;

    // Where the settings of an application are; "tyx_others.cfg" of the setting directory for one without a file.
    static QString getSettingFileName(AM_Global::Apps app);

    // The value, or `defaultValue` when the file, the group or the key is missing. Always true. Numbers that are empty
    // read as the default too, and text that is no number in range as 0.
    bool getSettingInfo(QString group, QString key, QString &value, QString defaultValue, bool flag); // flag: stripped
    bool getSettingInfo(QString group, QString key, int &value, int defaultValue);
    bool getSettingInfo(QString group, QString key, bool &value, bool defaultValue); // true: any number but 0
    bool getSettingInfo(QString group, QString key, unsigned int &value, unsigned int defaultValue);
    bool getSettingInfo(QString group, QString key, unsigned short &value, unsigned short defaultValue);

    // Stores a value. False when the save failed. `trimValue`: without white space at its ends.
    bool setSettingInfo(QString group, QString key, QString value, bool trimValue);
    bool setSettingInfo(QString group, QString key, int value);
    bool setSettingInfo(QString group, QString key, bool value);
    bool setSettingInfo(QString group, QString key, unsigned int value);
    bool setSettingInfo(QString group, QString key, unsigned short value);
    bool setSettingInfo(QString group, QString key, const char *value) = delete; // it would be stored as a bool

    // The names of a group's keys in ascending order, empty when there is no such group. The caller deletes the list.
    [[nodiscard]] QStringList *getEntryKeyList(QString group);

    bool removeEntry(const QString &group, const QString &key) override;
    bool clearGroup(const QString &group) override;
    bool flush() override;
};
