// Shapes, and the controls that are one piece.
#include "appbase/look/tyxskin.h"
#include "appbase/look/tyxstyle_p.h"

#include "res/skin/util_skin.h"

#include <QFont>
#include <QPixmap>
#include <QPolygonF>
#include <algorithm>
#include <iterator>

namespace look {

namespace {

constexpr int kLineShade = 38; // hundredths of the text's colour in the line around a control
constexpr int kPressedShade = 14;
constexpr int kSelectedFocus = 70;

QRectF onPixels(const QRect &rect, int width)
{
    const qreal half = width / 2.0;
    return QRectF(rect).adjusted(half, half, -half, -half);
}

void drawLines(QPainter &painter, const QPolygonF &points, const QColor &color, qreal width)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(points);
    painter.restore();
}

QColor pressed(const QStyleOption &option, const QColor &ground, QPalette::ColorRole text)
{
    return isOn(option, QStyle::State_Sunken) && isOn(option, QStyle::State_Enabled)
        ? blend(ground, color(option, text), kPressedShade)
        : ground;
}

TYXSkin::State stateOf(const QStyleOption &option)
{
    return {isOn(option, QStyle::State_Sunken) || isOn(option, QStyle::State_On), hasFocus(option),
        isOn(option, QStyle::State_Enabled)};
}

// A field or a view is not pressed.
TYXSkin::State focusOf(const QStyleOption &option)
{
    return {false, hasFocus(option), isOn(option, QStyle::State_Enabled)};
}

// In the colour of the text while the entry is chosen: its own may be that of the highlight.
void drawMenuIcon(const QStyleOptionMenuItem &item, const QRect &rect, bool chosen, QPainter &painter)
{
    const bool enabled = isOn(item, QStyle::State_Enabled);
    QPixmap icon = item.icon.pixmap(rect.size(), enabled ? QIcon::Normal : QIcon::Disabled);
    if (chosen) {
        QPainter tint(&icon);
        tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
        tint.fillRect(icon.rect(), color(item, QPalette::HighlightedText));
    }
    painter.drawPixmap(QStyle::alignedRect(Qt::LeftToRight, Qt::AlignCenter, icon.size(), rect), icon);
}

QString shownText(const QString &text) { return text.section(u'\t', 0, 0); } // what is behind is for keyboards

}

QColor blend(const QColor &under, const QColor &over, int part)
{
    const auto mix = [part](int a, int b) { return (a * (100 - part) + b * part) / 100; };
    return {mix(under.red(), over.red()), mix(under.green(), over.green()), mix(under.blue(), over.blue())};
}

QColor color(const QStyleOption &option, QPalette::ColorRole role)
{
    return option.palette.color(isOn(option, QStyle::State_Enabled) ? QPalette::Active : QPalette::Disabled, role);
}

QColor outlineColor(const QStyleOption &option)
{
    if (hasFocus(option))
        return color(option, QPalette::Highlight);
    return blend(color(option, QPalette::Window), color(option, QPalette::WindowText), kLineShade);
}

void drawBox(QPainter &painter, const QRect &rect, const QColor &fill, const Line &line)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(fill);
    painter.setPen(QPen(line.color, line.width));
    painter.drawRoundedRect(onPixels(rect, line.width), line.radius, line.radius);
    painter.restore();
}

void drawChevron(QPainter &painter, const QRect &rect, Direction direction, const QColor &color)
{
    constexpr qreal kLong = 4;
    constexpr qreal kShort = 2;
    const QPointF middle = QRectF(rect).center();
    QPolygonF points{{-kLong, -kShort}, {0, kShort}, {kLong, -kShort}};
    for (QPointF &point : points) {
        switch (direction) {
        case Direction::Down:
            break;
        case Direction::Up:
            point.ry() = -point.y();
            break;
        case Direction::Right:
            point = {point.y(), point.x()};
            break;
        case Direction::Left:
            point = {-point.y(), point.x()};
            break;
        }
        point += middle;
    }
    drawLines(painter, points, color, 1.6);
}

void drawCheckMark(QPainter &painter, const QRect &rect, const QColor &color)
{
    const QRectF r(rect);
    const auto at = [&r](qreal x, qreal y) { return QPointF(r.x() + r.width() * x, r.y() + r.height() * y); };
    drawLines(painter, {at(0.24, 0.52), at(0.43, 0.71), at(0.77, 0.31)}, color, 2);
}

void drawPushButton(const QStyleOption &option, QPainter &painter)
{
    if (TYXSkin::draw(painter, option.rect, QStringLiteral("button"), stateOf(option)))
        return;
    const QColor ground = pressed(option, color(option, QPalette::Button), QPalette::ButtonText);
    const QColor fill = isOn(option, QStyle::State_On) ? blend(ground, color(option, QPalette::Highlight), 25) : ground;
    drawBox(painter, option.rect, fill, {outlineColor(option), hasFocus(option) ? 2 : 1});
}

void drawFieldFrame(const QStyleOption &option, QPainter &painter)
{
    // The field inside a spin box or a combo box has no frame of its own.
    if (const auto *frame = qstyleoption_cast<const QStyleOptionFrame *>(&option); frame && frame->lineWidth <= 0)
        return;
    if (TYXSkin::draw(painter, option.rect, QStringLiteral("field"), focusOf(option)))
        return;
    drawBox(painter, option.rect, color(option, QPalette::Base), {outlineColor(option), hasFocus(option) ? 2 : 1});
}

void drawViewFrame(const QStyleOption &option, QPainter &painter)
{
    if (TYXSkin::draw(painter, option.rect, QStringLiteral("list"), focusOf(option)))
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(outlineColor(option), hasFocus(option) ? 2 : 1));
    painter.drawRoundedRect(onPixels(option.rect, hasFocus(option) ? 2 : 1), 2, 2);
    painter.restore();
}

void drawCheckBox(const QStyleOption &option, QPainter &painter)
{
    const bool marked = isOn(option, QStyle::State_On) || isOn(option, QStyle::State_NoChange);
    const QColor highlight = color(option, QPalette::Highlight);
    const QColor fill = marked ? highlight : pressed(option, color(option, QPalette::Base), QPalette::Text);
    drawBox(painter, option.rect, fill, {marked ? highlight : outlineColor(option), 1, 3});
    const QColor mark = color(option, QPalette::HighlightedText);
    if (isOn(option, QStyle::State_On))
        drawCheckMark(painter, option.rect, mark);
    else if (marked)
        painter.fillRect(QRect(option.rect.x() + 4, option.rect.center().y(), option.rect.width() - 8, 2), mark);
}

void drawRadioButton(const QStyleOption &option, QPainter &painter)
{
    const bool marked = isOn(option, QStyle::State_On);
    const QColor fill = pressed(option, color(option, QPalette::Base), QPalette::Text);
    const QColor highlight = color(option, QPalette::Highlight);
    const qreal radius = option.rect.width() / 2.0;
    drawBox(painter, option.rect, fill, {marked ? highlight : outlineColor(option), marked ? 2 : 1, radius});
    if (!marked)
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(highlight);
    const qreal inset = option.rect.width() * 0.28;
    painter.drawEllipse(QRectF(option.rect).adjusted(inset, inset, -inset, -inset));
    painter.restore();
}

void drawFocusFrame(const QStyleOption &option, QPainter &painter)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    const QColor line = blend(color(option, QPalette::Window), color(option, QPalette::Highlight), kSelectedFocus);
    painter.setPen(QPen(line, 1));
    painter.drawRoundedRect(onPixels(option.rect, 1), 3, 3);
    painter.restore();
}

void drawMenuPanel(const QStyleOption &option, QPainter &painter)
{
    // A pop-up is a rectangle of its own on the screen: there is nothing behind round corners.
    painter.fillRect(option.rect, color(option, QPalette::Base));
    painter.setPen(blend(color(option, QPalette::Base), color(option, QPalette::Text), 45));
    painter.drawRect(option.rect.adjusted(0, 0, -1, -1));
}

void drawToolTip(const QStyleOption &option, QPainter &painter)
{
    painter.fillRect(option.rect, color(option, QPalette::ToolTipBase));
}

void drawMenuItem(const QStyleOptionMenuItem &item, QPainter &painter)
{
    if (item.menuItemType == QStyleOptionMenuItem::Separator) {
        const int y = item.rect.center().y();
        painter.fillRect(QRect(item.rect.x() + kMenuIndent, y, item.rect.width() - 2 * kMenuIndent, 1),
            blend(color(item, QPalette::Base), color(item, QPalette::Text), 18));
        return;
    }
    const bool chosen = isOn(item, QStyle::State_Selected) && isOn(item, QStyle::State_Enabled);
    if (chosen && !TYXSkin::draw(painter, item.rect, QStringLiteral("row"), {.on = true}))
        painter.fillRect(item.rect, color(item, QPalette::Highlight));
    const QColor text = color(item, chosen ? QPalette::HighlightedText : QPalette::Text);
    QRect rest = item.rect.adjusted(kMenuIndent, 0, -kMenuIndent, 0);
    const bool hasIndicator = item.menuHasCheckableItems || item.maxIconWidth > 0;
    const QRect indicator(rest.x() - 4, rest.center().y() - kIndicator / 2 + 1, kIndicator, kIndicator);
    if (item.checked)
        drawCheckMark(painter, indicator, text);
    else if (!item.icon.isNull())
        drawMenuIcon(item, indicator, chosen, painter);
    if (hasIndicator)
        rest.setLeft(rest.left() + kMenuIndicator - 4);
    if (item.menuItemType == QStyleOptionMenuItem::SubMenu)
        drawChevron(painter, QRect(rest.right() - 8, rest.y(), 8, rest.height()), Direction::Right, text);
    painter.setPen(text);
    painter.setFont(item.font);
    painter.drawText(
        rest, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine | Qt::TextHideMnemonic, shownText(item.text));
}

QPixmap messageIcon(QStyle::StandardPixmap icon, int size)
{
    struct Sign {
        QStyle::StandardPixmap icon;
        char sign;
        QRgb color;
        const char *name; // in the icon set of the phone
    };
    constexpr Sign signs[] = {{QStyle::SP_MessageBoxInformation, 'i', 0xff1b6b93, "message_information"},
        {QStyle::SP_MessageBoxQuestion, '?', 0xff1b6b93, "message_question"},
        {QStyle::SP_MessageBoxWarning, '!', 0xffc77700, "message_warning"},
        {QStyle::SP_MessageBoxCritical, 'x', 0xffb3261e, "message_critical"}};
    const auto *sign =
        std::find_if(std::begin(signs), std::end(signs), [icon](const Sign &row) { return row.icon == icon; });
    if (sign == std::end(signs))
        return {};
    if (QPixmap ours = UTIL_Skin::get()->getPixmap(QLatin1StringView(sign->name)); !ours.isNull())
        return ours.width() <= size && ours.height() <= size
            ? ours
            : ours.scaled(size, size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    drawBox(painter, pixmap.rect(), QColor(sign->color), {QColor(sign->color), 1, size / 2.0});
    painter.setPen(Qt::white);
    QFont font;
    font.setBold(true);
    font.setPixelSize(size * 5 / 8);
    painter.setFont(font);
    painter.drawText(pixmap.rect(), Qt::AlignCenter, QString(QLatin1Char(sign->sign)));
    return pixmap;
}

}
