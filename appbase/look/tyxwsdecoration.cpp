#include "appbase/look/tyxwsdecoration.h"

#include <QPainter>
#include <QWidget>

namespace {

constexpr int kLine = 1; // pixels, all around
constexpr int kRoom = 4; // pixels above and below the title
constexpr int kIndent = 8; // pixels left and right of it

bool isFramed(const QWidget *window)
{
    const Qt::WindowFlags flags = window->windowFlags();
    return window->windowType() == Qt::Dialog && !flags.testFlag(Qt::FramelessWindowHint)
        && flags.testFlag(Qt::WindowTitleHint);
}

int titleHeight(const QWidget *window)
{
    return window->windowTitle().isEmpty() ? 0 : window->fontMetrics().height() + 2 * kRoom;
}

}

QRegion TYXWSDecoration::region(const QWidget *window, const QRect &rect) const
{
    if (!isFramed(window))
        return {};
    return QRegion(rect.adjusted(-kLine, -kLine - titleHeight(window), kLine, kLine)) - rect;
}

void TYXWSDecoration::paint(QPainter *painter, const QWidget *window)
{
    const QRect outline = window->rect();
    const QPalette palette = window->palette();
    const QColor color = palette.color(QPalette::Shadow);
    painter->setPen(color);
    painter->drawRect(outline.adjusted(0, 0, -1, -1));
    const QRect strip(outline.x(), outline.y(), outline.width(), titleHeight(window) + kLine);
    painter->fillRect(strip, color);
    painter->setPen(palette.color(QPalette::BrightText));
    QFont font = window->font();
    font.setBold(true);
    painter->setFont(font);
    const QRect text = strip.adjusted(kIndent, 0, -kIndent, 0);
    const QString title = painter->fontMetrics().elidedText(window->windowTitle(), Qt::ElideRight, text.width());
    painter->drawText(text, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine, title);
}
