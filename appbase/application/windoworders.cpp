#include "appbase/application/windoworders.h"

#include "appbase/application/inputmessages.h"
#include "appbase/application/zapplication.h"
#include "appbase/messaging/queuefile.h"
#include "appbase/messaging/wire.h"
#include "platform/bus/busbroker.h"
#include "platform/bus/qcopchannel.h"
#include "platform/window/qwsserver.h"

#include <QSet>
#include <QWidget>
#include <algorithm>

namespace {

using Windows = QList<QWSWindow *>;

QSet<pid_t> processesOf(const QCString &channel)
{
    QSet<pid_t> processes;
    if (const platform::BusBroker *broker = platform::BusBroker::hosted()) {
        for (const auto &[name, pid] : broker->registrations()) {
            if (name == channel)
                processes.insert(static_cast<pid_t>(pid));
        }
    }
    return processes;
}

// Front first. A program that is not on the bus is known by what it calls its windows.
Windows windowsOf(const QString &application, const QCString &channel)
{
    const QSet<pid_t> processes = processesOf(channel);
    Windows windows = QWSServer::instance()->clientWindows();
    windows.removeIf([&](const QWSWindow *window) {
        return window->isPopup() || !(processes.contains(window->clientPid()) || window->name() == application);
    });
    return windows;
}

// From the last to the first: they keep their order among each other.
void raiseAll(const Windows &windows)
{
    std::for_each(windows.crbegin(), windows.crend(), [](QWSWindow *window) { window->raise(); });
}

void lowerAll(const Windows &windows)
{
    std::for_each(windows.cbegin(), windows.cend(), [](QWSWindow *window) { window->lower(); });
}

void focusFirst(const Windows &windows, int except = 0)
{
    const QWSServer &server = *QWSServer::instance();
    for (QWSWindow *window : windows) {
        if (window->isPopup() || window->winId() == except)
            continue;
        window->setActiveWindow();
        // A modal dialog stands in for its program's other windows.
        const QWSWindow *active = server.activeWindow();
        if (active && active->clientPid() == window->clientPid() && active->winId() != except)
            return;
    }
}

void sendOrder(const QCString &channel, int operation, const Windows &windows)
{
    QValueList<int> identifiers;
    for (const QWSWindow *window : windows)
        identifiers.append(window->winId());
    QCopChannel::send(channel, messages::kObeyWindowOrder, wire::pack(operation, identifiers));
}

// Not by the virtual functions: a dialog that is hidden by them takes it for its end.
void hide(QWidget &widget, QList<QPointer<QWidget>> &hidden)
{
    if (!widget.isVisible())
        return;
    hidden.append(&widget);
    widget.QWidget::setVisible(false);
}

void show(QWidget &widget, QList<QPointer<QWidget>> &hidden)
{
    const ZApplication *application = ZApplication::instance();
    const bool isMain = application && application->mainWidget() == &widget;
    if (hidden.removeAll(&widget) > 0 || isMain)
        widget.QWidget::setVisible(true);
}

void close(QWidget &widget, QList<QPointer<QWidget>> &hidden)
{
    if (hidden.removeAll(&widget) > 0 || widget.isVisible())
        widget.close();
}

using Action = void (*)(QWidget &, QList<QPointer<QWidget>> &);

Action actionFor(int operation)
{
    switch (operation) {
    case ZApplication::HideWindows:
        return &hide;
    case ZApplication::ShowWindows:
        return &show;
    case ZApplication::CloseWindows:
        return &close;
    default:
        return nullptr;
    }
}

}

void windoworders::give(int operation, const QString &application)
{
    if (!QWSServer::instance() || application.isEmpty())
        return;
    const QCString channel = queue::kApplicationChannels.toByteArray() + application.toLocal8Bit();
    const Windows windows = windowsOf(application, channel);
    switch (operation) {
    case ZApplication::RaiseWindows:
        raiseAll(windows);
        break;
    case ZApplication::LowerWindows:
        lowerAll(windows);
        break;
    case ZApplication::FocusWindows:
        focusFirst(windows);
        break;
    case ZApplication::HideWindows:
    case ZApplication::ShowWindows:
    case ZApplication::CloseWindows:
        sendOrder(channel, operation, windows);
        break;
    default:
        break;
    }
}

void windoworders::focusLatest(const QList<int> &byUse, int except)
{
    const QWSServer *server = QWSServer::instance();
    if (!server)
        return;
    QList<QWSWindow *> windows; // those that never had the focus come last, the frontmost first
    for (const int id : byUse) {
        if (QWSWindow *window = server->window(id))
            windows.append(window);
    }
    for (QWSWindow *window : server->clientWindows()) {
        if (!windows.contains(window))
            windows.append(window);
    }
    focusFirst(windows, except);
}

void WindowOrders::obey(int operation, const QValueList<int> &windows)
{
    const Action action = actionFor(operation);
    if (!action)
        return;
    QList<QPointer<QWidget>> widgets; // what happens to one may destroy others
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (const int id = QWSApplication::windowId(widget); id != 0 && windows.contains(id))
            widgets.append(widget);
    }
    m_hidden.removeAll(nullptr);
    for (const QPointer<QWidget> &widget : widgets) {
        if (widget)
            action(*widget, m_hidden);
    }
}
