#include "platform/window/qwskeyboardhandler.h"

#include "platform/window/qwsserver.h"

QWSKeyboardHandler::QWSKeyboardHandler(QObject *parent) : QObject(parent) { }

QWSKeyboardHandler::~QWSKeyboardHandler() = default;

void QWSKeyboardHandler::processKeyEvent(int unicode, int keycode, int modifiers, bool isPress, bool autoRepeat)
{
    QWSServer::sendKeyEvent(unicode, keycode, modifiers, isPress, autoRepeat);
}
