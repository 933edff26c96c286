// Drawing, a row at a time.
#include "editor/widget/zmultilineedit_p.h"

#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

namespace {

constexpr int kLongRow = 512; // characters: only what is seen of such a row is drawn

// Columns of the text that a row shows.
struct Columns {
    int from = 0;
    int to = 0;
    [[nodiscard]] bool isEmpty() const { return from >= to; }
    [[nodiscard]] Columns within(int low, int high) const { return {std::max(from, low), std::min(to, high)}; }
};

}

void ZMultiLineEdit::paintEvent(QPaintEvent *event)
{
    QPainter painter(viewport());
    const int height = d->layout.breaker().rowHeight();
    const int first = d->topRow() + event->rect().top() / height;
    const int last = std::min(d->topRow() + event->rect().bottom() / height, numLines() - 1);
    painter.setFont(d->layout.breaker().font());
    if (d->underline)
        d->paintRowLines(painter, event->rect());
    for (int row = first; row <= last; ++row)
        paintCell(&painter, row);
}

// As on paper: also where there is no text.
void ZMultiLineData::paintRowLines(QPainter &painter, const QRect &area)
{
    const int height = layout.breaker().rowHeight();
    painter.setPen(editor.palette().color(QPalette::Mid));
    for (int y = (area.top() / height + 1) * height - 1; y <= area.bottom(); y += height)
        painter.drawLine(area.left(), y, area.right(), y);
}

namespace {

// What of a range of offsets lies in a row, in the columns that its drawing counts.
Columns shown(const ZMultiLineData &data, int row, int from, int to)
{
    const RowLayout::Row at = data.layout.row(row);
    const int start = data.text.start(at.paragraph);
    const int size = int(data.text.paragraph(at.paragraph).size());
    const int first = std::clamp(from - start, 0, size);
    const int last = std::clamp(to - start, 0, size);
    if (from >= to || from > start + size || to < start)
        return {};
    return {data.layout.shownColumn(at.paragraph, first, true), data.layout.shownColumn(at.paragraph, last, false)};
}

Columns composed(const ZMultiLineData &data, int row)
{
    const RowLayout::Composition &composition = data.layout.composition();
    const TextModel::Place place = data.text.place(composition.offset);
    if (composition.text.isEmpty() || place.paragraph != data.layout.row(row).paragraph)
        return {};
    return {place.column, place.column + int(composition.text.size())};
}

bool isBreakMarked(const ZMultiLineData &data, int row)
{
    const RowLayout::Row at = data.layout.row(row);
    const int end = data.text.start(at.paragraph) + at.end;
    return data.isMarked() && at.last && data.from() <= end && data.to() > end;
}

}

void ZMultiLineEdit::paintCell(QPainter *painter, int row, int col)
{
    if (composed(*d, row).isEmpty())
        d->paintRow(*painter, row);
    else
        paintCell_iWex(painter, row, col);
}

void ZMultiLineEdit::paintCell_iWex(QPainter *painter, int row, int) { d->paintRow(*painter, row); }

void ZMultiLineData::paintRow(QPainter &painter, int row)
{
    const RowLayout::Drawing drawing = layout.drawing(row);
    if (drawing.layout)
        paintLaidOut(painter, row, drawing);
    else
        paintPlain(painter, row, drawing);
    if (!cursorOn || readOnly)
        return;
    const QRect place = cursorRect();
    if (place.top() == rowTop(row))
        painter.fillRect(place, editor.palette().color(QPalette::Text));
}

void ZMultiLineData::paintPlain(QPainter &painter, int row, const RowLayout::Drawing &drawing)
{
    const RowBreaker &breaker = layout.breaker();
    const int y = rowTop(row);
    const QPalette &colours = editor.palette();
    qreal left = rowLeft(row);
    QString part = drawing.plain;
    int start = drawing.start;
    if (part.size() > kLongRow) {
        const int skipped = std::max(0, breaker.plainColumn(part, -left) - 1);
        left += breaker.plainWidth(QStringView(part).left(skipped));
        part = part.mid(
            skipped, breaker.plainColumn(QStringView(part).mid(skipped), editor.viewport()->width() - left) + 1);
        start += skipped;
    }
    const int end = start + int(part.size());
    const auto x = [&](int column) { return left + breaker.plainWidth(QStringView(part).left(column - start)); };
    const Columns marked = isMarked() ? shown(*this, row, from(), to()).within(start, end) : Columns{};
    painter.setPen(colours.color(QPalette::Text));
    if (!part.isEmpty())
        painter.drawText(QPointF(left, y + breaker.ascent()), part);
    if (isBreakMarked(*this, row))
        painter.fillRect(QRectF(x(end), y, breaker.rowHeight() / 3.0, breaker.rowHeight()), colours.highlight());
    if (!marked.isEmpty()) {
        const QRectF area(QPointF(x(marked.from), y), QPointF(x(marked.to), y + breaker.rowHeight()));
        painter.fillRect(area, colours.highlight());
        painter.setPen(colours.color(QPalette::HighlightedText));
        painter.drawText(
            QPointF(area.left(), y + breaker.ascent()), part.mid(marked.from - start, marked.to - marked.from));
    }
    if (const Columns composition = composed(*this, row).within(start, end); !composition.isEmpty()) {
        const qreal below = y + breaker.ascent() + 1;
        painter.setPen(colours.color(QPalette::Text));
        painter.drawLine(QPointF(x(composition.from), below), QPointF(x(composition.to), below));
    }
}

void ZMultiLineData::paintLaidOut(QPainter &painter, int row, const RowLayout::Drawing &drawing)
{
    const int height = layout.breaker().rowHeight();
    const QPointF origin(rowLeft(row), rowTop(row) - drawing.line * height);
    const int end = drawing.start + int(drawing.layout->text().size());
    QList<QTextLayout::FormatRange> formats;
    if (isMarked()) {
        const Columns marked = shown(*this, row, from(), to()).within(drawing.start, end);
        if (!marked.isEmpty()) {
            QTextLayout::FormatRange range{marked.from - drawing.start, marked.to - marked.from, {}};
            range.format.setBackground(editor.palette().highlight());
            range.format.setForeground(editor.palette().highlightedText());
            formats.append(range);
        }
    }
    if (const Columns composition = composed(*this, row).within(drawing.start, end); !composition.isEmpty()) {
        QTextLayout::FormatRange range{composition.from - drawing.start, composition.to - composition.from, {}};
        range.format.setUnderlineStyle(QTextCharFormat::SingleUnderline);
        formats.append(range);
    }
    // Only the lines that meet the clip are drawn.
    const QRectF area(0, rowTop(row), editor.viewport()->width(), height);
    painter.save();
    painter.setClipRect(area, Qt::IntersectClip);
    painter.setPen(editor.palette().color(QPalette::Text));
    drawing.layout->draw(&painter, origin, formats, area.adjusted(0, 1, 0, -1));
    painter.restore();
}
