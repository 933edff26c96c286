#include "settings/files/inputsetting.h"

#include "appbase/messaging/wire.h"
#include "platform/bus/qcopchannel.h"
#include "settings/files/settingaccess.h"
#include "settings/files/settingkeys.h"

#include <QCoreApplication>
#include <algorithm>
#include <array>

namespace settings {

namespace {

// The place of each is its number.
constexpr std::array<QStringView, 28> kLanguages{u"en-us", u"zh-cn", u"zh-tw", u"zh-hk", u"en-gb", u"de-de", u"fr-fr",
    u"fr-ca", u"es-es", u"es-us", u"pt-br", u"pt-pt", u"it-it", u"nl-nl", u"da-dk", u"sv-se", u"nb-no", u"fi-fi",
    u"pl-pl", u"cs-cz", u"hu-hu", u"ru-ru", u"tr-tr", u"el-gr", u"he-il", u"ar-sa", u"th-th", u"vi-vn"};

// Visits the settings in the order in which they are read.
template <typename Record, typename Visitor> void fileFields(Record &record, Visitor &&visit)
{
    visit(keys::inputMethodType, record.preferredInputMethodType);
    visit(keys::inputWritingHand, record.writingHand);
    visit(keys::inputWordCompletion, record.wordCompletion);
    visit(keys::inputUserDictionary, record.userDictionary);
    visit(keys::inputWritingSpeed, record.writingSpeed);
    visit(keys::inputWaterMark, record.waterMark);
    visit(keys::inputLanguage, record.preferredInputLanguage);
    visit(keys::inputSecondLanguage, record.secondaryInputLanguage);
    visit(keys::inputToolTip, record.toolTip);
    visit(keys::inputNextWord, record.nextWordPrediction);
    visit(keys::inputMethodOrder, record.predictiveMethodOrder);
}

void lowByte(wire::Writer &stream, quint32 value) { stream.u8(quint8(value)); }
void lowByte(wire::Reader &stream, quint32 &value)
{
    quint8 byte = 0;
    stream.u8(byte);
    value = byte;
}

template <typename Stream, typename Record> void wireFields(Stream &stream, Record &record)
{
    lowByte(stream, record.preferredInputMethodType);
    stream.flag8(record.writingHand);
    stream.flag8(record.wordCompletion);
    stream.flag8(record.userDictionary);
    stream.i32(record.writingSpeed);
    stream.flag8(record.waterMark);
    lowByte(stream, record.preferredInputLanguage);
    lowByte(stream, record.secondaryInputLanguage);
    stream.flag8(record.nextWordPrediction);
    stream.flag8(record.toolTip);
    stream.string(record.predictiveMethodOrder);
}

void storeInto(SETUP_SET_Manager &file, const Setting<QStringView> &setting, const QString &value)
{
    file.setSettingInfo(literal(setting.place.group), literal(setting.key), value, true);
}
template <typename T> void storeInto(SETUP_SET_Manager &file, const Setting<T> &setting, T value)
{
    file.setSettingInfo(literal(setting.place.group), literal(setting.key), value);
}

bool saveInto(const QString &fileName, const INPUT_SETTING_T &record)
{
    if (!isChangeable(fileName))
        return false;
    SETUP_SET_Manager file(fileName, false);
    fileFields(record, [&](const auto &setting, const auto &value) { storeInto(file, setting, value); });
    return file.flush();
}

}

INPUT_SETTING_T loadInputSetting()
{
    INPUT_SETTING_T record;
    SETUP_SET_Manager file(copyName(File::System), false);
    fileFields(record, [&](const auto &setting, auto &value) { loadFrom(file, setting, value); });
    return record;
}

bool saveInputSetting(const INPUT_SETTING_T &setting)
{
    return isStorable(setting.predictiveMethodOrder) && saveInto(fileName(File::System), setting)
        && saveInto(copyName(File::System), setting);
}

QByteArray packInputSetting(const INPUT_SETTING_T &setting)
{
    wire::Writer writer;
    wireFields(writer, setting);
    return writer.result();
}

bool unpackInputSetting(const QByteArray &bytes, INPUT_SETTING_T &setting)
{
    wire::Reader reader(bytes);
    wireFields(reader, setting);
    return reader.ok();
}

void announceInputSetting()
{
    if (QCoreApplication::instance() != nullptr) // the start of the server sets things before there is a bus
        QCopChannel::send(
            "TYX/IMServer", "setInputMethodSettings(INPUT_SETTING_T)", packInputSetting(loadInputSetting()));
}

quint32 inputLanguageNumber(const QString &code)
{
    auto found = std::ranges::find(kLanguages, QStringView(code));
    if (found == kLanguages.end()) {
        const QString language = code.section(u'-', 0, 0) + u'-';
        found = std::ranges::find_if(kLanguages, [&](QStringView known) { return known.startsWith(language); });
    }
    return found == kLanguages.end() ? 0 : quint32(found - kLanguages.begin());
}

QString inputLanguageCode(int number)
{
    return number >= 0 && size_t(number) < kLanguages.size() ? literal(kLanguages[size_t(number)]) : QString();
}

}
