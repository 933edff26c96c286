// The pen and the mouse: placing the cursor, marking, scrolling at the edges.
#include "editor/text/graphemes.h"
#include "editor/widget/zmultilineedit_p.h"

#include <QApplication>
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
    if (!d->dragMarking)
        return;
    const Operation operation(*d);
    if (!viewport()->rect().contains(d->pointer))
        return startAutoScroll();
    stopAutoScroll();
    bool rowEnd = false;
    const Cell cell = d->cellAt(d->pointer, &rowEnd);
    const int offset = d->layout.offset(cell);
    if (offset != d->cursor || d->markIsOn)
        d->moveCursor({offset, true, rowEnd});
}

void ZMultiLineEdit::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const Operation operation(*d);
    stopAutoScroll();
    d->dndTimer.stop();
    if (std::exchange(d->dndPending, false)) // a click on marked text
        d->moveCursor({d->layout.offset(d->cellAt(event->position().toPoint()))});
    d->dragMarking = false;
    if (viewport()->rect().contains(event->position().toPoint()) && !d->isMarked())
        d->notify(ZMultiLineData::Notice::Clicked);
}

void ZMultiLineEdit::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const Operation operation(*d);
    const TextModel::Place place = d->text.place(d->layout.offset(d->cellAt(event->position().toPoint())));
    const int start = d->text.start(place.paragraph);
    const graphemes::Range word = graphemes::wordAt(d->text.paragraph(place.paragraph), place.column, d->wordClasses());
    d->mark(start + word.from, start + word.to);
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
    if (!marking) {
        markIsOn = on;
        anchor = first;
        dragEnd = last;
    }
}
