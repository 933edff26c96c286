#include "platform/windowserver/windowids.h"

#include <QWaylandCompositor>
#include <QWaylandSurface>
#include <limits>

WindowIds::WindowIds(QWaylandCompositor *compositor) : QWaylandCompositorExtensionTemplate<WindowIds>(compositor) { }

void WindowIds::initialize()
{
    QWaylandCompositorExtensionTemplate<WindowIds>::initialize();
    init(static_cast<QWaylandCompositor *>(extensionContainer())->display(), 1);
}

// Ranges are handed out upwards and come round again only after half a million clients.
void WindowIds::tyx_windows_v1_bind_resource(Resource *resource)
{
    const QList<int> taken = m_firsts.values();
    const auto advance = [this] {
        constexpr int last = std::numeric_limits<int>::max() - 2 * kRange;
        m_next = m_next > last ? kRange : m_next + kRange;
    };
    while (taken.contains(m_next))
        advance();
    m_firsts.insert(resource, m_next);
    send_range(resource->handle, m_next, kRange);
    advance();
}

void WindowIds::tyx_windows_v1_destroy_resource(Resource *resource) { m_firsts.remove(resource); }

bool WindowIds::owns(Resource *resource, int id)
{
    const int first = m_firsts.value(resource);
    if (id >= first && id - first < kRange)
        return true;
    wl_resource_post_error(resource->handle, error_invalid_id, "window identifier %d is outside your range", id);
    return false;
}

void WindowIds::tyx_windows_v1_identify(
    Resource *resource, wl_resource *surface, int32_t id, const QString &name, uint32_t traits)
{
    if (owns(resource, id))
        Q_EMIT identified(QWaylandSurface::fromResource(surface), {id, name, (traits & trait_modal) != 0});
}

void WindowIds::tyx_windows_v1_forget(Resource *resource, int32_t id)
{
    if (owns(resource, id))
        Q_EMIT forgotten(id);
}
