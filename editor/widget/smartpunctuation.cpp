// Punctuation behind a word that an input method wrote with a space: "word ." becomes "word.".
#include "editor/widget/zmultilineedit_p.h"

using Operation = ZMultiLineData::Operation;

namespace {

constexpr QStringView kOpening = u"($[{<\u00A3\u00A1\u00BF\u00A5\u20AC\u00A4";
constexpr QStringView kClosing = u".?!,:;)\"%/\\]}>\u3002\uFF0C";
constexpr QStringView kDigits = u"1234567890";
constexpr int kRowsAbove = 3; // that are looked at

}

// The space goes only when a word stands before it and no digit behind the cursor: " .5" begins a number. An opening
// character keeps its space.
void ZMultiLineEdit::smartPunctuation()
{
    const int behindWord = std::exchange(d->smartPunctuationAt, -1);
    if (behindWord < 0 || behindWord != d->cursor - 1 || d->readOnly) // the cursor may have gone elsewhere
        return;
    const Operation operation(*d);
    const Cell at = d->cursorCell();
    if (at.column < 1)
        return;
    const int first = d->layout.offset({std::max(0, at.row - kRowsAbove), 0});
    const QString before = d->text.text(first, d->cursor);
    const QString behind = d->text.text(d->cursor, std::min(d->cursor + 1, d->text.length()));
    const bool isNumber = !behind.isEmpty() && kDigits.contains(behind.front());
    if (!kClosing.contains(before.back()) || isNumber)
        return;
    qsizetype word = before.size() - 1; // the end of what stands before the space
    while (word > 0 && before[word - 1] == u' ')
        --word;
    const qsizetype spaces = before.size() - 1 - word;
    if (word == 0 || spaces == 0 || before[word - 1] == u'\n' || kOpening.contains(before[word - 1]))
        return;
    const int cursor = d->cursor;
    const Cell from = d->layout.cell(first + int(before.size()) - 2);
    const Cell to = d->layout.cell(cursor - 1, true);
    setSelection(from.row, from.column, to.row, to.column);
    del();
    d->moveCursor({cursor - 1});
    d->notify(ZMultiLineData::Notice::SmartPunctuation);
}
