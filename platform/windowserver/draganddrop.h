// What a client drags with the pen within its own windows: shows it, and tells the window under the pen.
#pragma once

#include <QObject>
#include <memory>
#include <vector>

class QWaylandDestroyListener;
class QWaylandOutput;
class QWaylandSeat;
class QWidget;
class SurfaceView;
struct wl_client;
struct wl_resource;

// Nothing is dragged from one client to another: the toolkit's server speaks the first version of the protocol for it,
// and the toolkit's client says at a drop what only the third one knows, which disconnects it. The client sees the pen
// go up too, which ends the drag for it wherever it ended.
class DragAndDrop : public QObject {
    Q_OBJECT

public:
    DragAndDrop(QWaylandSeat &seat, QWaylandOutput *output, QWidget *screen);
    ~DragAndDrop() override;

    bool move(QPoint position); // on the screen; false: nothing is dragged
    void drop();
    void cancel();

private:
    struct StopListening { // the library's listener would stay in the list of the resource
        void operator()(QWaylandDestroyListener *listener) const;
    };
    using Listener = std::unique_ptr<QWaylandDestroyListener, StopListening>;

    void begin();
    void watch(wl_resource *source);
    void aim(SurfaceView *target, QPoint position);
    void showIcon(QPoint position);

    QWaylandSeat &m_seat;
    QWaylandOutput *m_output;
    QWidget *m_screen;
    wl_client *m_client = nullptr; // that drags; null: nothing is dragged
    QMetaObject::Connection m_clientGone;
    std::vector<Listener> m_sources; // of the client; which of them is dragged the library does not tell
    bool m_sourceGone = false;
    bool m_isAimed = false;
    std::unique_ptr<SurfaceView> m_icon;
};
