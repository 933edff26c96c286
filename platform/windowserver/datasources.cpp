#include "platform/windowserver/datasources.h"

#include <cstring>

namespace {

bool isDataSource(wl_resource *resource)
{
    return resource && std::strcmp(wl_resource_get_class(resource), "wl_data_source") == 0;
}

}

struct DataSources::Client {
    Client(DataSources *sources, wl_client *watched)
        : client(watched), owner(sources), resourceCreated(this, onResource), destroyed(this, onDestroyed)
    {
        wl_client_add_resource_created_listener(client, &resourceCreated.listener);
        wl_client_add_destroy_listener(client, &destroyed.listener);
    }

    static void onResource(wl_listener *listener, void *resource)
    {
        if (isDataSource(static_cast<wl_resource *>(resource)))
            Listener<Client>::of(listener)->latest = wl_resource_get_id(static_cast<wl_resource *>(resource));
    }
    static void onDestroyed(wl_listener *listener, void *)
    {
        const Client *self = Listener<Client>::of(listener);
        self->owner->m_clients.remove(self->client); // ends `self`
    }

    wl_client *client;
    DataSources *owner;
    uint32_t latest = 0; // its object number; 0: none yet
    Listener<Client> resourceCreated;
    Listener<Client> destroyed;
};

DataSources::DataSources(wl_display *display)
    : m_clientCreated(this, [](wl_listener *listener, void *client) {
        Listener<DataSources>::of(listener)->watch(static_cast<wl_client *>(client));
    })
{
    wl_display_add_client_created_listener(display, &m_clientCreated.listener);
}

DataSources::~DataSources() = default;

void DataSources::watch(wl_client *client) { m_clients.insert(client, std::make_shared<Client>(this, client)); }

wl_resource *DataSources::latestOf(wl_client *client) const
{
    const auto found = m_clients.value(client);
    wl_resource *source = found && found->latest != 0 ? wl_client_get_object(client, found->latest) : nullptr;
    return isDataSource(source) ? source : nullptr;
}
