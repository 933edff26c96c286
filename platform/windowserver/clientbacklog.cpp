#include "platform/windowserver/clientbacklog.h"

#include <QWaylandClient>
#include <QWaylandSurface>
#include <poll.h>
#include <wayland-server-core.h>

namespace {

// Nobody types that far ahead of an application that is merely slow.
constexpr std::size_t kPatience = 2000;

}

void flushClient(const QWaylandSurface &surface)
{
    if (wl_client *client = surface.waylandClient())
        wl_client_flush(client);
}

ClientBacklog::ClientBacklog(QWaylandClient *client)
    : QObject(client), m_client(client), m_room(wl_client_get_fd(client->client()), QSocketNotifier::Write)
{
    m_room.setEnabled(false);
    connect(&m_room, &QSocketNotifier::activated, this, &ClientBacklog::sendWaiting);
}

ClientBacklog *ClientBacklog::of(const QWaylandClient &client)
{
    return client.findChild<ClientBacklog *>(QString(), Qt::FindDirectChildrenOnly);
}

void ClientBacklog::deliver(QWaylandSurface &surface, QObject *context, Event event, std::function<void()> send)
{
    QWaylandClient *client = surface.client();
    if (!client)
        return;
    ClientBacklog *backlog = of(*client);
    if (!backlog)
        backlog = new ClientBacklog(client);
    Waiting waiting{&surface, context, std::move(send)};
    if (backlog->m_waiting.empty() && backlog->hasRoom())
        waiting.sendNow();
    else if (event == Event::Needed)
        backlog->wait(std::move(waiting));
}

int ClientBacklog::waiting(const QWaylandClient &client)
{
    const ClientBacklog *backlog = of(client);
    return backlog ? static_cast<int>(backlog->m_waiting.size()) : 0;
}

void ClientBacklog::Waiting::sendNow() const
{
    if (!surface || !context)
        return;
    send();
    if (surface)
        flushClient(*surface);
}

bool ClientBacklog::hasRoom() const
{
    pollfd socket{wl_client_get_fd(m_client->client()), POLLOUT, 0};
    return poll(&socket, 1, 0) != 0; // an error is found out by the next message
}

void ClientBacklog::wait(Waiting event)
{
    if (m_waiting.size() >= kPatience)
        return; // it is on its way out
    m_waiting.push_back(std::move(event));
    m_room.setEnabled(true);
    if (m_waiting.size() < kPatience)
        return;
    qWarning("window server: process %lld does not read its events and is disconnected",
        static_cast<long long>(m_client->processId()));
    QMetaObject::invokeMethod(m_client, &QWaylandClient::close, Qt::QueuedConnection);
}

void ClientBacklog::sendWaiting()
{
    while (!m_waiting.empty() && hasRoom()) {
        const Waiting event = std::move(m_waiting.front());
        m_waiting.pop_front();
        event.sendNow();
    }
    m_room.setEnabled(!m_waiting.empty());
}
