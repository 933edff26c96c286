// Tells test programs what keys and pen events the phone got.
#pragma once

#include <QObject>

// In the GUI server of a phone under test (platform::isFlexBitSet()). Sends on the channel "TYX/TestCapture", whoever
// the event came from and as long as input is enabled:
//   key(int,int,int,bool,bool)   unicode, key code, modifiers, pressed, repeated; as it reached the server
//   pen(int,int,int)             x and y on the screen, Qt::MouseButtons that are down now
class QTestCaptureHandler : public QObject { // name fixed
    Q_OBJECT

public:
    explicit QTestCaptureHandler(QObject *parent);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void key(int unicode, int keycode, int modifiers, bool isPress, bool autoRepeat);
};
