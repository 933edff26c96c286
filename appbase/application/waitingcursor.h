// The sign that an application is busy, in the middle of its active window.
#pragma once

#include <QPointer>

class Animation;

// One in the application object. Shown while there were more calls of show() than of hide(); it follows the active
// window, and without one appears with the next.
class WaitingCursor {
public:
    void show();
    void hide(); // one too many is ignored
    void clear(); // whatever was shown is gone

    void follow(); // the active window is another one, or has another size

private:
    int m_depth = 0;
    QPointer<Animation> m_animation; // belongs to the window that it is in
};
