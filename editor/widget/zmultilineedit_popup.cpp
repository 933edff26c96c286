// The menu that the right button and a held pen open.
#include "editor/widget/zmultilineedit_p.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QMenu>

using Operation = ZMultiLineData::Operation;

namespace {

struct Entry {
    const char *label; // null: a separator
    void (ZMultiLineEdit::*action)();
    bool (*enabled)(const ZMultiLineEdit &editor);
};

bool canChange(const ZMultiLineEdit &e) { return !e.isReadOnly() && e.hasMarkedText(); }
bool canCopy(const ZMultiLineEdit &e) { return e.hasMarkedText() && e.echoMode() != ZMultiLineEdit::Password; }
bool canPaste(const ZMultiLineEdit &e) { return !e.isReadOnly() && !QGuiApplication::clipboard()->text().isEmpty(); }
bool canSelect(const ZMultiLineEdit &e) { return e.length() > 0 && e.markedText().size() < e.length(); }

constexpr Entry kEntries[] = {
    {QT_TRANSLATE_NOOP("9.99.9.9;MENU", "Cut"), &ZMultiLineEdit::cut, canChange},
    {QT_TRANSLATE_NOOP("9.99.9.9;MENU", "Copy"), &ZMultiLineEdit::copy, canCopy},
    {QT_TRANSLATE_NOOP("9.99.9.9;MENU", "Delete"), &ZMultiLineEdit::deleteText, canChange},
    {nullptr, nullptr, nullptr},
    {QT_TRANSLATE_NOOP("9.99.9.9;MENU", "Paste"), &ZMultiLineEdit::paste, canPaste},
    {nullptr, nullptr, nullptr},
    {QT_TRANSLATE_NOOP("9.99.9.9;MENU", "Select All"), &ZMultiLineEdit::selectAll, canSelect},
};

}

void ZMultiLineData::popup(QPoint place)
{
    delete menu;
    menu = new QMenu(&editor);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const Entry &entry : kEntries) {
        if (!entry.label) {
            menu->addSeparator();
            continue;
        }
        QAction *action = menu->addAction(QCoreApplication::translate("9.99.9.9;MENU", entry.label));
        action->setEnabled(entry.enabled(editor));
        QObject::connect(action, &QAction::triggered, &editor, entry.action);
    }
    menu->popup(place);
}

// The menu is for the word under the pen, and the handles are for another choice.
void ZMultiLineData::markHeld(QPoint place)
{
    if (!overMarked(place)) {
        markWordAt(place);
        if (editor.markedText().trimmed().isEmpty())
            return moveCursor({layout.offset(cellAt(place))});
    }
    touch.begin();
}

// Of the menu key and of a held pen. That of the right button comes when the menu is open already.
void ZMultiLineEdit::contextMenuEvent(QContextMenuEvent *event)
{
    event->accept();
    if (d->menu)
        return;
    const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
    const QPoint place = byKey ? viewport()->mapToGlobal(cursorPoint()) : event->globalPos();
    const Operation operation(*d);
    if (!byKey)
        d->markHeld(event->pos());
    d->popup(place);
}
