// The widget that shows one surface of a client on the screen.
#pragma once

#include "platform/windowserver/clientbacklog.h"

#include <QPointF>
#include <QWaylandView>
#include <QWidget>

class QWaylandOutput;
class QWaylandSeat;
class QWaylandSurface;

// Stacking, clipping, damage and the way of the pointer come from the widget; it is hidden while there is nothing to
// show. Owned by the window that the surface shows; the scene decides where it stands.
class SurfaceView : public QWidget {
    Q_OBJECT

public:
    SurfaceView(QWaylandSurface *surface, QWaylandOutput *output, QWidget *screen);
    ~SurfaceView() override;

    [[nodiscard]] QWaylandView *view() { return &m_view; }
    [[nodiscard]] QWaylandSurface *surface() const { return m_view.surface(); } // null once the client destroyed it
    [[nodiscard]] bool hasContent() const { return m_hasContent; }

    void refresh(); // takes what the client committed last

Q_SIGNALS:
    void contentChanged(bool hasContent); // when it begins and ends
    void resized();
    void redrawn();
    void pressed();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    struct Place {
        QPointF local;
        QPointF global;
    };
    void setContent(bool hasContent);
    void tellPointer(ClientBacklog::Event event, Place place, std::function<void(QWaylandSeat &)> act);

    QWaylandView m_view;
    bool m_hasContent = false;
};
