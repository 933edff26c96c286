// What an application object knows, and how it takes the messages of its channels.
#pragma once

#include "appbase/application/editorlist.h"
#include "appbase/application/inputclient.h"
#include "appbase/application/inputdrivers.h"
#include "appbase/application/inputfilters.h"
#include "appbase/application/phonestatus.h"
#include "appbase/application/serverstatus.h"
#include "appbase/application/strings.h"
#include "appbase/application/themepaths.h"
#include "appbase/application/windoworders.h"
#include "appbase/application/windowsbyuse.h"
#include "appbase/look/phonefonts.h"
#include "appbase/messaging/queuefile.h"
#include "platform/bus/qcopchannel.h"
#include "platform/values/qcstring.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <memory>

class ZApplication;

// The channel of a program by its name, or of a process by its number.
inline QCString applicationChannel(const QByteArray &nameOrProcessId)
{
    return queue::kApplicationChannels.toByteArray() + nameOrProcessId;
}

// Owned by the application object, and as old as it. GUI thread only.
class ZApplicationData : public QObject {
    Q_OBJECT

public:
    ZApplicationData(ZApplication &application, const char *program);

    void open(const QCString &channel, void (ZApplicationData::*handler)(const QCString &, const QByteArray &));

    // Takes the messages that wait for a program or a process id; the event loop delivers them, one at a time.
    void getMsgs(const QString &waitingFor);
    void enqueueMsg(const queue::Record &record);

    void followWindowServer(); // in the GUI server
    void updateWindowInfo(QWSWindow *window, QWSServer::WindowEvent event);
    void slotCursorSelected(QWSCursor *cursor);

    void getTouchPanelSoundInfo(); // how these two kinds of sound are set now
    void getHardKeySoundInfo();

    void pidMessage(const QCString &message, const QByteArray &arguments);
    void slotSystemMessage(const QCString &message, const QByteArray &arguments);
    void slotServerMessage(const QCString &message, const QByteArray &arguments);
    void slotAppMessage(const QCString &message, const QByteArray &arguments);

    // Named by the messages that lead to them, see ZApplication and InputWidgetHost for what the numbers mean.
    void appendEditor(int id, const QCString &channel);
    void showInputWidgetAux(int id, int window, int show, int inputType);
    void serverManipulateAppWindows(int operation, const QString &application);
    void setFocusToLatestWindow(int except);
    void clientManipulateAppWindows(int operation, QValueList<int> &windows);

    const QString name; // argv[0] without folders
    QString language;
    ThemePaths theme;
    PhoneFonts fonts;
    LoadedStrings applicationStrings;
    LoadedStrings libraryStrings;
    InputFilters input;
    WindowsByUse windowsByUse; // in the GUI server, like the next
    InputClient inputClient;
    std::unique_ptr<InputDrivers> drivers; // of the GUI server, like the next
    std::unique_ptr<ServerStatus> serverStatus;

    // One a message, named after it.
    void onRaise(const QByteArray &arguments);
    void onIgnored(const QByteArray &arguments);
    void onShutdown(const QByteArray &arguments);
    void onQuickQuit(const QByteArray &arguments);
    void onClickAppIcon(const QByteArray &arguments);
    void onOpenDoc(const QByteArray &arguments);
    void onPidBridgeMessage(const QByteArray &arguments);
    void onPidBridgeMessageWithoutRaise(const QByteArray &arguments);
    void onCmdLine(const QByteArray &arguments);
    void onBridgeMessage2(const QByteArray &arguments);
    void onUsbMassStorage(const QByteArray &arguments);
    void onApplyPalette(const QByteArray &arguments);
    void onMasterClear(const QByteArray &arguments);
    void onMasterReset(const QByteArray &arguments);
    void onAmClosed(const QByteArray &arguments);
    void onChangeTextSize(const QByteArray &arguments);
    void onModifyTimeZone(const QByteArray &arguments);
    void onApplyStyle(const QByteArray &arguments);
    void onSetOneEnv(const QByteArray &arguments);
    void onNotifyLaunchApp(const QByteArray &arguments);
    void onHomeKeyPress(const QByteArray &arguments);
    void onBridgeMessage(const QByteArray &arguments);
    void onBridgeMessageWithoutRaise(const QByteArray &arguments);
    void onSetGuiToSuspension(const QByteArray &arguments);
    void onUpdateTouchPanelSoundInfo(const QByteArray &arguments);
    void onHardkeySoundChanged(const QByteArray &arguments);
    void onLanguageChanged(const QByteArray &arguments);
    void onThemeChanged(const QByteArray &arguments);
    void onRegisterEditor(const QByteArray &arguments);
    void onUnregisterEditor(const QByteArray &arguments);
    void onShowInputWidget(const QByteArray &arguments);
    void onEditorState(const QByteArray &arguments);
    void onOrderWindows(const QByteArray &arguments);
    void onFocusLatestWindow(const QByteArray &arguments);
    void onObeyWindowOrder(const QByteArray &arguments);
    void onInputWidgetShown(const QByteArray &arguments);
    void onHideInputWidget(const QByteArray &arguments);
    void onAutoHideInputWidget(const QByteArray &arguments);
    void onForwardEditorState(const QByteArray &arguments);
    void onKeyEvent(const QByteArray &arguments);
    void onUnconfirmedText(const QByteArray &arguments);

private:
    void deliverNext();
    void storedMessage(const queue::Record &record);
    void bridge(const QCString &message, const QByteArray &data);
    bool inputWidgetHidden(const QByteArray &arguments, bool automatically);

    ZApplication &m_application;
    EditorList m_editors;
    WindowOrders m_windowOrders;
    bool m_shuttingDown = false;
    bool m_quitting = false;
    QList<queue::Record> m_pending; // in the order in which they were sent
};
