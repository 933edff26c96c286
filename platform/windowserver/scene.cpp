#include "platform/windowserver/scene.h"

#include "platform/window/qwsserver.h"
#include "platform/windowserver/shell.h"
#include "platform/windowserver/surfaceview.h"

#include <QWaylandClient>
#include <QWaylandSurface>
#include <algorithm>
#include <iterator>
#include <wayland-server-core.h>

namespace {

// More than any program shows, and few enough that one client cannot keep the server busy with stacking.
constexpr std::ptrdiff_t kMaxWindowsPerClient = 200;

}

Scene::Scene(QWSServer &server, QWidget *screen)
    : m_server(server), m_screen(screen), m_surroundings{screen->rect(), screen->rect()}
{
}

Scene::~Scene() = default;

void Scene::surfaceCreated(ShellSurface *shell)
{
    // The client's first messages arrive together; acting after all of them, the window has its flags and its name.
    QMetaObject::invokeMethod(
        this,
        [this, shell = QPointer<ShellSurface>(shell)] {
            if (shell && shell->surface())
                adopt(shell);
        },
        Qt::QueuedConnection);
}

void Scene::adopt(ShellSurface *shell)
{
    const auto sameClient = [shell](const auto &window) { return window->client() == shell->surface()->client(); };
    if (std::count_if(m_windows.begin(), m_windows.end(), sameClient) >= kMaxWindowsPerClient) {
        wl_client_post_no_memory(shell->surface()->waylandClient());
        return;
    }
    WindowLabel label = m_labels.value(shell->surface());
    if (label.id == 0)
        label = serverLabel();
    if (label.id == 0)
        return; // all numbers are given away
    attach(windowFor(shell->surface()->client(), label), shell);
}

void Scene::surfaceIdentified(QWaylandSurface *surface, const WindowLabel &label)
{
    if (!m_labels.contains(surface))
        connect(surface, &QObject::destroyed, this, [this, surface] { m_labels.remove(surface); });
    m_labels.insert(surface, label);
    const auto shows = [surface](const auto &window) { return window->surface() == surface; };
    const auto found = std::find_if(m_windows.begin(), m_windows.end(), shows);
    if (found == m_windows.end())
        return; // comes with the role
    ClientWindow &window = **found;
    if (window.winId() == label.id) {
        if (window.setLabel(label))
            Q_EMIT m_server.windowEvent(&window, QWSServer::Name);
        return;
    }
    // The identifier came late: the window was taken for one of a program that does not give any.
    ShellSurface *shell = window.shell();
    release(window);
    attach(windowFor(surface->client(), label), shell);
}

void Scene::windowForgotten(int id)
{
    if (ClientWindow *window = windowById(id))
        destroy(*window);
}

void Scene::clientSeen(QWaylandClient *client)
{
    if (m_clients.contains(client))
        return;
    m_clients.insert(client);
    connect(client, &QObject::destroyed, this, [this, client] {
        m_clients.remove(client);
        clientGone(client);
    });
}

void Scene::clientGone(const QWaylandClient *client)
{
    const auto ofClient = [client](const auto &window) { return window->client() == client; };
    // Off the stack all at once: the focus must not pass to another window of a client that is no more.
    QList<ClientWindow *> dying;
    std::copy_if(m_stack.cbegin(), m_stack.cend(), std::back_inserter(dying), ofClient);
    m_stack.removeIf(ofClient);
    for (ClientWindow *window : dying)
        disappeared(*window);
    for (;;) { // a slot may change the list
        const auto found = std::find_if(m_windows.begin(), m_windows.end(), ofClient);
        if (found == m_windows.end())
            return;
        destroy(**found);
    }
}

ClientWindow *Scene::windowById(int id) const
{
    const auto matches = [id](const auto &window) { return window->winId() == id; };
    const auto found = std::find_if(m_windows.begin(), m_windows.end(), matches);
    return found == m_windows.end() ? nullptr : found->get();
}

ClientWindow &Scene::windowFor(QWaylandClient *client, const WindowLabel &label)
{
    if (ClientWindow *known = windowById(label.id)) {
        known->setLabel(label);
        return *known;
    }
    m_windows.push_back(std::make_unique<ClientWindow>(*this, client, label));
    ClientWindow &window = *m_windows.back();
    Q_EMIT m_server.windowEvent(&window, QWSServer::Create);
    return window;
}

WindowLabel Scene::serverLabel() const
{
    int id = 1;
    while (id < WindowIds::kRange && windowById(id))
        ++id;
    return id < WindowIds::kRange ? WindowLabel{id, {}, false} : WindowLabel{};
}

void Scene::attach(ClientWindow &window, ShellSurface *shell)
{
    // When a client shows one window by two surfaces the last one counts.
    if (window.isVisible())
        disappeared(window);
    if (window.shell())
        window.unshow();
    auto view = std::make_unique<SurfaceView>(shell->surface(), m_output, m_screen);
    SurfaceView &shown = *view;
    follow(window, shell, shown);
    window.show(shell, std::move(view));
    place(window);
    shown.refresh();
}

// The view is the context: what the shell says after the view is gone concerns no window.
void Scene::follow(ClientWindow &window, ShellSurface *shell, SurfaceView &view)
{
    connect(&view, &SurfaceView::contentChanged, this, [this, &window](bool has) { contentChanged(window, has); });
    connect(&view, &SurfaceView::resized, this, [this, &window] { place(window); });
    connect(&view, &SurfaceView::redrawn, this, &Scene::redrawn);
    connect(&view, &SurfaceView::pressed, this, [this, &window] { pressed(window); });

    connect(shell, &ShellSurface::wishesChanged, &view, [this, &window] { wishesChanged(window); });
    connect(shell, &ShellSurface::titleChanged, &view, [this, &window] {
        if (window.updateCaption())
            Q_EMIT m_server.windowEvent(&window, QWSServer::Name);
    });
    connect(shell, &ShellSurface::raiseRequested, &view, [this, &window] { raise(window); });
    connect(shell, &ShellSurface::lowerRequested, &view, [this, &window] { lower(window); });
    connect(shell, &ShellSurface::minimised, &view, [this, &window] { lower(window); });
    connect(shell, &ShellSurface::activationRequested, &view, [this, &window] {
        // Comes with every change of focus inside a client, so only the one in front is heard.
        if (m_active && m_active->client() == window.client())
            activate(window);
    });
    connect(shell, &ShellSurface::gone, &view, [this, &window] { release(window); });
}

void Scene::release(ClientWindow &window)
{
    const bool foreign = window.winId() < WindowIds::kRange;
    if (window.isVisible())
        disappeared(window);
    window.unshow();
    if (foreign)
        destroy(window);
}

void Scene::destroy(ClientWindow &window)
{
    if (m_stack.contains(&window))
        disappeared(window);
    Q_EMIT m_server.windowEvent(&window, QWSServer::Destroy);
    std::erase_if(m_windows, [&window](const auto &owned) { return owned.get() == &window; });
}

void Scene::contentChanged(ClientWindow &window, bool hasContent)
{
    if (hasContent)
        appeared(window);
    else
        disappeared(window);
}

void Scene::wishesChanged(ClientWindow &window)
{
    place(window);
    if (window.isVisible())
        restack(); // it may fill the screen now, or no longer
}

void Scene::place(ClientWindow &window)
{
    if (!window.place(m_surroundings))
        return;
    Q_EMIT m_server.windowEvent(&window, QWSServer::Geometry);
    Q_EMIT rearranged();
}

void Scene::setWorkArea(const QRect &area)
{
    const QRect inside = area & m_surroundings.screen;
    if (inside.isEmpty() || inside == m_surroundings.workArea)
        return;
    m_surroundings.workArea = inside;
    for (ClientWindow *window : shown())
        place(*window);
}

QList<QWSWindow *> Scene::windows() const
{
    QList<QWSWindow *> all(m_stack.crbegin(), m_stack.crend());
    for (const auto &window : m_windows) {
        if (!m_stack.contains(window.get()))
            all.append(window.get());
    }
    return all;
}
