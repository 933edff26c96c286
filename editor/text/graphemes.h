// Steps through a paragraph as a reader sees it: character by character, however many units one has, and word by word.
#pragma once

#include <QStringView>

namespace graphemes {

// The next border behind or before a column; the end of the text when there is none.
int next(QStringView text, int column);
int previous(QStringView text, int column);
int snapped(QStringView text, int column); // the last border that is not behind the column

// What belongs together in a word: moving by words and the double click stop where it changes.
enum class CharClass { Space, Letter, Ideograph, Punctuation };
CharClass charClass(char32_t character);

int nextWord(QStringView text, int column); // the beginning of the next word, or the end of the text
int previousWord(QStringView text, int column);

struct Range {
    int from;
    int to;
};
Range wordAt(QStringView text, int column);

}
