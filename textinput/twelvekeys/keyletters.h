// Which letters stand on the twelve keys, as data.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <array>

struct KeyLetters {
    QString language; // "de"
    QString label; // of the language, on the pad
    std::array<QString, 10> letters; // small ones, by the digit of the key; what is on 1 and 0 is no letter
};

namespace keyletters {

const QList<KeyLetters> &all();
const KeyLetters &of(const QString &language); // "de", "de-at"; English for a language that is not in the list

// The digit of the key that a letter of either case stands on, 2 to 9; nothing for any other character.
char digitOf(const KeyLetters &keys, QChar letter);

// The keys that type a word, one press a letter: "4817" of "it's"; apostrophe and hyphen are on 1. Empty when it has
// other characters, or begins or ends with one of these.
QByteArray digitsOf(const KeyLetters &keys, const QString &word);

// As the keys write it: there is no capital ß.
QString upper(QChar letter);

}
