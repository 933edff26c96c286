// The user's input settings: how they are kept, and how they travel to the input method server.
#pragma once

#include "platform/tyxexport.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>

struct INPUT_SETTING_T {
    // What each means and can be, docs/settings.md tells of the settings "input-...".
    quint32 preferredInputMethodType = 0;
    bool writingHand = true; // the right one
    bool wordCompletion = true;
    bool userDictionary = true;
    qint32 writingSpeed = 50; // percent
    bool waterMark = true;
    quint32 preferredInputLanguage = 0; // see settings::inputLanguageNumber()
    quint32 secondaryInputLanguage = 0;
    bool nextWordPrediction = true;
    bool toolTip = true;
    QString predictiveMethodOrder = QStringLiteral("");

    // In all fields; a predictiveMethodOrder that is null is equal to an empty one.
    bool operator==(const INPUT_SETTING_T &) const = default;
};

namespace settings {

// From the working copy of the system settings; what is missing there is the default.
TYX_EXPORT INPUT_SETTING_T loadInputSetting();

// Into the system settings and their working copy, each in one save. False when one failed. Nobody is told.
TYX_EXPORT bool saveInputSetting(const INPUT_SETTING_T &setting);

// The argument of "setInputMethodSettings(INPUT_SETTING_T)". Of unsigned numbers the low byte travels.
TYX_EXPORT QByteArray packInputSetting(const INPUT_SETTING_T &setting);
// False when bytes are missing; the setting is then not to be used.
[[nodiscard]] TYX_EXPORT bool unpackInputSetting(const QByteArray &bytes, INPUT_SETTING_T &setting);

// Sends what loadInputSetting() yields to the input method server, if the process has an application object.
void announceInputSetting();

// The number of a language ("de-de") for input methods. Of a country that has none, that of another country with the
// same language; of a language that has none, English's, 0.
TYX_EXPORT quint32 inputLanguageNumber(const QString &code);
// The other way round; null when no language has the number.
TYX_EXPORT QString inputLanguageCode(int number);

}
