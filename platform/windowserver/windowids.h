// The server's side of the window identifiers: gives each client its range and hears which surface shows what.
#pragma once

#include <QHash>
#include <QWaylandCompositorExtensionTemplate>
#include <qwayland-server-tyx-windows-v1.h>

class QWaylandSurface;

struct WindowLabel {
    int id = 0;
    QString name;
    bool isModal = false;
};

class WindowIds : public QWaylandCompositorExtensionTemplate<WindowIds>, public QtWaylandServer::tyx_windows_v1 {
    Q_OBJECT

public:
    // Identifiers below are the server's own, for windows of programs that do not know this protocol.
    static constexpr int kRange = 4096; // of one client

    explicit WindowIds(QWaylandCompositor *compositor);
    void initialize() override;

Q_SIGNALS:
    void identified(QWaylandSurface *surface, const WindowLabel &label);
    void forgotten(int id);

protected:
    void tyx_windows_v1_bind_resource(Resource *resource) override;
    void tyx_windows_v1_destroy_resource(Resource *resource) override;
    void tyx_windows_v1_identify(
        Resource *resource, wl_resource *surface, int32_t id, const QString &name, uint32_t traits) override;
    void tyx_windows_v1_forget(Resource *resource, int32_t id) override;

private:
    bool owns(Resource *resource, int id);

    QHash<const Resource *, int> m_firsts;
    int m_next = kRange;
};
