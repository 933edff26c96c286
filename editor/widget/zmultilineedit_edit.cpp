// How the text of an editor changes.
#include "editor/text/graphemes.h"
#include "editor/widget/zmultilineedit_p.h"

using Operation = ZMultiLineData::Operation;

namespace {

// Where a place goes when text is inserted before it, or taken away.
int afterInsertion(int place, int at, int length) { return place >= at ? place + length : place; }
int afterRemoval(int place, int from, int to) { return place <= from ? place : std::max(from, place - (to - from)); }

}

void ZMultiLineData::insertText(int offset, const QString &added)
{
    dropComposition();
    const int column = text.place(offset).column;
    const RowLayout::Damage damage = layout.update(text.insert(offset, added), column);
    const bool atEnd = isMarked() && offset == to(); // what comes behind marked text is not marked
    for (int *place : {&cursor, &anchor, &dragEnd}) {
        if (!(atEnd && *place == offset))
            *place = afterInsertion(*place, offset, int(added.size()));
    }
    damageRows(damage.first, damage.last);
    cursorAtRowEnd = false;
    textChanged = cursorMoved = edited = true;
}

void ZMultiLineData::removeText(int from, int to)
{
    if (from >= to)
        return;
    dropComposition();
    const int column = text.place(from).column;
    const RowLayout::Damage damage = layout.update(text.remove(from, to), column);
    for (int *place : {&cursor, &anchor, &dragEnd})
        *place = afterRemoval(*place, from, to);
    damageRows(damage.first, damage.last);
    cursorAtRowEnd = false;
    textChanged = cursorMoved = edited = true;
}

void ZMultiLineData::setText(const QString &whole, bool isNew)
{
    text.setText(whole);
    layout.reset();
    cursor = anchor = dragEnd = 0;
    markIsOn = cursorAtRowEnd = false;
    smartPunctuationAt = -1;
    goalX.reset();
    cursorMoved = true;
    textChanged |= isNew;
    damageAll();
}

void ZMultiLineData::record(ZMultiLineEditCommand *command)
{
    if (replaying)
        delete command;
    else
        editor.addUndoCmd(command);
}

int ZMultiLineData::insertLimited(int offset, const QString &added)
{
    const QString whole = TextModel::normalized(added);
    const QString part = replaying ? whole : cutToLimits(offset, whole);
    if (part.size() < whole.size())
        notify(Notice::Truncated);
    if (part.isEmpty())
        return 0;
    insertText(offset, part);
    record(new UTIL_InsTextCmd(offset, part));
    return int(part.size());
}

bool ZMultiLineData::insertTyped(const QString &typed, bool marked)
{
    QString part;
    editor.filterString(part, TextModel::normalized(typed));
    if (part.isEmpty() || !isAccepted(part))
        return false;
    const bool group = isMarked();
    if (group)
        beginReplacing(true);
    const int at = cursor;
    const int length = insertLimited(at, part);
    if (marked)
        mark(at, at + length);
    else
        moveCursor({.offset = at + length, .exact = true});
    if (group)
        record(new UTIL_EndCommand);
    return length > 0;
}

QString ZMultiLineData::deleteRange(int from, int to)
{
    if (from >= to)
        return {};
    QString gone = text.text(from, to);
    removeText(from, to);
    record(new UTIL_DelTextCmd(from, gone));
    return gone;
}

void ZMultiLineData::putBack()
{
    if (replaced.text.isEmpty())
        return;
    insertText(replaced.offset, replaced.text);
    record(new UTIL_InsTextCmd(replaced.offset, replaced.text));
    moveCursor({.offset = replaced.offset + int(replaced.text.size()), .exact = true});
    replaced = {};
}

void ZMultiLineData::beginReplacing(bool exact)
{
    record(new UTIL_BeginCommand);
    const int at = from();
    replaced = {at, deleteRange(at, to())};
    moveCursor({.offset = at, .exact = exact});
}

void ZMultiLineData::deleteMarked()
{
    beginReplacing(false);
    record(new UTIL_EndCommand);
}

int ZMultiLineData::nextCharacter(int offset) const
{
    const TextModel::Place place = text.place(offset);
    const QString &paragraph = text.paragraph(place.paragraph);
    if (place.column >= paragraph.size())
        return std::min(offset + 1, text.length());
    return offset - place.column + graphemes::next(paragraph, place.column);
}

int ZMultiLineData::previousCharacter(int offset) const
{
    const TextModel::Place place = text.place(offset);
    if (place.column == 0)
        return std::max(offset - 1, 0);
    return offset - place.column + graphemes::previous(text.paragraph(place.paragraph), place.column);
}

void ZMultiLineData::dropComposition()
{
    if (pending.text.isEmpty())
        return;
    pending = {};
    layout.setComposition(pending);
    damageAll();
    if (std::exchange(pendingReplaces, false))
        record(new UTIL_EndCommand);
}

void ZMultiLineEdit::setText(const QString &s)
{
    const Operation operation(*d);
    d->dropComposition();
    const QString normalized = TextModel::normalized(s);
    QString whole = normalized;
    if (d->maxLength > 0 && whole.size() > d->maxLength) {
        whole.truncate(graphemes::snapped(whole, d->maxLength));
        d->notify(ZMultiLineData::Notice::Truncated);
    }
    d->history.clear();
    const bool same = whole == d->text.text();
    d->setText(whole, !same);
    d->edited = false;
}

void ZMultiLineEdit::clear()
{
    const Operation operation(*d);
    d->unmark();
    d->deleteRange(0, d->text.length());
    d->moveCursor({0});
}

void ZMultiLineEdit::append(const QString &s)
{
    const Operation operation(*d);
    const QString line = length() > 0 ? u'\n' + s : s;
    d->insertLimited(d->text.length(), line);
}

void ZMultiLineEdit::insert(const QString &s) { insert(s, false); }

void ZMultiLineEdit::insert(const QString &s, bool mark)
{
    const Operation operation(*d);
    if (!d->readOnly)
        d->insertTyped(s, mark);
}

void ZMultiLineEdit::insertChar(QChar c) { insert(QString(c)); }

void ZMultiLineEdit::insertAt(const QString &s, int line, int col, bool mark)
{
    const Operation operation(*d);
    const int at = d->layout.offset({line, col});
    const int length = d->insertLimited(at, s);
    if (mark)
        d->mark(at, at + length);
}

void ZMultiLineEdit::insertLine(const QString &s, int line)
{
    if (line < 0 || line >= numLines())
        return append(s);
    const Operation operation(*d);
    const bool inside = d->layout.row(line).start > 0; // of a paragraph: it ends before the line
    d->insertLimited(d->layout.offset({line, 0}), (inside ? u"\n" : u"") + s + u'\n');
}

void ZMultiLineEdit::removeLine(int line)
{
    if (line < 0 || line >= numLines())
        return;
    const Operation operation(*d);
    const RowLayout::Row row = d->layout.row(line);
    int from = d->layout.startOffset(row);
    int to = from + row.end - row.start;
    if (row.last && row.start == 0 && to < d->text.length())
        ++to; // with its line break; the rest of a paragraph keeps it
    else if (row.last && row.start == 0 && from > 0)
        --from; // the last one goes with the break before it
    d->deleteRange(from, to);
}

void ZMultiLineEdit::newLine()
{
    const Operation operation(*d);
    if (!d->readOnly)
        d->insertTyped(QStringLiteral("\n"), false);
}

void ZMultiLineEdit::backspace()
{
    const Operation operation(*d);
    if (d->readOnly)
        return;
    if (d->isMarked())
        return del();
    if (d->cursor == 0)
        return;
    d->moveCursor({d->previousCharacter(d->cursor)});
    deleteNextChar();
}

void ZMultiLineEdit::deleteNextChar()
{
    d->unmark();
    d->deleteRange(d->cursor, d->nextCharacter(d->cursor));
}

// Only what replaces marked text, which may be long, is a step of its own.
void ZMultiLineEdit::del()
{
    const Operation operation(*d);
    if (d->readOnly)
        return;
    if (d->isMarked())
        d->deleteMarked();
    else
        deleteNextChar();
}

void ZMultiLineEdit::killLine()
{
    const Operation operation(*d);
    if (d->readOnly)
        return;
    d->unmark();
    const RowLayout::Row row = d->layout.row(d->cursorCell().row);
    const int end = d->layout.startOffset(row) + row.end - row.start;
    d->record(new UTIL_BeginCommand);
    d->deleteRange(d->cursor, d->cursor < end ? end : d->nextCharacter(d->cursor));
    d->record(new UTIL_EndCommand);
}

void ZMultiLineEdit::deleteText()
{
    const Operation operation(*d);
    if (d->isMarked())
        del();
}
