// Brings keys and pointer to where they belong, and makes held keys repeat.
#pragma once

#include "platform/window/windowserverbackend.h"
#include "platform/windowserver/draganddrop.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <optional>

class ClientWindow;
class KeyExtension;
class QKeyEvent;
class QWaylandOutput;
class QWaylandSeat;
class QWaylandSurface;
class Scene;

class Input : public QObject {
    Q_OBJECT

public:
    Input(Scene &scene, KeyExtension &keys, QWaylandSeat &seat, QWaylandOutput *output, QWidget *screen);
    ~Input() override;

    void watchRepeat(const KeyStroke &stroke);
    void sendKey(const KeyStroke &stroke);
    void sendPointer(const PointerState &state);
    void setRepeat(int delay, int interval);
    void setEnabled(bool on);

    // Sees what comes from the screen's own keyboard and pointer (a development display, a remote one).
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void follow(ClientWindow *window);
    void deliver(const KeyStroke &stroke);
    void deliverTo(QWaylandSurface *surface, const QKeyEvent &event);
    QWidget *serverWidgetWithFocus() const;
    void repeat();
    bool ownKey(const QKeyEvent &event);
    void ownPress(const QPoint &position);

    Scene &m_scene;
    KeyExtension &m_keys;
    QWaylandSeat &m_seat;
    QWidget *m_screen;
    DragAndDrop m_drag;
    bool m_enabled = true;
    PointerState m_pointer{};
    QHash<int, QPointer<QWaylandSurface>> m_holders; // who got the press of a key gets its release
    int m_repeatDelay = 500;
    int m_repeatInterval = 50;
    bool m_repeating = false; // the stroke at hand is one of our own repeats
    std::optional<KeyStroke> m_held;
    QTimer m_repeatTimer;
};
