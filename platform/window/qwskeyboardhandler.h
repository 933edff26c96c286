// Base of the server's keyboard drivers: they read a device and hand its keys to the window server.
#pragma once

#include "platform/tyxexport.h"

#include <QObject>

// A driver derives from it and calls processKeyEvent(); the GUI server makes and owns it. GUI thread only.
class TYX_EXPORT QWSKeyboardHandler : public QObject {
    Q_OBJECT

public:
    explicit QWSKeyboardHandler(QObject *parent = nullptr); // opens nothing: that is for who derives from it
    ~QWSKeyboardHandler() override;

    // One key on its way to the window with the focus. `unicode` is 0 or 0xFFFF when only the key code is known: the
    // server then supplies the text. `modifiers` are Qt::KeyboardModifiers. Without a window server the key is lost.
    virtual void processKeyEvent(int unicode, int keycode, int modifiers, bool isPress, bool autoRepeat);
};
