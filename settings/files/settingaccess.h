// Reading and writing one setting of the table: every accessor is one of these calls. Not installed; what is exported
// is for the tools.
#pragma once

#include "platform/tyxexport.h"
#include "settings/files/settingrow.h"
#include "settings/files/setup_set_manager.h"

#include <QByteArray>
#include <QString>

namespace settings {

// A name of the table as it is needed to ask, without copying it: tables outlive everything.
inline QString literal(QStringView text) { return QString::fromRawData(text.data(), text.size()); }

TYX_EXPORT QString fileName(File file);
TYX_EXPORT QString copyName(File file); // of the working copy; empty for a file without one

// The file that a get of the setting reads.
inline QString readFileName(const Place &place)
{
    return place.copy == Copy::Read ? copyName(place.file) : fileName(place.file);
}

// Asks a file that is open already. Always true.
inline bool loadFrom(SETUP_SET_Manager &file, const Setting<QStringView> &setting, QString &value)
{
    return file.getSettingInfo(
        literal(setting.place.group), literal(setting.key), value, literal(setting.absent), false);
}
template <typename T> bool loadFrom(SETUP_SET_Manager &file, const Setting<T> &setting, T &value)
{
    return file.getSettingInfo(literal(setting.place.group), literal(setting.key), value, setting.absent);
}
bool loadFrom(SETUP_SET_Manager &file, const Setting<Bytes> &setting, QByteArray &value);

// What a get answers: the stored value, else the default. Always true.
template <typename T, typename Value> bool load(const Setting<T> &setting, Value &value)
{
    SETUP_SET_Manager file(readFileName(setting.place), false);
    return loadFrom(file, setting, value);
}

// False for a text that would not come back as it was given (a line break, white space at an end): it could bring
// settings of its own into the file.
bool isStorable(const QString &text);

// Codes and the language are never empty either: no code would mean the default one.
TYX_EXPORT bool mayBeEmpty(const Row &row);
TYX_EXPORT bool isStorable(const Row &row, const QString &text);

// A setting as text, as it stands in its file.
TYX_EXPORT QString readText(const Row &row);

// Writes the setting into its file and, if that worked, into the working copy; then does what follows from it. False
// when a file could not be written, or could be but not read: saving would then lose what is in it.
TYX_EXPORT bool writeText(const Row &row, const QString &text);

inline bool store(const Setting<QStringView> &setting, const QString &value) { return writeText(row(setting), value); }
inline bool store(const Setting<bool> &setting, bool value)
{
    return writeText(row(setting), value ? QStringLiteral("1") : QStringLiteral("0"));
}
inline bool store(const Setting<int> &setting, int value) { return writeText(row(setting), QString::number(value)); }
inline bool store(const Setting<unsigned> &setting, unsigned value)
{
    return writeText(row(setting), QString::number(value));
}
inline bool store(const Setting<Bytes> &setting, const QByteArray &value)
{
    return writeText(row(setting), QString::fromLatin1(value.toHex()));
}

// Whether a file may be changed: it can be read, or there is none.
bool isChangeable(const QString &file);

}
