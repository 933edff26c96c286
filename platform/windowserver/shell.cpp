#include "platform/windowserver/shell.h"

#include <QPointer>

#include <QWaylandCompositor>

namespace {

// Positions and sizes come from the client; sums of them must not overflow.
constexpr int kFarthest = 1 << 20;

constexpr qsizetype kUnacknowledged = 16; // configures remembered of a client that is slow to answer

int sane(int value) { return std::clamp(value, -kFarthest, kFarthest); }

}

ShellSurface::ShellSurface(QWaylandSurface *surface, wl_client *client, uint32_t id, int version)
    : zqt_shell_surface_v1(client, id, version), m_surface(surface), m_compositor(surface->compositor())
{
    send_set_capabilities(0); // nobody drags windows about on this screen
}

QWaylandSurfaceRole *ShellSurface::role()
{
    static QWaylandSurfaceRole role("zqt_shell_surface_v1");
    return &role;
}

Qt::WindowType ShellSurface::type() const
{
    return static_cast<Qt::WindowType>((m_flags & Qt::WindowType_Mask).toInt());
}

void ShellSurface::configure(const QRect &geometry, Qt::WindowStates states)
{
    const uint32_t serial = m_compositor->nextSerial();
    m_settled = false;
    m_given.append({serial, geometry.topLeft()});
    if (m_given.size() > kUnacknowledged)
        m_given.removeFirst();
    send_set_position(serial, geometry.x(), geometry.y());
    send_resize(serial, geometry.width(), geometry.height());
    send_set_window_state(serial, static_cast<uint32_t>(states.toInt()));
    send_configure(serial);
    wl_client_flush(resource()->client());
}

void ShellSurface::requestClose()
{
    send_close();
    wl_client_flush(resource()->client());
}

void ShellSurface::zqt_shell_surface_v1_destroy_resource(Resource *)
{
    Q_EMIT gone();
    delete this;
}

void ShellSurface::zqt_shell_surface_v1_destroy(Resource *resource) { wl_resource_destroy(resource->handle); }

void ShellSurface::zqt_shell_surface_v1_reposition(Resource *, int32_t x, int32_t y)
{
    const QPoint position(sane(x), sane(y));
    // Where an earlier configure put it, while a later one is on its way: the client only repeats what it heard.
    for (qsizetype i = 0; i + 1 < m_given.size(); ++i) {
        if (m_given.at(i).position == position)
            return;
    }
    m_wanted.moveTo(position);
    Q_EMIT wishesChanged();
}

void ShellSurface::zqt_shell_surface_v1_request_activate(Resource *) { Q_EMIT activationRequested(); }

void ShellSurface::zqt_shell_surface_v1_set_size(Resource *, int32_t width, int32_t height)
{
    m_wanted.setSize({std::max(0, sane(width)), std::max(0, sane(height))});
    Q_EMIT wishesChanged();
}

void ShellSurface::zqt_shell_surface_v1_set_window_title(Resource *, const QString &title)
{
    m_title = title;
    Q_EMIT titleChanged();
}

void ShellSurface::zqt_shell_surface_v1_set_window_flags(Resource *, uint32_t flags)
{
    m_flags = Qt::WindowFlags::fromInt(static_cast<int>(flags));
    Q_EMIT wishesChanged();
}

void ShellSurface::zqt_shell_surface_v1_change_window_state(Resource *, uint32_t state)
{
    const auto states = Qt::WindowStates::fromInt(static_cast<int>(state));
    if (states.testFlag(Qt::WindowMinimized)) {
        Q_EMIT minimised();
        return;
    }
    m_states = states;
    Q_EMIT wishesChanged();
}

void ShellSurface::zqt_shell_surface_v1_raise(Resource *) { Q_EMIT raiseRequested(); }

void ShellSurface::zqt_shell_surface_v1_lower(Resource *) { Q_EMIT lowerRequested(); }

void ShellSurface::zqt_shell_surface_v1_ack_configure(Resource *, uint32_t serial)
{
    while (m_given.size() > 1 && m_given.first().serial <= serial)
        m_given.removeFirst();
    m_acknowledged = true;
    m_settled = m_given.isEmpty() || m_given.last().serial <= serial;
    if (!m_given.isEmpty())
        m_wanted.moveTo(m_given.last().position); // not every client says so itself; a later request is its own wish
}

Shell::Shell(QWaylandCompositor *compositor) : QWaylandCompositorExtensionTemplate<Shell>(compositor) { }

void Shell::initialize()
{
    QWaylandCompositorExtensionTemplate<Shell>::initialize();
    init(static_cast<QWaylandCompositor *>(extensionContainer())->display(), 1);
}

void Shell::zqt_shell_v1_surface_create(Resource *resource, wl_resource *surfaceResource, uint32_t id)
{
    QWaylandSurface *surface = QWaylandSurface::fromResource(surfaceResource);
    if (m_taken.contains(surface)) {
        wl_resource_post_error(resource->handle, error_role, "the surface is a window already");
        return;
    }
    if (!surface->setRole(ShellSurface::role(), resource->handle, error_role))
        return;
    auto *shell = new ShellSurface(surface, resource->client(), id, resource->version());
    m_taken.insert(surface);
    // Either may go first, and another surface may come to stand at the same address.
    connect(surface, &QObject::destroyed, this, [this, surface] { m_taken.remove(surface); });
    connect(shell, &ShellSurface::gone, this, [this, living = QPointer(surface)] { m_taken.remove(living); });
    Q_EMIT surfaceCreated(shell);
}
