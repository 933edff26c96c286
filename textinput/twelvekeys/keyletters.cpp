#include "textinput/twelvekeys/keyletters.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace keyletters {

namespace {

const QString kPunctuation = u".,?!'\"-()@/:;_&%+=€$#*"_s;

// Letters of the international layout first, so that hands find them; accents behind, the frequent ones first.
const QList<KeyLetters> table{
    {u"en"_s, u"EN"_s,
        {u" "_s, kPunctuation, u"abc"_s, u"def"_s, u"ghi"_s, u"jkl"_s, u"mno"_s, u"pqrs"_s, u"tuv"_s, u"wxyz"_s}},
    {u"de"_s, u"DE"_s,
        {u" "_s, kPunctuation, u"abcä"_s, u"def"_s, u"ghi"_s, u"jkl"_s, u"mnoö"_s, u"pqrsß"_s, u"tuvü"_s, u"wxyz"_s}},
    {u"fr"_s, u"FR"_s,
        {u" "_s, kPunctuation, u"abcàâçæ"_s, u"deféèêë"_s, u"ghiîï"_s, u"jkl"_s, u"mnoôœ"_s, u"pqrs"_s, u"tuvùûü"_s,
            u"wxyzÿ"_s}},
    {u"ru"_s, u"РУ"_s,
        {u" "_s, kPunctuation, u"абвг"_s, u"деёжз"_s, u"ийкл"_s, u"мноп"_s, u"рсту"_s, u"фхцч"_s, u"шщъы"_s,
            u"ьэюя"_s}},
};

}

const QList<KeyLetters> &all() { return table; }

const KeyLetters &of(const QString &language)
{
    const auto found = std::ranges::find(table, language.section(u'-', 0, 0), &KeyLetters::language);
    return found == table.end() ? table.front() : *found;
}

char digitOf(const KeyLetters &keys, QChar letter)
{
    const QChar small = letter.toLower();
    for (std::size_t digit = 2; digit < keys.letters.size(); ++digit) {
        if (keys.letters.at(digit).contains(small))
            return char('0' + digit);
    }
    return '\0';
}

QByteArray digitsOf(const KeyLetters &keys, const QString &word)
{
    QByteArray digits;
    for (const QChar letter : word) {
        const bool joins = letter == u'\'' || letter == u'-';
        const char digit = joins ? '1' : digitOf(keys, letter);
        if (digit == '\0')
            return {};
        digits.append(digit);
    }
    return digits.startsWith('1') || digits.endsWith('1') ? QByteArray() : digits;
}

QString upper(QChar letter) { return letter == u'ß' ? QString(letter) : QString(letter.toUpper()); }

}
