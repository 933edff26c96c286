// Press and hold: a pen that stays where it went down opens the context menu of a widget that wants it.
#pragma once

#include "appbase/application/pressholdlogic.h"

#include <QBasicTimer>
#include <QPointer>
#include <QWidget>

class Animation;
class QMouseEvent;
class QTimerEvent;

// Between the toolkit's events and the logic that decides. One in the application object.
class PressHold {
public:
    using Clock = PressHoldLogic::Time (*)();
    static PressHoldLogic::Time steadyClock();

    explicit PressHold(QObject &timerReceiver, Clock clock = &steadyClock)
        : m_timerReceiver(timerReceiver), m_clock(clock)
    {
    }
    ~PressHold() { stop(); }
    PressHold(const PressHold &) = delete;
    PressHold &operator=(const PressHold &) = delete;

    bool filter(QWidget &watched, QEvent &event); // true swallows it
    bool timer(const QTimerEvent &event); // false: it belongs to somebody else
    void stop(); // as if the pen had not gone down

private:
    using Action = PressHoldLogic::Action;

    void press(QWidget &watched, const QMouseEvent &mouse);
    bool act(Action action); // true when it is Swallow
    void hold();
    bool isSamePress(const QWidget &watched, const QMouseEvent &mouse) const;

    QObject &m_timerReceiver;
    Clock m_clock;
    QBasicTimer m_timer;
    PressHoldLogic m_logic;
    QPointer<QWidget> m_widget; // under the pen when it went down
    QMetaObject::Connection m_widgetDies;
    QPointer<Animation> m_animation;
    quint64 m_pressed = 0; // timestamp of the event
    bool m_lettingGo = false;
};
