#include "platform/windowserver/surfaceview.h"

#include "platform/window/windowserverbackend.h"

#include <QMouseEvent>
#include <QPainter>
#include <QWaylandBufferRef>
#include <QWaylandCompositor>
#include <QWaylandOutput>
#include <QWaylandSeat>
#include <QWaylandSurface>
#include <wayland-server-core.h>

namespace {

// While it lives, a client that made its memory shorter than it said is disconnected instead of killing the server.
class BufferAccess {
public:
    explicit BufferAccess(const QWaylandBufferRef &buffer)
        : m_buffer(buffer.wl_buffer() ? wl_shm_buffer_get(buffer.wl_buffer()) : nullptr)
    {
        if (m_buffer)
            wl_shm_buffer_begin_access(m_buffer);
    }
    ~BufferAccess()
    {
        if (m_buffer)
            wl_shm_buffer_end_access(m_buffer);
    }
    BufferAccess(const BufferAccess &) = delete;
    BufferAccess &operator=(const BufferAccess &) = delete;

    explicit operator bool() const { return m_buffer != nullptr; }

private:
    wl_shm_buffer *m_buffer;
};

}

SurfaceView::SurfaceView(QWaylandSurface *surface, QWaylandOutput *output, QWidget *screen)
    : QWidget(screen), m_view(this)
{
    setVisible(false);
    setMouseTracking(true);
    setProperty(kClientSurface, true);
    setAttribute(Qt::WA_NoSystemBackground);
    m_view.setOutput(output);
    m_view.setSurface(surface);
    connect(surface, &QWaylandSurface::redraw, this, &SurfaceView::refresh);
    connect(surface, &QWaylandSurface::hasContentChanged, this, &SurfaceView::refresh);
    connect(&m_view, &QWaylandView::surfaceDestroyed, this, [this] { setContent(false); });
}

SurfaceView::~SurfaceView() = default;

void SurfaceView::refresh()
{
    if (!surface())
        return;
    m_view.advance();
    setContent(surface()->hasContent());
    if (!m_hasContent)
        return;
    const QSize content = surface()->destinationSize();
    if (content != size()) {
        resize(content);
        Q_EMIT resized();
    }
    setAttribute(Qt::WA_OpaquePaintEvent, surface()->isOpaque());
    surface()->frameStarted();
    update(m_view.currentDamage());
    Q_EMIT redrawn();
}

void SurfaceView::setContent(bool hasContent)
{
    if (m_hasContent == hasContent)
        return;
    m_hasContent = hasContent;
    if (hasContent)
        resize(surface()->destinationSize());
    setVisible(hasContent);
    Q_EMIT contentChanged(hasContent);
}

void SurfaceView::paintEvent(QPaintEvent *event)
{
    const QWaylandBufferRef buffer = m_view.currentBuffer();
    if (!buffer.hasContent())
        return;
    const BufferAccess access(buffer);
    if (!access)
        return;
    const QImage image = buffer.image();
    QPainter painter(this);
    if (testAttribute(Qt::WA_OpaquePaintEvent))
        painter.setCompositionMode(QPainter::CompositionMode_Source);
    for (const QRect &rect : event->region())
        painter.drawImage(rect, image, rect);
}

// Moves the pointer to where the event was, then lets `act` do the rest with the seat.
void SurfaceView::tellPointer(ClientBacklog::Event event, Place place, std::function<void(QWaylandSeat &)> act)
{
    if (!surface())
        return;
    ClientBacklog::deliver(*surface(), this, event, [this, place, act = std::move(act)] {
        QWaylandSeat &seat = *surface()->compositor()->defaultSeat();
        seat.sendMouseMoveEvent(&m_view, place.local, place.global);
        act(seat);
    });
}

void SurfaceView::mousePressEvent(QMouseEvent *event)
{
    Q_EMIT pressed();
    tellPointer(ClientBacklog::Event::Needed, {event->position(), event->scenePosition()},
        [button = event->button()](QWaylandSeat &seat) { seat.sendMousePressEvent(button); });
}

void SurfaceView::mouseReleaseEvent(QMouseEvent *event)
{
    tellPointer(ClientBacklog::Event::Needed, {event->position(), event->scenePosition()},
        [button = event->button()](QWaylandSeat &seat) { seat.sendMouseReleaseEvent(button); });
}

void SurfaceView::mouseDoubleClickEvent(QMouseEvent *event)
{
    mousePressEvent(event); // the client counts clicks itself
}

void SurfaceView::mouseMoveEvent(QMouseEvent *event)
{
    tellPointer(ClientBacklog::Event::Droppable, {event->position(), event->scenePosition()}, [](QWaylandSeat &) {});
}

void SurfaceView::wheelEvent(QWheelEvent *event)
{
    tellPointer(ClientBacklog::Event::Needed, {event->position(), event->globalPosition()},
        [turned = event->angleDelta()](QWaylandSeat &seat) {
            if (turned.y())
                seat.sendMouseWheelEvent(Qt::Vertical, turned.y());
            if (turned.x())
                seat.sendMouseWheelEvent(Qt::Horizontal, turned.x());
        });
}
