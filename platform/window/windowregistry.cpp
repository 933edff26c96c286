#include "platform/window/windowregistry.h"

#include <QApplication>
#include <QPlatformSurfaceEvent>
#include <QWidget>
#include <QWindow>
#include <cstring>
#include <qpa/qplatformnativeinterface.h>
#include <qpa/qplatformwindow.h>
#include <wayland-client.h>
#include <wayland-tyx-windows-v1-client-protocol.h>

// The C library calls back through tables of functions.
struct WindowRegistryListener {
    static void global(void *self, wl_registry *registry, uint32_t name, const char *interface, uint32_t)
    {
        auto &that = *static_cast<WindowRegistry *>(self);
        if (std::strcmp(interface, tyx_windows_v1_interface.name) != 0 || that.m_windows)
            return;
        that.m_windows = static_cast<tyx_windows_v1 *>(wl_registry_bind(registry, name, &tyx_windows_v1_interface, 1));
        static constexpr tyx_windows_v1_listener listener{&range};
        tyx_windows_v1_add_listener(that.m_windows, &listener, self);
    }
    static void globalRemove(void *, wl_registry *, uint32_t) { }

    static void range(void *self, tyx_windows_v1 *, int32_t first, int32_t count)
    {
        auto &that = *static_cast<WindowRegistry *>(self);
        that.m_first = first;
        that.m_count = count;
    }
};

namespace {

QWidget *widgetOf(const QWindow *window)
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (widget->windowHandle() == window)
            return widget;
    }
    return nullptr;
}

wl_surface *surfaceOf(QWindow *window)
{
    auto *native = QGuiApplication::platformNativeInterface();
    return static_cast<wl_surface *>(native->nativeResourceForWindow("surface", window));
}

}

WindowRegistry::WindowRegistry()
{
    auto *native = QGuiApplication::platformNativeInterface();
    if (auto *display = static_cast<wl_display *>(native->nativeResourceForIntegration("wl_display")))
        bind(display);
    if (m_windows)
        qApp->installEventFilter(this);
}

WindowRegistry::~WindowRegistry()
{
    if (m_windows)
        tyx_windows_v1_destroy(m_windows);
    if (m_queue)
        wl_event_queue_destroy(m_queue);
}

void WindowRegistry::bind(wl_display *display)
{
    m_queue = wl_display_create_queue(display);
    auto *wrapper = static_cast<wl_display *>(wl_proxy_create_wrapper(display));
    wl_proxy_set_queue(reinterpret_cast<wl_proxy *>(wrapper), m_queue);
    wl_registry *registry = wl_display_get_registry(wrapper);
    wl_proxy_wrapper_destroy(wrapper);
    static constexpr wl_registry_listener listener{
        &WindowRegistryListener::global, &WindowRegistryListener::globalRemove};
    wl_registry_add_listener(registry, &listener, this);
    wl_display_roundtrip_queue(display, m_queue); // the globals
    wl_display_roundtrip_queue(display, m_queue); // the range
    wl_registry_destroy(registry);
}

int WindowRegistry::idOf(const QWidget *widget) const { return widget ? idOf(widget->window()->windowHandle()) : 0; }

bool WindowRegistry::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::PlatformSurface) {
        const auto *surface = static_cast<QPlatformSurfaceEvent *>(event);
        auto *window = qobject_cast<QWindow *>(watched);
        if (window && surface->surfaceEventType() == QPlatformSurfaceEvent::SurfaceCreated)
            adopt(window);
    }
    return false;
}

void WindowRegistry::adopt(QWindow *window)
{
    if (!m_ids.contains(window)) {
        const int id = freeId();
        if (id == 0)
            return;
        m_ids.insert(window, id);
        connect(window, &QObject::destroyed, this, [this, window] { forget(window); });
    }
    // Hiding destroys the surface and showing makes a new one. The class that says so has no installed header.
    if (auto *platformWindow = dynamic_cast<QObject *>(window->handle()))
        connect(platformWindow, SIGNAL(wlSurfaceCreated()), this, SLOT(surfaceAppeared()), Qt::UniqueConnection);
    identify(window);
}

void WindowRegistry::surfaceAppeared()
{
    for (auto entry = m_ids.cbegin(); entry != m_ids.cend(); ++entry) {
        if (dynamic_cast<QObject *>(entry.key()->handle()) == sender())
            identify(const_cast<QWindow *>(entry.key()));
    }
}

void WindowRegistry::identify(QWindow *window)
{
    wl_surface *surface = surfaceOf(window);
    if (!surface)
        return;
    const QWidget *widget = widgetOf(window);
    const QString given = widget ? widget->objectName() : window->objectName();
    const QString name = given.isEmpty() ? QCoreApplication::applicationName() : given;
    const bool modal = widget ? widget->isModal() : window->modality() != Qt::NonModal;
    // A message of this protocol holds 4 KiB at most.
    tyx_windows_v1_identify(m_windows, surface, m_ids.value(window), name.left(256).toUtf8().constData(),
        modal ? TYX_WINDOWS_V1_TRAIT_MODAL : 0);
}

void WindowRegistry::forget(const QWindow *window)
{
    if (const int id = m_ids.take(window))
        tyx_windows_v1_forget(m_windows, id);
}

// The least recently used number first, so that a message about a window that is gone does not reach a new one.
int WindowRegistry::freeId()
{
    const QList<int> used = m_ids.values();
    for (int tries = 0; tries < m_count; ++tries) {
        const int id = m_first + m_next;
        m_next = (m_next + 1) % m_count;
        if (!used.contains(id))
            return id;
    }
    return 0;
}
