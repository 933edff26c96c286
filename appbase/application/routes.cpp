// The messages of the four channels: a table each, and a handler each. Those about editors, the input widget and
// windows are in inputroutes.cpp.
#include "appbase/application/routes.h"

#include "appbase/application/inputmessages.h"
#include "appbase/application/suspension.h"
#include "appbase/application/zapplication.h"
#include "appbase/messaging/wire.h"
#include "platform/bus/busflush.h"
#include "platform/system/fatal.h"
#include "res/skin/util_skin.h"
#include "res/skin/zskin.h"

#include <QScopedValueRollback>
#include <cstdio>

namespace {

using Data = ZApplicationData;
using Row = Route<Data>;

bool restartFlag = true; // while set, "amClosed()" ends the process

constexpr Row processRoutes[] = {
    {"raise()", &Data::onRaise},
    {"flush()", &Data::onIgnored},
    {"nextView()", &Data::onIgnored},
    {"shutdown()", &Data::onShutdown},
    {"quickQuit()", &Data::onQuickQuit},
    {"clickAppIcon()", &Data::onClickAppIcon},
    {"openDoc(QString)", &Data::onOpenDoc},
    {"bridgeMessage", &Data::onPidBridgeMessage},
    {"bridgeMessageWithoutRaise", &Data::onPidBridgeMessageWithoutRaise},
    {"cmdLine", &Data::onCmdLine},
    {"bridgeMessage2", &Data::onBridgeMessage2},
    {"usbMassStorageEnabled(bool)", &Data::onUsbMassStorage},
};

constexpr Row systemRoutes[] = {
    {"applyPalette()", &Data::onApplyPalette},
    {"master clear", &Data::onMasterClear},
    {"master reset", &Data::onMasterReset},
    {"SetGuiToSuspension()", &Data::onSetGuiToSuspension},
    {"amClosed()", &Data::onAmClosed},
    {"changeTextSize()", &Data::onChangeTextSize},
    {"modifytimezone", &Data::onModifyTimeZone},
    {"applyStyle()", &Data::onApplyStyle},
    {"setOneEnv()", &Data::onSetOneEnv},
    {"shutdown()", &Data::onShutdown},
    {"notifyLaunchApp", &Data::onNotifyLaunchApp},
    {"HomeKeyPress", &Data::onHomeKeyPress},
    {"bridgeMessage", &Data::onBridgeMessage},
    {"bridgeMessageWithoutRaise", &Data::onBridgeMessageWithoutRaise},
    {"updateTouchPanelSoundInfo()", &Data::onUpdateTouchPanelSoundInfo},
};

constexpr Row serverRoutes[] = {
    {messages::kRegisterEditor, &Data::onRegisterEditor},
    {messages::kUnregisterEditor, &Data::onUnregisterEditor},
    {messages::kShowInputWidget, &Data::onShowInputWidget},
    {messages::kUpdateEditorState, &Data::onEditorState},
    {messages::kOrderWindows, &Data::onOrderWindows},
    {messages::kFocusLatestWindow, &Data::onFocusLatestWindow},
    {"languageChanged()", &Data::onLanguageChanged},
    {"HardkeySoundChanged()", &Data::onHardkeySoundChanged},
    {"themeChanged()", &Data::onThemeChanged},
};

constexpr Row applicationRoutes[] = {
    {messages::kObeyWindowOrder, &Data::onObeyWindowOrder},
    {messages::kInputWidgetShown, &Data::onInputWidgetShown},
    {messages::kHideInputWidget, &Data::onHideInputWidget},
    {messages::kAutoHideInputWidget, &Data::onAutoHideInputWidget},
    {messages::kUpdateEditorState, &Data::onForwardEditorState},
    {messages::kKeyEvent, &Data::onKeyEvent},
    {messages::kUnconfirmedText, &Data::onUnconfirmedText},
};

}

routes::Rows routes::process() { return processRoutes; }
routes::Rows routes::system() { return systemRoutes; }
routes::Rows routes::server() { return serverRoutes; }
routes::Rows routes::application() { return applicationRoutes; }

void DisableAMClosedRestart() { restartFlag = false; }

void ZApplicationData::pidMessage(const QCString &message, const QByteArray &arguments)
{
    dispatch<Data>(processRoutes, *this, message, arguments); // an unknown message is dropped
}

// The channel that it was sent to does not matter: the sender may have known the name or the process id.
void ZApplicationData::storedMessage(const queue::Record &record)
{
    if (!dispatch<Data>(processRoutes, *this, record.message, record.data))
        slotAppMessage(record.message, record.data);
}

void ZApplicationData::slotSystemMessage(const QCString &message, const QByteArray &arguments)
{
    // Ours, and no rows of the table: applications hear of them too.
    if (message == "languageChanged()")
        m_application.loadString(name);
    else if (message == "SetGuiToResume()")
        SetGuiToResume();
    if (!dispatch<Data>(systemRoutes, *this, message, arguments))
        Q_EMIT m_application.systemMessage(message, arguments);
}

void ZApplicationData::slotServerMessage(const QCString &message, const QByteArray &arguments)
{
    if (QWSApplication::type() == QWSApplication::GuiServer)
        dispatch<Data>(serverRoutes, *this, message, arguments);
}

void ZApplicationData::slotAppMessage(const QCString &message, const QByteArray &arguments)
{
    if (!dispatch<Data>(applicationRoutes, *this, message, arguments))
        Q_EMIT m_application.appMessage(message, arguments);
}

void ZApplicationData::onIgnored(const QByteArray & /*arguments*/) { }

void ZApplicationData::onRaise(const QByteArray & /*arguments*/) { Q_EMIT m_application.signalRaise(); }

// An order to end lets pending events pass, the same order among them: it is being obeyed already, and any number of
// them must not nest.
void ZApplicationData::onShutdown(const QByteArray & /*arguments*/)
{
    if (m_shuttingDown)
        return;
    const QScopedValueRollback ending(m_shuttingDown, true);
    m_application.slotShutdown();
}

void ZApplicationData::onQuickQuit(const QByteArray & /*arguments*/)
{
    if (m_quitting)
        return;
    const QScopedValueRollback ending(m_quitting, true);
    m_application.slotQuickQuit();
}

void ZApplicationData::onClickAppIcon(const QByteArray & /*arguments*/) { Q_EMIT m_application.clickAppIcon(); }

void ZApplicationData::onOpenDoc(const QByteArray &arguments)
{
    QString document;
    if (!wire::unpack(arguments, document))
        return;
    Q_EMIT m_application.signalRaise();
    Q_EMIT m_application.signalOpenDoc(document);
}

// On the process channel an int stands before the message; on the system channel none does. Both are what other
// programs send.
void ZApplicationData::onPidBridgeMessage(const QByteArray &arguments)
{
    qint32 unused = 0;
    QCString message;
    QByteArray data;
    if (wire::unpack(arguments, unused, message, data))
        bridge(message, data);
}

void ZApplicationData::onBridgeMessage(const QByteArray &arguments)
{
    QCString message;
    QByteArray data;
    if (wire::unpack(arguments, message, data))
        bridge(message, data);
}

void ZApplicationData::bridge(const QCString &message, const QByteArray &data)
{
    if (message == "openDoc(QString)") {
        onOpenDoc(data);
        return;
    }
    Q_EMIT m_application.signalRaise();
    Q_EMIT m_application.signalBridgeMessage(message, data);
}

void ZApplicationData::onPidBridgeMessageWithoutRaise(const QByteArray &arguments)
{
    qint32 unused = 0;
    QCString message;
    QByteArray data;
    if (wire::unpack(arguments, unused, message, data))
        Q_EMIT m_application.signalBridgeMessageWithoutRaise(message, data);
}

void ZApplicationData::onBridgeMessageWithoutRaise(const QByteArray &arguments)
{
    QCString message;
    QByteArray data;
    if (wire::unpack(arguments, message, data))
        Q_EMIT m_application.signalBridgeMessageWithoutRaise(message, data);
}

void ZApplicationData::onCmdLine(const QByteArray &arguments)
{
    QString commandLine;
    if (wire::unpack(arguments, commandLine))
        Q_EMIT m_application.signalCmdLine(commandLine);
}

void ZApplicationData::onBridgeMessage2(const QByteArray &arguments)
{
    Q_EMIT m_application.signalBridgeMessage(arguments);
}

void ZApplicationData::onUsbMassStorage(const QByteArray &arguments)
{
    bool enabled = false;
    if (wire::unpack(arguments, enabled))
        Q_EMIT m_application.usbStorageInOut(enabled);
}

void ZApplicationData::onApplyPalette(const QByteArray & /*arguments*/) { m_application.applyPalette(); }

void ZApplicationData::onMasterClear(const QByteArray & /*arguments*/) { Q_EMIT m_application.signalMasterClear(); }

void ZApplicationData::onMasterReset(const QByteArray & /*arguments*/) { Q_EMIT m_application.signalMasterReset(); }

void ZApplicationData::onAmClosed(const QByteArray & /*arguments*/)
{
    if (!restartFlag)
        return;
    platform::busFlush();
    platform::leave(0); // at once: the application manager is gone, and nobody answers what an orderly end waits for
}

void ZApplicationData::onChangeTextSize(const QByteArray & /*arguments*/) { m_application.changeTextSize(); }

void ZApplicationData::onModifyTimeZone(const QByteArray &arguments)
{
    qint32 h = 0;
    qint32 m = 0;
    qint32 s = 0;
    if (!wire::unpack(arguments, h, m, s))
        return;
    // POSIX counts westwards: the sign turns around, and east of Greenwich the minus stands for itself.
    const QByteArray zone = (h < 1 ? "GMT+" : "GMT") + QByteArray::number(-qint64(h)) + ':' + QByteArray::number(m)
        + ':' + QByteArray::number(s);
    qputenv("TZ", zone);
}

// The skin and the icons may be others now.
void ZApplicationData::onApplyStyle(const QByteArray & /*arguments*/)
{
    theme = themePaths();
    publishThemePaths(theme);
    UTIL_Skin::reloadDef();
    ZSkin::reloadSkin();
    m_application.applyStyle();
    m_application.applyPalette();
}

void ZApplicationData::onSetOneEnv(const QByteArray &arguments)
{
    QString nameAndValue;
    if (wire::unpack(arguments, nameAndValue))
        ZApplication::setEnv(nameAndValue);
}

void ZApplicationData::onNotifyLaunchApp(const QByteArray &arguments)
{
    qint32 application = 0;
    if (wire::unpack(arguments, application))
        Q_EMIT m_application.signalAppLaunched(application);
}

void ZApplicationData::onHomeKeyPress(const QByteArray & /*arguments*/) { Q_EMIT m_application.signalHomeKeyClicked(); }

// The settings tell the server, and the server tells everybody.
void ZApplicationData::onLanguageChanged(const QByteArray & /*arguments*/)
{
    m_application.loadString(name);
    QCopChannel::send("TYX/System", "languageChanged()");
}

// The atlas is exchanged before anybody is told: who puts the skin on anew finds it.
void ZApplicationData::onThemeChanged(const QByteArray & /*arguments*/)
{
    const QString before = theme.skinFile;
    handOverTheme();
    theme = themePaths();
    publishThemePaths(theme);
    if (theme.skinFile != before && !theme.skinFile.isEmpty() && !shareSkin(theme.skinFile)) {
        std::fprintf(stderr,
            "theme: %s cannot be worn now, %s stays: tyx skin verify tells about the file; an image of "
            "another size needs a start of the phone\n",
            qPrintable(theme.skinFile), before.isEmpty() ? "none" : qPrintable(before));
        keepSkin(before);
        theme = themePaths();
        publishThemePaths(theme);
        shareSkin(theme.skinFile);
    }
    QCopChannel::send("TYX/System", "applyStyle()");
}
