// One window of a client, seen from the server.
#pragma once

#include "platform/tyxexport.h"

#include <QRect>
#include <QString>
#include <sys/types.h>

// Owned by the window server; a pointer is valid until QWSServer announced QWSServer::Destroy for it. A window keeps
// its object and its identifier while it is hidden.
class TYX_EXPORT QWSWindow {
public:
    QWSWindow() = default;
    QWSWindow(const QWSWindow &) = delete;
    QWSWindow &operator=(const QWSWindow &) = delete;
    virtual ~QWSWindow();

    // What the window is and shows now.
    [[nodiscard]] virtual int winId() const = 0; // the same number that QWSApplication::windowId() gives in the client
    [[nodiscard]] virtual pid_t clientPid() const = 0;
    [[nodiscard]] virtual QString name() const = 0; // object name of the client's widget, else the program's
    [[nodiscard]] virtual QString caption() const = 0;
    [[nodiscard]] virtual QRect geometry() const = 0; // on the screen; where it was last while hidden
    [[nodiscard]] virtual bool isVisible() const = 0;
    [[nodiscard]] virtual bool isActive() const = 0; // has the keyboard focus
    [[nodiscard]] virtual bool isFullScreen() const = 0;
    [[nodiscard]] virtual bool isPopup() const = 0; // menus, lists of combo boxes, tool tips

    // On a hidden window these five do nothing.
    virtual void raise() = 0; // to the front, with the dialogs of its client above it; takes the focus
    virtual void lower() = 0; // behind everything; the focus goes to what is in front then
    virtual void setActiveWindow() = 0; // the focus alone, whatever lies above it
    virtual void stackUnder(QWSWindow *above) = 0; // directly behind `above`; focus stays where it is
    virtual void close() = 0; // asks the client, which may decline
};

// What a client wants shown under the pointer. A touch panel shows nothing; a development display may.
class TYX_EXPORT QWSCursor {
public:
    // With the hot spot of the picture; the picture itself stays with the server.
    explicit QWSCursor(QPoint spot) : hotSpot(spot) { }

    QPoint hotSpot; // the pixel of the picture that points, from its top left
};
