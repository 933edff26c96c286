// How the controls of the phone look: flat, calm, and large enough for a finger on 240x320.
#pragma once

#include "platform/tyxexport.h"

#include <QProxyStyle>

// Every colour comes from the palette. The focus is shown wherever keys can move it, in the colour of the highlight.
// What is not drawn here looks as the toolkit's own style draws it. Owned by the application once it is set.
//
// Buttons, fields, combo and spin boxes and entries of menus are at least 28 pixels high, check boxes and radio buttons
// 24, rows of lists 22. Scroll bars are 7 pixels wide and have no buttons: a tap beside the handle moves it there.
class TYX_EXPORT TYXStyle : public QProxyStyle {
    Q_OBJECT

public:
    TYXStyle();

    [[nodiscard]] QPalette standardPalette() const override;
    [[nodiscard]] int pixelMetric(
        PixelMetric metric, const QStyleOption *option = nullptr, const QWidget *widget = nullptr) const override;
    int styleHint(StyleHint hint, const QStyleOption *option = nullptr, const QWidget *widget = nullptr,
        QStyleHintReturn *returned = nullptr) const override;
    [[nodiscard]] QSize sizeFromContents(
        ContentsType type, const QStyleOption *option, const QSize &size, const QWidget *widget) const override;
    [[nodiscard]] QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
        const QWidget *widget = nullptr) const override;
    [[nodiscard]] QRect subElementRect(
        SubElement element, const QStyleOption *option, const QWidget *widget = nullptr) const override;
    [[nodiscard]] QIcon standardIcon(
        StandardPixmap icon, const QStyleOption *option = nullptr, const QWidget *widget = nullptr) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
        const QWidget *widget = nullptr) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
        const QWidget *widget = nullptr) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
        const QWidget *widget = nullptr) const override;
};
