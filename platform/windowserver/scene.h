// What is on the screen: the windows of all clients, which lies over which, and which one has the focus.
//
// Stacking, back to front: windows; windows that stay on top; the server's own widgets (below a full-screen window
// that is in front of all others); pop-ups and tool tips. The focus goes to a window that is shown or raised; when its
// window goes, to the frontmost one that can take it. While a modal dialog is shown, it stands in for its client.
#pragma once

#include "platform/windowserver/clientwindow.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <memory>
#include <vector>

class QWaylandOutput;
class QWaylandSeat;
class QWSServer;
class QWidget;

class Scene : public QObject {
    Q_OBJECT

public:
    Scene(QWSServer &server, QWidget *screen);
    ~Scene() override;

    void setOutput(QWaylandOutput *output) { m_output = output; }

    // From the protocols.
    void surfaceCreated(ShellSurface *shell);
    void surfaceIdentified(QWaylandSurface *surface, const WindowLabel &label);
    void windowForgotten(int id);
    void clientSeen(QWaylandClient *client);

    // From windows.
    void raise(ClientWindow &window);
    void lower(ClientWindow &window);
    void activate(ClientWindow &window); // or the modal dialog that stands in for it
    void stackUnder(ClientWindow &window, ClientWindow &above);

    void closePopups(const QWaylandClient *except); // null: of all clients

    [[nodiscard]] ClientWindow *activeWindow() const { return m_active; }
    [[nodiscard]] QList<QWSWindow *> windows() const; // visible ones, front first; then the hidden ones
    [[nodiscard]] QList<ClientWindow *> shown() const { return m_stack; } // back to front
    [[nodiscard]] QRect workArea() const { return m_surroundings.workArea; }
    void setWorkArea(const QRect &area);

Q_SIGNALS:
    void activeChanged(ClientWindow *window);
    void redrawn(); // some surface has a new picture
    void rearranged(); // what is covered may have changed

private:
    void clientGone(const QWaylandClient *client);
    ClientWindow *windowById(int id) const;
    ClientWindow &windowFor(QWaylandClient *client, const WindowLabel &label);
    WindowLabel serverLabel() const; // of number 0 when there is none left
    void adopt(ShellSurface *shell);
    void attach(ClientWindow &window, ShellSurface *shell);
    void follow(ClientWindow &window, ShellSurface *shell, SurfaceView &view);
    void release(ClientWindow &window);
    void destroy(ClientWindow &window);

    void appeared(ClientWindow &window);
    void disappeared(ClientWindow &window);
    void contentChanged(ClientWindow &window, bool hasContent);
    void wishesChanged(ClientWindow &window);
    void place(ClientWindow &window);
    void pressed(ClientWindow &window);

    void putInFront(ClientWindow &window);
    [[nodiscard]] int layerOf(const ClientWindow &window) const;
    qsizetype placeOnTopOf(const ClientWindow &window) const;
    bool intrudes(const ClientWindow &window) const;
    void restack();
    void setActive(ClientWindow *window);
    ClientWindow *modalFor(const QWaylandClient *client) const;
    ClientWindow *frontmostForFocus() const;

    QWSServer &m_server;
    QWidget *m_screen;
    QWaylandOutput *m_output = nullptr;
    Surroundings m_surroundings;
    std::vector<std::unique_ptr<ClientWindow>> m_windows;
    QList<ClientWindow *> m_stack; // the visible ones, back to front
    ClientWindow *m_active = nullptr;
    QSet<const QWaylandClient *> m_clients;
    QHash<QWaylandSurface *, WindowLabel> m_labels; // identified, maybe before they had a role
};
