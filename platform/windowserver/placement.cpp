#include "platform/windowserver/placement.h"

#include <algorithm>

namespace {

// What does not fit keeps its beginning in sight: that is where titles and first entries are.
QRect keepInside(QRect rect, const QRect &area)
{
    rect.moveLeft(std::max(std::min(rect.left(), area.right() - rect.width() + 1), area.left()));
    rect.moveTop(std::max(std::min(rect.top(), area.bottom() - rect.height() + 1), area.top()));
    return rect;
}

QRect placeDialog(const Wishes &wishes, const QRect &area)
{
    QRect rect(wishes.wanted.topLeft(), wishes.wanted.size().boundedTo(area.size()));
    if (wishes.centred)
        rect.moveCenter(area.center());
    return keepInside(rect, area);
}

}

WindowKind kindOf(Qt::WindowFlags flags)
{
    switch ((flags & Qt::WindowType_Mask).toInt()) {
    case Qt::Popup:
        return WindowKind::Popup;
    case Qt::ToolTip:
        return WindowKind::ToolTip;
    case Qt::Dialog:
    case Qt::Sheet:
    case Qt::Drawer:
    case Qt::Tool:
    case Qt::SplashScreen:
        return WindowKind::Dialog;
    default:
        return flags & (Qt::FramelessWindowHint | Qt::BypassWindowManagerHint) ? WindowKind::Frameless
                                                                               : WindowKind::Main;
    }
}

QRect place(const Wishes &wishes, const Surroundings &surroundings)
{
    if (wishes.fullScreen)
        return surroundings.screen;
    switch (wishes.kind) {
    case WindowKind::Main:
        return surroundings.workArea;
    case WindowKind::Dialog:
        return placeDialog(wishes, surroundings.workArea);
    case WindowKind::Frameless:
    case WindowKind::Popup:
    case WindowKind::ToolTip:
        break;
    }
    return keepInside(wishes.wanted, surroundings.screen);
}
