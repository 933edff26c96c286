// Makes room for the frames that the application's decoration paints, inside the windows themselves.
#pragma once

#include <QEvent>

class QWidget;
class QWSDecoration;

namespace windowframe {

// To be called when `event` has been handled by `window`. A window with a layout gets the frame's width as contents
// margins, in addition to its own, before it is first laid out and whenever its title or flags change; and the frame is
// painted when the window has painted itself. In a window without a layout nobody knows what may move: it has no frame.
void followEvent(QWSDecoration &decoration, QWidget &window, const QEvent &event);

}
