// The controls that have parts.
#include "appbase/look/tyxstyle_p.h"

#include <algorithm>

namespace look {

namespace {

constexpr int kGrooveShade = 16; // hundredths of the text's colour in a groove

QColor grooveColor(const QStyleOption &option)
{
    return blend(color(option, QPalette::Window), color(option, QPalette::WindowText), kGrooveShade);
}

void fillRounded(QPainter &painter, const QRectF &rect, const QColor &fill)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    const qreal radius = std::min(rect.width(), rect.height()) / 2;
    painter.drawRoundedRect(rect, radius, radius);
    painter.restore();
}

bool isHorizontal(const QStyleOption &option) { return isOn(option, QStyle::State_Horizontal); }

bool isUpsideDown(const QStyleOptionProgressBar &bar)
{
    return (bar.direction == Qt::RightToLeft && isHorizontal(bar)) != bar.invertedAppearance;
}

// The part of the bar that is done. Of one that does not know its end a piece in the middle.
QRect donePart(const QStyleOptionProgressBar &bar)
{
    QRect part = bar.rect;
    const int length = isHorizontal(bar) ? part.width() : part.height();
    if (bar.maximum == bar.minimum) {
        const int piece = length / 3;
        return isHorizontal(bar) ? part.adjusted(piece, 0, -piece, 0) : part.adjusted(0, piece, 0, -piece);
    }
    const qint64 range = qint64(bar.maximum) - bar.minimum;
    const qint64 done = std::clamp<qint64>(qint64(bar.progress) - bar.minimum, 0, range);
    const int filled = int(length * done / std::max<qint64>(range, 1));
    const bool fromEnd = isHorizontal(bar) ? isUpsideDown(bar) : !isUpsideDown(bar);
    if (isHorizontal(bar))
        return fromEnd ? part.adjusted(length - filled, 0, 0, 0) : part.adjusted(0, 0, filled - length, 0);
    return fromEnd ? part.adjusted(0, length - filled, 0, 0) : part.adjusted(0, 0, 0, filled - length);
}

QRect alongTab(const QStyleOptionTab &tab, int thickness)
{
    const QRect r = tab.rect;
    switch (tab.shape) {
    case QTabBar::RoundedSouth:
    case QTabBar::TriangularSouth:
        return {r.x(), r.y(), r.width(), thickness};
    case QTabBar::RoundedWest:
    case QTabBar::TriangularWest:
        return {r.right() - thickness + 1, r.y(), thickness, r.height()};
    case QTabBar::RoundedEast:
    case QTabBar::TriangularEast:
        return {r.x(), r.y(), thickness, r.height()};
    default:
        return {r.x(), r.bottom() - thickness + 1, r.width(), thickness};
    }
}

}

void drawProgressGroove(const QStyleOption &option, QPainter &painter)
{
    drawBox(painter, option.rect, color(option, QPalette::Base), {grooveColor(option)});
}

void drawProgressContents(const QStyleOptionProgressBar &bar, QPainter &painter)
{
    const QRect part = donePart(bar);
    if (part.isEmpty())
        return;
    // Clipped instead of rounded by itself: the first percent is a sliver at the round end of the groove.
    painter.save();
    painter.setClipRect(part);
    const QColor fill = color(bar, QPalette::Highlight);
    drawBox(painter, bar.rect, fill, {fill});
    painter.restore();
}

void drawProgressLabel(const QStyleOptionProgressBar &bar, QPainter &painter)
{
    if (!bar.textVisible || bar.text.isEmpty())
        return;
    const QRect done = donePart(bar);
    const auto drawText = [&](const QRegion &where, QPalette::ColorRole role) {
        painter.save();
        painter.setClipRegion(where);
        painter.setPen(color(bar, role));
        painter.drawText(bar.rect, Qt::AlignCenter | Qt::TextSingleLine, bar.text);
        painter.restore();
    };
    drawText(QRegion(bar.rect) - done, QPalette::Text);
    if (!done.isEmpty())
        drawText(done, QPalette::HighlightedText);
}

void drawTabShape(const QStyleOptionTab &tab, QPainter &painter)
{
    const bool selected = isOn(tab, QStyle::State_Selected);
    painter.fillRect(alongTab(tab, 1), grooveColor(tab));
    if (hasFocus(tab) && selected)
        painter.fillRect(tab.rect, blend(color(tab, QPalette::Window), color(tab, QPalette::Highlight), 16));
    if (selected)
        painter.fillRect(alongTab(tab, kTabLine), color(tab, QPalette::Highlight));
}

void drawTabLine(const QStyleOption &option, QPainter &painter)
{
    if (const auto *base = qstyleoption_cast<const QStyleOptionTabBarBase *>(&option)) {
        QStyleOptionTab edge;
        edge.rect = base->rect;
        edge.shape = base->shape;
        painter.fillRect(alongTab(edge, 1), grooveColor(option));
    }
}

// The line under the tabs goes on to the end of the pane.
void drawTabPane(const QStyleOption &option, QPainter &painter)
{
    if (const auto *pane = qstyleoption_cast<const QStyleOptionTabWidgetFrame *>(&option)) {
        const QRect r = pane->rect;
        QRect line;
        switch (pane->shape) {
        case QTabBar::RoundedSouth:
        case QTabBar::TriangularSouth:
            line = QRect(r.x(), r.bottom(), r.width(), 1);
            break;
        case QTabBar::RoundedWest:
        case QTabBar::TriangularWest:
            line = QRect(r.x(), r.y(), 1, r.height());
            break;
        case QTabBar::RoundedEast:
        case QTabBar::TriangularEast:
            line = QRect(r.right(), r.y(), 1, r.height());
            break;
        default:
            line = QRect(r.x(), r.y(), r.width(), 1);
            break;
        }
        painter.fillRect(line, grooveColor(option));
    }
}

void drawGroupFrame(const QStyleOption &option, QPainter &painter)
{
    drawBox(painter, option.rect, Qt::transparent, {grooveColor(option)});
}

void drawScrollBar(const QStyleOptionSlider &bar, const QRect &handle, QPainter &painter)
{
    painter.fillRect(bar.rect, color(bar, QPalette::Base));
    if (bar.maximum <= bar.minimum)
        return;
    const bool held = isOn(bar, QStyle::State_Sunken) && (bar.activeSubControls & QStyle::SC_ScrollBarSlider);
    const QColor fill = held ? color(bar, QPalette::Highlight)
                             : blend(color(bar, QPalette::Base), color(bar, QPalette::Text), kGrooveShade * 2);
    fillRounded(painter, QRectF(handle).adjusted(1, 1, -1, -1), fill);
}

void drawSlider(const QStyleOptionSlider &slider, const QRect &groove, const QRect &handle, QPainter &painter)
{
    const bool horizontal = slider.orientation == Qt::Horizontal;
    const int middle = horizontal ? groove.center().y() : groove.center().x(); // across the slider
    const QRect line = horizontal ? QRect(groove.x(), middle - kSliderGroove / 2 + 1, groove.width(), kSliderGroove)
                                  : QRect(middle - kSliderGroove / 2 + 1, groove.y(), kSliderGroove, groove.height());
    fillRounded(painter, line, blend(grooveColor(slider), color(slider, QPalette::WindowText), 8));
    QRect filled = line;
    if (horizontal && !slider.upsideDown)
        filled.setRight(handle.center().x());
    else if (horizontal)
        filled.setLeft(handle.center().x());
    else if (slider.upsideDown) // the least value is below
        filled.setTop(handle.center().y());
    else
        filled.setBottom(handle.center().y());
    fillRounded(painter, filled, color(slider, QPalette::Highlight));
    const bool held = isOn(slider, QStyle::State_Sunken) && (slider.activeSubControls & QStyle::SC_SliderHandle);
    const QColor knob = held ? blend(color(slider, QPalette::Button), color(slider, QPalette::Highlight), 25)
                             : color(slider, QPalette::Button);
    const bool focus = hasFocus(slider);
    QRect round(0, 0, kSliderHandle - 2, kSliderHandle - 2);
    round.moveCenter(horizontal ? QPoint(handle.center().x(), middle) : QPoint(middle, handle.center().y()));
    drawBox(painter, round, knob, {outlineColor(slider), focus ? 2 : 1, kSliderHandle / 2.0});
}

void drawComboBox(const QStyleOptionComboBox &box, const QRect &arrow, QPainter &painter)
{
    if (box.frame && box.editable)
        drawFieldFrame(box, painter);
    else if (box.frame)
        drawPushButton(box, painter);
    drawChevron(painter, arrow, Direction::Down, color(box, QPalette::ButtonText));
}

void drawSpinBox(const QStyleOptionSpinBox &box, const SpinButtons &buttons, QPainter &painter)
{
    if (box.frame)
        drawFieldFrame(box, painter);
    if (box.buttonSymbols == QAbstractSpinBox::NoButtons)
        return;
    const QColor text = color(box, QPalette::Text);
    const QColor faint = blend(color(box, QPalette::Base), text, 30);
    const auto ink = [&](QAbstractSpinBox::StepEnabledFlag step) { return box.stepEnabled & step ? text : faint; };
    const bool held = isOn(box, QStyle::State_Sunken);
    for (const auto &[part, rect] :
        {std::pair(QStyle::SC_SpinBoxUp, buttons.up), std::pair(QStyle::SC_SpinBoxDown, buttons.down)}) {
        if (held && box.activeSubControls == part)
            painter.fillRect(rect.adjusted(1, 2, -2, -2), blend(color(box, QPalette::Base), text, kGrooveShade));
    }
    drawChevron(painter, buttons.up, Direction::Up, ink(QAbstractSpinBox::StepUpEnabled));
    drawChevron(painter, buttons.down, Direction::Down, ink(QAbstractSpinBox::StepDownEnabled));
}

}
