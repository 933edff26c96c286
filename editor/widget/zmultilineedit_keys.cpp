// What the keys do, as tables.
#include "editor/widget/zmultilineedit_p.h"

#include <QKeyEvent>
#include <QScrollBar>
#include <algorithm>

using Operation = ZMultiLineData::Operation;
using Notice = ZMultiLineData::Notice;

// The editor's own operations by name; `mark` is whether Shift is held.
class EditorKeys {
public:
    using Action = void (*)(ZMultiLineEdit &editor, bool mark);
    struct Key {
        int key;
        Action action;
    };

    static void home(ZMultiLineEdit &e, bool mark) { e.home(mark); }
    static void end(ZMultiLineEdit &e, bool mark) { e.end(mark); }
    static void left(ZMultiLineEdit &e, bool mark) { e.cursorLeft(mark); }
    static void right(ZMultiLineEdit &e, bool mark) { e.cursorRight(mark); }
    static void up(ZMultiLineEdit &e, bool mark) { e.cursorUp(mark); }
    static void down(ZMultiLineEdit &e, bool mark) { e.cursorDown(mark); }
    static void pageUp(ZMultiLineEdit &e, bool mark) { e.pageUp(mark); }
    static void pageDown(ZMultiLineEdit &e, bool mark) { e.pageDown(mark); }
    static void del(ZMultiLineEdit &e, bool) { e.del(); }
    static void backspace(ZMultiLineEdit &e, bool) { e.backspace(); }
    static void newLine(ZMultiLineEdit &e, bool)
    {
        e.newLine();
        ZMultiLineData::of(e).notify(Notice::Return);
    }
    static void copy(ZMultiLineEdit &e, bool)
    {
        if (e.echoMode() == ZMultiLineEdit::Normal)
            e.copy();
    }
    static void paste(ZMultiLineEdit &e, bool) { e.paste(); }
    static void cut(ZMultiLineEdit &e, bool) { e.cut(); }
    static void undo(ZMultiLineEdit &e, bool) { e.undo(); }
    static void redo(ZMultiLineEdit &e, bool) { e.redo(); }

    // Of an editor that can only be read: they move what is seen, the cursor stays.
    static void scrollRows(ZMultiLineEdit &e, int rows)
    {
        QScrollBar *bar = e.verticalScrollBar();
        bar->setValue(std::clamp(bar->value() + rows, 0, e.numLines() - 1));
    }
    static void scrollUp(ZMultiLineEdit &e, bool)
    {
        if (ZMultiLineData::of(e).cursorCell().row > 0)
            scrollRows(e, -1);
    }
    static void scrollDown(ZMultiLineEdit &e, bool)
    {
        if (ZMultiLineData::of(e).cursorCell().row < e.numLines() - 1)
            scrollRows(e, 1);
    }
    static void scrollPageUp(ZMultiLineEdit &e, bool) { scrollRows(e, -ZMultiLineData::of(e).visibleRows()); }
    static void scrollPageDown(ZMultiLineEdit &e, bool) { scrollRows(e, ZMultiLineData::of(e).visibleRows()); }
    static void scrollLeft(ZMultiLineEdit &e, bool) { scrollColumns(e, -1); }
    static void scrollRight(ZMultiLineEdit &e, bool) { scrollColumns(e, 1); }
    static void scrollColumns(ZMultiLineEdit &e, int direction)
    {
        QScrollBar *bar = e.horizontalScrollBar();
        bar->setValue(bar->value() + direction * e.viewport()->width() / 10);
    }
};

namespace {

using Keys = EditorKeys;

constexpr Keys::Key kReading[] = {
    {Qt::Key_Up, Keys::scrollUp},
    {Qt::Key_Down, Keys::scrollDown},
    {Qt::Key_PageUp, Keys::scrollPageUp},
    {Qt::Key_PageDown, Keys::scrollPageDown},
    {Qt::Key_Left, Keys::scrollLeft},
    {Qt::Key_Right, Keys::scrollRight},
    {Qt::Key_F16, Keys::copy},
};

constexpr Keys::Key kWithControl[] = {
    {Qt::Key_A, Keys::home},
    {Qt::Key_E, Keys::end},
    {Qt::Key_B, Keys::left},
    {Qt::Key_F, Keys::right},
    {Qt::Key_P, Keys::up},
    {Qt::Key_N, Keys::down},
    {Qt::Key_D, Keys::del},
    {Qt::Key_H, Keys::backspace},
    {Qt::Key_C, Keys::copy},
    {Qt::Key_V, Keys::paste},
    {Qt::Key_X, Keys::cut},
    {Qt::Key_Y, Keys::redo},
    {Qt::Key_Z, Keys::undo},
};

constexpr Keys::Key kWriting[] = {
    {Qt::Key_Backspace, Keys::backspace},
    {Qt::Key_Return, Keys::newLine},
    {Qt::Key_Enter, Keys::newLine},
    {Qt::Key_Delete, Keys::del},
    {Qt::Key_Home, Keys::home},
    {Qt::Key_End, Keys::end},
    {Qt::Key_Left, Keys::left},
    {Qt::Key_Right, Keys::right},
    {Qt::Key_Up, Keys::up},
    {Qt::Key_Down, Keys::down},
    {Qt::Key_PageUp, Keys::pageUp},
    {Qt::Key_PageDown, Keys::pageDown},
    {Qt::Key_F14, Keys::undo},
    {Qt::Key_F16, Keys::copy},
    {Qt::Key_F18, Keys::paste},
    {Qt::Key_F20, Keys::cut},
};

// They pass the character filter.
constexpr int kMotions[] = {Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down, Qt::Key_Backspace, Qt::Key_Home,
    Qt::Key_End, Qt::Key_PageUp, Qt::Key_PageDown};

bool isMotion(int key) { return std::find(std::begin(kMotions), std::end(kMotions), key) != std::end(kMotions); }

template <size_t size> Keys::Action actionOf(const Keys::Key (&table)[size], int key)
{
    const auto row =
        std::find_if(std::begin(table), std::end(table), [key](Keys::Key entry) { return entry.key == key; });
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
    event->accept();
    if (!d->readOnly && !isMotion(key) && !event->text().isEmpty() && !isValidChar(event->text().front()))
        return;
    if (!d->readOnly && keyPressEvent_iWex(event))
        return;
    EditorKeys::Action action = nullptr;
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
