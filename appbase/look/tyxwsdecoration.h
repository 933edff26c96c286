// The frame that an application draws around its own dialogs, since the window server draws none.
#pragma once

#include "platform/tyxexport.h"
#include "platform/window/qwsdecoration.h"

// A line all around, and on top a strip with the title when the dialog has one. Main windows fill the work area and
// have no frame; neither have menus, frameless windows, and dialogs that ask for no title.
class TYX_EXPORT TYXWSDecoration : public QWSDecoration {
public:
    QRegion region(const QWidget *window, const QRect &rect) const override;
    void paint(QPainter *painter, const QWidget *window) override;
};
