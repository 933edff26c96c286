// What the input method server knows, and how it takes its messages.
#pragma once

#include "platform/bus/qcopchannel.h"
#include "platform/window/qwsserver.h"
#include "textinput/server/findbar.h"
#include "textinput/server/hostprocess.h"
#include "textinput/server/methodlist.h"
#include "textinput/server/plainkeypad.h"
#include "textinput/server/zimserver.h"
#include "textinput/server/zimserver_cst.h"
#include "textinput/state/zinputmethodstate.h"

#include <QBasicTimer>
#include <QHash>
#include <QMenu>
#include <optional>

class ZIMServer::IMSKeyboardFilter : public QWSServer::KeyboardFilter {
public:
    explicit IMSKeyboardFilter(ZIMServerData &server) : m_server(server) { QWSServer::setKeyboardFilter(this); }
    bool filter(int unicode, int keycode, int modifiers, bool isPress, bool autoRepeat) override;

private:
    ZIMServerData &m_server;
};

class ZIMServerData : public QObject {
    Q_OBJECT

public:
    explicit ZIMServerData(ZIMServer &server);

    // Messages of "TYX/IMServer"; one a message, in imroutes.cpp.
    void slotInputMethodServiceMessage(const QCString &message, const QByteArray &arguments);
    void onHideInputMethod(const QByteArray &arguments);
    void onSelectInputMethod(const QByteArray &arguments);
    void onGetNameList(const QByteArray &arguments);
    void onSettings(const QByteArray &arguments);
    void onAssociationSeed(const QByteArray &arguments);
    void onLowerWidget(const QByteArray &arguments);
    void onContextString(const QByteArray &arguments);
    void onFavourites(const QByteArray &arguments);
    void onRegisterExternal(const QByteArray &arguments);
    void onToolBarShown(const QByteArray &arguments);
    void onWordConfirmed(const QByteArray &arguments);

    void setInputMethodList(const QList<QUuid> &favourites);
    void applySettings(const INPUT_SETTING_T &setting);
    bool select(const QUuid &method, quint32 language);
    bool runCommand(const IMStateCmd &command);

    void show();
    void hide(const char *message); // and tell the application so; null: nobody
    void type(const IM_KeyEventEx &event);
    bool takeKey(const ZInputMethodPlugin::HardKey &key); // false: the key takes its ordinary way

    struct ToolBar {
        int shown = 0;
        QUuid method;
    };

    ZInputMethodState state;
    MethodList methods;
    HostProcess host{this};
    INPUT_SETTING_T setting;
    QUuid current; // null: only the plain keypad
    quint32 language = 0;
    InputWidgetHost::Owner owner; // editor 0: none
    int inputType = 0;
    std::optional<InputWidgetHost::Owner> hideRequest;
    QBasicTimer hideTimer; // until the request is acted on
    QBasicTimer releaseTimer; // five minutes after that
    bool wanted = false; // it is to be on the screen
    bool away = false; // it went because another window has the focus
    ToolBar toolBar;
    QString completion; // that was last confirmed
    int window = 0; // of the input method, while it shows one
    int height = 0; // of what is on the screen, without the strip
    PlainKeypad plain;
    ZIMServer_CST strip;
    FindBar findBar;
    bool findBarEnabled = false;
    QMenu menu;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override; // the pen on its way to a window

private:
    void followHost();
    void hostReady(const QList<InputMethodInfo> &loaded);
    void hostShown(const QUuid &method, int shownWindow, int shownHeight);
    void hostFailed(const QUuid &method, const QString &reason);
    void hostDied();
    void refreshList();
    [[nodiscard]] bool isExternal() const; // the method in use
    enum class Taker { Application, Method, FindBar };
    [[nodiscard]] Taker takerOf(const ZInputMethodPlugin::HardKey &key) const;
    void sendSettings();
    void showPlain();
    void present(int newHeight, bool isPlain);
    void showExternal(const InputMethodInfo &info, bool shown);
    void unconfirmed(const QString &text);
    void windowEvent(QWSWindow *changed, QWSServer::WindowEvent event);
    void keepAboveOwner();
    [[nodiscard]] QWSWindow *methodWindow() const; // null when there is none

    ZIMServer &m_server;
    QCopChannel m_channel{"TYX/IMServer"};
    bool m_restacking = false;
    bool m_typing = false;
    bool m_composing = false; // the method has text that is not confirmed, or keys that it has not answered
    QHash<int, Taker> m_taken; // keys that are down, and did not go to the application
    ZIMServer::IMSKeyboardFilter m_filter{*this};
};
