// The application object's base: one in every process that shows something, and in the GUI server.
#pragma once

#include "platform/tyxexport.h"
#include "platform/window/qwsevent.h"

#include <QApplication>
#include <QPointer>
#include <memory>

class QWSApplicationData;
class QWSDecoration;

// A client connects to the phone's screen (socket "tyx-screen-0" in the runtime directory); a server becomes the
// screen.
//
// A client's destructor does not return when exec() has returned before: it ends the process with exec()'s result, as
// its last act. Objects made after the application object are destroyed by then; those made before it (and statics) are
// not.
class TYX_EXPORT QWSApplication : public QApplication {
    Q_OBJECT

public:
    // What the process is to the phone's screen.
    enum Type {
        Tty, // no screen at all; widgets may be made, nobody sees them
        GuiClient, // its windows are on the screen that the server has
        GuiServer // the one process that makes the screen
    };

    // A server takes "--platform offscreen|xcb|vnc|linuxfb" and "--size WIDTHxHEIGHT" out of the arguments; a client
    // started with "-platform NAME" runs without the phone's screen. What cannot be started ends the process: one line
    // on standard error and exit status 1 (no screen, a second server), or 2 (wrong arguments).
    QWSApplication(int &argc, char **argv, Type type = GuiClient);
    ~QWSApplication() override;

    // Null when the process has no application object, or one of another class.
    static QWSApplication *instance() { return qobject_cast<QWSApplication *>(QCoreApplication::instance()); }
    static Type type(); // of the one application object; Tty when there is none

    static int exec(); // QApplication::exec(), whose result the destructor remembers

    [[nodiscard]] QWidget *mainWidget() const; // null when none was set or it is gone

    // The window whose closing ends the application.
    virtual void setMainWidget(QWidget *widget);

    // Sees keys, pointer and focus of this process before its widgets; true swallows the event. The base passes all.
    virtual bool qwsEventFilter(QWSEvent *event);

    // Takes ownership; null brings back the base class, which has no frames.
    static void qwsSetDecoration(QWSDecoration *decoration);
    static QWSDecoration &qwsDecoration();

    // The identifier of the widget's window, unique on the whole phone and the same over hiding and showing. 0 in a
    // process that is no client, and for a widget whose window was never shown.
    static int windowId(const QWidget *widget);

    bool notify(QObject *receiver, QEvent *event) override;

private:
    void startServer();

    std::unique_ptr<QWSApplicationData> d;
};
