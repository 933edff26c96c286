// The part of the application object that sees input first.
#include "appbase/application/inputfilters.h"

#include "appbase/application/zapplication.h"
#include "appbase/application/zapplication_p.h"

#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QWidget>

bool InputFilters::filter(QObject &watched, QEvent &event)
{
    switch (event.type()) {
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        // At the widget and not at its window: there the GUI server takes a display's keys for its clients.
        return m_hardKeysEnabled && watched.isWidgetType() && filterKey(static_cast<QKeyEvent &>(event));
    default:
        return false;
    }
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
