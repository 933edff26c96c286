#include "platform/windowserver/input.h"

#include "platform/window/qwsserver.h"
#include "platform/windowserver/clientbacklog.h"
#include "platform/windowserver/clientwindow.h"
#include "platform/windowserver/keyextension.h"
#include "platform/windowserver/keytext.h"
#include "platform/windowserver/scene.h"
#include "platform/windowserver/surfaceview.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QWaylandCompositor>
#include <QWaylandSeat>
#include <QWaylandSurface>
#include <QWindow>
#include <memory>
#include <qpa/qwindowsysteminterface.h>

Input::Input(Scene &scene, KeyExtension &keys, QWaylandSeat &seat, QWaylandOutput *output, QWidget *screen)
    : m_scene(scene)
    , m_keys(keys)
    , m_seat(seat)
    , m_screen(screen)
    , m_drag(seat.compositor()->display(), seat, output, screen)
{
    connect(&scene, &Scene::activeChanged, this, &Input::follow);
    connect(&m_repeatTimer, &QTimer::timeout, this, &Input::repeat);
    screen->windowHandle()->installEventFilter(this);
}

Input::~Input() = default;

void Input::follow(ClientWindow *window)
{
    m_held.reset();
    m_repeatTimer.stop();
    m_seat.setKeyboardFocus(window ? window->surface() : nullptr);
    if (window && window->surface())
        flushClient(*window->surface());
    if (window)
        m_screen->setFocus(); // from a widget of the server, which had the keys before
}

void Input::setEnabled(bool on)
{
    if (!on) {
        // Pen and keys will go up unseen.
        m_drag.cancel();
        if (m_pointer.buttons) {
            sendPointer({m_pointer.position, Qt::NoButton, 0});
            QWindowSystemInterface::flushWindowSystemEvents(); // before nothing gets through any more
        }
        for (const int code : m_holders.keys())
            deliver({0, code, 0, false, false});
    }
    m_enabled = on;
    m_held.reset();
    m_repeatTimer.stop();
}

void Input::setRepeat(int delay, int interval)
{
    m_repeatDelay = std::max(0, delay);
    m_repeatInterval = std::max(1, interval);
    if (m_repeatDelay == 0)
        m_repeatTimer.stop();
}

void Input::sendKey(const KeyStroke &stroke)
{
    if (m_enabled)
        deliver(stroke);
}

// One key at a time repeats: the one pressed last. A driver that sends repeats of its own has the say.
void Input::watchRepeat(const KeyStroke &stroke)
{
    if (!m_enabled || m_repeating)
        return;
    // A key may come up under another name than it went down: with Shift let go before it, "!" becomes "1".
    const int code = keyCode(stroke);
    const bool isModifier = code >= Qt::Key_Shift && code <= Qt::Key_ScrollLock;
    const bool sameKey = m_held && keyCode(*m_held) == code;
    const bool renamed = !m_holders.contains(code) && !isModifier;
    if (stroke.isPress || sameKey || renamed) {
        m_held.reset();
        m_repeatTimer.stop();
    }
    if (stroke.isPress && !stroke.autoRepeat && m_repeatDelay > 0 && repeats(stroke)) {
        m_held = stroke;
        m_repeatTimer.start(m_repeatDelay);
    }
}

void Input::repeat()
{
    m_repeatTimer.setInterval(m_repeatInterval);
    const KeyStroke stroke = *m_held; // NOLINT(bugprone-unchecked-optional-access): the timer runs while one is held
    const QScopedValueRollback repeating(m_repeating, true);
    QWSServer::sendKeyEvent(stroke.unicode, stroke.keycode, stroke.modifiers, true, true); // filters see repeats too
}

void Input::deliver(const KeyStroke &stroke)
{
    const int code = keyCode(stroke);
    QKeyEvent event(stroke.isPress ? QEvent::KeyPress : QEvent::KeyRelease, code,
        Qt::KeyboardModifiers::fromInt(stroke.modifiers), keyText(stroke), stroke.autoRepeat);
    if (!stroke.isPress && m_holders.contains(code)) {
        if (const QPointer<QWaylandSurface> holder = m_holders.take(code))
            deliverTo(holder, event);
        return;
    }
    if (QWidget *own = serverWidgetWithFocus()) {
        QCoreApplication::sendEvent(own, &event);
        return;
    }
    ClientWindow *active = m_scene.activeWindow();
    const QPointer<QWaylandSurface> target = active ? active->surface() : nullptr;
    if (!target)
        return;
    if (stroke.isPress)
        m_holders.insert(code, target);
    deliverTo(target, event);
}

void Input::deliverTo(QWaylandSurface *surface, const QKeyEvent &event)
{
    const std::shared_ptr<QKeyEvent> copy(event.clone());
    ClientBacklog::deliver(*surface, surface, ClientBacklog::Event::Needed, [this, surface, copy] {
        if (!m_keys.send(surface, *copy) && surface == m_seat.keyboardFocus())
            m_seat.sendKeyEvent(copy->key(), copy->type() == QEvent::KeyPress); // a client of another toolkit
    });
}

// The server's menus, and widgets of its own that were given the focus, come before the clients.
QWidget *Input::serverWidgetWithFocus() const
{
    if (QWidget *popup = QApplication::activePopupWidget())
        return popup->focusWidget() ? popup->focusWidget() : popup;
    QWidget *focus = QApplication::focusWidget();
    return focus && focus != m_screen && !qobject_cast<SurfaceView *>(focus) ? focus : nullptr;
}

void Input::sendPointer(const PointerState &state)
{
    if (!m_enabled)
        return;
    using System = QWindowSystemInterface;
    const QPointF global = m_screen->mapToGlobal(state.position);
    const QPointF local = state.position;
    const auto send = [&](Qt::MouseButton button, QEvent::Type type) {
        System::handleMouseEvent<System::SynchronousDelivery>(
            nullptr, local, global, m_pointer.buttons, button, type, Qt::NoModifier);
    };
    if (state.position != m_pointer.position)
        send(Qt::NoButton, QEvent::MouseMove);
    m_pointer.position = state.position;
    const auto changed = state.buttons ^ m_pointer.buttons;
    for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton}) {
        if (!(changed & button))
            continue;
        m_pointer.buttons ^= button;
        send(button, m_pointer.buttons & button ? QEvent::MouseButtonPress : QEvent::MouseButtonRelease);
    }
    if (state.wheel != 0)
        System::handleWheelEvent(
            m_screen->windowHandle(), local, global, QPoint(), QPoint(0, state.wheel), Qt::NoModifier);
}

bool Input::eventFilter(QObject *, QEvent *event)
{
    if (event->isInputEvent() && !m_enabled)
        return true;
    switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        return ownKey(static_cast<const QKeyEvent &>(*event));
    case QEvent::MouseButtonPress:
        ownPress(static_cast<const QMouseEvent &>(*event).position().toPoint());
        return false;
    case QEvent::MouseMove:
        return m_drag.move(static_cast<const QMouseEvent &>(*event).position().toPoint());
    case QEvent::MouseButtonRelease:
        m_drag.drop();
        return false;
    default:
        return false;
    }
}

bool Input::ownKey(const QKeyEvent &event)
{
    const bool isPress = event.type() == QEvent::KeyPress;
    if (serverWidgetWithFocus() && (isPress || !m_holders.contains(event.key())))
        return false; // the toolkit brings it there
    const QList<uint> characters = event.text().toUcs4();
    const int unicode = characters.isEmpty() ? 0 : static_cast<int>(characters.first());
    if (!isPress && event.isAutoRepeat())
        return true; // a display repeats as pairs; on a phone only the presses repeat
    QWSServer::sendKeyEvent(unicode, event.key(), event.modifiers().toInt(), isPress, event.isAutoRepeat());
    return true;
}

void Input::ownPress(const QPoint &position)
{
    if (!qobject_cast<SurfaceView *>(m_screen->childAt(position)))
        m_scene.closePopups(nullptr);
}
