// A client's side of the window identifiers: numbers the windows of this process and tells the server.
#pragma once

#include <QHash>
#include <QObject>

class QWidget;
class QWindow;
struct wl_display;
struct wl_event_queue;
struct wl_registry;
struct tyx_windows_v1;

// Lives in the application object of a process that is connected to the phone's screen.
class WindowRegistry : public QObject {
    Q_OBJECT

public:
    WindowRegistry(); // waits for the server's answer once
    ~WindowRegistry() override;

    [[nodiscard]] int idOf(const QWidget *widget) const; // 0 when its window was never shown
    [[nodiscard]] int idOf(const QWindow *window) const { return m_ids.value(window, 0); }

    bool eventFilter(QObject *watched, QEvent *event) override;

private Q_SLOTS:
    void surfaceAppeared(); // of the platform window that sends it

private:
    friend struct WindowRegistryListener;
    void bind(wl_display *display);
    void adopt(QWindow *window);
    void identify(QWindow *window);
    void forget(const QWindow *window);
    [[nodiscard]] int freeId();

    wl_event_queue *m_queue = nullptr; // of our own: the toolkit's thread must not see our events
    tyx_windows_v1 *m_windows = nullptr; // null when the server is another one
    int m_first = 0;
    int m_count = 0;
    int m_next = 0;
    QHash<const QWindow *, int> m_ids;
};
