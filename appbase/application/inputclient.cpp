#include "appbase/application/inputclient.h"

#include "appbase/application/inputmessages.h"
#include "appbase/application/zglobal.h"
#include "appbase/application/zmainwidget.h"
#include "appbase/messaging/keyeventex.h"
#include "appbase/messaging/wire.h"
#include "platform/bus/qcopchannel.h"
#include "platform/window/qwsapplication.h"
#include "textinput/plugin/imstatecmd.h"

#include <QAbstractScrollArea>
#include <QKeyEvent>
#include <algorithm>

namespace {

constexpr int kNumberBits = 9;
constexpr int kNumbers = 1 << kNumberBits; // 0 is not given away
constexpr quint32 kProcessMask = (1U << 22) - 1; // no process id of the kernel is larger

int idOf(int number)
{
    const auto process = quint32(QCoreApplication::applicationPid()) & kProcessMask;
    return int(process << kNumberBits) | number;
}

void sendToServer(const char *message, const QByteArray &arguments)
{
    QCopChannel::send("TYX/QtServer", message, arguments);
}

Qt::InputMethodHints hintsOf(const QWidget &editor)
{
    return Qt::InputMethodHints::fromInt(editor.inputMethodQuery(Qt::ImHints).toInt());
}

bool isSecret(const QWidget &editor)
{
    return hintsOf(editor).testAnyFlags(Qt::ImhHiddenText | Qt::ImhSensitiveData | Qt::ImhNoPredictiveText);
}

int inputType(const QWidget &editor)
{
    if (hintsOf(editor).testAnyFlags(Qt::ImhDigitsOnly | Qt::ImhFormattedNumbersOnly))
        return SetInputModeCmd::Numbers;
    return isSecret(editor) ? SetInputModeCmd::Secret : SetInputModeCmd::Text;
}

bool isReadOnly(const QWidget &editor)
{
    return !editor.testAttribute(Qt::WA_InputMethodEnabled) || editor.property("readOnly").toBool();
}

// To another widget of the window: a menu gives the focus back, and the server sees by itself which window has it.
bool leaves(const QFocusEvent &event)
{
    return event.reason() != Qt::PopupFocusReason && event.reason() != Qt::ActiveWindowFocusReason
        && event.reason() != Qt::MenuBarFocusReason;
}

// An open menu has the keys, as it has those of the phone.
QWidget *typedInto()
{
    QWidget *popup = QApplication::activePopupWidget();
    if (!popup)
        return QApplication::focusWidget();
    return popup->focusWidget() ? popup->focusWidget() : popup;
}

// The user went there by keys. A focus that the application gives, at its start for instance, asks for nothing.
bool isReachedByKey(const QFocusEvent &event)
{
    return event.reason() == Qt::TabFocusReason || event.reason() == Qt::BacktabFocusReason
        || event.reason() == Qt::ShortcutFocusReason;
}

// Whether the user is about to write: the pen came up in the editor, or the keypad went there.
bool asksForInput(const QWidget &editor, const QEvent &event)
{
    if (isReadOnly(editor) || !editor.hasFocus()) // a dialog that opens tells its editor so before it has the focus
        return false;
    if (event.type() == QEvent::FocusIn)
        return isReachedByKey(static_cast<const QFocusEvent &>(event));
    return event.type() == QEvent::MouseButtonRelease;
}

ZMainWidget *activeMainWidget() { return qobject_cast<ZMainWidget *>(QApplication::activeWindow()); }

}

InputClient::InputClient(const QCString &channel) : m_channel(channel)
{
    connect(&unconfirmed, &UnconfirmedText::confirmedByUser, this, [this] { tellState(SetEditContextCmd::Confirmed); });
}

InputClient::~InputClient()
{
    for (const Registration &registration : std::as_const(m_editors))
        sendToServer(messages::kUnregisterEditor, wire::pack(registration.id));
}

int InputClient::registerEditor(QWidget *editor)
{
    if (!editor)
        return 0;
    if (const auto *area = qobject_cast<QAbstractScrollArea *>(editor)) // the pen is on what scrolls
        area->viewport()->installEventFilter(this);
    if (const auto known = m_editors.constFind(editor); known != m_editors.cend())
        return known->id;
    const int id = freeId();
    if (id == 0)
        return 0;
    tellServer(*editor, *m_editors.insert(editor, {id, 0}));
    connect(editor, &QObject::destroyed, this, &InputClient::unregisterEditor);
    editor->installEventFilter(this);
    return id;
}

void InputClient::unregisterEditor(const QObject *editor)
{
    const auto known = m_editors.constFind(editor);
    if (known == m_editors.cend())
        return;
    const int id = known->id;
    m_editors.erase(known);
    disconnect(editor, nullptr, this, nullptr);
    const_cast<QObject *>(editor)->removeEventFilter(this);
    if (const auto *area = qobject_cast<const QAbstractScrollArea *>(editor)) // not of one that is being destroyed
        area->viewport()->removeEventFilter(this);
    sendToServer(messages::kUnregisterEditor, wire::pack(id));
}

QWidget *InputClient::editor(int id) const
{
    for (auto entry = m_editors.cbegin(); entry != m_editors.cend(); ++entry) {
        if (entry->id == id)
            return static_cast<QWidget *>(const_cast<QObject *>(entry.key()));
    }
    return nullptr;
}

int InputClient::freeId()
{
    for (int tries = 1; tries < kNumbers; ++tries) {
        m_lastNumber = m_lastNumber % (kNumbers - 1) + 1;
        if (!editor(idOf(m_lastNumber)))
            return idOf(m_lastNumber);
    }
    return 0;
}

void InputClient::tellServer(const QWidget &editor, Registration &registration)
{
    registration.window = QWSApplication::windowId(&editor);
    sendToServer(messages::kRegisterEditor, wire::pack(m_channel, registration.window, registration.id));
}

// A window has no identifier before it is first shown, and an editor may move to another window.
bool InputClient::eventFilter(QObject *watched, QEvent *event)
{
    const bool release = event->type() == QEvent::MouseButtonRelease;
    const auto known = m_editors.find(release && !m_editors.contains(watched) ? watched->parent() : watched);
    if (known == m_editors.end())
        return false;
    const auto &editor = static_cast<const QWidget &>(*known.key());
    if (event->type() == QEvent::Show && known->window != QWSApplication::windowId(&editor))
        tellServer(editor, *known);
    else if (asksForInput(editor, *event))
        requestInputWidget(editor, *known, true);
    else if (event->type() == QEvent::KeyRelease)
        publishContext();
    else if (event->type() == QEvent::FocusOut && leaves(static_cast<const QFocusEvent &>(*event)))
        requestInputWidget(editor, *known, false);
    return false;
}

// An application that starts with the focus in an editor does not hide half of itself.
void InputClient::requestInputWidget(const QWidget &editor, const Registration &registration, bool show)
{
    sendToServer(messages::kShowInputWidget,
        wire::pack(registration.id, QWSApplication::windowId(&editor), show ? 1 : 0, QUuid(), inputType(editor)));
}

void InputClient::inputWidgetShown(int editor, int height)
{
    const QPointer<ZMainWidget> window = activeMainWidget(); // the other one's change of size may destroy it
    if (m_shrunk && m_shrunk != window)
        m_shrunk->getEditorRect(editor, 0, false);
    m_shrunk = window;
    if (window)
        window->getEditorRect(editor, height, true);
    unconfirmed.confirm(); // the method that is shown now begins anew
    m_typedInto = this->editor(editor);
    publishContext();
}

// For predictive input methods. Secrets stay here.
void InputClient::publishContext()
{
    if (!m_typedInto || !m_typedInto->hasFocus() || isSecret(*m_typedInto))
        return withdrawContext();
    if (!m_state)
        m_state.emplace();
    const QString text = m_typedInto->inputMethodQuery(Qt::ImSurroundingText).toString();
    m_state->setEditContext({text}, 0, m_typedInto->inputMethodQuery(Qt::ImCursorPosition).toInt());
    const QRect cursor = m_typedInto->inputMethodQuery(Qt::ImCursorRectangle).toRect();
    m_state->setEditCursor(m_typedInto->mapToGlobal(cursor.bottomLeft()));
    tellState(SetEditContextCmd::Changed);
}

// What was written is nobody's business any more; and a server that comes back has another state.
void InputClient::withdrawContext()
{
    if (m_state)
        m_state->setEditContext({}, 0, 0);
    m_state.reset();
}

void InputClient::tellState(int state) const
{
    if (const auto known = m_editors.constFind(m_typedInto); known != m_editors.cend())
        sendToServer(messages::kUpdateEditorState, wire::pack(known->id, state, 0));
}

void InputClient::inputWidgetHidden(int editor, int window, bool automatically)
{
    m_typedInto = nullptr;
    withdrawContext();
    if (m_shrunk) // it may not be the active window any more
        m_shrunk->getEditorRect(editor, 0, false);
    m_shrunk = nullptr;
    if (activeMainWidget())
        endTyping(automatically);
    else
        ZGlobal::hideInputWidgetAux(editor, window, automatically);
}

// An input widget that goes by itself may come back, and the input method still knows what it was about to type.
void InputClient::endTyping(bool automatically)
{
    if (!automatically)
        unconfirmed.confirm();
}

// Editors act on the press; some widgets (buttons) act on the release, which the message does not tell apart.
void InputClient::sendKey(const IM_KeyEventEx &event)
{
    const QPointer<QWidget> receiver = typedInto();
    if (!receiver)
        return;
    const auto modifiers = Qt::KeyboardModifiers::fromInt(event.modifiers) & Qt::KeyboardModifierMask;
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent key(type, event.qtKey(), modifiers, event.typed());
        if (receiver) // the press may have destroyed it
            QCoreApplication::sendEvent(receiver, &key);
    }
}
