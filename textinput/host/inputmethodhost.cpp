#include "textinput/host/inputmethodhost.h"

#include "appbase/messaging/route.h"
#include "appbase/messaging/wire.h"
#include "platform/window/qwsapplication.h"

#include <QScreen>
#include <algorithm>

namespace {

constexpr int kLeastHeight = 40;
constexpr int kSettings[] = {IMStateCmd::SupportLanguageId, IMStateCmd::PhraseCompletionSetting, IMStateCmd::HWROption};

using Row = Route<InputMethodHost>;

constexpr Row hostRoutes[] = {
    {imhost::kShow, &InputMethodHost::onShow},
    {imhost::kHide, &InputMethodHost::onHide},
    {imhost::kRelease, &InputMethodHost::onRelease},
    {imhost::kCommand, &InputMethodHost::onCommand},
    {imhost::kHardKey, &InputMethodHost::onHardKey},
    {imhost::kPing, &InputMethodHost::onPing},
};

qint32 ownPid() { return qint32(QCoreApplication::applicationPid()); }

template <typename... T> void tell(const char *message, const T &...values)
{
    QCopChannel::send(imhost::kServerChannel, message, wire::pack(ownPid(), values...));
}

}

InputMethodHost::InputMethodHost()
    : m_channel(imhost::kHostChannel)
    , m_libraries(loadInputMethods())
    , m_window(nullptr, Qt::Window | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus)
{
    m_window.setObjectName(QLatin1String(imhost::kWindowName));
    m_window.setAttribute(Qt::WA_ShowWithoutActivating);
    connect(&m_channel, &QCopChannel::received, this, &InputMethodHost::receive);
    QList<InputMethodInfo> methods;
    for (const auto &library : m_libraries)
        methods.append(library->info);
    tell(imhost::kMethods, packMethods(methods));
}

void InputMethodHost::receive(const QCString &message, const QByteArray &arguments)
{
    dispatch<InputMethodHost>(hostRoutes, *this, message, arguments);
}

void InputMethodHost::reportFailure(const QUuid &method, const QString &reason)
{
    tell(imhost::kFailed, method, reason);
}

bool InputMethodHost::load(const QUuid &method)
{
    if (m_library && m_library->info.id == method)
        return m_plugin;
    if (m_keyboard)
        m_keyboard->hide(); // a keyboard that is destroyed is not told so
    m_keyboard.reset();
    m_plugin = nullptr;
    const auto found = std::ranges::find(m_libraries, method, [](const auto &each) { return each->info.id; });
    m_library = found == m_libraries.end() ? nullptr : found->get();
    // A library stays in memory once it was used: objects of its may outlive the keyboard.
    m_plugin = m_library ? m_library->plugin() : nullptr;
    if (!m_plugin)
        reportFailure(method, m_library ? m_library->loader.errorString() : QStringLiteral("there is none"));
    for (const auto &[number, fields] : m_settings)
        runPacked(number, fields);
    return m_plugin;
}

bool InputMethodHost::makeKeyboard()
{
    if (m_keyboard)
        return true;
    try {
        m_keyboard.reset(m_plugin->createWidget(m_sink));
    } catch (...) {
        m_keyboard.reset();
    }
    if (!m_keyboard) {
        reportFailure(m_library->info.id, QStringLiteral("it makes no keyboard"));
        return false;
    }
    m_keyboard->setParent(&m_window);
    return true;
}

void InputMethodHost::onShow(const QByteArray &arguments)
{
    QUuid method;
    qint32 inputType = 0;
    quint32 language = 0;
    if (!wire::unpack(arguments, method, inputType, language) || !load(method))
        return;
    m_sink.forget();
    SelectInputMethodCmd select;
    select.method = method;
    select.language = language;
    run(select);
    SetInputModeCmd mode;
    mode.mode = inputType == SetInputModeCmd::NextShift ? SetInputModeCmd::Text : inputType; // no editor taps shift
    run(mode);
    if (!makeKeyboard())
        return;
    const QRect screen = m_window.screen()->geometry();
    const int height = std::clamp(m_keyboard->sizeHint().height(), kLeastHeight, screen.height() / 2);
    m_keyboard->setGeometry(0, 0, screen.width(), height);
    m_keyboard->show();
    m_window.setGeometry(screen.left(), screen.bottom() + 1 - height, screen.width(), height);
    m_window.show();
    tell(imhost::kShown, method, qint32(QWSApplication::windowId(&m_window)), qint32(height));
}

void InputMethodHost::onHide(const QByteArray & /*arguments*/) { m_window.hide(); }

void InputMethodHost::onRelease(const QByteArray & /*arguments*/)
{
    if (!m_window.isVisible())
        m_keyboard.reset();
}

void InputMethodHost::onCommand(const QByteArray &arguments)
{
    qint32 number = 0;
    QByteArray fields;
    if (!wire::unpack(arguments, number, fields))
        return;
    if (std::ranges::count(kSettings, number) != 0)
        m_settings[number] = fields;
    runPacked(number, fields);
}

void InputMethodHost::runPacked(int number, const QByteArray &fields)
{
    if (const auto command = IMStateCmd::unpack(number, fields))
        run(*command);
}

void InputMethodHost::run(const IMStateCmd &command)
{
    if (!m_plugin)
        return;
    try {
        m_plugin->runCommand(command);
    } catch (...) {
        reportFailure(m_library->info.id, QStringLiteral("it throws"));
    }
}

void InputMethodHost::onHardKey(const QByteArray &arguments)
{
    ZInputMethodPlugin::HardKey key;
    qint32 modifiers = 0;
    if (!m_plugin || !wire::unpack(arguments, key.unicode, key.key, modifiers, key.isPress, key.autoRepeat))
        return;
    key.modifiers = Qt::KeyboardModifiers::fromInt(modifiers) & Qt::KeyboardModifierMask;
    try {
        m_plugin->keyEvent(key);
    } catch (...) {
        reportFailure(m_library->info.id, QStringLiteral("it throws"));
    }
}

void InputMethodHost::onPing(const QByteArray &arguments)
{
    qint32 number = 0;
    if (wire::unpack(arguments, number))
        tell(imhost::kPong, number);
}
