// What the application object does with keys and pen before its widgets see them.
#pragma once

#include "appbase/application/hardkeys.h"
#include "appbase/application/presshold.h"
#include "appbase/application/touchsound.h"
#include "appbase/application/waitingcursor.h"

class QEvent;
class QKeyEvent;
class QMouseEvent;
class QObject;
class QTimerEvent;
class ZApplication;

// Belongs to the application object. GUI thread only.
class InputFilters {
public:
    explicit InputFilters(ZApplication &application);
    InputFilters(const InputFilters &) = delete;
    InputFilters &operator=(const InputFilters &) = delete;

    // Every event of every object in the process comes by here; true swallows it.
    bool filter(QObject &watched, QEvent &event);
    bool timer(const QTimerEvent &event) { return m_pressHold.timer(event); } // false: it belongs to somebody else
    void stop(); // nothing is shown any more and no time counts

    void enableHardKeys(bool on) { m_hardKeysEnabled = on; }
    HardKeys &hardKeys() { return m_hardKeys; }
    WaitingCursor &waitingCursor() { return m_waitingCursor; }
    TouchSound &touchSound() { return m_touchSound; }

private:
    bool filterKey(QKeyEvent &event);
    bool filterWidget(QWidget &watched, QEvent &event);

    ZApplication &m_application;
    bool m_hardKeysEnabled = false;
    HardKeys m_hardKeys;
    PressHold m_pressHold;
    WaitingCursor m_waitingCursor;
    TouchSound m_touchSound;
};
