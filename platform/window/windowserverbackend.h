// What the shared library and the compositor module know of each other.
//
// The compositor's libraries would cost every process 6 ms and 10 MiB, so they are linked by a module that only the
// server loads. Everything the module does for QWSServer passes through this class; the module itself calls
// QWSServer::instance() and emits its signals.
#pragma once

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QPoint>
#include <QRect>
#include <Qt>

class QWSServer;
class QWSWindow;
class QWidget;

struct KeyStroke {
    int unicode;
    int keycode;
    int modifiers;
    bool isPress;
    bool autoRepeat;
};

struct PointerState {
    QPoint position;
    Qt::MouseButtons buttons;
    int wheel = 0;
};

class WindowServerBackend {
public:
    WindowServerBackend() = default;
    WindowServerBackend(const WindowServerBackend &) = delete;
    WindowServerBackend &operator=(const WindowServerBackend &) = delete;
    virtual ~WindowServerBackend() = default; // disconnects the clients and removes the socket

    // Called once, right after construction. `socketName` is relative to the runtime directory and free to be taken.
    virtual void start(QWSServer &server, const QByteArray &socketName, QSize screen) = 0;

    // Of each key, before a filter may take it: a held key repeats for the filter as well.
    virtual void watchRepeat(const KeyStroke &stroke) = 0;
    virtual void sendKey(const KeyStroke &stroke) = 0;
    virtual void setKeyRepeat(int delay, int interval) = 0;
    virtual void sendPointer(const PointerState &state) = 0;
    virtual void setInputEnabled(bool on) = 0;
    [[nodiscard]] virtual int pendingInput() const = 0; // events that wait until the client with the focus reads

    [[nodiscard]] virtual QList<QWSWindow *> windows() const = 0; // the visible ones, front first, then the hidden ones
    [[nodiscard]] virtual QRect workArea() const = 0;
    virtual void setWorkArea(const QRect &area) = 0;
    [[nodiscard]] virtual QWidget *screen() const = 0;
    [[nodiscard]] virtual QImage grab() const = 0;
};

// A widget of the server with this property (true) shows a client's window: what the pen does there is the client's.
inline constexpr char kClientSurface[] = "_tyx_clientSurface";

// The module's one entry point. Library and module call each other through classes that differ from version to version,
// so the build puts the version into its name, TYX_WINDOW_SERVER_ENTRY: one of another version is not found.
using CreateWindowServer = WindowServerBackend *(*)();
