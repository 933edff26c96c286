#include "platform/windowserver/clientbacklog.h"

#include <QWaylandClient>
#include <QWaylandSurface>
#include <poll.h>
#include <wayland-server-core.h>

namespace {

// About as many events go into the socket and the library's buffer after the socket stopped being writable.
constexpr int kPatience = 200;

bool reads(QWaylandClient &client)
{
    pollfd socket{wl_client_get_fd(client.client()), POLLOUT, 0};
    return poll(&socket, 1, 0) != 0; // an error is found out by the next message
}

}

bool ClientBacklog::admits(const QWaylandSurface &surface, Event event)
{
    QWaylandClient *client = surface.client();
    if (!client)
        return false;
    auto *backlog = client->findChild<ClientBacklog *>(QString(), Qt::FindDirectChildrenOnly);
    if (!backlog)
        backlog = new ClientBacklog(client);
    return backlog->admit(event);
}

bool ClientBacklog::admit(Event event)
{
    auto *client = static_cast<QWaylandClient *>(parent());
    if (reads(*client)) {
        m_unread = 0;
        return true;
    }
    if (event == Event::Droppable)
        return false;
    if (++m_unread == kPatience) {
        qWarning("window server: process %lld does not read its events and is disconnected",
            static_cast<long long>(client->processId()));
        QMetaObject::invokeMethod(client, &QWaylandClient::close, Qt::QueuedConnection);
    }
    return m_unread < kPatience;
}
