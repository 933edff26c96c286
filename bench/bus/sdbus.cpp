// The rival sd-bus: the endpoint of a measurement over a session bus.
#include "bench/bus/endpoint.h"

#include <systemd/sd-bus.h>

namespace bench {

namespace {

void check(int result, const char *what)
{
    if (result < 0) {
        errno = -result;
        die(what);
    }
}

class SdBusEndpoint final : public Endpoint {
public:
    SdBusEndpoint()
    {
        check(sd_bus_new(&m_bus), "sd_bus_new");
        check(sd_bus_set_address(m_bus, kDBusAddress), "sd_bus_set_address");
        check(sd_bus_set_bus_client(m_bus, 1), "sd_bus_set_bus_client");
        check(sd_bus_start(m_bus), "sd_bus_start");
    }
    ~SdBusEndpoint() override { sd_bus_flush_close_unref(m_bus); }

    void join(const std::string &channel) override
    {
        const std::string rule =
            std::string("type='signal',interface='") + kDBusInterface + "',member='" + channel + "'";
        check(sd_bus_add_match(m_bus, nullptr, rule.c_str(), take, this), "sd_bus_add_match");
    }
    void send(const std::string &channel, std::span<const char> data) override
    {
        sd_bus_message *message = nullptr;
        check(sd_bus_message_new_signal(m_bus, &message, kDBusPath, kDBusInterface, channel.c_str()), "signal");
        check(sd_bus_message_append_array(message, 'y', data.data(), data.size()), "append");
        check(sd_bus_send(m_bus, message, nullptr), "sd_bus_send");
        sd_bus_message_unref(message);
    }
    void run() override
    {
        for (m_running = true; m_running;) {
            const int more = sd_bus_process(m_bus, nullptr);
            check(more, "sd_bus_process");
            if (more == 0 && m_running)
                check(sd_bus_wait(m_bus, UINT64_MAX), "sd_bus_wait");
        }
    }
    void stop() override { m_running = false; }

private:
    static int take(sd_bus_message *message, void *self, sd_bus_error *)
    {
        const void *data = nullptr;
        size_t size = 0;
        check(sd_bus_message_read_array(message, 'y', &data, &size), "read");
        static_cast<SdBusEndpoint *>(self)->onMessage({static_cast<const char *>(data), size});
        return 0;
    }

    sd_bus *m_bus = nullptr;
    bool m_running = false;
};

}

const Bus kSdBus = {
    "sd-bus", serveDBus, []() -> std::unique_ptr<Endpoint> { return std::make_unique<SdBusEndpoint>(); }};

}
