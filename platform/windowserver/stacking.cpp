// The part of the scene that decides which window lies over which, and which one has the focus.
#include "platform/window/qwsserver.h"
#include "platform/windowserver/scene.h"
#include "platform/windowserver/shell.h"
#include "platform/windowserver/surfaceview.h"

#include <QWaylandClient>
#include <algorithm>
#include <iterator>

namespace {

bool isDialog(const ClientWindow &window) { return window.kind() == WindowKind::Dialog; }

// Widgets of the server itself that stand on the screen: everything but the clients' surfaces.
QWidgetList serverWidgets(const QWidget *screen)
{
    QWidgetList widgets;
    for (QObject *child : screen->children()) {
        auto *widget = qobject_cast<QWidget *>(child);
        if (widget && !widget->isWindow() && !qobject_cast<SurfaceView *>(widget))
            widgets.append(widget);
    }
    return widgets;
}

// Where in the stack the server's widgets go: below the window that fills the screen, when nothing but dialogs and
// windows that stay on top lie over it.
qsizetype serverWidgetsIndex(const QList<ClientWindow *> &stack)
{
    qsizetype above = stack.size();
    while (above > 0 && stack.at(above - 1)->isPopup())
        --above;
    for (qsizetype i = above - 1; i >= 0; --i) {
        const ClientWindow &window = *stack.at(i);
        if (window.isFullScreen())
            return i;
        if (!isDialog(window) && !window.staysOnTop())
            break;
    }
    return above;
}

// Restacking repaints, so only a wrong order is touched.
void applyOrder(const QWidget *screen, const QWidgetList &backToFront)
{
    QWidgetList now;
    for (QObject *child : screen->children()) {
        auto *widget = qobject_cast<QWidget *>(child);
        if (widget && backToFront.contains(widget))
            now.append(widget);
    }
    if (now == backToFront)
        return;
    for (QWidget *widget : backToFront)
        widget->raise();
}

}

// A dialog is never below the windows of its client, not even below those that stay on top.
int Scene::layerOf(const ClientWindow &window) const
{
    if (window.isPopup())
        return 2;
    const auto lifts = [&window](const ClientWindow *other) {
        return other->client() == window.client() && other->staysOnTop() && !other->isPopup();
    };
    const bool lifted = isDialog(window) && std::any_of(m_stack.cbegin(), m_stack.cend(), lifts);
    return window.staysOnTop() || lifted ? 1 : 0;
}

// The index behind which the window is in front of all others of its layer.
qsizetype Scene::placeOnTopOf(const ClientWindow &window) const
{
    const int layer = layerOf(window);
    const auto notHigher = [this, layer](const ClientWindow *other) { return layerOf(*other) <= layer; };
    return m_stack.crend() - std::find_if(m_stack.crbegin(), m_stack.crend(), notHigher);
}

// With the dialogs of its client.
void Scene::putInFront(ClientWindow &window)
{
    QList<ClientWindow *> moving{&window};
    if (!isDialog(window) && !window.isPopup()) {
        std::copy_if(
            m_stack.cbegin(), m_stack.cend(), std::back_inserter(moving), [&window](const ClientWindow *other) {
                return other != &window && other->client() == window.client() && isDialog(*other);
            });
    }
    for (ClientWindow *each : moving) {
        m_stack.removeOne(each);
        m_stack.insert(placeOnTopOf(*each), each);
    }
}

// A dialog of a program in the background stays with that program's windows, if it has any.
bool Scene::intrudes(const ClientWindow &window) const
{
    if (!isDialog(window) || !m_active || m_active->client() == window.client())
        return false;
    const auto sibling = [&window](const ClientWindow *other) {
        return other != &window && other->client() == window.client() && !other->isPopup();
    };
    return std::any_of(m_stack.cbegin(), m_stack.cend(), sibling);
}

void Scene::appeared(ClientWindow &window)
{
    const bool background = intrudes(window);
    if (background) {
        const auto last = std::find_if(m_stack.crbegin(), m_stack.crend(),
            [&window](const ClientWindow *other) { return other->client() == window.client() && !other->isPopup(); });
        m_stack.insert(m_stack.crend() - last, &window);
    } else {
        putInFront(window);
    }
    Q_EMIT m_server.windowEvent(&window, QWSServer::Show);
    place(window);
    restack();
    if (!background)
        activate(window);
}

void Scene::disappeared(ClientWindow &window)
{
    m_stack.removeOne(&window);
    if (m_active == &window)
        setActive(frontmostForFocus());
    Q_EMIT m_server.windowEvent(&window, QWSServer::Hide);
    restack();
}

void Scene::raise(ClientWindow &window)
{
    if (!window.isVisible())
        return;
    putInFront(window);
    restack();
    Q_EMIT m_server.windowEvent(&window, QWSServer::Raise);
    activate(window);
}

// The dialogs of its client go along; a dialog takes all of its client along, which may be waiting for it.
void Scene::lower(ClientWindow &window)
{
    if (!window.isVisible() || window.isPopup())
        return;
    const auto goesAlong = [&window](const ClientWindow *other) {
        return other == &window
            || (other->client() == window.client() && (isDialog(*other) || (isDialog(window) && !other->isPopup())));
    };
    std::stable_partition(m_stack.begin(), m_stack.end(), goesAlong);
    if (!isDialog(window))
        m_stack.move(m_stack.indexOf(&window), 0);
    restack();
    Q_EMIT m_server.windowEvent(&window, QWSServer::Lower);
    setActive(frontmostForFocus());
}

void Scene::stackUnder(ClientWindow &window, ClientWindow &above)
{
    if (!window.isVisible() || !above.isVisible())
        return;
    m_stack.removeOne(&window);
    m_stack.insert(m_stack.indexOf(&above), &window);
    restack();
    Q_EMIT m_server.windowEvent(&window, QWSServer::Lower);
}

void Scene::activate(ClientWindow &window)
{
    if (!window.isVisible() || !window.takesFocus())
        return;
    ClientWindow *modal = modalFor(window.client());
    setActive(modal ? modal : &window);
}

void Scene::setActive(ClientWindow *window)
{
    if (m_active == window)
        return;
    m_active = window;
    Q_EMIT activeChanged(window);
    if (!window)
        return;
    closePopups(window->client());
    Q_EMIT m_server.windowEvent(window, QWSServer::Active);
}

ClientWindow *Scene::modalFor(const QWaylandClient *client) const
{
    const auto found = std::find_if(m_stack.crbegin(), m_stack.crend(), [client](const ClientWindow *window) {
        return window->client() == client && window->isModal() && window->takesFocus();
    });
    return found == m_stack.crend() ? nullptr : *found;
}

ClientWindow *Scene::frontmostForFocus() const
{
    const auto found = std::find_if(
        m_stack.crbegin(), m_stack.crend(), [](const ClientWindow *window) { return window->takesFocus(); });
    if (found == m_stack.crend())
        return nullptr;
    ClientWindow *modal = modalFor((*found)->client());
    return modal ? modal : *found;
}

void Scene::pressed(ClientWindow &window)
{
    closePopups(window.client());
    if (window.takesFocus() && &window != m_active)
        raise(window);
}

// A client closes its own pop-ups when it is clicked beside them; what happens elsewhere it does not see.
void Scene::closePopups(const QWaylandClient *except)
{
    for (ClientWindow *window : shown()) {
        if (window->kind() == WindowKind::Popup && window->client() != except)
            window->close();
    }
}

void Scene::restack()
{
    QWidgetList order;
    for (const ClientWindow *window : m_stack)
        order.append(window->view());
    const QWidgetList own = serverWidgets(m_screen);
    for (qsizetype i = 0, at = serverWidgetsIndex(m_stack); i < own.size(); ++i)
        order.insert(at + i, own.at(i));
    applyOrder(m_screen, order);
    Q_EMIT rearranged();
}
