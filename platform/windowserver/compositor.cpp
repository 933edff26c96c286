#include "platform/windowserver/compositor.h"

#include "platform/tyxexport.h"
#include "platform/window/qwsserver.h"
#include "platform/windowserver/clientbacklog.h"
#include "platform/windowserver/framepacer.h"
#include "platform/windowserver/input.h"
#include "platform/windowserver/keyextension.h"
#include "platform/windowserver/scene.h"
#include "platform/windowserver/shell.h"
#include "platform/windowserver/windowids.h"

#include <QGuiApplication>
#include <QLoggingCategory>
#include <QPixmap>
#include <QScreen>
#include <QWaylandClient>
#include <QWaylandCompositor>
#include <QWaylandOutput>
#include <QWaylandOutputMode>
#include <QWaylandSeat>
#include <QWaylandSurface>
#include <QWidget>
#include <QWindow>

namespace {

constexpr int kRefreshRate = 60'000; // millihertz; goes with the pace of frame callbacks
constexpr double kMillimetresPerPixel = 25.4 / 96;

// Black where no window is.
class Screen : public QWidget {
public:
    explicit Screen(QSize size)
    {
        setObjectName(QStringLiteral("screen"));
        setFixedSize(size);
        setFocusPolicy(Qt::StrongFocus);
        QPalette black;
        black.setColor(QPalette::Window, Qt::black);
        setPalette(black);
    }
};

}

Compositor::Compositor() = default;

Compositor::~Compositor()
{
    m_input.reset();
    m_pacer.reset();
    m_scene.reset();
}

void Compositor::start(QWSServer &server, const QByteArray &socketName, QSize screen)
{
    openScreen(screen);
    openSocket(socketName);
    connectProtocols(server);
}

void Compositor::openScreen(QSize size)
{
    m_screen = std::make_unique<Screen>(size);
    if (QGuiApplication::platformName() == QLatin1String("xcb"))
        m_screen->show();
    else
        m_screen->showFullScreen();
    m_screen->setFocus();
}

void Compositor::openSocket(const QByteArray &name)
{
    // There is no graphics hardware to integrate with; every start would warn about it.
    QLoggingCategory::setFilterRules(QStringLiteral("qt.waylandcompositor.hardwareintegration.warning=false"));
    m_compositor = std::make_unique<QWaylandCompositor>();
    m_compositor->setUseHardwareIntegrationExtension(false);
    m_compositor->setSocketName(name);
    m_shell = std::make_unique<Shell>(m_compositor.get());
    m_keys = std::make_unique<KeyExtension>(m_compositor.get());
    m_ids = std::make_unique<WindowIds>(m_compositor.get());
    m_compositor->create();
    m_output = std::make_unique<QWaylandOutput>(m_compositor.get(), m_screen->windowHandle());
    m_output->setSizeFollowsWindow(false);
    const QWaylandOutputMode mode(m_screen->size(), kRefreshRate);
    m_output->addMode(mode, true);
    m_output->setCurrentMode(mode);
    m_output->setPhysicalSize((QSizeF(m_screen->size()) * kMillimetresPerPixel).toSize());
    m_compositor->setDefaultOutput(m_output.get());
}

void Compositor::connectProtocols(QWSServer &server)
{
    QWaylandSeat *seat = m_compositor->defaultSeat();
    m_scene = std::make_unique<Scene>(server, m_screen.get());
    m_scene->setOutput(m_output.get());
    m_pacer = std::make_unique<FramePacer>(*m_scene);
    m_input = std::make_unique<Input>(*m_scene, *m_keys, *seat, m_output.get(), m_screen.get());
    Scene *scene = m_scene.get();
    QObject::connect(m_shell.get(), &Shell::surfaceCreated, scene, &Scene::surfaceCreated);
    QObject::connect(m_ids.get(), &WindowIds::identified, scene, &Scene::surfaceIdentified);
    QObject::connect(m_ids.get(), &WindowIds::forgotten, scene, &Scene::windowForgotten);
    QObject::connect(m_compositor.get(), &QWaylandCompositor::surfaceCreated, scene,
        [scene](QWaylandSurface *surface) { scene->clientSeen(surface->client()); });
    QObject::connect(seat, &QWaylandSeat::cursorSurfaceRequested, scene,
        [&server](QWaylandSurface *surface, int x, int y, QWaylandClient *) {
            QWSCursor cursor(QPoint(x, y));
            Q_EMIT server.cursorSelected(surface ? &cursor : nullptr);
        });
}

void Compositor::watchRepeat(const KeyStroke &stroke) { m_input->watchRepeat(stroke); }

void Compositor::sendKey(const KeyStroke &stroke) { m_input->sendKey(stroke); }

void Compositor::setKeyRepeat(int delay, int interval) { m_input->setRepeat(delay, interval); }

void Compositor::sendPointer(const PointerState &state) { m_input->sendPointer(state); }

void Compositor::setInputEnabled(bool on) { m_input->setEnabled(on); }

int Compositor::pendingInput() const
{
    const ClientWindow *active = m_scene->activeWindow();
    return active ? ClientBacklog::waiting(*active->client()) : 0;
}

QList<QWSWindow *> Compositor::windows() const { return m_scene->windows(); }

QRect Compositor::workArea() const { return m_scene->workArea(); }

void Compositor::setWorkArea(const QRect &area) { m_scene->setWorkArea(area); }

QImage Compositor::grab() const
{
    QCoreApplication::sendPostedEvents(m_screen.get(), QEvent::UpdateRequest); // what is damaged but not yet painted
    const QRect place(m_screen->mapToGlobal(QPoint(0, 0)), m_screen->size());
    return m_screen->screen()->grabWindow(0, place.x(), place.y(), place.width(), place.height()).toImage();
}

extern "C" TYX_EXPORT WindowServerBackend *TYX_WINDOW_SERVER_ENTRY() { return new Compositor; }
