// What the messages about editors, the input widget and windows do, in the GUI server and in the application.
#include "appbase/application/inputmessages.h"
#include "appbase/application/inputwidgethost.h"
#include "appbase/application/zapplication.h"
#include "appbase/application/zapplication_p.h"
#include "appbase/messaging/keyeventex.h"
#include "appbase/messaging/wire.h"

// In the GUI server.

void ZApplicationData::onRegisterEditor(const QByteArray &arguments)
{
    QCString channel;
    qint32 window = 0;
    qint32 id = 0;
    if (!wire::unpack(arguments, channel, window, id))
        return;
    appendEditor(id, channel);
    if (Editor *editor = m_editors.find(id))
        editor->window = window;
}

void ZApplicationData::appendEditor(int id, const QCString &channel) { std::ignore = m_editors.append(id, channel); }

void ZApplicationData::onUnregisterEditor(const QByteArray &arguments)
{
    qint32 id = 0;
    if (!wire::unpack(arguments, id) || !m_editors.find(id))
        return;
    m_editors.remove(id);
    if (InputWidgetHost *host = InputWidgetHost::instance())
        host->editorGone(id);
}

// Promised: three integers stand before the identifier, although the message's name lists two.
void ZApplicationData::onShowInputWidget(const QByteArray &arguments)
{
    qint32 editor = 0;
    qint32 window = 0;
    qint32 show = 0;
    QUuid method;
    qint32 inputType = 0;
    if (!wire::unpack(arguments, editor, window, show, method, inputType) || !m_editors.find(editor))
        return;
    if (InputWidgetHost *host = InputWidgetHost::instance())
        host->selectInputMethod(method);
    showInputWidgetAux(editor, window, show, inputType);
}

void ZApplicationData::showInputWidgetAux(int id, int window, int show, int inputType)
{
    Editor *editor = m_editors.find(id);
    if (!editor)
        return;
    editor->window = window;
    if (InputWidgetHost *host = InputWidgetHost::instance())
        host->showInputWidget({id, window, editor->channel}, show, inputType);
}

void ZApplicationData::onEditorState(const QByteArray &arguments)
{
    qint32 id = 0;
    qint32 state = 0;
    qint32 detail = 0;
    if (!wire::unpack(arguments, id, state, detail))
        return;
    Editor *editor = m_editors.find(id);
    if (!editor)
        return;
    editor->state = state;
    editor->detail = detail;
    if (InputWidgetHost *host = InputWidgetHost::instance())
        host->editorStateChanged({id, editor->window, editor->channel}, state, detail);
}

void ZApplicationData::onOrderWindows(const QByteArray &arguments)
{
    qint32 operation = 0;
    QString application;
    if (wire::unpack(arguments, operation, application))
        serverManipulateAppWindows(operation, application);
}

void ZApplicationData::serverManipulateAppWindows(int operation, const QString &application)
{
    windoworders::give(operation, application);
}

void ZApplicationData::onFocusLatestWindow(const QByteArray &arguments)
{
    qint32 except = 0;
    if (wire::unpack(arguments, except))
        setFocusToLatestWindow(except);
}

void ZApplicationData::setFocusToLatestWindow(int except) { windoworders::focusLatest(windowsByUse.ids(), except); }

// In the application. What the application is told of comes last: it may destroy windows, or quit.

void ZApplicationData::onObeyWindowOrder(const QByteArray &arguments)
{
    qint32 operation = 0;
    QValueList<int> windows;
    if (!wire::unpack(arguments, operation, windows))
        return;
    clientManipulateAppWindows(operation, windows);
    Q_EMIT m_application.appMessage(messages::kObeyWindowOrder, arguments);
}

void ZApplicationData::clientManipulateAppWindows(int operation, QValueList<int> &windows)
{
    m_windowOrders.obey(operation, windows);
}

void ZApplicationData::onInputWidgetShown(const QByteArray &arguments)
{
    qint32 editor = 0;
    qint32 window = 0;
    qint32 inputType = 0;
    QUuid method;
    qint32 height = 0;
    if (!wire::unpack(arguments, editor, window, inputType, method, height))
        return;
    inputClient.inputWidgetShown(editor, height);
    Q_EMIT m_application.kbStateChanged(true, method, height);
    Q_EMIT m_application.appMessage(messages::kInputWidgetShown, arguments);
}

void ZApplicationData::onHideInputWidget(const QByteArray &arguments)
{
    if (inputWidgetHidden(arguments, false))
        Q_EMIT m_application.appMessage(messages::kHideInputWidget, arguments);
}

void ZApplicationData::onAutoHideInputWidget(const QByteArray &arguments)
{
    if (inputWidgetHidden(arguments, true))
        Q_EMIT m_application.appMessage(messages::kAutoHideInputWidget, arguments);
}

bool ZApplicationData::inputWidgetHidden(const QByteArray &arguments, bool automatically)
{
    qint32 editor = 0;
    qint32 window = 0;
    qint32 reason = 0;
    if (!wire::unpack(arguments, editor, window, reason))
        return false;
    inputClient.inputWidgetHidden(editor, window, automatically);
    Q_EMIT m_application.kbStateChanged(false, QUuid(), 0);
    return true;
}

// The input methods may run in a process that knows only the application; the list of editors is the server's.
void ZApplicationData::onForwardEditorState(const QByteArray &arguments)
{
    qint32 id = 0;
    qint32 state = 0;
    qint32 detail = 0;
    if (!wire::unpack(arguments, id, state, detail))
        return;
    if (inputClient.editor(id))
        QCopChannel::send("TYX/QtServer", messages::kUpdateEditorState, wire::pack(id, state, detail));
    Q_EMIT m_application.appMessage(messages::kUpdateEditorState, arguments);
}

void ZApplicationData::onKeyEvent(const QByteArray &arguments)
{
    wire::Reader reader(arguments);
    bool complete = false;
    const IM_KeyEventEx event = decodeKeyEventEx(reader.stream(), complete);
    if (complete)
        inputClient.sendKey(event);
}

void ZApplicationData::onUnconfirmedText(const QByteArray &arguments)
{
    QString text;
    if (wire::unpack(arguments, text))
        inputClient.unconfirmed.show(text);
}
