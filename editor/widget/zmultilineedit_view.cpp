// What happens at the end of an operation, and where things are on the screen.
#include "editor/widget/zmultilineedit_p.h"

#include <QAccessible>
#include <QScrollBar>

using Operation = ZMultiLineData::Operation;

// A scroll bar that comes or goes changes the width, and so the rows: once more then. It may not go on for ever:
// without the bar the text may need it, and with it not.
void ZMultiLineData::settleAll()
{
    ++depth;
    int width = -1;
    for (int tries = 0; tries < 3 && width != editor.viewport()->width(); ++tries) {
        width = editor.viewport()->width();
        settle();
    }
    --depth;
}

void ZMultiLineData::finishLater()
{
    settleAll();
    QMetaObject::invokeMethod(
        &editor, [this] { const Operation operation(*this); }, Qt::QueuedConnection);
}

void ZMultiLineData::finish()
{
    const QPointer<ZMultiLineEdit> alive = &editor;
    settleAll();
    while (alive) {
        const std::optional<Notice> notice = nextNotice();
        if (!notice)
            return;
        emitNotice(*notice);
    }
}

// textChanged() is the last one: what it tells of is then complete, and it is told once.
std::optional<ZMultiLineData::Notice> ZMultiLineData::nextNotice()
{
    if (announcedRows != layout.rows()) {
        announcedRows = layout.rows();
        return Notice::Lines;
    }
    if (!notices.empty()) {
        const Notice first = notices.front();
        notices.pop_front();
        return first;
    }
    if (announcedCopy != isMarked()) {
        announcedCopy = isMarked();
        return Notice::Copy;
    }
    if (announcedCell != cursorCell()) {
        announcedCell = cursorCell();
        return Notice::Cursor;
    }
    if (std::exchange(textChanged, false))
        return Notice::Text;
    return std::nullopt;
}

void ZMultiLineData::emitNotice(Notice notice)
{
    switch (notice) {
    case Notice::Lines:
        Q_EMIT editor.linesChanged(announcedRows, editor.cursorPoint());
        break;
    case Notice::UndoOn:
    case Notice::UndoOff:
        Q_EMIT editor.undoAvailable(notice == Notice::UndoOn);
        break;
    case Notice::RedoOn:
    case Notice::RedoOff:
        Q_EMIT editor.redoAvailable(notice == Notice::RedoOn);
        break;
    case Notice::Truncated:
        Q_EMIT editor.textTrancated();
        break;
    case Notice::Return:
        Q_EMIT editor.returnPressed();
        break;
    case Notice::SmartPunctuation:
        Q_EMIT editor.rightSmartPuncOccurred();
        break;
    case Notice::Clicked:
        Q_EMIT editor.clicked();
        break;
    case Notice::Copy:
        Q_EMIT editor.copyAvailable(announcedCopy);
        break;
    case Notice::Cursor:
        Q_EMIT editor.cursorChanged(announcedCell.row, announcedCell.column);
        break;
    case Notice::Text:
        Q_EMIT editor.textChanged();
        break;
    }
}

void ZMultiLineData::settle()
{
    updateScrollBars();
    if (std::exchange(cursorMoved, false)) {
        showCursor();
        damageRows(paintedCursor.row, paintedCursor.row);
        paintedCursor = cursorCell();
        damageRows(paintedCursor.row, paintedCursor.row);
        if (editor.hasFocus()) {
            editor.updateMicroFocus();
            publishContext();
        }
        if (QAccessible::isActive()) {
            QAccessibleTextCursorEvent event(&editor, cursor);
            QAccessible::updateAccessibility(&event);
        }
    }
    flushDamage();
    touch.follow();
}

void ZMultiLineData::damageRows(int first, int last)
{
    damagedFrom = std::min(damagedFrom, first);
    damagedTo = std::max(damagedTo, last);
}

void ZMultiLineData::flushDamage()
{
    const int first = std::max(damagedFrom, topRow());
    const int last = std::min(damagedTo, topRow() + visibleRows() + 1);
    damagedFrom = INT_MAX;
    damagedTo = -1;
    if (first > last || !autoUpdate)
        return;
    const int top = rowTop(first);
    editor.viewport()->update(0, top, editor.viewport()->width(), rowTop(last + 1) - top);
}

void ZMultiLineData::updateScrollBars()
{
    QScrollBar *down = editor.verticalScrollBar();
    down->setPageStep(visibleRows());
    down->setRange(0, std::max(0, layout.rows() - visibleRows()));
    QScrollBar *right = editor.horizontalScrollBar();
    const int page = editor.viewport()->width();
    const int whole = wordWrap == ZMultiLineEdit::WidgetWidth ? 0 : layout.widest() + 2 * hMargin + 1;
    right->setPageStep(page);
    right->setSingleStep(std::max(1, page / 10));
    right->setRange(0, std::max(0, whole - page));
}

void ZMultiLineData::showCursor()
{
    QScrollBar *down = editor.verticalScrollBar();
    const int row = cursorCell().row;
    if (row < down->value())
        down->setValue(row);
    else if (row >= down->value() + visibleRows())
        down->setValue(row - visibleRows() + 1);
    QScrollBar *right = editor.horizontalScrollBar();
    if (right->maximum() == 0)
        return;
    const QRect place = cursorRect();
    if (place.left() < hMargin)
        right->setValue(right->value() + place.left() - hMargin);
    else if (place.right() > editor.viewport()->width() - hMargin)
        right->setValue(right->value() + place.right() - editor.viewport()->width() + hMargin);
}

int ZMultiLineData::topRow() const { return editor.verticalScrollBar()->value(); }

int ZMultiLineData::visibleRows() const
{
    return std::max(1, editor.viewport()->height() / layout.breaker().rowHeight());
}

int ZMultiLineData::rowTop(int row) const { return (row - topRow()) * layout.breaker().rowHeight(); }

int ZMultiLineData::rowLeft(int row) const
{
    const RowLayout::Row at = layout.row(row);
    const int scrolled = editor.horizontalScrollBar()->value();
    if (layout.breaker().rules().wrap == RowWrap::None && editor.horizontalScrollBar()->maximum() > 0)
        return hMargin - scrolled;
    const int room = editor.viewport()->width() - 2 * hMargin - at.width;
    Qt::Alignment where = align & Qt::AlignHorizontal_Mask;
    if (!(where & Qt::AlignAbsolute) && !(where & Qt::AlignHCenter) && layout.isRightToLeft(at.paragraph))
        where = where & Qt::AlignRight ? Qt::AlignLeft : Qt::AlignRight;
    int left = 0;
    if (where & Qt::AlignRight)
        left = room - 1;
    else if (where & Qt::AlignHCenter)
        left = room / 2;
    return hMargin + std::max(0, left) - scrolled;
}

QRect ZMultiLineData::cursorRect() const
{
    int row = cursorCell().row;
    qreal x = 0;
    if (layout.composition().text.isEmpty())
        x = layout.x(cursorCell());
    else
        x = layout.compositionX(layout.composition().cursor, row);
    // White space hangs over the edge; the cursor behind it does not.
    const int place = rowLeft(row) + int(x);
    const bool wraps = wordWrap == ZMultiLineEdit::WidgetWidth;
    const int left = wraps ? std::clamp(place, 0, std::max(0, editor.viewport()->width() - 2)) : place;
    return {left, rowTop(row), overwrite ? 2 : 1, layout.breaker().rowHeight()};
}

Cell ZMultiLineData::cellAt(QPoint place, bool *rowEnd) const
{
    const int height = layout.breaker().rowHeight();
    const int row = std::clamp(topRow() + int(std::floor(qreal(place.y()) / height)), 0, layout.rows() - 1);
    const int column = layout.columnAt(row, place.x() - rowLeft(row));
    const RowLayout::Row at = layout.row(row);
    if (rowEnd)
        *rowEnd = !at.last && column > 0 && at.start + column == at.end;
    return {row, column};
}

QPoint ZMultiLineEdit::cursorPoint() const { return d->cursorRect().bottomLeft(); }

QRect ZMultiLineEdit::globalRect(int line1, int col1, int line2, int col2) const
{
    const Cell from = d->layout.cell(d->layout.offset({line1, col1}));
    const Cell to = d->layout.cell(d->layout.offset({line2, col2}), true);
    const QPoint topLeft(d->rowLeft(from.row) + int(d->layout.x(from)), d->rowTop(from.row));
    const QPoint bottomRight(d->rowLeft(to.row) + int(d->layout.x(to)), d->rowTop(to.row + 1) - 1);
    return QRect(viewport()->mapToGlobal(topLeft), viewport()->mapToGlobal(bottomRight)).normalized();
}

void ZMultiLineEdit::scrollContentsBy(int, int)
{
    viewport()->update();
    d->touch.follow();
}

void ZMultiLineEdit::bufferUpdate()
{
    const QPointer<ZMultiLineEdit> alive = this;
    if (QAccessible::isActive()) {
        QAccessibleValueChangeEvent event(this, d->echoMode == Normal ? text() : QString());
        QAccessible::updateAccessibility(&event);
    }
    if (alive)
        Q_EMIT bufferUpdate(d->text.length(), d->cursor);
}
