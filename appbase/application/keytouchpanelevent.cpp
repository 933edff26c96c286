#include "appbase/application/keytouchpanelevent.h"

#include "platform/window/qwsserver.h"

UTIL_KeyTouchPanelEvent *UTIL_KeyTouchPanelEvent::instance()
{
    static UTIL_KeyTouchPanelEvent theOne;
    return &theOne;
}

void UTIL_KeyTouchPanelEvent::key(int unicode, int keycode, int modifiers, bool isPress)
{
    QWSServer::sendKeyEvent(unicode, keycode, modifiers, isPress, false);
}

void UTIL_KeyTouchPanelEvent::keyClick(int unicode, int keycode, int modifiers)
{
    key(unicode, keycode, modifiers, true);
    key(unicode, keycode, modifiers, false);
}

void UTIL_KeyTouchPanelEvent::pen(const QPoint &position, Qt::MouseButtons buttons)
{
    QWSServer::sendMouseEvent(position, buttons);
}
