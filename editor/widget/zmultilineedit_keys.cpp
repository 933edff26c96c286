// What the keys do, as tables.
#include "editor/widget/zmultilineedit_p.h"

#include <QKeyEvent>
#include <QScrollBar>
#include <algorithm>

using Operation = ZMultiLineData::Operation;
using Notice = ZMultiLineData::Notice;

namespace {

using Action = void (*)(ZMultiLineEdit &editor, bool mark); // `mark`: Shift is held
struct Key {
    int key;
    Action action;
};

void home(ZMultiLineEdit &e, bool mark) { e.home(mark); }
void end(ZMultiLineEdit &e, bool mark) { e.end(mark); }
void left(ZMultiLineEdit &e, bool mark) { e.cursorLeft(mark); }
void right(ZMultiLineEdit &e, bool mark) { e.cursorRight(mark); }
void up(ZMultiLineEdit &e, bool mark) { e.cursorUp(mark); }
void down(ZMultiLineEdit &e, bool mark) { e.cursorDown(mark); }
void pageUp(ZMultiLineEdit &e, bool mark) { e.pageUp(mark); }
void pageDown(ZMultiLineEdit &e, bool mark) { e.pageDown(mark); }
void del(ZMultiLineEdit &e, bool) { e.del(); }
void backspace(ZMultiLineEdit &e, bool) { e.backspace(); }
void newLine(ZMultiLineEdit &e, bool)
{
    e.newLine();
    ZMultiLineData::of(e).notify(Notice::Return);
}
void copy(ZMultiLineEdit &e, bool)
{
    if (e.echoMode() == ZMultiLineEdit::Normal)
        e.copy();
}
void paste(ZMultiLineEdit &e, bool) { e.paste(); }
void cut(ZMultiLineEdit &e, bool) { e.cut(); }
void undo(ZMultiLineEdit &e, bool) { e.undo(); }
void redo(ZMultiLineEdit &e, bool) { e.redo(); }

// Of an editor that can only be read: they move what is seen, the cursor stays.
void scrollRows(ZMultiLineEdit &e, int rows)
{
    QScrollBar *bar = e.verticalScrollBar();
    bar->setValue(std::clamp(bar->value() + rows, 0, e.numLines() - 1));
}
void scrollUp(ZMultiLineEdit &e, bool)
{
    if (ZMultiLineData::of(e).cursorCell().row > 0)
        scrollRows(e, -1);
}
void scrollDown(ZMultiLineEdit &e, bool)
{
    if (ZMultiLineData::of(e).cursorCell().row < e.numLines() - 1)
        scrollRows(e, 1);
}
void scrollPageUp(ZMultiLineEdit &e, bool) { scrollRows(e, -ZMultiLineData::of(e).visibleRows()); }
void scrollPageDown(ZMultiLineEdit &e, bool) { scrollRows(e, ZMultiLineData::of(e).visibleRows()); }
void scrollColumns(ZMultiLineEdit &e, int direction)
{
    QScrollBar *bar = e.horizontalScrollBar();
    bar->setValue(bar->value() + direction * e.viewport()->width() / 10);
}
void scrollLeft(ZMultiLineEdit &e, bool) { scrollColumns(e, -1); }
void scrollRight(ZMultiLineEdit &e, bool) { scrollColumns(e, 1); }

constexpr Key kReading[] = {
    {Qt::Key_Up, scrollUp},
    {Qt::Key_Down, scrollDown},
    {Qt::Key_PageUp, scrollPageUp},
    {Qt::Key_PageDown, scrollPageDown},
    {Qt::Key_Left, scrollLeft},
    {Qt::Key_Right, scrollRight},
    {Qt::Key_F16, copy},
};

constexpr Key kWithControl[] = {
    {Qt::Key_A, home},
    {Qt::Key_E, end},
    {Qt::Key_B, left},
    {Qt::Key_F, right},
    {Qt::Key_P, up},
    {Qt::Key_N, down},
    {Qt::Key_D, del},
    {Qt::Key_H, backspace},
    {Qt::Key_C, copy},
    {Qt::Key_V, paste},
    {Qt::Key_X, cut},
    {Qt::Key_Y, redo},
    {Qt::Key_Z, undo},
};

constexpr Key kWriting[] = {
    {Qt::Key_Backspace, backspace},
    {Qt::Key_Return, newLine},
    {Qt::Key_Enter, newLine},
    {Qt::Key_Delete, del},
    {Qt::Key_Home, home},
    {Qt::Key_End, end},
    {Qt::Key_Left, left},
    {Qt::Key_Right, right},
    {Qt::Key_Up, up},
    {Qt::Key_Down, down},
    {Qt::Key_PageUp, pageUp},
    {Qt::Key_PageDown, pageDown},
    {Qt::Key_F14, undo},
    {Qt::Key_F16, copy},
    {Qt::Key_F18, paste},
    {Qt::Key_F20, cut},
};

// They pass the character filter.
constexpr int kMotions[] = {Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down, Qt::Key_Backspace, Qt::Key_Home,
    Qt::Key_End, Qt::Key_PageUp, Qt::Key_PageDown};

bool isMotion(int key) { return std::find(std::begin(kMotions), std::end(kMotions), key) != std::end(kMotions); }

template <size_t size> Action actionOf(const Key (&table)[size], int key)
{
    const auto row = std::find_if(std::begin(table), std::end(table), [key](Key entry) { return entry.key == key; });
    return row == std::end(table) ? nullptr : row->action;
}

bool isTyped(const QKeyEvent &event)
{
    const int key = event.key();
    if (event.text().isEmpty() || key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Delete
        || key == Qt::Key_Backspace)
        return false;
    const char16_t code = event.text().front().unicode();
    return code == 0 || code > 0x1F;
}

// The form around a field goes on with these.
bool leavesField(const ZMultiLineEdit &editor, int key)
{
    if (!editor.fieldMode())
        return false;
    return key == Qt::Key_PageUp || key == Qt::Key_PageDown
        || (editor.isReadOnly() && (key == Qt::Key_Up || key == Qt::Key_Down));
}

}

bool ZMultiLineData::typeKey(const QKeyEvent &event)
{
    if (!isTyped(event))
        return false;
    // Over what follows: as if that were marked.
    const bool over = overwrite && !isMarked() && text.place(cursor).column < paragraph().size();
    if (over)
        mark(nextCharacter(cursor), cursor);
    editor.insert(event.text());
    if (over)
        unmark(); // if it was refused
    editor.smartPunctuation();
    return true;
}

void ZMultiLineEdit::keyPressEvent(QKeyEvent *event)
{
    const Operation operation(*d); // textChanged() comes at most once, at its end
    const int key = event->key();
    const bool mark = event->modifiers() & Qt::ShiftModifier;
    d->touch.end();
    event->accept();
    if (!d->readOnly && !isMotion(key) && !event->text().isEmpty() && !isValidChar(event->text().front()))
        return;
    if (!d->readOnly && keyPressEvent_iWex(event))
        return;
    Action action = nullptr;
    if (d->readOnly)
        action = actionOf(kReading, key);
    else if (event->modifiers() & Qt::ControlModifier)
        action = actionOf(kWithControl, key);
    else
        action = actionOf(kWriting, key);
    const bool typed = !d->readOnly && d->typeKey(*event);
    if (action)
        action(*this, mark);
    event->setAccepted((typed || action) && !leavesField(*this, key));
    d->blinkAgain();
}
