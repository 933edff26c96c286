#include "platform/windowserver/framepacer.h"

#include "platform/windowserver/scene.h"
#include "platform/windowserver/surfaceview.h"

#include <QWaylandSurface>

FramePacer::FramePacer(const Scene &scene) : m_scene(scene)
{
    constexpr int frame = 16; // milliseconds
    m_timer.setSingleShot(true);
    m_timer.setInterval(frame);
    const auto wake = [this] {
        if (!m_timer.isActive())
            m_timer.start();
    };
    connect(&scene, &Scene::redrawn, this, wake);
    connect(&scene, &Scene::rearranged, this, wake);
    connect(&m_timer, &QTimer::timeout, this, &FramePacer::release);
}

void FramePacer::release()
{
    for (const ClientWindow *window : m_scene.shown()) {
        QWaylandSurface *surface = window->surface();
        if (surface && !window->view()->visibleRegion().isEmpty()) {
            surface->sendFrameCallbacks();
            flushClient(*surface);
        }
    }
}
