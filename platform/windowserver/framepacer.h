// Tells clients when to draw their next picture.
#pragma once

#include <QObject>
#include <QTimer>

class Scene;

// At most every 16 ms, and only windows of which something can be seen: a covered application waits, and draws again
// when it comes to light.
class FramePacer : public QObject {
    Q_OBJECT

public:
    explicit FramePacer(const Scene &scene);

private:
    void release();

    const Scene &m_scene;
    QTimer m_timer;
};
