// The cursor and what is marked.
#include "editor/widget/zmultilineedit_p.h"

#include <QScrollBar>

using Operation = ZMultiLineData::Operation;

void ZMultiLineData::moveCursor(const Motion &motion)
{
    dropComposition();
    const TextModel::Place place = text.place(motion.offset);
    const int column = graphemes::snapped(text.paragraph(place.paragraph), place.column);
    // What is undone may begin or end within a character: its parts were typed one by one.
    const int offset = replaying || motion.exact ? text.offset(place) : text.start(place.paragraph) + column;
    if (motion.mark) {
        if (!markIsOn)
            anchor = cursor;
        damageRows(layout.cell(std::min(cursor, offset)).row - 1, layout.cell(std::max(cursor, offset)).row);
        dragEnd = offset;
        markIsOn = true;
    } else {
        unmark();
        anchor = dragEnd = offset;
    }
    if (!motion.keepGoal)
        goalX.reset();
    cursor = offset;
    cursorAtRowEnd = motion.rowEnd;
    cursorMoved = true;
}

void ZMultiLineData::unmark()
{
    if (isMarked())
        damageRows(layout.cell(from()).row, layout.cell(to()).row);
    markIsOn = false;
}

void ZMultiLineData::mark(int from, int to)
{
    moveCursor({from});
    moveCursor({to, true});
}

void ZMultiLineData::moveRows(int rows, bool marking)
{
    const Cell at = cursorCell();
    const int row = std::clamp(at.row + rows, 0, layout.rows() - 1);
    // Rows begin at different places unless they are aligned to the left.
    const int scrolled = editor.horizontalScrollBar()->value();
    if (!goalX)
        goalX = layout.x(at) + rowLeft(at.row) + scrolled;
    const int column = layout.columnAt(row, *goalX - rowLeft(row) - scrolled);
    const RowLayout::Row target = layout.row(row);
    moveCursor({layout.startOffset(target) + column, marking, column > 0 && target.start + column == target.end, true});
}

void ZMultiLineEdit::cursorPosition(int *line, int *col) const
{
    const Cell cell = d->cursorCell();
    if (line)
        *line = cell.row;
    if (col)
        *col = cell.column;
}

void ZMultiLineEdit::setCursorPosition(int line, int col, bool mark)
{
    const Operation operation(*d);
    const int offset = d->layout.offset({line, col});
    const bool rowEnd = col > 0 && line >= 0 && line < numLines() && d->layout.cell(offset).row > line;
    d->moveCursor({offset, mark, rowEnd});
}

bool ZMultiLineEdit::atBeginning() const { return d->cursor == 0; }
bool ZMultiLineEdit::atEnd() const { return d->cursor == d->text.length(); }

bool ZMultiLineEdit::hasMarkedText() const { return d->isMarked(); }
QString ZMultiLineEdit::markedText() const { return d->isMarked() ? d->text.text(d->from(), d->to()) : QString(); }

bool ZMultiLineEdit::getMarkedRegion(int *line1, int *col1, int *line2, int *col2) const
{
    const bool marked = d->isMarked();
    const Cell from = marked ? d->layout.cell(d->from()) : Cell{-1, -1};
    const Cell to = marked ? d->layout.cell(d->to(), true) : Cell{-1, -1};
    const std::pair<int *, int> answers[] = {
        {line1, from.row}, {col1, from.column}, {line2, to.row}, {col2, to.column}};
    for (const auto &[place, value] : answers) {
        if (place)
            *place = value;
    }
    return marked;
}

void ZMultiLineEdit::setSelection(int rowFrom, int colFrom, int rowTo, int colTo)
{
    const Operation operation(*d);
    d->mark(d->layout.offset({rowFrom, colFrom}), d->layout.offset({rowTo, colTo}));
}

void ZMultiLineEdit::deselect()
{
    const Operation operation(*d);
    d->unmark();
}

void ZMultiLineEdit::selectAll()
{
    const Operation operation(*d);
    d->mark(0, d->text.length());
}

// Left and right are those of the reader: in a paragraph that runs from right to left, left is forward.
void ZMultiLineEdit::cursorLeft(bool mark)
{
    const Operation operation(*d);
    const bool forward = d->layout.isRightToLeft(d->text.place(d->cursor).paragraph);
    d->moveCursor({forward ? d->nextCharacter(d->cursor) : d->previousCharacter(d->cursor), mark});
}

void ZMultiLineEdit::cursorRight(bool mark)
{
    const Operation operation(*d);
    const bool back = d->layout.isRightToLeft(d->text.place(d->cursor).paragraph);
    d->moveCursor({back ? d->previousCharacter(d->cursor) : d->nextCharacter(d->cursor), mark});
}

void ZMultiLineEdit::cursorUp(bool mark)
{
    const Operation operation(*d);
    if (d->cursorCell().row > 0)
        d->moveRows(-1, mark);
}

void ZMultiLineEdit::cursorDown(bool mark)
{
    const Operation operation(*d);
    if (d->cursorCell().row < numLines() - 1)
        d->moveRows(1, mark);
}

void ZMultiLineEdit::pageUp(bool mark)
{
    const Operation operation(*d);
    d->moveRows(-d->visibleRows(), mark);
}

void ZMultiLineEdit::pageDown(bool mark)
{
    const Operation operation(*d);
    d->moveRows(d->visibleRows(), mark);
}

void ZMultiLineEdit::home(bool mark)
{
    const Operation operation(*d);
    d->moveCursor({d->layout.startOffset(d->layout.row(d->cursorCell().row)), mark});
}

void ZMultiLineEdit::end(bool mark)
{
    const Operation operation(*d);
    const RowLayout::Row row = d->layout.row(d->cursorCell().row);
    d->moveCursor({d->layout.startOffset(row) + row.end - row.start, mark, !row.last});
}

int ZMultiLineEdit::charClass(char32_t c) const { return graphemes::charClass(c); }

graphemes::ClassOf ZMultiLineData::wordClasses() const
{
    return [this](char32_t c) { return editor.charClass(c); };
}

void ZMultiLineEdit::cursorWordForward(bool mark)
{
    const Operation operation(*d);
    const TextModel::Place place = d->text.place(d->cursor);
    const QString &paragraph = d->text.paragraph(place.paragraph);
    const int offset = place.column == paragraph.size()
        ? d->cursor + 1
        : d->text.start(place.paragraph) + graphemes::nextWord(paragraph, place.column, d->wordClasses());
    d->moveCursor({offset, mark});
}

void ZMultiLineEdit::cursorWordBackward(bool mark)
{
    const Operation operation(*d);
    const TextModel::Place place = d->text.place(d->cursor);
    const QString &paragraph = d->text.paragraph(place.paragraph);
    const int offset = place.column == 0
        ? d->cursor - 1
        : d->text.start(place.paragraph) + graphemes::previousWord(paragraph, place.column, d->wordClasses());
    d->moveCursor({offset, mark});
}
