// How the text becomes rows, and how large the editor wants to be for them.
#include "editor/widget/zmultilineedit_p.h"

#include <QEvent>
#include <QFontMetricsF>
#include <QScrollBar>

using Operation = ZMultiLineData::Operation;

RowRules ZMultiLineData::rules() const
{
    RowRules rules;
    rules.font = editor.font();
    rules.anywhere = wrapPolicy == ZMultiLineEdit::Anywhere;
    rules.tabStop = tabStop > 0 ? tabStop : int(8 * QFontMetricsF(editor.font()).horizontalAdvance(u' '));
    rules.echo = echoMode == ZMultiLineEdit::Normal ? RowEcho::Plain
        : echoMode == ZMultiLineEdit::Password      ? RowEcho::Masked
                                                    : RowEcho::Hidden;
    switch (wordWrap) {
    case ZMultiLineEdit::NoWrap:
        rules.wrap = RowWrap::None;
        break;
    case ZMultiLineEdit::WidgetWidth:
        rules.limit = editor.viewport()->width() - 2 * hMargin;
        break;
    case ZMultiLineEdit::FixedPixelWidth:
        rules.limit = wrapColumnOrWidth;
        break;
    case ZMultiLineEdit::FixedColumnWidth:
        rules.wrap = RowWrap::Columns;
        rules.limit = wrapColumnOrWidth;
        break;
    }
    return rules;
}

void ZMultiLineData::applyRules()
{
    const Operation operation(*this);
    if (!layout.setRules(rules()))
        return;
    goalX.reset();
    damageAll();
    cursorMoved = true;
}

void ZMultiLineEdit::setWordWrap(WordWrap mode)
{
    d->wordWrap = mode;
    d->applyRules();
}

void ZMultiLineEdit::setWrapColumnOrWidth(int n)
{
    d->wrapColumnOrWidth = n;
    d->applyRules();
}

void ZMultiLineEdit::setWrapPolicy(WrapPolicy policy)
{
    d->wrapPolicy = policy;
    d->applyRules();
}

void ZMultiLineEdit::setDefaultTabStop(int pixels)
{
    d->tabStop = pixels;
    d->applyRules();
}

ZMultiLineEdit::WordWrap ZMultiLineEdit::wordWrap() const { return d->wordWrap; }
int ZMultiLineEdit::wrapColumnOrWidth() const { return d->wrapColumnOrWidth; }
ZMultiLineEdit::WrapPolicy ZMultiLineEdit::wrapPolicy() const { return d->wrapPolicy; }
int ZMultiLineEdit::defaultTabStop() const { return d->layout.breaker().rules().tabStop; }

void ZMultiLineEdit::rebreakAll()
{
    const Operation operation(*d);
    d->dropComposition();
    d->layout.reset();
    d->damageAll();
}

void ZMultiLineEdit::rebreakParagraph(int row)
{
    const Operation operation(*d);
    d->layout.rebreak(d->layout.row(row).paragraph);
    d->damageAll();
}

void ZMultiLineEdit::wrapLine(int row, int) { rebreakParagraph(row); }

void ZMultiLineEdit::setFont(const QFont &font) { QAbstractScrollArea::setFont(font); }

void ZMultiLineEdit::changeEvent(QEvent *event)
{
    QAbstractScrollArea::changeEvent(event);
    if (!d)
        return;
    const Operation operation(*d, true);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        d->applyRules();
        updateGeometry();
    }
    d->damageAll();
}

void ZMultiLineEdit::resizeEvent(QResizeEvent *event)
{
    const Operation operation(*d, true);
    QAbstractScrollArea::resizeEvent(event);
    d->applyRules();
    d->damageAll();
}

void ZMultiLineEdit::setHMargin(int pixels)
{
    const Operation operation(*d);
    d->hMargin = std::clamp(pixels, 0, 1000);
    d->applyRules();
    d->damageAll();
}

int ZMultiLineEdit::hMargin() const { return d->hMargin; }

void ZMultiLineEdit::setAlignment(Qt::Alignment alignment)
{
    if (d->align == alignment)
        return;
    const Operation operation(*d);
    d->align = alignment;
    d->damageAll();
}

Qt::Alignment ZMultiLineEdit::alignment() const { return d->align; }

void ZMultiLineEdit::setEchoMode(EchoMode mode)
{
    if (d->echoMode == mode)
        return;
    const Operation operation(*d);
    d->echoMode = mode;
    d->applyRules();
    d->damageAll();
}

ZMultiLineEdit::EchoMode ZMultiLineEdit::echoMode() const { return d->echoMode; }

void ZMultiLineEdit::setUnderline(bool on)
{
    const Operation operation(*d);
    d->underline = on;
    d->damageAll();
}

bool ZMultiLineEdit::getUnderline() const { return d->underline; }

void ZMultiLineEdit::setFixedVisibleLines(int lines)
{
    d->fixedVisibleLines = std::clamp(lines, 0, 1000);
    if (lines > 0)
        setSizePolicy(sizePolicy().horizontalPolicy(), QSizePolicy::Fixed);
    else
        setMaxLines(d->maxLines); // which has a policy of its own
    updateGeometry();
}

// A field grows with its text up to as many rows; other editors ask for them at once.
QSize ZMultiLineEdit::sizeHint() const
{
    constexpr int kMost = 6;
    const int limit = d->maxLines > 0 ? std::min(d->maxLines, kMost) : kMost;
    int lines = d->fieldMode ? std::min(numLines(), limit) : limit;
    if (d->fixedVisibleLines > 0)
        lines = d->fixedVisibleLines;
    constexpr int kColumns = 20;
    const int width = int(QFontMetricsF(font()).averageCharWidth() * kColumns) + 2 * d->hMargin;
    return QSize(width, lines * d->layout.breaker().rowHeight()) + 2 * QSize(frameWidth(), frameWidth());
}

QSize ZMultiLineEdit::minimumSizeHint() const
{
    return QSize(4 * d->layout.breaker().rowHeight(), d->layout.breaker().rowHeight())
        + 2 * QSize(frameWidth(), frameWidth());
}

void ZMultiLineEdit::changeContentSize(int lines, QPoint cursor)
{
    const QSize size(d->layout.widest() + 2 * d->hMargin, lines * d->layout.breaker().rowHeight());
    const QSize whole = size + 2 * QSize(frameWidth(), frameWidth());
    if (whole.height() == d->reportedSize.height())
        return;
    d->reportedSize = whole;
    sendPackage(whole, cursor, lines);
}

void ZMultiLineEdit::sendPackage(const QSize &size, const QPoint &cursor, int lines)
{
    if (d->fieldMode)
        updateGeometry();
    const QPointer<ZMultiLineEdit> alive = this;
    sendPackageItem(size, cursor, lines);
    if (alive)
        Q_EMIT contentChanged();
}

void ZMultiLineEdit::sendPackageItem(const QSize &size, const QPoint &cursor, int lines)
{
    Q_EMIT changeSizeHint(this, size, cursor, lines);
}
