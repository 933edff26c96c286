// What a client drags with the pen: shows it, and tells the window under the pen.
#pragma once

#include "platform/windowserver/datasources.h"
#include "platform/windowserver/draggedtext.h"

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <memory>

class QWaylandDestroyListener;
class QWaylandOutput;
class QWaylandSeat;
class QWidget;
class SurfaceView;

// The windows of the client itself are served by the toolkit's server. Those of others are offered text and nothing
// else, by DraggedText. The server's own widgets get the toolkit's drag events, so that one of them may bring another
// application into sight. The client sees the pen go up too, which ends the drag for it wherever it ended.
class DragAndDrop : public QObject {
    Q_OBJECT

public:
    DragAndDrop(wl_display *display, QWaylandSeat &seat, QWaylandOutput *output, QWidget *screen);
    ~DragAndDrop() override;

    bool move(QPoint position); // on the screen; false: nothing is dragged
    void drop();
    void cancel();

private:
    enum class Aim { Nothing, Own, Other };

    struct StopListening { // the library's listener would stay in the list of the resource
        void operator()(QWaylandDestroyListener *listener) const;
    };
    using Listener = std::unique_ptr<QWaylandDestroyListener, StopListening>;

    void begin();
    void watch(wl_resource *source);
    void aim(SurfaceView *target, QPoint position);
    void aimAtOther(SurfaceView *target, QPoint position);
    void leave();
    void hover(QWidget *widget); // of the server; null: none
    void showIcon(QPoint position);

    DataSources m_dataSources;
    QWaylandSeat &m_seat;
    QWaylandOutput *m_output;
    QWidget *m_screen;
    wl_client *m_client = nullptr; // that drags; null: nothing is dragged
    QMetaObject::Connection m_clientGone;
    Listener m_source;
    std::unique_ptr<DraggedText> m_text;
    bool m_sourceGone = false;
    QPoint m_position; // of the pen, on the screen
    Aim m_aim = Aim::Nothing;
    QPointer<SurfaceView> m_other; // of another client, that was told of the drag
    QPointer<QWidget> m_hovered;
    std::unique_ptr<SurfaceView> m_icon;
};
