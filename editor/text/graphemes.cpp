#include "editor/text/graphemes.h"

#include <QTextBoundaryFinder>
#include <algorithm>

namespace graphemes {

namespace {

// A border is known from what is near it. Only flags and sequences of marks without end would need more, and a cursor
// between the flags of a hundred countries in a row may stand where it likes.
constexpr int kWindow = 64;

bool isSimple(QChar c) { return c.unicode() >= 0x20 && c.unicode() < 0x300; }

char32_t characterAt(QStringView text, int column)
{
    const QChar c = text[column];
    if (c.isHighSurrogate() && column + 1 < text.size() && text[column + 1].isLowSurrogate())
        return QChar::surrogateToUcs4(c, text[column + 1]);
    if (c.isLowSurrogate() && column > 0 && text[column - 1].isHighSurrogate())
        return QChar::surrogateToUcs4(text[column - 1], c);
    return c.unicode();
}

bool isBorder(QStringView text, int column)
{
    if (column <= 0 || column >= text.size() || (isSimple(text[column - 1]) && isSimple(text[column])))
        return true;
    const int from = std::max(0, column - kWindow);
    const int to = std::min(int(text.size()), column + 2);
    const QStringView part = text.mid(from, to - from);
    unsigned char buffer[2 * kWindow];
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, part.data(), part.size(), buffer, sizeof buffer);
    finder.setPosition(column - from);
    return finder.isAtBoundary();
}

}

int next(QStringView text, int column)
{
    do
        ++column;
    while (!isBorder(text, column));
    return std::clamp(column, 0, int(text.size()));
}

int previous(QStringView text, int column)
{
    do
        --column;
    while (!isBorder(text, column));
    return std::clamp(column, 0, int(text.size()));
}

int snapped(QStringView text, int column)
{
    while (!isBorder(text, column))
        --column;
    return column;
}

int charClass(char32_t character)
{
    if (QChar::isSpace(character))
        return Space;
    switch (QChar::script(character)) {
    case QChar::Script_Han:
    case QChar::Script_Hiragana:
    case QChar::Script_Katakana:
        return Ideograph; // written without spaces: not words, but at least not letters
    default:
        break;
    }
    const bool letter = QChar::isLetterOrNumber(character) || QChar::isMark(character) || character == U'_'
        || QChar::isSurrogate(character);
    return letter ? Letter : Punctuation;
}

int nextWord(QStringView text, int column, const ClassOf &classOf)
{
    const auto at = [&] { return classOf(characterAt(text, column)); };
    if (column >= text.size())
        return int(text.size());
    for (const int kind = at(); column < text.size() && at() == kind;)
        ++column;
    while (column < text.size() && at() == Space)
        ++column;
    return snapped(text, column);
}

int previousWord(QStringView text, int column, const ClassOf &classOf)
{
    const auto before = [&] { return classOf(characterAt(text, column - 1)); };
    while (column > 0 && before() == Space)
        --column;
    if (column <= 0)
        return 0;
    for (const int kind = before(); column > 0 && before() == kind;)
        --column;
    return snapped(text, column);
}

Range wordAt(QStringView text, int column, const ClassOf &classOf)
{
    if (text.isEmpty())
        return {0, 0};
    column = std::clamp(column, 0, int(text.size()) - 1);
    const int kind = classOf(characterAt(text, column));
    Range range{column, column};
    while (range.from > 0 && classOf(characterAt(text, range.from - 1)) == kind)
        --range.from;
    while (range.to < text.size() && classOf(characterAt(text, range.to)) == kind)
        ++range.to;
    return range;
}

}
