// Steps through a paragraph as a reader sees it: character by character, however many units one has, and word by word.
#pragma once

#include <QStringView>
#include <functional>

namespace graphemes {

// The next border behind or before a column; the end of the text when there is none.
int next(QStringView text, int column);
int previous(QStringView text, int column);
int snapped(QStringView text, int column); // the last border that is not behind the column

// What belongs together in a word: moving by words and the double click stop where it changes.
enum CharClass { Space, Letter, Ideograph, Punctuation };
int charClass(char32_t character);
using ClassOf = std::function<int(char32_t)>; // one that has more classes

int nextWord(QStringView text, int column, const ClassOf &classOf); // its beginning, or the end of the text
int previousWord(QStringView text, int column, const ClassOf &classOf);

struct Range {
    int from;
    int to;
};
Range wordAt(QStringView text, int column, const ClassOf &classOf);

}
