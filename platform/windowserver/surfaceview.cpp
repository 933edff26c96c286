#include "platform/windowserver/surfaceview.h"

#include "platform/windowserver/clientbacklog.h"

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

void flushClient(const QWaylandSurface &surface)
{
    if (wl_client *client = surface.waylandClient())
        wl_client_flush(client);
}

namespace {

// Calls `send` with the seat, unless the client is gone or does not listen.
template <typename Send> void tellPointer(const QWaylandSurface *surface, ClientBacklog::Event event, Send send)
{
    if (!surface || !ClientBacklog::admits(*surface, event))
        return;
    send(*surface->compositor()->defaultSeat());
    flushClient(*surface);
}

}

SurfaceView::SurfaceView(QWaylandSurface *surface, QWaylandOutput *output, QWidget *screen)
    : QWidget(screen), m_view(this)
{
    setVisible(false);
    setMouseTracking(true);
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

void SurfaceView::mousePressEvent(QMouseEvent *event)
{
    Q_EMIT pressed();
    tellPointer(surface(), ClientBacklog::Event::Needed, [this, event](QWaylandSeat &seat) {
        seat.sendMouseMoveEvent(&m_view, event->position(), event->scenePosition());
        seat.sendMousePressEvent(event->button());
    });
}

void SurfaceView::mouseReleaseEvent(QMouseEvent *event)
{
    tellPointer(surface(), ClientBacklog::Event::Needed, [this, event](QWaylandSeat &seat) {
        seat.sendMouseMoveEvent(&m_view, event->position(), event->scenePosition());
        seat.sendMouseReleaseEvent(event->button());
    });
}

void SurfaceView::mouseDoubleClickEvent(QMouseEvent *event)
{
    mousePressEvent(event); // the client counts clicks itself
}

void SurfaceView::mouseMoveEvent(QMouseEvent *event)
{
    tellPointer(surface(), ClientBacklog::Event::Droppable, [this, event](QWaylandSeat &seat) {
        seat.sendMouseMoveEvent(&m_view, event->position(), event->scenePosition());
    });
}

void SurfaceView::wheelEvent(QWheelEvent *event)
{
    tellPointer(surface(), ClientBacklog::Event::Needed, [this, event](QWaylandSeat &seat) {
        seat.sendMouseMoveEvent(&m_view, event->position(), event->globalPosition());
        if (const int turned = event->angleDelta().y())
            seat.sendMouseWheelEvent(Qt::Vertical, turned);
        if (const int turned = event->angleDelta().x())
            seat.sendMouseWheelEvent(Qt::Horizontal, turned);
    });
}
