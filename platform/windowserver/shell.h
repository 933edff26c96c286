// The shell protocol: what clients say of their windows, and what the server makes of them.
#pragma once

#include <QList>
#include <QPointer>
#include <QRect>
#include <QSet>
#include <QWaylandCompositorExtensionTemplate>
#include <QWaylandSurface>
#include <qwayland-server-zqt-shell-v1.h>

// One window as its client describes it. Dies with the client's object; says so by gone() first.
class ShellSurface : public QObject, public QtWaylandServer::zqt_shell_surface_v1 {
    Q_OBJECT

public:
    ShellSurface(QWaylandSurface *surface, wl_client *client, uint32_t id, int version);

    [[nodiscard]] QWaylandSurface *surface() const { return m_surface; } // null once the client destroyed it
    [[nodiscard]] QString title() const { return m_title; }
    [[nodiscard]] Qt::WindowFlags flags() const { return m_flags; }
    [[nodiscard]] Qt::WindowType type() const;
    [[nodiscard]] Qt::WindowStates states() const { return m_states; }
    [[nodiscard]] QRect wanted() const { return m_wanted; } // position and size that the client asked for

    // Before, the client's position is no wish of its own: it does not know yet where it was put.
    [[nodiscard]] bool knowsItsPlace() const { return m_acknowledged; }

    [[nodiscard]] bool isSettled() const { return m_settled; } // no configure is on its way

    void configure(const QRect &geometry, Qt::WindowStates states);
    void requestClose();

    static QWaylandSurfaceRole *role();

Q_SIGNALS:
    void wishesChanged(); // flags, states, position or size
    void minimised(); // an event, not a state: what brings the window back is raising it
    void titleChanged();
    void raiseRequested();
    void lowerRequested();
    void activationRequested();
    void gone();

protected:
    void zqt_shell_surface_v1_destroy_resource(Resource *resource) override;
    void zqt_shell_surface_v1_destroy(Resource *resource) override;
    void zqt_shell_surface_v1_reposition(Resource *resource, int32_t x, int32_t y) override;
    void zqt_shell_surface_v1_request_activate(Resource *resource) override;
    void zqt_shell_surface_v1_set_size(Resource *resource, int32_t width, int32_t height) override;
    void zqt_shell_surface_v1_set_window_title(Resource *resource, const QString &title) override;
    void zqt_shell_surface_v1_set_window_flags(Resource *resource, uint32_t flags) override;
    void zqt_shell_surface_v1_change_window_state(Resource *resource, uint32_t state) override;
    void zqt_shell_surface_v1_raise(Resource *resource) override;
    void zqt_shell_surface_v1_lower(Resource *resource) override;
    void zqt_shell_surface_v1_ack_configure(Resource *resource, uint32_t serial) override;

private:
    QPointer<QWaylandSurface> m_surface;
    QWaylandCompositor *m_compositor;
    QString m_title;
    Qt::WindowFlags m_flags = Qt::Window;
    Qt::WindowStates m_states;
    QRect m_wanted;
    struct Given {
        uint32_t serial;
        QPoint position;
    };
    QList<Given> m_given; // configures that the client has not acknowledged, and always the last one
    bool m_acknowledged = false;
    bool m_settled = true;
};

class Shell : public QWaylandCompositorExtensionTemplate<Shell>, public QtWaylandServer::zqt_shell_v1 {
    Q_OBJECT

public:
    explicit Shell(QWaylandCompositor *compositor);
    void initialize() override;

Q_SIGNALS:
    void surfaceCreated(ShellSurface *surface);

protected:
    void zqt_shell_v1_surface_create(Resource *resource, wl_resource *surface, uint32_t id) override;

private:
    QSet<const QWaylandSurface *> m_taken; // those that are a window already
};
