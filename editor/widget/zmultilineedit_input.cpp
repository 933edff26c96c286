// Input methods: text that is not confirmed yet, and what they may know of the editor. Focus and blinking.
#include "editor/widget/predictiveinput.h"
#include "editor/widget/zmultilineedit_p.h"

#include <QApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QStyleHints>

using Operation = ZMultiLineData::Operation;

namespace {

int cursorOf(const QInputMethodEvent &event)
{
    for (const QInputMethodEvent::Attribute &attribute : event.attributes()) {
        if (attribute.type == QInputMethodEvent::Cursor)
            return attribute.start;
    }
    return int(event.preeditString().size());
}

}

bool ZMultiLineEdit::keyPressEvent_iWex(QKeyEvent *event)
{
    PredictiveInput *input = PredictiveInput::instance();
    if (!input || d->echoMode != Normal || !input->filterKey(*this, *event))
        return false;
    d->damageRows(d->cursorCell().row, d->cursorCell().row);
    return true;
}

void ZMultiLineEdit::inputMethodEvent(QInputMethodEvent *event)
{
    if (d->readOnly)
        return event->ignore();
    const Operation operation(*d);
    event->accept();
    const bool replaces = std::exchange(d->pendingReplaces, false);
    d->dropComposition();
    const bool confirms = !event->commitString().isEmpty();
    const bool exchanges = !replaces && confirms && event->replacementLength() > 0; // one word for another is one step
    if (exchanges)
        d->record(new UTIL_BeginCommand);
    const bool refused = !d->confirm(*event);
    const bool goesOn = replaces && !confirms && !event->preeditString().isEmpty();
    if ((replaces || exchanges) && !goesOn) {
        if (refused)
            d->putBack(); // as when it is typed over
        d->record(new UTIL_EndCommand);
    }
    if (!event->preeditString().isEmpty())
        d->compose(event->preeditString(), cursorOf(*event), goesOn);
}

bool ZMultiLineData::confirm(const QInputMethodEvent &event)
{
    if (event.replacementLength() > 0) {
        const qint64 start = qint64(cursor) + event.replacementStart();
        const int from = int(std::clamp<qint64>(start, 0, text.length()));
        replaced = {from, deleteRange(from, from + std::min(event.replacementLength(), text.length() - from))};
        moveCursor({.offset = from, .exact = true});
    }
    const QString &confirmed = event.commitString();
    if (confirmed.isEmpty())
        return true;
    const bool taken = insertTyped(confirmed, false);
    // A word with the space behind it: punctuation that follows goes to the word.
    const bool isWord = confirmed.size() > 1 && confirmed.endsWith(u' ') && PredictiveInput::instance();
    smartPunctuationAt = isWord ? cursor : -1;
    return taken;
}

// What it stands in the place of is one step with what it becomes.
void ZMultiLineData::compose(QString preedit, int place, bool inGroup)
{
    const bool replaces = isMarked();
    if (replaces)
        beginReplacing(true);
    preedit.replace(u'\n', u' ');
    pending = {cursor, preedit, place};
    pendingReplaces = replaces || inGroup;
    editor.wrapLine_iWex(cursorCell().row);
}

void ZMultiLineEdit::wrapLine_iWex(int row, int removed)
{
    const Operation operation(*d);
    if (!d->layout.setComposition(d->pending))
        wrapLine(row, removed);
    d->damageAll();
    d->cursorMoved = true;
}

QVariant ZMultiLineEdit::inputMethodQuery(Qt::InputMethodQuery query) const
{
    const TextModel::Place place = d->text.place(d->cursor);
    const bool open = d->echoMode == Normal;
    switch (query) {
    case Qt::ImEnabled:
        return !d->readOnly;
    case Qt::ImReadOnly:
        return d->readOnly;
    case Qt::ImCursorRectangle:
        return d->cursorRect().translated(viewport()->pos());
    case Qt::ImFont:
        return font();
    case Qt::ImCursorPosition:
        return place.column;
    case Qt::ImAbsolutePosition:
        return d->cursor;
    case Qt::ImSurroundingText:
        return open ? d->paragraph() : QString();
    case Qt::ImTextBeforeCursor:
        return open ? d->paragraph().left(place.column) : QString();
    case Qt::ImTextAfterCursor:
        return open ? d->paragraph().mid(place.column) : QString();
    case Qt::ImCurrentSelection:
        return open ? markedText() : QString();
    case Qt::ImAnchorPosition:
        return d->isMarked() ? std::clamp(d->anchor - d->text.start(place.paragraph), 0, int(d->paragraph().size()))
                             : place.column;
    case Qt::ImMaximumTextLength:
        return d->maxLength > 0 ? QVariant(d->maxLength) : QVariant();
    case Qt::ImHints:
        return int(inputMethodHints() | Qt::ImhMultiLine | (open ? Qt::ImhNone : Qt::ImhHiddenText));
    default:
        return QAbstractScrollArea::inputMethodQuery(query);
    }
}

void ZMultiLineData::publishContext()
{
    const bool focused = editor.hasFocus();
    const bool predictable = !readOnly && echoMode == ZMultiLineEdit::Normal;
    const QRect place = cursorRect();
    const QRect onScreen(editor.viewport()->mapToGlobal(place.topLeft()), place.size());
    const TextModel::Place at = text.place(cursor);
    if (PredictiveInput *input = PredictiveInput::instance())
        input->contextChanged({focused ? editorId : 0, predictable ? text.paragraph(at.paragraph) : QString(),
            predictable ? at.column : 0, onScreen, predictable});
}

void ZMultiLineData::blinkAgain()
{
    if (!editor.hasFocus() || readOnly)
        return;
    if (const int half = QApplication::cursorFlashTime() / 2; half > 0) // 0: it does not blink
        blinkTimer.start(half);
    cursorOn = true;
    damageRows(cursorCell().row, cursorCell().row);
}

void ZMultiLineEdit::blinkTimerTimeout()
{
    const Operation operation(*d);
    d->cursorOn = !d->cursorOn;
    const int row = d->cursorCell().row;
    d->damageRows(row, d->layout.composition().text.isEmpty() ? row : row + 1);
}

void ZMultiLineEdit::focusInEvent(QFocusEvent *event)
{
    const Operation operation(*d);
    QAbstractScrollArea::focusInEvent(event);
    d->blinkAgain();
    d->publishContext();
}

void ZMultiLineEdit::focusOutEvent(QFocusEvent *event)
{
    const Operation operation(*d);
    QAbstractScrollArea::focusOutEvent(event);
    d->blinkTimer.stop();
    d->cursorOn = false;
    stopAutoScroll();
    d->dragMarking = d->dndPending = false;
    if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason)
        d->touch.end();
    d->damageAll();
    d->publishContext();
}

// Keys that an editor acts on must not become the shortcuts of its window.
bool ZMultiLineEdit::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride && !d->readOnly) {
        const auto *key = static_cast<const QKeyEvent *>(event);
        const bool plain = !(key->modifiers() & (Qt::AltModifier | Qt::MetaModifier));
        if (plain && (!key->text().isEmpty() || (key->modifiers() & Qt::ControlModifier)))
            event->accept();
    }
    return QAbstractScrollArea::event(event);
}
