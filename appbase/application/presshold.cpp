#include "appbase/application/presshold.h"

#include "appbase/application/animation.h"
#include "appbase/application/zapplication.h"

#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QTimerEvent>
#include <algorithm>

namespace {

// The press went down on the widget, so it has to come up there; outside, so that nothing is clicked.
void releaseOutside(QWidget &widget)
{
    const QPoint outside(-1, -1);
    QMouseEvent release(
        QEvent::MouseButtonRelease, outside, widget.mapToGlobal(outside), Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &release);
}

}

PressHoldLogic::Time PressHold::steadyClock()
{
    return std::chrono::duration_cast<PressHoldLogic::Time>(std::chrono::steady_clock::now().time_since_epoch());
}

bool PressHold::filter(QWidget &watched, QEvent &event)
{
    if (m_lettingGo)
        return false;
    switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        press(watched, static_cast<const QMouseEvent &>(event));
        return false;
    case QEvent::MouseMove: {
        const auto &mouse = static_cast<const QMouseEvent &>(event);
        return mouse.buttons() & Qt::LeftButton && act(m_logic.move(mouse.globalPosition().toPoint()));
    }
    case QEvent::MouseButtonRelease:
        return static_cast<const QMouseEvent &>(event).button() == Qt::LeftButton && act(m_logic.up());
    case QEvent::Hide:
    case QEvent::WindowDeactivate:
        if (&watched == m_widget)
            act(m_logic.interrupt());
        return false;
    default:
        return false;
    }
}

// A press that a widget ignores is offered to its parents, one after the other.
bool PressHold::isSamePress(const QWidget &watched, const QMouseEvent &mouse) const
{
    return m_widget && mouse.timestamp() == m_pressed && watched.isAncestorOf(m_widget);
}

void PressHold::press(QWidget &watched, const QMouseEvent &mouse)
{
    if (isSamePress(watched, mouse))
        return;
    if (mouse.button() != Qt::LeftButton) {
        act(m_logic.interrupt());
        return;
    }
    stop();
    if (ZApplication::mouseMode(&watched) != ZApplication::MouseMode::PressHold)
        return;
    m_widget = &watched;
    m_pressed = mouse.timestamp();
    m_widgetDies =
        QObject::connect(&watched, &QObject::destroyed, &m_timerReceiver, [this] { act(m_logic.interrupt()); });
    act(m_logic.down(mouse.globalPosition().toPoint(), m_clock()));
}

bool PressHold::timer(const QTimerEvent &event)
{
    if (event.timerId() != m_timer.timerId())
        return false;
    act(m_logic.elapse(m_clock()));
    return true;
}

void PressHold::stop()
{
    QObject::disconnect(m_widgetDies);
    m_widget = nullptr;
    m_logic = {};
    act(Action::Stop);
}

bool PressHold::act(Action action)
{
    if (const auto deadline = m_logic.deadline())
        m_timer.start(
            int(std::max(*deadline - m_clock(), PressHoldLogic::Time(0)).count()), Qt::PreciseTimer, &m_timerReceiver);
    else
        m_timer.stop();
    if (action == Action::Animate && m_widget) {
        QWidget &window = *m_widget->window();
        m_animation = new Animation(window, kPressHoldAnimation);
        m_animation->centreOn(window.mapFromGlobal(m_logic.position()));
    }
    if (action == Action::Stop || action == Action::Hold)
        Animation::dismiss(m_animation);
    if (action == Action::Hold)
        hold();
    return action == Action::Swallow;
}

// Either event may delete the widget, or run an event loop of its own.
void PressHold::hold()
{
    const QPointer<QWidget> widget = m_widget;
    const QPoint position = m_logic.position();
    if (!widget || !widget->isEnabled())
        return;
    {
        const QScopedValueRollback lettingGo(m_lettingGo, true);
        releaseOutside(*widget);
    }
    if (!widget || !widget->isVisible())
        return;
    QContextMenuEvent menu(QContextMenuEvent::Mouse, widget->mapFromGlobal(position), position);
    QCoreApplication::sendEvent(widget, &menu);
}

void ZApplication::setMouseMode(QWidget *widget, MouseMode mode)
{
    if (widget)
        widget->setProperty("_tyx_mouseMode", int(mode));
}

ZApplication::MouseMode ZApplication::mouseMode(const QWidget *widget)
{
    while (widget) {
        const auto mode = MouseMode(widget->property("_tyx_mouseMode").toInt());
        if (mode != MouseMode::Inherit)
            return mode;
        widget = widget->isWindow() ? nullptr : widget->parentWidget();
    }
    return MouseMode::Plain;
}
