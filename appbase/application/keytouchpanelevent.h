// Keys and pen for the phone from within the GUI server: what tools and tests ask for goes the way of the devices.
#pragma once

#include "platform/tyxexport.h"

#include <QPoint>
#include <Qt>

// One object; without a window server it does nothing. GUI thread only.
class TYX_EXPORT UTIL_KeyTouchPanelEvent { // name fixed
public:
    static UTIL_KeyTouchPanelEvent *instance(); // never null, in any process

    // As QWSServer::sendKeyEvent(): `unicode` is 0 when the key code says it all, `modifiers` are
    // Qt::KeyboardModifiers.
    void key(int unicode, int keycode, int modifiers, bool isPress);
    void keyClick(int unicode, int keycode, int modifiers); // down and up

    // The pen at a place on the screen; it touches the screen while the left button is down.
    void pen(const QPoint &position, Qt::MouseButtons buttons);

    UTIL_KeyTouchPanelEvent(const UTIL_KeyTouchPanelEvent &) = delete;
    UTIL_KeyTouchPanelEvent &operator=(const UTIL_KeyTouchPanelEvent &) = delete;

private:
    UTIL_KeyTouchPanelEvent() = default;
};
