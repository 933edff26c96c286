#include "textinput/server/zimserver.h"

#include "appbase/application/inputmessages.h"
#include "appbase/application/zapplication.h"
#include "appbase/messaging/wire.h"
#include "textinput/server/zimserver_p.h"

#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QTimerEvent>
#include <QWindow>
#include <algorithm>

namespace {

constexpr int kHideMs = 60; // long enough for the next editor to show it
constexpr int kReleaseMs = 300'000;
constexpr QByteArrayView kApplications = "TYX/Application/";

bool movesCursor(int key)
{
    return (key >= Qt::Key_Home && key <= Qt::Key_PageDown) || key == Qt::Key_Return || key == Qt::Key_Enter;
}

QString applicationOf(const QCString &channel)
{
    return channel.startsWith(kApplications) ? QString::fromUtf8(channel.sliced(kApplications.size()))
                                             : QString::fromUtf8(channel);
}

// A driver that does not know it says 0 or 0xFFFF.
quint16 characterOf(const ZInputMethodPlugin::HardKey &key)
{
    const bool known = key.unicode != 0 && key.unicode != 0xFFFF;
    return known ? static_cast<quint16>(key.unicode) : QChar(key.key & 0xFFFF).toLower().unicode();
}

}

// The state, and what is on the screen.

ZIMServerData::ZIMServerData(ZIMServer &server)
    : setting(settings::loadInputSetting())
    , language(setting.preferredInputLanguage)
    , plain(QWSServer::instance()->screenWidget())
    , strip(QWSServer::instance()->screenWidget())
    , findBar(QWSServer::instance()->screenWidget())
    , m_server(server)
{
    connect(&m_channel, &QCopChannel::received, this, &ZIMServerData::slotInputMethodServiceMessage);
    connect(QWSServer::instance(), &QWSServer::windowEvent, this, &ZIMServerData::windowEvent);
    connect(&plain, &PlainKeypad::typed, this, [this](int unicode, int key) {
        m_server.sendKey(static_cast<unsigned short>(unicode), IM_KeyEventEx::keyCodeOf(key), 0);
    });
    connect(&strip, &ZIMServer_CST::menuRequested, &server, &ZIMServer::slotKbMenu);
    connect(&strip, &ZIMServer_CST::exitClicked, &server, &ZIMServer::slotHideKbd);
    connect(&findBar, &FindBar::textChanged, &server, &ZIMServer::slotFindBarTextChanged);
    connect(&strip, &ZIMServer_CST::tipClicked, &server, &ZIMServer::slotTipClicked);
    connect(&strip, &ZIMServer_CST::shiftClicked, this, [this] {
        SetInputModeCmd shift;
        shift.mode = SetInputModeCmd::NextShift;
        runCommand(shift);
    });
    std::ignore = state.isConnected(); // makes the segment, for those that look before there is a method
    QWSServer::instance()->screenWidget()->windowHandle()->installEventFilter(this);
    followHost();
}

void ZIMServerData::followHost()
{
    connect(&host, &HostProcess::ready, this, &ZIMServerData::hostReady);
    connect(&host, &HostProcess::shown, this, &ZIMServerData::hostShown);
    connect(&host, &HostProcess::failed, this, &ZIMServerData::hostFailed);
    connect(&host, &HostProcess::died, this, &ZIMServerData::hostDied);
    connect(&host, &HostProcess::silent, this, &ZIMServerData::showPlain);
    connect(&host, &HostProcess::answered, this, [this] {
        if (wanted)
            show();
    });
    connect(&host, &HostProcess::unconfirmed, this, &ZIMServerData::unconfirmed);
    connect(&host, &HostProcess::tip, &m_server, &ZIMServer::showWordCompletionTip);
    connect(&host, &HostProcess::leaveRequested, &m_server, &ZIMServer::hideKbd);
    connect(&host, &HostProcess::key, this, [this](const IM_KeyEventEx &event) {
        if (owner.editor != 0 && !wanted)
            return; // it was for an editor that has let the keyboard go
        m_composing = false;
        host.worked();
        methods.trust(current);
        type(event);
    });
    // Whoever ends on purpose is not to be started again.
    connect(qApp, &QCoreApplication::aboutToQuit, &host, &HostProcess::stop);
    if (ZApplication *application = ZApplication::instance())
        connect(application, &ZApplication::shutdown, &host, &HostProcess::stop);
    host.start();
}

void ZIMServerData::hostReady(const QList<InputMethodInfo> &loaded)
{
    methods.setLoaded(loaded);
    if (!methods.isUsable(current))
        current = methods.primary(setting);
    refreshList();
    sendSettings();
    if (wanted)
        show();
}

void ZIMServerData::refreshList()
{
    state.clearIMList();
    for (const InputMethodInfo &info : methods.all())
        state.insertItem(info.id, info.name, info.system);
    state.setIndexOfCheckedInputMethod(current);
    const InputMethodInfo *info = methods.find(current);
    strip.setMethodName(info ? info->name : ZIMServer::tr("Keypad"));
}

void ZIMServerData::hostShown(const QUuid &method, int shownWindow, int shownHeight)
{
    if (!wanted || isExternal()) {
        host.hide();
        return;
    }
    if (method != current)
        return; // a later one is on its way
    window = shownWindow;
    present(shownHeight, false);
    keepAboveOwner();
}

void ZIMServerData::hostFailed(const QUuid &method, const QString &reason)
{
    const InputMethodInfo *info = methods.find(method);
    if (!info)
        return;
    qWarning("input methods: %s is set aside: %s", qUtf8Printable(info->name),
        qUtf8Printable(reason.left(200).simplified()));
    methods.setAside(method);
    if (method == current)
        select(methods.primary(setting), language);
}

void ZIMServerData::hostDied()
{
    window = 0;
    m_taken.clear();
    m_composing = false; // the application keeps what stands in its editor
    if (isExternal())
        return; // that one is another process
    if (wanted && methods.died(current)) {
        qWarning("input methods: one is set aside: its process ends again and again");
        select(methods.primary(setting), language);
    }
    if (wanted)
        showPlain();
}

void ZIMServerData::show()
{
    wanted = true;
    away = false;
    releaseTimer.stop();
    hideTimer.stop();
    hideRequest.reset();
    const InputMethodInfo *info = methods.find(current);
    if (info && info->external) {
        host.hide();
        plain.hide();
        strip.hide();
        findBar.hide();
        window = 0;
        height = 0;
        showExternal(*info, true);
    } else if (host.isReady() && methods.isUsable(current)) {
        host.show(current, inputType, language);
    } else {
        showPlain();
    }
}

void ZIMServerData::showPlain()
{
    if (wanted && !isExternal())
        present(std::max(PlainKeypad::kHeight, height), true);
}

// At the bottom of the screen, under its strip. A plain keypad covers what a silent input method still shows there.
void ZIMServerData::present(int newHeight, bool isPlain)
{
    const QRect screen = plain.parentWidget()->rect();
    height = std::clamp(newHeight, 1, screen.height() / 2);
    const int top = screen.height() - height;
    strip.setGeometry(0, top - ZIMServer_CST::kHeight, screen.width(), ZIMServer_CST::kHeight);
    findBar.setGeometry(0, strip.y() - FindBar::kHeight, screen.width(), FindBar::kHeight);
    for (QWidget *own : std::initializer_list<QWidget *>{&strip, &plain, &findBar})
        own->setPalette(QApplication::palette()); // the screen's own ground is black
    strip.setShiftEnabled(!isPlain);
    const InputMethodInfo *info = methods.find(current);
    strip.setMethodName(isPlain || !info ? ZIMServer::tr("Keypad") : info->name);
    strip.show();
    findBar.setVisible(findBarEnabled);
    plain.setGeometry(0, top, screen.width(), height);
    plain.setVisible(isPlain);
    if (owner.editor != 0)
        QCopChannel::send(owner.channel, messages::kInputWidgetShown,
            wire::pack(owner.editor, owner.window, inputType, current, m_server.inputWidgetRect().height()));
}

void ZIMServerData::hide(const char *message)
{
    const bool was = std::exchange(wanted, false);
    m_composing = false;
    hideTimer.stop();
    hideRequest.reset();
    if (!was)
        return;
    const InputMethodInfo *info = methods.find(current);
    if (info && info->external)
        showExternal(*info, false);
    host.hide();
    plain.hide();
    strip.hide();
    findBar.hide();
    menu.close();
    strip.setCompletionTip({});
    window = 0;
    height = 0;
    if (message && owner.editor != 0)
        QCopChannel::send(owner.channel, message, wire::pack(owner.editor, owner.window, 0));
}

// Its process has a channel of its own, and shows what it likes.
void ZIMServerData::showExternal(const InputMethodInfo &info, bool shown)
{
    const QCString channel("TYX/Application/" + info.name.toUtf8());
    if (shown)
        QCopChannel::send(
            channel, messages::kShowInputWidget, wire::pack(owner.editor, owner.window, 1, info.id, inputType));
    else
        QCopChannel::send(channel, messages::kHideInputWidget, wire::pack(owner.editor, owner.window, 0));
}

QWSWindow *ZIMServerData::methodWindow() const
{
    QWSWindow *found = window == 0 ? nullptr : QWSServer::instance()->window(window);
    return found && found->clientPid() == host.pid() ? found : nullptr; // the number came from outside
}

// Directly over the owner's window, and so under the dialogs and pop-ups that lie over that one.
void ZIMServerData::keepAboveOwner()
{
    QWSWindow *own = methodWindow();
    if (!own || !own->isVisible() || m_restacking)
        return;
    const QScopedValueRollback guard(m_restacking, true);
    const QList<QWSWindow *> stack = QWSServer::instance()->clientWindows(); // front first
    const auto typed = std::ranges::find(stack, owner.window, &QWSWindow::winId);
    if (typed == stack.end() || typed == stack.begin()) {
        if (stack.first() != own)
            own->raise();
        return;
    }
    auto over = typed - 1;
    if (*over == own)
        return;
    own->stackUnder(*over);
}

void ZIMServerData::windowEvent(QWSWindow *changed, QWSServer::WindowEvent event)
{
    if (changed->clientPid() == host.pid()) {
        if (wanted && event == QWSServer::Show)
            keepAboveOwner();
        return;
    }
    const bool owners = owner.window != 0 && changed->winId() == owner.window;
    switch (event) {
    case QWSServer::Hide:
    case QWSServer::Destroy:
        if (owners) {
            hide(nullptr);
            away = false;
        }
        break;
    case QWSServer::Active:
        if (wanted && owner.window != 0 && !owners) {
            hide(messages::kAutoHideInputWidget);
            away = true;
        } else if (away && owners) {
            show();
        }
        break;
    case QWSServer::Show:
    case QWSServer::Raise:
    case QWSServer::Lower:
        if (wanted)
            keepAboveOwner();
        break;
    default:
        break;
    }
}

// Methods and settings.

bool ZIMServerData::select(const QUuid &method, quint32 newLanguage)
{
    const InputMethodInfo *info = methods.find(method);
    if (!info && !method.isNull())
        return false;
    const bool was = wanted;
    if (const InputMethodInfo *before = methods.find(current); was && before && before->external && method != current)
        showExternal(*before, false);
    current = method;
    language = newLanguage;
    state.setIndexOfCheckedInputMethod(current);
    if (was)
        show();
    return true;
}

void ZIMServerData::setInputMethodList(const QList<QUuid> &favourites) { methods.setFavourites(favourites); }

void ZIMServerData::applySettings(const INPUT_SETTING_T &changed)
{
    const bool other = changed.preferredInputMethodType != setting.preferredInputMethodType
        || changed.preferredInputLanguage != setting.preferredInputLanguage;
    setting = changed;
    sendSettings();
    if (other)
        select(methods.primary(setting), setting.preferredInputLanguage);
}

void ZIMServerData::sendSettings()
{
    SetSupportLanguageId languages;
    languages.preferred = setting.preferredInputLanguage;
    languages.secondary = setting.secondaryInputLanguage;
    runCommand(languages);
    PhraseCompletionSettingCmd completions;
    completions.wordCompletion = setting.wordCompletion;
    completions.nextWordPrediction = setting.nextWordPrediction;
    completions.userDictionary = setting.userDictionary;
    runCommand(completions);
    HWROptionCmd handwriting;
    handwriting.rightHand = setting.writingHand;
    handwriting.speed = setting.writingSpeed;
    handwriting.waterMark = setting.waterMark;
    runCommand(handwriting);
}

bool ZIMServerData::runCommand(const IMStateCmd &command)
{
    const InputMethodInfo *info = methods.find(current);
    if (!info || info->external || !host.isUp())
        return false;
    if (command.number == IMStateCmd::SetContext && !info->predictive)
        return false;
    host.run(command.number, command.pack());
    return true;
}

bool ZIMServer::IMSService::runCommand(IMStateCmd *command) { return command && m_server.runCommand(*command); }

// Text.

void ZIMServerData::type(const IM_KeyEventEx &event)
{
    if (findBar.isVisible() && (!event.typed().isEmpty() || event.qtKey() == Qt::Key_Backspace)) {
        findBar.type(event);
        return;
    }
    if (owner.editor != 0 && wanted) {
        QCopChannel::send(owner.channel, messages::kKeyEvent, encodeKeyEventEx(event));
        return;
    }
    const QScopedValueRollback typing(m_typing, true); // these pass the filter
    QList<uint> characters = event.typed().toUcs4();
    if (characters.isEmpty())
        characters.append(0);
    for (const uint character : characters) {
        for (const bool isPress : {true, false})
            QWSServer::sendKeyEvent(int(character), event.qtKey(), event.modifiers, isPress, false);
    }
}

bool ZIMServerData::isExternal() const
{
    const InputMethodInfo *info = methods.find(current);
    return info && info->external;
}

ZIMServerData::Taker ZIMServerData::takerOf(const ZInputMethodPlugin::HardKey &key) const
{
    constexpr int kFirstWithoutCharacter = 0x0100'0000; // of Qt::Key
    const bool hasCharacter = key.key < kFirstWithoutCharacter || key.key == Qt::Key_Backspace;
    const bool types = hasCharacter && !key.modifiers.testFlag(Qt::ControlModifier);
    const InputMethodInfo *info = methods.find(current);
    const bool takesKeys =
        info && !menu.isVisible() && info->keys && window != 0 && host.isReady() && state.keyboardFilterEnabled();
    // An editor drops the composition when its cursor moves: the method confirms it first, also the one that is only
    // on its way.
    if (takesKeys && (types || (m_composing && movesCursor(key.key))))
        return Taker::Method;
    return types && findBar.isVisible() ? Taker::FindBar : Taker::Application;
}

// A key is not split: its repeats and its release go where its press went.
bool ZIMServerData::takeKey(const ZInputMethodPlugin::HardKey &key)
{
    if (m_typing)
        return false;
    const bool isFirst = key.isPress && !key.autoRepeat;
    if (isFirst)
        m_taken.insert(key.key, takerOf(key));
    const Taker taker = key.isPress ? m_taken.value(key.key) : m_taken.take(key.key);
    if (taker == Taker::Method) {
        m_composing = m_composing || isFirst;
        host.hardKey(key);
    } else if (taker == Taker::FindBar && key.isPress) {
        findBar.type({characterOf(key), IM_KeyEventEx::keyCodeOf(key.key), 0, {}});
    }
    return taker != Taker::Application;
}

bool ZIMServerData::eventFilter(QObject * /*watched*/, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonRelease) {
        const auto *pen = static_cast<QMouseEvent *>(event);
        m_server.checkMouseEvent(pen->globalPosition().toPoint(), pen->buttons().toInt());
    }
    return false;
}

bool ZIMServer::IMSKeyboardFilter::filter(int unicode, int keycode, int modifiers, bool isPress, bool autoRepeat)
{
    return m_server.takeKey({unicode, keycode, Qt::KeyboardModifiers::fromInt(modifiers), isPress, autoRepeat});
}

void ZIMServerData::unconfirmed(const QString &text)
{
    m_composing = wanted && !text.isEmpty();
    if (owner.editor != 0 && wanted && !findBar.isVisible())
        QCopChannel::send(owner.channel, messages::kUnconfirmedText, wire::pack(text));
}

// What others call.

ZIMServer::ZIMServer(QObject *parent) : QObject(parent), d(std::make_unique<ZIMServerData>(*this)) { }

ZIMServer::~ZIMServer() = default;

void ZIMServer::selectInputMethod(const QUuid &method)
{
    if (!method.isNull() && method != d->current)
        selectInputMethod(method, d->language);
}

bool ZIMServer::selectInputMethod(const QUuid &method, unsigned int language)
{
    if (!d->methods.find(method))
        return false;
    d->methods.trust(method);
    d->host.restartNow();
    return d->select(method, language);
}

void ZIMServer::showInputWidget(const Owner &owner, int show, int inputType)
{
    if (show == 0) {
        if (owner.editor != d->owner.editor)
            return; // another one has it by now
        d->hideRequest = owner;
        d->hideTimer.start(kHideMs, this);
        return;
    }
    const Owner before = std::exchange(d->owner, owner);
    if (owner.editor != before.editor)
        d->findBar.clear();
    if (owner.window == 0 && owner.editor == before.editor)
        d->owner.window = before.window; // a tool does not know it
    if (d->wanted && before.editor != 0 && before.channel != owner.channel)
        QCopChannel::send(before.channel, messages::kHideInputWidget, wire::pack(before.editor, before.window, 0));
    setInputMethodOwner(owner.editor, d->owner.window, applicationOf(owner.channel));
    if (owner.editor != before.editor)
        d->state.setEditContext({}, 0, 0); // of the one before; this one tells its own when it is shown
    d->inputType = inputType;
    showKbd();
}

void ZIMServer::editorStateChanged(const Owner &owner, int state, int detail)
{
    if (owner.editor != d->owner.editor)
        return;
    SetEditContextCmd command;
    command.state = state;
    command.detail = detail;
    d->runCommand(command);
}

void ZIMServer::editorGone(int editor)
{
    if (editor != d->owner.editor)
        return;
    d->hide(messages::kHideInputWidget);
    d->away = false;
    d->owner = {};
    d->findBar.clear();
    setInputMethodOwner(0, 0, {});
}

void ZIMServer::setInputMethodOwner(int editor, int window, const QString &application)
{
    d->owner.editor = editor;
    d->owner.window = window;
    d->state.setCurrentOwner(editor, application);
}

bool ZIMServer::isExternalInputMethod(const QUuid &method) const
{
    const InputMethodInfo *info = d->methods.find(method);
    return info && info->external;
}

QString ZIMServer::externalInputMethodName(const QUuid &method) const
{
    return isExternalInputMethod(method) ? d->methods.find(method)->name : QString();
}

QUuid ZIMServer::createPrimaryInputMethodID(const INPUT_SETTING_T &setting) const
{
    return d->methods.primary(setting);
}

void ZIMServer::showKbd()
{
    d->host.keyboardWanted();
    d->show();
}

void ZIMServer::hideKbd()
{
    d->away = false;
    d->hide(messages::kHideInputWidget);
}

void ZIMServer::delayHideInputMethod()
{
    if (!d->hideRequest)
        return;
    hideKbd(); // clears the request
    d->releaseTimer.start(kReleaseMs, this);
}

void ZIMServer::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == d->hideTimer.timerId()) {
        d->hideTimer.stop();
        delayHideInputMethod();
    } else if (event->timerId() == d->releaseTimer.timerId()) {
        d->releaseTimer.stop();
        d->host.release();
    }
}

void ZIMServer::sendKey(unsigned short unicode, unsigned short keycode, unsigned short modifiers)
{
    d->type({unicode, keycode, modifiers, {}});
}

IM_KeyEventEx ZIMServer::translateKeyEventEx(QDataStream &stream, bool &complete)
{
    return decodeKeyEventEx(stream, complete);
}

QRect ZIMServer::inputWidgetRect() const
{
    if (d->strip.isHidden())
        return {};
    const int above = d->findBar.isHidden() ? 0 : FindBar::kHeight;
    return d->strip.geometry().adjusted(0, -above, 0, d->height);
}

int ZIMServer::currentIMWinId() const { return d->window; }

bool ZIMServer::getInputSetting(INPUT_SETTING_T &setting)
{
    setting = settings::loadInputSetting();
    return true;
}

bool ZIMServer::setDefaultInputSetting() { return settings::saveInputSetting({}); }

bool ZIMServer::setInputSetting(const INPUT_SETTING_T &setting) { return settings::saveInputSetting(setting); }

void ZIMServer::slotKbMenu()
{
    d->menu.clear();
    const QList<InputMethodInfo> offered = d->methods.offered();
    for (int i = 0; i < offered.size(); ++i) {
        QString name = offered.at(i).name;
        QAction *entry = d->menu.addAction(name.replace(u'&', QStringLiteral("&&")));
        entry->setCheckable(true);
        entry->setChecked(offered.at(i).id == d->current);
        connect(entry, &QAction::triggered, this, [this, i] { slotSelectMenu(i); });
    }
    d->menu.addSeparator();
    connect(d->menu.addAction(tr("Hide")), &QAction::triggered, this, &ZIMServer::slotHideKbd);
    const QPoint corner = d->strip.mapToGlobal(QPoint(0, 0));
    d->menu.popup(QPoint(corner.x(), corner.y() - d->menu.sizeHint().height()));
}

void ZIMServer::slotSelectMenu(int entry)
{
    const QList<InputMethodInfo> offered = d->methods.offered();
    if (entry >= 0 && entry < offered.size())
        selectInputMethod(offered.at(entry).id, d->language);
}

void ZIMServer::slotHideKbd() { hideKbd(); }

void ZIMServer::checkMouseEvent(const QPoint &position, int /*buttons*/)
{
    if (d->window != 0 && inputWidgetRect().contains(position))
        d->host.touched();
}
