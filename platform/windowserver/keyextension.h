// Sends key events to clients in full: key code, text, and whether the key repeats.
#pragma once

#include <QKeyEvent>
#include <QWaylandCompositorExtensionTemplate>
#include <qwayland-server-zqt-key-v1.h>

class QWaylandSurface;

class KeyExtension : public QWaylandCompositorExtensionTemplate<KeyExtension>, public QtWaylandServer::zqt_key_v1 {
    Q_OBJECT

public:
    explicit KeyExtension(QWaylandCompositor *compositor);
    void initialize() override;

    // False when the surface's client does not know this protocol.
    bool send(QWaylandSurface *surface, const QKeyEvent &event);
};
