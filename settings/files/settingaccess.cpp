#include "settings/files/settingaccess.h"

#include "appbase/config/configfile.h"
#include "platform/bus/qcopchannel.h"
#include "settings/files/inputsetting.h"
#include "settings/files/settingkeys.h"
#include "settings/files/setup_utility.h"

#include <QCoreApplication>
#include <QFile>

namespace settings {

QString fileName(File file)
{
    switch (file) {
    case File::System:
        return SETUP_SET_Manager::getSettingFileName(AM_Global::System);
    case File::Theme:
        return SETUP_SET_Manager::getSettingFileName(AM_Global::Theme);
    case File::AlertStyle:
        return SETUP_SET_Manager::getSettingFileName(AM_Global::AlertStyle);
    case File::Sms:
        return SETUP_SET_Manager::getSettingFileName(AM_Global::Sms);
    case File::Browser:
        return SETUP_SET_Manager::getSettingFileName(AM_Global::Browser);
    case File::FixedDialing:
        return QStringLiteral("/tmp/tyx_fixeddial.cfg");
    case File::FlexBits:
        break;
    }
    return SETUP_Utility::getFlexBitFileName();
}

QString copyName(File file)
{
    switch (file) {
    case File::System:
        return QStringLiteral("/tmp/tyx_system.cfg");
    case File::Theme:
        return QStringLiteral("/tmp/tyx_theme.cfg");
    case File::AlertStyle:
        return QStringLiteral("/tmp/tyx_alertstyle.cfg");
    default:
        return {};
    }
}

bool loadFrom(SETUP_SET_Manager &file, const Setting<Bytes> &setting, QByteArray &value)
{
    QString digits;
    file.getSettingInfo(literal(setting.place.group), literal(setting.key), digits, QString(), false);
    value = QByteArray::fromHex(digits.toLatin1()); // skips what is no digit
    return true;
}

QString readText(const Row &row)
{
    const QString absent = row.type == Type::Text ? literal(row.absentText)
        : row.type == Type::Bytes                 ? QString()
                                                  : QString::number(row.absentNumber);
    SETUP_SET_Manager file(readFileName(row.place), false);
    const QString group = literal(row.place.group);
    const QString key = literal(row.key);
    QString text;
    file.getSettingInfo(group, key, text, absent, false);
    // As the accessors read them: damage is 0, and an empty number is the default.
    switch (row.type) {
    case Type::Bool:
        return (text.isEmpty() ? row.absentNumber : text.toInt()) != 0 ? QStringLiteral("1") : QStringLiteral("0");
    case Type::Int:
        return text.isEmpty() ? absent : QString::number(text.toInt());
    case Type::Unsigned:
        return text.isEmpty() ? absent : QString::number(text.toUInt());
    default:
        return text;
    }
}

bool isStorable(const QString &text)
{
    return !text.contains(u'\n') && !text.contains(u'\r') && text.trimmed() == text;
}

bool mayBeEmpty(const Row &row) { return !row.isSecret && row.effect != Effect::FollowLanguage; }

// The theme of the status table has room for 255 bytes, and every process has a current folder of its own.
bool isThemePath(const QString &text)
{
    return text.isEmpty() || (text.startsWith(u'/') && QFile::encodeName(text).size() <= 255);
}

bool isStorable(const Row &row, const QString &text)
{
    if (row.effect == Effect::TellServer && !isThemePath(text))
        return false;
    return isStorable(text) && (!text.isEmpty() || mayBeEmpty(row));
}

bool isChangeable(const QString &file)
{
    const auto bytes = config::readFile(file);
    return bytes || bytes.error().number == ENOENT;
}

namespace {

bool hasText(const QString &fileName, const Row &row, const QString &text)
{
    SETUP_SET_Manager file(fileName, false);
    QString stored;
    file.getSettingInfo(literal(row.place.group), literal(row.key), stored, QStringLiteral("\n"), false);
    return stored == text; // no text that can be stored is a line feed
}

bool writeInto(const QString &fileName, const Row &row, const QString &text)
{
    if (!isChangeable(fileName))
        return false;
    {
        SETUP_SET_Manager file(fileName, true);
        if (file.setSettingInfo(literal(row.place.group), literal(row.key), text, false))
            return true;
    }
    // What could not be saved, the object tried once more when it went. The caller has to know of it, and so has the
    // working copy.
    return hasText(fileName, row, text);
}

bool follow(Effect effect, const QString &text)
{
    switch (effect) {
    case Effect::None:
        break;
    case Effect::TellInputMethods:
        announceInputSetting();
        break;
    case Effect::FollowLanguage:
        return store(keys::inputLanguage, inputLanguageNumber(text));
    case Effect::TellSystem:
        return store(keys::touchScreenTypeOfSystem, text.toInt());
    case Effect::TellServer:
        if (QCoreApplication::instance() != nullptr) // else there is no bus yet
            QCopChannel::send("TYX/QtServer", "themeChanged()");
        break;
    }
    return true;
}

}

bool writeText(const Row &row, const QString &text)
{
    if (!isStorable(row, text))
        return false;
    const QString value = text.isNull() ? QStringLiteral("") : text; // a null one would be no value at all
    return writeInto(fileName(row.place.file), row, value)
        && (row.place.copy == Copy::None || writeInto(copyName(row.place.file), row, value))
        && follow(row.effect, value);
}

}
