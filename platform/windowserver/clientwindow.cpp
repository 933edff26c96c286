#include "platform/windowserver/clientwindow.h"

#include "platform/windowserver/scene.h"
#include "platform/windowserver/shell.h"
#include "platform/windowserver/surfaceview.h"

#include <QWaylandClient>

ClientWindow::ClientWindow(Scene &scene, QWaylandClient *client, const WindowLabel &label)
    : m_scene(scene), m_client(client), m_pid(static_cast<pid_t>(client->processId())), m_label(label)
{
}

ClientWindow::~ClientWindow() = default;

bool ClientWindow::isVisible() const { return m_view && m_view->hasContent(); }

bool ClientWindow::isActive() const { return m_scene.activeWindow() == this; }

bool ClientWindow::isFullScreen() const { return m_shell && m_shell->states().testFlag(Qt::WindowFullScreen); }

bool ClientWindow::isPopup() const { return kind() == WindowKind::Popup || kind() == WindowKind::ToolTip; }

void ClientWindow::raise() { m_scene.raise(*this); }

void ClientWindow::lower() { m_scene.lower(*this); }

void ClientWindow::setActiveWindow() { m_scene.activate(*this); }

void ClientWindow::stackUnder(QWSWindow *above)
{
    if (above && above != this)
        m_scene.stackUnder(*this, static_cast<ClientWindow &>(*above));
}

void ClientWindow::close()
{
    if (m_shell)
        m_shell->requestClose();
}

void ClientWindow::show(ShellSurface *shell, std::unique_ptr<SurfaceView> view)
{
    m_shell = shell;
    m_view = std::move(view);
    m_answer.reset();
    updateCaption();
}

void ClientWindow::unshow()
{
    m_shell = nullptr;
    m_view.reset();
}

bool ClientWindow::setLabel(const WindowLabel &label)
{
    const bool renamed = m_label.name != label.name;
    m_label = label;
    return renamed;
}

bool ClientWindow::updateCaption()
{
    if (!m_shell || m_caption == m_shell->title())
        return false;
    m_caption = m_shell->title();
    return true;
}

bool ClientWindow::place(const Surroundings &surroundings)
{
    if (!m_shell)
        return false;
    const QRect wanted = m_shell->wanted();
    // A client tells the size after the flags. Answering earlier would make the window as small as can be.
    if (wanted.isEmpty() && kind() != WindowKind::Main && !isFullScreen())
        return false;
    const QRect given = ::place({kind(), isFullScreen(), !m_shell->knowsItsPlace(), wanted}, surroundings);
    const Answer answer{wanted, given, m_shell->states() & (Qt::WindowFullScreen | Qt::WindowMaximized)};
    const bool told = m_answer && m_answer->given == given && m_answer->states == answer.states;
    // A client that moved there by itself needs no answer, unless an earlier one may still bring it away again.
    const bool granted = wanted == given && (told || (m_answer && m_shell->isSettled()));
    if (!granted && m_answer != answer)
        m_shell->configure(given, answer.states);
    m_answer = answer;
    m_view->move(given.topLeft());
    const QRect now(given.topLeft(), isVisible() ? m_view->size() : given.size());
    return std::exchange(m_geometry, now) != now;
}

QWaylandSurface *ClientWindow::surface() const { return m_view ? m_view->surface() : nullptr; }

WindowKind ClientWindow::kind() const { return m_shell ? kindOf(m_shell->flags()) : WindowKind::Main; }

// A program that does not tell: a dialog of its is taken for modal, as most are.
bool ClientWindow::isModal() const
{
    const bool foreign = m_label.id < WindowIds::kRange;
    return foreign ? m_shell && m_shell->type() == Qt::Dialog : m_label.isModal;
}

bool ClientWindow::takesFocus() const
{
    return m_shell && !isPopup()
        && !(m_shell->flags() & (Qt::WindowDoesNotAcceptFocus | Qt::WindowTransparentForInput));
}

bool ClientWindow::staysOnTop() const { return m_shell && m_shell->flags().testFlag(Qt::WindowStaysOnTopHint); }
