// The part of the application object that sees input first.
#include "appbase/application/inputfilters.h"

#include "appbase/application/phonestatus.h"
#include "appbase/application/zapplication.h"
#include "appbase/application/zapplication_p.h"
#include "platform/window/windowserverbackend.h"

#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QWidget>

namespace {

// One for each time that the pen goes down: at the window, which sees every press once. In the GUI server the pen may
// go down on a client's window, and then the client makes the sound.
bool isPenOnOwnWidget(const QObject &watched, const QEvent &event)
{
    if (event.type() != QEvent::MouseButtonPress || !watched.isWindowType() || !event.spontaneous())
        return false;
    const auto &mouse = static_cast<const QMouseEvent &>(event);
    if (mouse.button() != Qt::LeftButton)
        return false;
    if (QWSApplication::type() != QWSApplication::GuiServer)
        return true;
    const QWidget *target = QApplication::widgetAt(mouse.globalPosition().toPoint());
    return target && !target->property(kClientSurface).toBool();
}

}

InputFilters::InputFilters(ZApplication &application) : m_application(application), m_pressHold(application) { }

void InputFilters::stop()
{
    m_pressHold.stop();
    m_waitingCursor.clear();
}

bool InputFilters::filter(QObject &watched, QEvent &event)
{
    switch (event.type()) {
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        // At the widget and not at its window: there the GUI server takes a display's keys for its clients.
        return m_hardKeysEnabled && watched.isWidgetType() && filterKey(static_cast<QKeyEvent &>(event));
    default:
        break;
    }
    if (isPenOnOwnWidget(watched, event))
        m_touchSound.play();
    return watched.isWidgetType() && filterWidget(static_cast<QWidget &>(watched), event);
}

bool InputFilters::filterWidget(QWidget &watched, QEvent &event)
{
    if ((event.type() == QEvent::WindowActivate || event.type() == QEvent::Resize) && watched.isWindow())
        m_waitingCursor.follow();
    return m_pressHold.filter(watched, event);
}

bool InputFilters::filterKey(QKeyEvent &event)
{
    const bool swallowed = event.type() == QEvent::ShortcutOverride
        ? isHardKey(event.key()) // accepted, it triggers no shortcut
        : m_application.hardKeyEventFilter(&event);
    if (swallowed)
        event.accept();
    return swallowed;
}

bool ZApplication::eventFilter(QObject *watched, QEvent *event)
{
    return d->input.filter(*watched, *event) || QWSApplication::eventFilter(watched, event);
}

void ZApplication::enableHardKeyEventFilter(bool on) { d->input.enableHardKeys(on); }

bool ZApplication::hardKeyEventFilter(QKeyEvent *event) { return d->input.hardKeys().filter(*event); }

void ZApplication::timerEvent(QTimerEvent *event)
{
    if (!d->input.timer(*event))
        QWSApplication::timerEvent(event);
}

void ZApplication::showWaitingCursor() { d->input.waitingCursor().show(); }

void ZApplication::hideWaitingCursor() { d->input.waitingCursor().hide(); }

void ZApplication::createTouchSoundMsgQueue()
{
    d->getTouchPanelSoundInfo();
    d->input.touchSound().open();
}

void ZApplicationData::getTouchPanelSoundInfo() { input.touchSound().set(touchPanelSoundInfo()); }

void ZApplicationData::getHardKeySoundInfo() { QWSTyxButtonsHandler::reloadKeySound(); }

void ZApplicationData::onUpdateTouchPanelSoundInfo(const QByteArray & /*arguments*/) { getTouchPanelSoundInfo(); }

void ZApplicationData::onHardkeySoundChanged(const QByteArray & /*arguments*/) { getHardKeySoundInfo(); }

void ZApplication::insertStr(QWSEvent *event)
{
    const QWSKeyEvent *key = event ? event->asKey() : nullptr;
    QWidget *focus = focusWidget();
    if (!key || !key->isPress || key->text.isEmpty() || !focus)
        return;
    QInputMethodEvent commit;
    commit.setCommitString(key->text);
    sendEvent(focus, &commit);
}
