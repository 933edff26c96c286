// What the parts of the style share: its measures, and the shapes that everything is made of.
#pragma once

#include <QColor>
#include <QPainter>
#include <QPalette>
#include <QStyleOption>

namespace look {

// Pixels. What a finger is to hit is at least kTouchHeight high.
inline constexpr int kTouchHeight = 28;
inline constexpr int kRadius = 4;
inline constexpr int kMessageIcon = 32;
inline constexpr int kRowHeight = 22; // of lists
inline constexpr int kIndicator = 16; // check boxes and radio buttons
inline constexpr int kScrollBar = 7;
inline constexpr int kScrollHandle = 24; // at least this long
inline constexpr int kSliderHandle = 18;
inline constexpr int kSliderGroove = 4;
inline constexpr int kMenuIndent = 12;
inline constexpr int kMenuIndicator = 20; // room for a check mark or an icon
inline constexpr int kComboArrow = 24;
inline constexpr int kSpinArrow = 26;
inline constexpr int kTabLine = 3;
inline constexpr int kGroupTitleGap = 3; // between the title of a group and its frame

inline bool isOn(const QStyleOption &option, QStyle::StateFlag flag) { return option.state.testFlag(flag); }
inline bool hasFocus(const QStyleOption &option)
{
    return isOn(option, QStyle::State_HasFocus) && isOn(option, QStyle::State_Enabled);
}

// `part` hundredths of `over` on `under`.
QColor blend(const QColor &under, const QColor &over, int part);
QColor outlineColor(const QStyleOption &option); // of what can be used, and what has the focus
QColor color(const QStyleOption &option, QPalette::ColorRole role); // in the state of the option

// A filled shape with a line around it, on whole pixels.
struct Line {
    QColor color;
    int width = 1; // two with the focus
    qreal radius = kRadius; // of the corners
};
void drawBox(QPainter &painter, const QRect &rect, const QColor &fill, const Line &line);

enum class Direction { Up, Down, Left, Right };
void drawChevron(QPainter &painter, const QRect &rect, Direction direction, const QColor &color);
void drawCheckMark(QPainter &painter, const QRect &rect, const QColor &color);

// Each draws one control, or one part of a control, that the style has a way of its own for.
void drawPushButton(const QStyleOption &option, QPainter &painter);
void drawFieldFrame(const QStyleOption &option, QPainter &painter); // of text fields
void drawViewFrame(const QStyleOption &option, QPainter &painter); // of lists and the like
void drawCheckBox(const QStyleOption &option, QPainter &painter);
void drawRadioButton(const QStyleOption &option, QPainter &painter);
void drawFocusFrame(const QStyleOption &option, QPainter &painter);
void drawMenuPanel(const QStyleOption &option, QPainter &painter);
void drawToolTip(const QStyleOption &option, QPainter &painter);
void drawMenuItem(const QStyleOptionMenuItem &item, QPainter &painter);
void drawProgressGroove(const QStyleOption &option, QPainter &painter);
void drawProgressContents(const QStyleOptionProgressBar &bar, QPainter &painter);
void drawProgressLabel(const QStyleOptionProgressBar &bar, QPainter &painter);
void drawTabShape(const QStyleOptionTab &tab, QPainter &painter);
void drawTabLine(const QStyleOption &option, QPainter &painter);
void drawTabPane(const QStyleOption &option, QPainter &painter);
void drawGroupFrame(const QStyleOption &option, QPainter &painter);
void drawScrollBar(const QStyleOptionSlider &bar, const QRect &handle, QPainter &painter);
void drawSlider(const QStyleOptionSlider &slider, const QRect &groove, const QRect &handle, QPainter &painter);
void drawComboBox(const QStyleOptionComboBox &box, const QRect &arrow, QPainter &painter);

// Of a message box; null for any other icon.
QPixmap messageIcon(QStyle::StandardPixmap icon, int size);

struct SpinButtons {
    QRect up;
    QRect down;
};
void drawSpinBox(const QStyleOptionSpinBox &box, const SpinButtons &buttons, QPainter &painter);

}
