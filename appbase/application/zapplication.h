// The application object of every program with a screen: its place on the phone, its messages, its language.
#pragma once

#include "platform/tyxexport.h"
#include "platform/values/qcstring.h"
#include "platform/window/qwsapplication.h"

#include <QUuid>
#include <memory>

class QKeyEvent;
class ZApplicationData;

// A process makes exactly one, before any widget. Its constructor connects the process to the phone: it opens the
// channels "TYX/System" and "TYX/Application/" plus the program's name (the GUI server also "TYX/QtServer"), publishes
// the paths of the theme in the environment, applies style, palette, fonts and text size, loads the translations, and
// opens the channel of the process. From then on messages arrive from the event loop and come out as the signals below.
//
// See QWSApplication for how a process without a screen to connect to ends, and for the order of destruction.
class TYX_EXPORT ZApplication : public QWSApplication {
    Q_OBJECT

public:
    // What can be ordered about the windows of an application; pop-ups are left alone. The numbers travel in messages.
    enum WindowOperation {
        RaiseWindows = 1, // to the front, in their order; the frontmost gets the focus
        LowerWindows = 2, // behind those of all others, in their order
        FocusWindows = 3, // the frontmost gets the focus, wherever it lies
        HideWindows = 4, // until they are shown again; a dialog goes on waiting for its answer
        ShowWindows = 5, // what HideWindows hid, and the main widget
        CloseWindows = 6 // as if the user closed them; the application may decline
    };
    Q_ENUM(WindowOperation)

    // Takes what it knows out of the arguments, which must live as long as the object.
    ZApplication(int &argc, char **argv, Type type = GuiClient);

    // The order of the virtual functions is fixed: programs built against an older library call them by their place.
    ~ZApplication() override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    void setMainWidget(QWidget *widget) override;
    bool qwsEventFilter(QWSEvent *event) override;

    // Gives the text of a key's press to the widget with the focus as an input method would, and so to any editor. For
    // an application whose qwsEventFilter() has swallowed the key and wants its text typed all the same.
    virtual void insertStr(QWSEvent *event);

    // Lets pending events pass and quits. Tells nobody.
    virtual void tryQuit();

    // Sees every press and release that a widget is to get, while the filter is enabled; true swallows it. Here: the
    // keys for calls, launcher and volume are reported to the programs in charge, once each, and no widget gets them.
    virtual bool hardKeyEventFilter(QKeyEvent *event);

    void enableHardKeyEventFilter(bool on); // on at the end of the constructor

    // What a pen does that stays where it went down on a widget for a second.
    enum class MouseMode {
        Inherit, // as the parent widget has it; for a window: Plain
        Plain, // nothing more
        PressHold // the widget gets a QContextMenuEvent, and the pen clicks nothing when it comes up
    };
    static void setMouseMode(QWidget *widget, MouseMode mode); // Inherit at first
    [[nodiscard]] static MouseMode mouseMode(const QWidget *widget); // Plain or PressHold

    // The sign that the application is busy, in the middle of its active window: there from the first call of the one
    // to as many calls of the other. It turns as long as the event loop runs, and stands still while it does not.
    void showWaitingCursor();
    void hideWaitingCursor();

    // Null when the process has no application object, or one of another class.
    static ZApplication *instance() { return qobject_cast<ZApplication *>(QCoreApplication::instance()); }

    // The program's name without its folder: the last part of its channel "TYX/Application/" + name.
    [[nodiscard]] QString name() const;

    // The code of the language that was set when this process last looked ("de-de"); "en-us" when none is.
    [[nodiscard]] QString language() const;

    // What the messages of the same names on "TYX/System" do, and the start. Everything is read afresh; what cannot be
    // used falls back on what the library brings with it.
    void applyStyle();
    void initPalette();
    void applyPalette();
    void loadTYXFonts();
    void initTextSize();
    void changeTextSize();

    // Puts "NAME=value" into the environment of this process, also over an old value. Anything else changes nothing.
    static void setEnv(const QString &nameAndValue);

    // Reads the language and loads its translations from the folder in TYX_RES_STRING_PATH: those of `name` (an
    // application's) and those of the library. What an earlier call loaded is removed first. False when there is
    // no translation for `name`; its texts are shown as they are then.
    bool loadString(const QString &name);

    // Tells the GUI server that text can be typed into the widget, until it is destroyed or taken back. Answers the
    // editor's identifier, which is unique on the phone and stands in all messages about it: the same one when the
    // widget is registered already, 0 when the process has 511 editors. The server learns of the widget's window when
    // it is shown there.
    int registerEditor(QWidget *editor);
    void unregisterEditor(QWidget *editor); // does nothing for a widget that is not registered
    [[nodiscard]] QWidget *editor(int id) const; // of this process; null when there is none

    // Asks the GUI server to do something with the windows of an application, by the name of its program; see
    // WindowOperation. What it does not know is ignored.
    static void manipulateAppWindows(int operation, const QString &application);

public Q_SLOTS:
    virtual void slotShutdown(); // "shutdown()": emits shutdown(), lets pending events pass, quits
    virtual void slotQuickQuit(); // "quickQuit()": emits quickQuit(), lets pending events pass, quits
    virtual void slotUsbStorageInOut(bool enabled); // does nothing here
    virtual void slotClickAppIcon(); // does nothing here
    virtual void slotRaise(); // brings the main widget to the front

Q_SIGNALS:
    // Messages of the phone and of other programs; docs/messages.md tells which signal comes of which message.
    void shutdown();
    void quickQuit();
    void clickAppIcon();
    void usbStorageInOut(bool enabled);
    void signalRaise();
    void signalOpenDoc(const QString &document);
    void signalCmdLine(const QString &commandLine);
    // Messages that another process sends through this one's channel for the application to understand.
    void signalBridgeMessage(const QCString &message, const QByteArray &data);
    void signalBridgeMessage(const QByteArray &arguments); // of "bridgeMessage2", not taken apart
    void signalBridgeMessageWithoutRaise(const QCString &message, const QByteArray &data);
    void signalMasterClear();
    void signalMasterReset();
    void signalAppLaunched(int application);
    void signalHomeKeyClicked();
    // The input widget of the input method covers `height` pixels at the bottom of the screen (0 when it is hidden).
    void kbStateChanged(bool shown, const QUuid &method, int height);
    // What "TYX/System" and the application's channel carry that the library does not handle itself; appMessage() also
    // what it did handle of the input widget and of windows.
    void systemMessage(const QCString &message, const QByteArray &arguments);
    void appMessage(const QCString &message, const QByteArray &arguments);

private:
    friend class ZApplicationData;
    friend class ZGlobal;
    bool createChannel();
    void createTouchSoundMsgQueue();

    std::unique_ptr<ZApplicationData> d;
};

// "amClosed()" on "TYX/System" ends the process at once, unless this was called. For the life of the process.
TYX_EXPORT void DisableAMClosedRestart(); // name fixed
