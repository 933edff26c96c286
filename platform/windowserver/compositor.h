// The window server's machinery: the Wayland compositor, its extensions, and the screen they draw on.
#pragma once

#include "platform/window/windowserverbackend.h"

#include <memory>

class FramePacer;
class Input;
class KeyExtension;
class QWaylandCompositor;
class QWaylandOutput;
class QWidget;
class Scene;
class Shell;
class WindowIds;

class Compositor : public WindowServerBackend {
public:
    Compositor();
    ~Compositor() override;

    void start(QWSServer &server, const QByteArray &socketName, QSize screen) override;
    void watchRepeat(const KeyStroke &stroke) override;
    void sendKey(const KeyStroke &stroke) override;
    void setKeyRepeat(int delay, int interval) override;
    void sendPointer(const PointerState &state) override;
    void setInputEnabled(bool on) override;
    [[nodiscard]] int pendingInput() const override;
    [[nodiscard]] QList<QWSWindow *> windows() const override;
    [[nodiscard]] QRect workArea() const override;
    void setWorkArea(const QRect &area) override;
    [[nodiscard]] QWidget *screen() const override { return m_screen.get(); }
    [[nodiscard]] QImage grab() const override;

private:
    void openScreen(QSize size);
    void openSocket(const QByteArray &name);
    void connectProtocols(QWSServer &server);

    // Destroyed from the last to the first: the views of clients go before the compositor they come from.
    std::unique_ptr<QWidget> m_screen;
    std::unique_ptr<QWaylandCompositor> m_compositor;
    std::unique_ptr<Shell> m_shell;
    std::unique_ptr<KeyExtension> m_keys;
    std::unique_ptr<WindowIds> m_ids;
    std::unique_ptr<QWaylandOutput> m_output;
    std::unique_ptr<Scene> m_scene;
    std::unique_ptr<FramePacer> m_pacer;
    std::unique_ptr<Input> m_input;
};
