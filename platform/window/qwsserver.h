// The window server: the phone's screen, its windows, and the way of keys and pointer to them.
#pragma once

#include "platform/tyxexport.h"
#include "platform/window/qwswindow.h"

#include <QImage>
#include <QList>
#include <QObject>
#include <memory>

class WindowServerBackend;

// One object in the GUI server's process, made by QWSApplication before its constructor returns and destroyed with it.
// GUI thread only.
class TYX_EXPORT QWSServer : public QObject {
    Q_OBJECT

public:
    // What happened to a window; one of these at a time.
    enum WindowEvent {
        Create = 0x0001, // nothing is shown yet
        Destroy = 0x0002, // the QWSWindow dies when the signal's slots have returned
        Hide = 0x0004, // it may be shown again
        Show = 0x0008,
        Raise = 0x0010, // it is in front, with its dialogs; not told when it is shown
        Lower = 0x0020, // it is behind others, by lower() or stackUnder()
        Geometry = 0x0040, // moved or resized
        Active = 0x0080, // got the focus
        Name = 0x0100 // name or caption changed
    };
    Q_ENUM(WindowEvent)

    // Sees every key before it is delivered.
    class TYX_EXPORT KeyboardFilter {
    public:
        KeyboardFilter() = default;
        KeyboardFilter(const KeyboardFilter &) = delete;
        KeyboardFilter &operator=(const KeyboardFilter &) = delete;
        virtual ~KeyboardFilter(); // takes the filter out when it is the installed one

        // True swallows the key. The arguments are those of QWSServer::sendKeyEvent().
        virtual bool filter(int unicode, int keycode, int modifiers, bool isPress, bool autoRepeat) = 0;
    };

    ~QWSServer() override;

    static QWSServer *instance(); // null in every process but the GUI server's

    // One filter at a time; null takes it out. The caller keeps it.
    static void setKeyboardFilter(KeyboardFilter *filter);

    // A key for the window with the focus (a server widget that took the focus itself comes first). `unicode` is 0 or
    // 0xFFFF when only the key code is known; the server then supplies the text. `modifiers` are Qt::KeyboardModifiers.
    // A held key that types or moves repeats by itself until its release, unless its driver sends the repeats
    // (`autoRepeat`). Does nothing without a server.
    static void sendKeyEvent(int unicode, int keycode, int modifiers, bool isPress, bool autoRepeat);

    // How a held key repeats, in milliseconds: first after `delay`, then every `interval`. 0 as delay: never.
    static void setKeyRepeat(int delay, int interval);

    // The pointer at `position` on the screen with `buttons` down; `wheel` in eighths of a degree, positive away from
    // the user. The window under a press gets everything up to the last release.
    static void sendMouseEvent(const QPoint &position, Qt::MouseButtons buttons, int wheel = 0);

    // While off, no key and no pointer event reaches any window (the keyboard filter still sees keys). On at start.
    static void setInputEnabled(bool on);
    static bool isInputEnabled(); // false without a server

    // Keys and clicks that wait until the application with the focus reads what came before. Who sends many at once
    // waits for 0 now and then: an application that leaves 2000 waiting is taken for dead and disconnected.
    [[nodiscard]] int pendingInput() const;

    [[nodiscard]] QList<QWSWindow *> clientWindows() const; // the visible ones, front first, then the hidden ones
    [[nodiscard]] QWSWindow *window(int winId) const; // null when there is none
    [[nodiscard]] QWSWindow *activeWindow() const; // null when no window has the focus

    // Where main windows and dialogs go: the screen less what the server's own bars take. Changing it moves them.
    [[nodiscard]] QRect workArea() const;
    void setWorkArea(const QRect &area); // cut to the screen; an empty area is ignored

    // The server's own widgets (status bar, input widget) are children of this one. They lie above the applications'
    // windows, except that a full-screen window in front covers them; pop-ups lie above all.
    [[nodiscard]] QWidget *screenWidget() const;

    [[nodiscard]] QImage grabScreen() const; // everything that is shown now, pop-ups included

    [[nodiscard]] QString socketPath() const; // where clients connect: "tyx-screen-0" in the runtime directory

Q_SIGNALS:
    // The windows of clients alone: the server's own widgets have no QWSWindow. Never null.
    void windowEvent(QWSWindow *window, QWSServer::WindowEvent event);
    // Every key that the filter let pass, before it is delivered; also while input is off. As of sendKeyEvent().
    void keySent(int unicode, int keycode, int modifiers, bool isPress, bool autoRepeat);
    void cursorSelected(QWSCursor *cursor); // null: the client hides it; valid during the signal only

private:
    friend class QWSApplication;
    QWSServer(std::unique_ptr<WindowServerBackend> backend, QSize screen);

    std::unique_ptr<WindowServerBackend> m_backend;
    bool m_inputEnabled = true;
};
