// Which data source a client made last: that is what it drags, which the toolkit's server does not tell.
#pragma once

#include <QHash>
#include <memory>
#include <wayland-server-core.h>

// A client makes the source of a drag right before it begins the drag; one that it made before is its clipboard.
class DataSources {
public:
    explicit DataSources(wl_display *display);
    ~DataSources();
    Q_DISABLE_COPY_MOVE(DataSources)

    // Null when it made none, or has destroyed it.
    [[nodiscard]] wl_resource *latestOf(wl_client *client) const;

private:
    struct Client;

    // Leads the library's calls back to who listens.
    template <typename Owner> struct Listener {
        wl_listener listener{}; // first: its address is that of the whole
        Owner *owner = nullptr;

        explicit Listener(Owner *who, wl_notify_func_t notify) : owner(who) { listener.notify = notify; }
        ~Listener() { wl_list_remove(&listener.link); }
        Q_DISABLE_COPY_MOVE(Listener)
        static Owner *of(wl_listener *called) { return reinterpret_cast<Listener *>(called)->owner; }
    };

    void watch(wl_client *client);

    Listener<DataSources> m_clientCreated;
    QHash<wl_client *, std::shared_ptr<Client>> m_clients;
};
