// A client's window: its identifier and name, and while it is shown the surface it is shown by.
#pragma once

#include "platform/window/qwswindow.h"
#include "platform/windowserver/placement.h"
#include "platform/windowserver/shell.h"
#include "platform/windowserver/windowids.h"

#include <QPointer>
#include <memory>
#include <optional>

class QWaylandClient;
class QWaylandSurface;
class Scene;
class SurfaceView;

// Owned by the scene. Everything that touches other windows (stacking, focus) is passed on to it.
class ClientWindow : public QWSWindow {
public:
    ClientWindow(Scene &scene, QWaylandClient *client, const WindowLabel &label);
    ~ClientWindow() override;

    [[nodiscard]] int winId() const override { return m_label.id; }
    [[nodiscard]] pid_t clientPid() const override { return m_pid; }
    [[nodiscard]] QString name() const override { return m_label.name; }
    [[nodiscard]] QString caption() const override { return m_caption; }
    [[nodiscard]] QRect geometry() const override { return m_geometry; }
    [[nodiscard]] bool isVisible() const override;
    [[nodiscard]] bool isActive() const override;
    [[nodiscard]] bool isFullScreen() const override;
    [[nodiscard]] bool isPopup() const override;

    void raise() override;
    void lower() override;
    void setActiveWindow() override;
    void stackUnder(QWSWindow *above) override;
    void close() override;

    // The surface that shows the window from now on, with the view made for it.
    void show(ShellSurface *shell, std::unique_ptr<SurfaceView> view);
    void unshow(); // its surface is gone

    bool setLabel(const WindowLabel &label); // true when the name changed
    bool updateCaption();

    // Works out where the window belongs and tells the client when that is not what it knows. True when it moved.
    bool place(const Surroundings &surroundings);

    [[nodiscard]] QWaylandClient *client() const { return m_client; }
    [[nodiscard]] ShellSurface *shell() const { return m_shell; }
    [[nodiscard]] SurfaceView *view() const { return m_view.get(); }
    [[nodiscard]] QWaylandSurface *surface() const; // null while hidden
    [[nodiscard]] WindowKind kind() const;
    [[nodiscard]] bool isModal() const;
    [[nodiscard]] bool takesFocus() const; // may ever have it
    [[nodiscard]] bool staysOnTop() const;

private:
    Scene &m_scene;
    QWaylandClient *m_client; // identity only: it may be half destroyed when the window goes
    pid_t m_pid;
    WindowLabel m_label;
    QString m_caption;
    QRect m_geometry;
    QPointer<ShellSurface> m_shell;
    std::unique_ptr<SurfaceView> m_view;
    struct Answer {
        QRect wanted;
        QRect given;
        Qt::WindowStates states;
        bool operator==(const Answer &) const = default;
    };
    // The last configure, and the wishes it answered: a client that insists (its layout has a minimum size) gets no
    // second one, or the two would go on for ever.
    std::optional<Answer> m_answer;
};
