#include "platform/windowserver/draganddrop.h"

#include "platform/windowserver/surfaceview.h"

#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QGuiApplication>
#include <QMimeData>
#include <QWaylandClient>
#include <QWaylandCompositor>
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

// Not by sendEvent(), which leads these events to the target of the toolkit's own drags.
void tell(QObject &widget, QEvent &event) { widget.event(&event); }

}

DragAndDrop::DragAndDrop(wl_display *display, QWaylandSeat &seat, QWaylandOutput *output, QWidget *screen)
    : m_dataSources(display), m_seat(seat), m_output(output), m_screen(screen)
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
    m_position = m_screen->mapFromGlobal(QCursor::pos());
    // Before its resources go: the library would still say goodbye to one of them.
    m_clientGone = connect(origin->client(), &QObject::destroyed, this, &DragAndDrop::cancel);
    if (wl_resource *source = m_dataSources.latestOf(m_client)) {
        watch(source);
        m_text = std::make_unique<DraggedText>(source);
        connect(m_text.get(), &DraggedText::completed, this, [this] { move(m_position); });
    }
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
    m_source.reset(new QWaylandDestroyListener);
    m_source->listenForDestruction(source);
    connect(m_source.get(), &QWaylandDestroyListener::fired, this, [this] {
        m_source->reset();
        m_sourceGone = true;
    });
}

bool DragAndDrop::move(QPoint position)
{
    if (!m_client || m_sourceGone) {
        cancel();
        return false;
    }
    m_position = position;
    QWidget *under = m_screen->childAt(position);
    auto *view = qobject_cast<SurfaceView *>(under);
    const bool isShown = view && view->surface();
    hover(view ? nullptr : under);
    aim(isShown ? view : nullptr, position);
    showIcon(position);
    return true;
}

void DragAndDrop::aim(SurfaceView *target, QPoint position)
{
    const bool isOwn = target && target->surface()->waylandClient() == m_client;
    if (!isOwn && m_aim == Aim::Own)
        m_seat.drag()->cancelDrag(); // it leaves the window
    if (m_aim == Aim::Other && (isOwn || target != m_other))
        leave();
    m_aim = isOwn ? Aim::Own : m_aim == Aim::Own ? Aim::Nothing : m_aim;
    if (isOwn)
        m_seat.drag()->dragMove(target->surface(), target->mapFrom(m_screen, position));
    else if (target)
        aimAtOther(target, position);
}

void DragAndDrop::aimAtOther(SurfaceView *target, QPoint position)
{
    if (!m_text || !m_text->isComplete() || m_text->text().isEmpty())
        return; // not yet, or there is nothing for others
    const QPoint local = target->mapFrom(m_screen, position);
    const wl_fixed_t x = wl_fixed_from_int(local.x());
    const wl_fixed_t y = wl_fixed_from_int(local.y());
    for (wl_resource *device : resourcesOf(target->surface()->waylandClient(), "wl_data_device")) {
        if (m_aim == Aim::Other) {
            wl_data_device_send_motion(device, m_seat.compositor()->currentTimeMsecs(), x, y);
        } else if (wl_resource *offer = DraggedText::offer(device, m_text->text())) {
            wl_data_device_send_enter(
                device, m_seat.compositor()->nextSerial(), target->surface()->resource(), x, y, offer);
        }
    }
    m_aim = Aim::Other;
    m_other = target;
}

void DragAndDrop::leave()
{
    if (m_other && m_other->surface()) {
        for (wl_resource *device : resourcesOf(m_other->surface()->waylandClient(), "wl_data_device"))
            wl_data_device_send_leave(device);
    }
    m_other.clear();
    m_aim = Aim::Nothing;
}

void DragAndDrop::hover(QWidget *widget)
{
    if (widget == m_hovered)
        return;
    if (m_hovered) {
        QDragLeaveEvent left;
        tell(*m_hovered, left);
    }
    m_hovered = widget;
    if (widget && widget->acceptDrops()) {
        const QMimeData nothing; // to drop here
        QDragEnterEvent entered({}, Qt::IgnoreAction, &nothing, Qt::LeftButton, {});
        tell(*widget, entered);
    }
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
    wl_client *target = nullptr;
    if (m_aim == Aim::Own && !m_sourceGone)
        target = m_client;
    else if (m_aim == Aim::Other && m_other && m_other->surface())
        target = m_other->surface()->waylandClient();
    if (target) {
        for (wl_resource *device : resourcesOf(target, "wl_data_device"))
            wl_data_device_send_drop(device);
    }
    if (m_aim == Aim::Other)
        m_aim = Aim::Nothing; // a drop is no leaving
    cancel();
}

void DragAndDrop::cancel()
{
    disconnect(m_clientGone);
    m_client = nullptr;
    m_source.reset();
    m_sourceGone = false;
    hover(nullptr);
    aim(nullptr, {});
    m_other.clear();
    m_text.reset();
    m_icon.reset();
}
