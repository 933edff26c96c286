#include "appbase/look/tyxstyle.h"

#include "appbase/look/phonepalette.h"
#include "appbase/look/tyxskin.h"
#include "appbase/look/tyxstyle_p.h"

#include <QAbstractItemView>
#include <QPushButton>
#include <QStyleFactory>
#include <algorithm>

using namespace look;

namespace {

struct Primitive {
    QStyle::PrimitiveElement element;
    void (*draw)(const QStyleOption &, QPainter &);
};

template <Direction direction> void drawArrow(const QStyleOption &option, QPainter &painter)
{
    drawChevron(painter, option.rect, direction, color(option, QPalette::ButtonText));
}

void drawNothing(const QStyleOption & /*option*/, QPainter & /*painter*/) { }

// clang-format off
constexpr Primitive primitives[] = {
    {QStyle::PE_PanelButtonCommand,         drawPushButton},
    {QStyle::PE_PanelButtonBevel,           drawPushButton},
    {QStyle::PE_FrameDefaultButton,         drawNothing},
    {QStyle::PE_PanelLineEdit,              drawFieldFrame},
    {QStyle::PE_FrameLineEdit,              drawViewFrame},
    {QStyle::PE_Frame,                      drawViewFrame},
    {QStyle::PE_IndicatorCheckBox,          drawCheckBox},
    {QStyle::PE_IndicatorItemViewItemCheck, drawCheckBox},
    {QStyle::PE_IndicatorRadioButton,       drawRadioButton},
    {QStyle::PE_FrameFocusRect,             drawFocusFrame},
    {QStyle::PE_IndicatorArrowUp,           drawArrow<Direction::Up>},
    {QStyle::PE_IndicatorArrowDown,         drawArrow<Direction::Down>},
    {QStyle::PE_IndicatorArrowLeft,         drawArrow<Direction::Left>},
    {QStyle::PE_IndicatorArrowRight,        drawArrow<Direction::Right>},
    {QStyle::PE_PanelMenu,                  drawMenuPanel},
    {QStyle::PE_FrameMenu,                  drawNothing},
    {QStyle::PE_PanelTipLabel,              drawToolTip},
    {QStyle::PE_FrameGroupBox,              drawGroupFrame},
    {QStyle::PE_FrameTabWidget,             drawTabPane},
    {QStyle::PE_FrameTabBarBase,            drawTabLine},
};

struct Measure {
    QStyle::PixelMetric metric;
    int pixels;
};

constexpr Measure measures[] = {
    {QStyle::PM_DefaultFrameWidth,         2},
    {QStyle::PM_ButtonMargin,              12},
    {QStyle::PM_ButtonShiftHorizontal,     0},
    {QStyle::PM_ButtonShiftVertical,       0},
    {QStyle::PM_MenuButtonIndicator,       18},
    {QStyle::PM_IndicatorWidth,            kIndicator},
    {QStyle::PM_IndicatorHeight,           kIndicator},
    {QStyle::PM_ExclusiveIndicatorWidth,   kIndicator},
    {QStyle::PM_ExclusiveIndicatorHeight,  kIndicator},
    {QStyle::PM_CheckBoxLabelSpacing,      6},
    {QStyle::PM_RadioButtonLabelSpacing,   6},
    {QStyle::PM_ScrollBarExtent,           kScrollBar},
    {QStyle::PM_ScrollBarSliderMin,        kScrollHandle},
    {QStyle::PM_ScrollView_ScrollBarSpacing, 0},
    {QStyle::PM_SliderLength,              kSliderHandle},
    {QStyle::PM_SliderThickness,           kSliderHandle + 2},
    {QStyle::PM_SliderControlThickness,    kSliderHandle},
    {QStyle::PM_MenuPanelWidth,            1},
    {QStyle::PM_MenuHMargin,               0},
    {QStyle::PM_MenuVMargin,               2},
    {QStyle::PM_SubMenuOverlap,            0},
    {QStyle::PM_SmallIconSize,             16},
    {QStyle::PM_MessageBoxIconSize,        kMessageIcon},
    {QStyle::PM_LayoutLeftMargin,          8},
    {QStyle::PM_LayoutTopMargin,           8},
    {QStyle::PM_LayoutRightMargin,         8},
    {QStyle::PM_LayoutBottomMargin,        8},
    {QStyle::PM_LayoutHorizontalSpacing,   6},
    {QStyle::PM_LayoutVerticalSpacing,     6},
    {QStyle::PM_TabBarTabHSpace,           16},
    {QStyle::PM_TabBarTabVSpace,           10},
    {QStyle::PM_TabBarTabShiftHorizontal,  0},
    {QStyle::PM_TabBarTabShiftVertical,    0},
    {QStyle::PM_TabBarTabOverlap,          0},
    {QStyle::PM_TabBarBaseOverlap,         1},
    {QStyle::PM_TabBarBaseHeight,          1},
};
// clang-format on

QSize menuItemSize(const QStyleOptionMenuItem &item)
{
    if (item.menuItemType == QStyleOptionMenuItem::Separator)
        return {1, 7};
    const QFontMetrics metrics(item.font);
    int width = 2 * kMenuIndent + metrics.size(Qt::TextShowMnemonic, item.text.section(u'\t', 0, 0)).width();
    if (item.menuHasCheckableItems || item.maxIconWidth > 0)
        width += kMenuIndicator;
    if (item.menuItemType == QStyleOptionMenuItem::SubMenu)
        width += kMenuIndent;
    return {width, std::max(metrics.height() + 12, kTouchHeight)};
}

// Side by side at the end of the field: one above the other they would be too flat for a finger.
SpinButtons spinButtons(const QStyleOptionSpinBox &box)
{
    const QRect up(box.rect.right() - kSpinArrow + 1, box.rect.y(), kSpinArrow, box.rect.height());
    const QRect down = up.translated(-kSpinArrow, 0);
    const auto placed = [&box](const QRect &rect) { return QStyle::visualRect(box.direction, box.rect, rect); };
    return {placed(up), placed(down)};
}

QRect spinBoxRect(const QStyleOptionSpinBox &box, QStyle::SubControl part)
{
    const SpinButtons buttons = spinButtons(box);
    const bool bare = box.buttonSymbols == QAbstractSpinBox::NoButtons;
    switch (part) {
    case QStyle::SC_SpinBoxUp:
        return bare ? QRect() : buttons.up;
    case QStyle::SC_SpinBoxDown:
        return bare ? QRect() : buttons.down;
    case QStyle::SC_SpinBoxEditField: {
        const QRect field = box.rect.adjusted(2, 2, bare ? -2 : -2 * kSpinArrow, -2);
        return QStyle::visualRect(box.direction, box.rect, field);
    }
    default:
        return box.rect;
    }
}

// No buttons at the ends: the whole length is for the handle.
QRect scrollBarRect(const QStyleOptionSlider &bar, QStyle::SubControl part)
{
    const bool horizontal = bar.orientation == Qt::Horizontal;
    const int length = horizontal ? bar.rect.width() : bar.rect.height();
    const qint64 range = qint64(bar.maximum) - bar.minimum;
    const qint64 page = std::max(bar.pageStep, 0);
    int handle = length;
    if (range > 0)
        handle = std::min(length, std::max(int(length * page / (range + page)), kScrollHandle));
    const int start =
        QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition, length - handle, bar.upsideDown);
    const auto span = [&](int from, int size) {
        return horizontal ? QRect(bar.rect.x() + from, bar.rect.y(), size, bar.rect.height())
                          : QRect(bar.rect.x(), bar.rect.y() + from, bar.rect.width(), size);
    };
    switch (part) {
    case QStyle::SC_ScrollBarSlider:
        return span(start, handle);
    case QStyle::SC_ScrollBarSubPage:
        return span(0, start);
    case QStyle::SC_ScrollBarAddPage:
        return span(start + handle, length - start - handle);
    case QStyle::SC_ScrollBarGroove:
        return bar.rect;
    default:
        return {};
    }
}

// The title stands above the frame, as wide as the box.
QRect groupBoxRect(const QStyleOptionGroupBox &box, QStyle::SubControl part)
{
    const bool checkable = box.subControls & QStyle::SC_GroupBoxCheckBox;
    const bool titled = checkable || !box.text.isEmpty();
    const int height = !titled ? 0 : std::max(box.fontMetrics.height(), checkable ? kIndicator : 0);
    const QRect title(box.rect.x(), box.rect.y(), box.rect.width(), height);
    const QRect frame = box.rect.adjusted(0, titled ? height + kGroupTitleGap : 0, 0, 0);
    QRect rect;
    switch (part) {
    case QStyle::SC_GroupBoxCheckBox:
        rect = QRect(title.x(), title.y() + (height - kIndicator) / 2, kIndicator, kIndicator);
        break;
    case QStyle::SC_GroupBoxLabel:
        rect = title.adjusted(checkable ? kIndicator + 6 : 2, 0, 0, 0);
        break;
    case QStyle::SC_GroupBoxContents:
        return frame.adjusted(1, 1, -1, -1);
    default:
        return frame;
    }
    return QStyle::visualRect(box.direction, box.rect, rect);
}

QRect comboBoxRect(const QStyleOptionComboBox &box, QStyle::SubControl part, const QRect &otherwise)
{
    const QRect arrow(box.rect.right() - kComboArrow + 1, box.rect.y(), kComboArrow, box.rect.height());
    if (part == QStyle::SC_ComboBoxArrow)
        return QStyle::visualRect(box.direction, box.rect, arrow);
    if (part == QStyle::SC_ComboBoxEditField) {
        const int indent = box.editable ? 2 : 6;
        return QStyle::visualRect(box.direction, box.rect, box.rect.adjusted(indent, 2, -kComboArrow, -2));
    }
    return otherwise;
}

}

TYXStyle::TYXStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) { }

QPalette TYXStyle::standardPalette() const { return builtInPalette(); }

int TYXStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const
{
    const auto *measure = std::find_if(
        std::begin(measures), std::end(measures), [metric](const Measure &row) { return row.metric == metric; });
    return measure != std::end(measures) ? measure->pixels : QProxyStyle::pixelMetric(metric, option, widget);
}

int TYXStyle::styleHint(
    StyleHint hint, const QStyleOption *option, const QWidget *widget, QStyleHintReturn *returned) const
{
    switch (hint) {
    case SH_UnderlineShortcut: // a keypad has no Alt
    case SH_ComboBox_Popup: // a list below the box, not a menu over it
    case SH_DialogButtonBox_ButtonsHaveIcons:
    case SH_EtchDisabledText:
    case SH_Menu_FlashTriggeredItem:
        return 0;
    case SH_ItemView_ShowDecorationSelected:
    case SH_ScrollBar_LeftClickAbsolutePosition: // a finger does not hit a slim handle
        return 1;
    case SH_Slider_AbsoluteSetButtons:
        return int(Qt::LeftButton);
    default:
        return QProxyStyle::styleHint(hint, option, widget, returned);
    }
}

QSize TYXStyle::sizeFromContents(
    ContentsType type, const QStyleOption *option, const QSize &size, const QWidget *widget) const
{
    if (const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option); item && type == CT_MenuItem)
        return menuItemSize(*item);
    QSize result = QProxyStyle::sizeFromContents(type, option, size, widget);
    switch (type) {
    case CT_PushButton:
    case CT_LineEdit:
    case CT_ComboBox:
        result.setHeight(std::max(size.height() + 10, kTouchHeight));
        break;
    case CT_SpinBox:
        result = {size.width() + 2 * kSpinArrow + 4, std::max(size.height() + 4, kTouchHeight)};
        break;
    case CT_CheckBox:
    case CT_RadioButton:
        result.setHeight(std::max(result.height(), kTouchHeight - 4));
        break;
    case CT_ItemViewItem:
        result.setHeight(std::max(result.height() + 4, kRowHeight));
        break;
    default:
        break;
    }
    return result;
}

QRect TYXStyle::subControlRect(
    ComplexControl control, const QStyleOptionComplex *option, SubControl part, const QWidget *widget) const
{
    if (const auto *bar = qstyleoption_cast<const QStyleOptionSlider *>(option); bar && control == CC_ScrollBar)
        return scrollBarRect(*bar, part);
    if (const auto *box = qstyleoption_cast<const QStyleOptionSpinBox *>(option); box && control == CC_SpinBox)
        return spinBoxRect(*box, part);
    if (const auto *box = qstyleoption_cast<const QStyleOptionGroupBox *>(option); box && control == CC_GroupBox)
        return groupBoxRect(*box, part);
    const QRect otherwise = QProxyStyle::subControlRect(control, option, part, widget);
    if (const auto *box = qstyleoption_cast<const QStyleOptionComboBox *>(option); box && control == CC_ComboBox)
        return comboBoxRect(*box, part, otherwise);
    return otherwise;
}

QRect TYXStyle::subElementRect(SubElement element, const QStyleOption *option, const QWidget *widget) const
{
    switch (element) {
    case SE_ProgressBarGroove:
    case SE_ProgressBarContents:
    case SE_ProgressBarLabel:
    case SE_CheckBoxFocusRect: // around the whole: a box without a text has a focus too
    case SE_RadioButtonFocusRect:
        return option->rect;
    case SE_LineEditContents:
        return QProxyStyle::subElementRect(element, option, widget).adjusted(2, 0, -2, 0);
    default:
        return QProxyStyle::subElementRect(element, option, widget);
    }
}

QIcon TYXStyle::standardIcon(StandardPixmap icon, const QStyleOption *option, const QWidget *widget) const
{
    const QPixmap ours = messageIcon(icon, kMessageIcon);
    return ours.isNull() ? QProxyStyle::standardIcon(icon, option, widget) : QIcon(ours);
}

void TYXStyle::drawPrimitive(
    PrimitiveElement element, const QStyleOption *option, QPainter *painter, const QWidget *widget) const
{
    // These show their focus in their frame.
    const bool ownFocus = qobject_cast<const QPushButton *>(widget) || qobject_cast<const QAbstractItemView *>(widget);
    if (element == PE_FrameFocusRect && ownFocus)
        return;
    if (element == PE_PanelItemViewItem && option->state.testFlag(State_Selected)
        && TYXSkin::draw(*painter, option->rect, QStringLiteral("row"), {.on = true}))
        return;
    const auto *row = std::find_if(std::begin(primitives), std::end(primitives),
        [element](const Primitive &candidate) { return candidate.element == element; });
    if (row != std::end(primitives))
        row->draw(*option, *painter);
    else
        QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void TYXStyle::drawControl(
    ControlElement element, const QStyleOption *option, QPainter *painter, const QWidget *widget) const
{
    if (const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option); item && element == CE_MenuItem)
        return drawMenuItem(*item, *painter);
    if (element == CE_MenuEmptyArea) // the panel was drawn there
        return;
    if (element == CE_ProgressBarGroove)
        return drawProgressGroove(*option, *painter);
    if (const auto *bar = qstyleoption_cast<const QStyleOptionProgressBar *>(option)) {
        if (element == CE_ProgressBarContents)
            return drawProgressContents(*bar, *painter);
        if (element == CE_ProgressBarLabel)
            return drawProgressLabel(*bar, *painter);
    }
    if (const auto *tab = qstyleoption_cast<const QStyleOptionTab *>(option); tab && element == CE_TabBarTabShape)
        return drawTabShape(*tab, *painter);
    QProxyStyle::drawControl(element, option, painter, widget);
}

void TYXStyle::drawComplexControl(
    ComplexControl control, const QStyleOptionComplex *option, QPainter *painter, const QWidget *widget) const
{
    const auto rectOf = [&](SubControl part) { return proxy()->subControlRect(control, option, part, widget); };
    if (const auto *slider = qstyleoption_cast<const QStyleOptionSlider *>(option)) {
        if (control == CC_ScrollBar)
            return drawScrollBar(*slider, rectOf(SC_ScrollBarSlider), *painter);
        if (control == CC_Slider)
            return drawSlider(*slider, rectOf(SC_SliderGroove), rectOf(SC_SliderHandle), *painter);
    }
    if (const auto *box = qstyleoption_cast<const QStyleOptionComboBox *>(option); box && control == CC_ComboBox)
        return drawComboBox(*box, rectOf(SC_ComboBoxArrow), *painter);
    if (const auto *box = qstyleoption_cast<const QStyleOptionSpinBox *>(option); box && control == CC_SpinBox)
        return drawSpinBox(*box, spinButtons(*box), *painter);
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}
