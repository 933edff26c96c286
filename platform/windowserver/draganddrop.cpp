#include "platform/windowserver/draganddrop.h"

#include "platform/windowserver/surfaceview.h"

#include <QGuiApplication>
#include <QWaylandClient>
#include <QWaylandDestroyListener>
#include <QWaylandDrag>
#include <QWaylandSeat>
#include <QWaylandSurface>
#include <algorithm>
#include <cstring>
#include <wayland-server-protocol.h>

namespace {

std::vector<wl_resource *> resourcesOf(wl_client *client, const char *interface)
{
    struct Search {
        const char *interface;
        std::vector<wl_resource *> found;
    } search{interface, {}};
    const auto collect = [](wl_resource *resource, void *data) {
        auto &ask = *static_cast<Search *>(data);
        if (std::strcmp(wl_resource_get_class(resource), ask.interface) == 0)
            ask.found.push_back(resource);
        return WL_ITERATOR_CONTINUE;
    };
    wl_client_for_each_resource(client, collect, &search);
    return search.found;
}

}

DragAndDrop::DragAndDrop(QWaylandSeat &seat, QWaylandOutput *output, QWidget *screen)
    : m_seat(seat), m_output(output), m_screen(screen)
{
    connect(seat.drag(), &QWaylandDrag::dragStarted, this, &DragAndDrop::begin);
}

DragAndDrop::~DragAndDrop() = default;

void DragAndDrop::begin()
{
    cancel();
    QWaylandSurface *origin = m_seat.drag()->origin();
    const QWaylandView *pressed = m_seat.mouseFocus();
    const bool hasPen = origin && pressed && pressed->surface() && pressed->surface()->client() == origin->client();
    if (!hasPen || QGuiApplication::mouseButtons() == Qt::NoButton)
        return; // it went up meanwhile
    m_client = origin->waylandClient();
    // Before its resources go: the library would still say goodbye to one of them.
    m_clientGone = connect(origin->client(), &QObject::destroyed, this, &DragAndDrop::cancel);
    for (wl_resource *source : resourcesOf(m_client, "wl_data_source"))
        watch(source);
    if (QWaylandSurface *icon = m_seat.drag()->icon()) {
        m_icon = std::make_unique<SurfaceView>(icon, m_output, m_screen);
        m_icon->setAttribute(Qt::WA_TransparentForMouseEvents);
        m_icon->refresh();
    }
}

void DragAndDrop::StopListening::operator()(QWaylandDestroyListener *listener) const
{
    listener->reset();
    delete listener;
}

// The library goes on using what is dragged when its client has destroyed it.
void DragAndDrop::watch(wl_resource *source)
{
    Listener listener(new QWaylandDestroyListener);
    listener->listenForDestruction(source);
    connect(listener.get(), &QWaylandDestroyListener::fired, this, [this, fired = listener.get()] {
        fired->reset();
        m_sourceGone = true;
    });
    m_sources.push_back(std::move(listener));
}

bool DragAndDrop::move(QPoint position)
{
    if (!m_client || m_sourceGone) {
        cancel();
        return false;
    }
    auto *view = qobject_cast<SurfaceView *>(m_screen->childAt(position));
    const bool isOwn = view && view->surface() && view->surface()->waylandClient() == m_client;
    aim(isOwn ? view : nullptr, position);
    showIcon(position);
    return true;
}

void DragAndDrop::aim(SurfaceView *target, QPoint position)
{
    m_isAimed = target != nullptr;
    if (target)
        m_seat.drag()->dragMove(target->surface(), target->mapFrom(m_screen, position));
    else
        m_seat.drag()->cancelDrag();
}

// Over the pen, where the finger does not cover it.
void DragAndDrop::showIcon(QPoint position)
{
    if (!m_icon)
        return;
    constexpr int kAbove = 8; // pixels
    const int left =
        std::clamp(position.x() - m_icon->width() / 2, 0, std::max(0, m_screen->width() - m_icon->width()));
    m_icon->move(left, std::max(0, position.y() - m_icon->height() - kAbove));
    m_icon->raise();
}

// Not QWaylandDrag::drop(): it takes for granted that somebody wants it or that there is a source.
void DragAndDrop::drop()
{
    if (m_client && m_isAimed && !m_sourceGone) {
        for (wl_resource *device : resourcesOf(m_client, "wl_data_device"))
            wl_data_device_send_drop(device);
    }
    cancel();
}

void DragAndDrop::cancel()
{
    disconnect(m_clientGone);
    m_client = nullptr;
    m_sources.clear();
    m_sourceGone = false;
    if (m_isAimed)
        aim(nullptr, {});
    m_icon.reset();
}
