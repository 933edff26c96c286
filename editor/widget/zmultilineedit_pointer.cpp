// The pen and the mouse: placing the cursor, marking, scrolling at the edges.
#include "editor/widget/zmultilineedit_p.h"

#include <QApplication>
#include <QInputDevice>
#include <QMouseEvent>
#include <QStyleHints>

using Operation = ZMultiLineData::Operation;

namespace {

constexpr int kScrollTime = 50; // ms between two steps at first
constexpr int kScrollAccel = 5; // ticks until the interval shrinks by a millisecond
constexpr int kEdgeMargin = 16; // pixels; only while something is dragged, marking scrolls at the very edge

}

bool ZMultiLineData::overMarked(QPoint place) const
{
    if (!isMarked())
        return false;
    const Cell cell = cellAt(place);
    const int offset = layout.offset(cell);
    const int left = rowLeft(cell.row);
    return offset >= from() && offset < to() && place.x() >= left && place.x() <= left + layout.row(cell.row).width;
}

void ZMultiLineEdit::mousePressEvent(QMouseEvent *event)
{
    const Operation operation(*d);
    const QPoint place = event->position().toPoint();
    if (event->button() == Qt::RightButton)
        return d->popup(event->globalPosition().toPoint());
    if (event->button() != Qt::LeftButton)
        return;
    d->touch.end();
    d->pointer = d->dragStart = place;
    if (d->sinceDoubleClick.isValid() && d->sinceDoubleClick.elapsed() < QApplication::doubleClickInterval()) {
        d->sinceDoubleClick.invalidate(); // the third click: the whole paragraph
        const int start = d->text.start(d->text.place(d->cursor).paragraph);
        return d->mark(start, start + int(d->paragraph().size()));
    }
    if (!(event->modifiers() & Qt::ShiftModifier) && d->overMarked(place)) {
        d->dndPending = true; // unless the pen comes up at once
        return d->dndTimer.start(QApplication::startDragTime());
    }
    bool rowEnd = false;
    const Cell cell = d->cellAt(place, &rowEnd);
    d->moveCursor({d->layout.offset(cell), bool(event->modifiers() & Qt::ShiftModifier), rowEnd});
    d->dragMarking = true;
    d->blinkAgain();
}

void ZMultiLineEdit::mouseMoveEvent(QMouseEvent *event)
{
    d->pointer = event->position().toPoint();
    if (!(event->buttons() & Qt::LeftButton))
        return;
    if (d->dndPending) {
        if ((d->pointer - d->dragStart).manhattanLength() >= QApplication::startDragDistance())
            d->startDrag();
        return;
    }
    const Operation operation(*d);
    if (d->dragMarking)
        d->markTo(d->pointer);
}

void ZMultiLineData::markTo(QPoint place)
{
    pointer = place;
    if (!editor.viewport()->rect().contains(place))
        return editor.startAutoScroll();
    editor.stopAutoScroll();
    bool rowEnd = false;
    const int offset = layout.offset(cellAt(place, &rowEnd));
    if (offset != cursor || markIsOn)
        moveCursor({offset, true, rowEnd});
}

void ZMultiLineData::markWordAt(QPoint place)
{
    const TextModel::Place at = text.place(layout.offset(cellAt(place)));
    const int start = text.start(at.paragraph);
    if (echoMode != ZMultiLineEdit::Normal) // where its words end is nobody's business
        return mark(start, start + int(text.paragraph(at.paragraph).size()));
    const graphemes::Range word = graphemes::wordAt(text.paragraph(at.paragraph), at.column, wordClasses());
    mark(start + word.from, start + word.to);
}

void ZMultiLineEdit::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const Operation operation(*d);
    stopAutoScroll();
    d->dndTimer.stop();
    const bool inside = viewport()->rect().contains(event->position().toPoint());
    if (std::exchange(d->dndPending, false) && inside) // a click on marked text; a pen that is held comes up outside
        d->moveCursor({d->layout.offset(d->cellAt(event->position().toPoint()))});
    d->dragMarking = false;
    if (inside && !d->isMarked())
        d->notify(ZMultiLineData::Notice::Clicked);
}

void ZMultiLineEdit::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const Operation operation(*d);
    d->markWordAt(event->position().toPoint());
    if (event->device()->type() == QInputDevice::DeviceType::TouchScreen)
        d->touch.begin();
    d->sinceDoubleClick.start();
    d->dragMarking = false;
}

void ZMultiLineEdit::startAutoScroll()
{
    if (d->dragScrolling)
        return;
    d->dragScrolling = true;
    d->scrollTime = kScrollTime;
    d->scrollAccel = kScrollAccel;
    d->scrollTimer.start(d->scrollTime);
}

void ZMultiLineEdit::stopAutoScroll()
{
    d->scrollTimer.stop();
    d->dragScrolling = false;
}

void ZMultiLineEdit::scrollTimerTimeout()
{
    const Operation operation(*d);
    if (d->scrollAccel-- < 1 && d->scrollTime != 0) {
        d->scrollAccel = kScrollAccel;
        --d->scrollTime;
        d->scrollTimer.start(d->scrollTime);
    }
    const int steps = std::max(1, (kScrollTime - d->scrollTime) / 5);
    for (int i = 0; i < steps && d->dragScrolling; ++i)
        d->scrollStep();
}

void ZMultiLineData::scrollStep()
{
    const int margin = dndPending ? kEdgeMargin : 0;
    const QRect inside = editor.viewport()->rect().adjusted(margin, margin, -margin, -margin);
    const bool marking = !dndPending;
    // What is being dragged stays marked: the cursor goes, the marks stay.
    const auto [on, first, last] = std::tuple(markIsOn, anchor, dragEnd);
    const int before = cursor;
    if (pointer.y() < inside.top())
        moveRows(-1, marking);
    else if (pointer.y() > inside.bottom())
        moveRows(1, marking);
    else if (pointer.x() < inside.left())
        editor.cursorLeft(marking);
    else if (pointer.x() > inside.right())
        editor.cursorRight(marking);
    else
        editor.stopAutoScroll();
    if (touch.isHeld() && !isMarked()) { // a handle always leaves something marked
        moveCursor({.offset = before, .mark = true});
        editor.stopAutoScroll();
    }
    if (!marking) {
        markIsOn = on;
        anchor = first;
        dragEnd = last;
    }
}
