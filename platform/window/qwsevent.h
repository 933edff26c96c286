// What reaches a process from the screen, as an application sees it before any widget does.
#pragma once

#include "platform/tyxexport.h"

#include <QPoint>
#include <QString>
#include <Qt>

class QWSKeyEvent;
class QWSMouseEvent;
class QWSFocusEvent;

// Handed to QWSApplication::qwsEventFilter(); lives only as long as that call.
class TYX_EXPORT QWSEvent {
public:
    // Which of the three classes below it is.
    enum Type { Key, Mouse, Focus };

    virtual ~QWSEvent();
    QWSEvent(const QWSEvent &) = delete;
    QWSEvent &operator=(const QWSEvent &) = delete;

    [[nodiscard]] Type type() const { return m_type; } // what asKey() and the others tell with the event itself
    [[nodiscard]] int window() const { return m_window; } // the identifier of the window; 0 when it has none

    // This event as what it is; null when it is something else.
    [[nodiscard]] const QWSKeyEvent *asKey() const;
    [[nodiscard]] const QWSMouseEvent *asMouse() const;
    [[nodiscard]] const QWSFocusEvent *asFocus() const;

protected:
    // `window` as window() answers it; so in the classes below.
    QWSEvent(Type type, int window) : m_type(type), m_window(window) { }

private:
    Type m_type;
    int m_window;
};

// A key went down or up, or repeats.
class TYX_EXPORT QWSKeyEvent : public QWSEvent {
public:
    explicit QWSKeyEvent(int window) : QWSEvent(Key, window) { } // of no key: whoever makes one fills it in
    int keycode = 0; // Qt::Key
    Qt::KeyboardModifiers modifiers; // that are held with it
    QString text; // what the key types; empty for keys that type nothing
    bool isPress = false; // false: the key came up
    bool isAutoRepeat = false; // it was down before, and still is
};

// The pointer moved, or a button went down or up.
class TYX_EXPORT QWSMouseEvent : public QWSEvent {
public:
    explicit QWSMouseEvent(int window) : QWSEvent(Mouse, window) { } // no button, at the top left of the screen
    QPoint position; // on the screen
    Qt::MouseButtons state; // the buttons that are down after the event
};

// The window got the keyboard focus or lost it.
class TYX_EXPORT QWSFocusEvent : public QWSEvent {
public:
    // `gained` becomes gotFocus.
    QWSFocusEvent(int window, bool gained) : QWSEvent(Focus, window), gotFocus(gained) { }

    bool gotFocus; // false: lost it
};
