// This bus as the endpoint of a measurement.
#include "bench/bus/endpoint.h"
#include "bench/bus/qtloop.h"
#include "platform/bus/busbroker.h"

#include <QCopChannel>

namespace bench {

namespace {

void serve(int readyFd)
{
    const QtLoop loop;
    const auto broker = platform::BusBroker::listen();
    if (!broker)
        die("broker");
    sayReady(readyFd);
    QtLoop::run();
}

class TyxEndpoint final : public Endpoint {
public:
    void join(const std::string &channel) override
    {
        m_channel = std::make_unique<QCopChannel>(channel.c_str());
        QObject::connect(
            m_channel.get(), &QCopChannel::received, m_channel.get(), [this](const QCString &, const QByteArray &data) {
                onMessage({data.constData(), size_t(data.size())});
            });
    }
    void send(const std::string &channel, std::span<const char> data) override
    {
        QCopChannel::send(
            channel.c_str(), "m(QByteArray)", QByteArray::fromRawData(data.data(), qsizetype(data.size())));
    }
    void run() override { QtLoop::run(); }
    void stop() override { QtLoop::stop(); }

private:
    QtLoop m_loop;
    std::unique_ptr<QCopChannel> m_channel;
};

}

const Bus kTyx = {"tyx bus", serve, []() -> std::unique_ptr<Endpoint> { return std::make_unique<TyxEndpoint>(); }};

}
