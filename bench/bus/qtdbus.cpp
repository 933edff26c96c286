// The rival QtDBus: the endpoint of a measurement over a session bus.
#include "bench/bus/endpoint.h"
#include "bench/bus/qtloop.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>

namespace bench {

namespace {

class Receiver : public QObject {
    Q_OBJECT

public:
    explicit Receiver(Endpoint &endpoint) : m_endpoint(endpoint) { }

public Q_SLOTS:
    void take(const QByteArray &data) { m_endpoint.onMessage({data.constData(), size_t(data.size())}); }

private:
    Endpoint &m_endpoint;
};

class QtDBusEndpoint final : public Endpoint {
public:
    QtDBusEndpoint()
        : m_bus(QDBusConnection::connectToBus(QString::fromLatin1(kDBusAddress), QStringLiteral("bench")))
        , m_receiver(*this)
    {
    }

    void join(const std::string &channel) override
    {
        m_bus.connect(QString(), QString::fromLatin1(kDBusPath), QString::fromLatin1(kDBusInterface),
            QString::fromStdString(channel), &m_receiver, SLOT(take(QByteArray)));
        m_bus.interface()->registeredServiceNames(); // an answer: the daemon has come this far
    }
    void send(const std::string &channel, std::span<const char> data) override
    {
        QDBusMessage message = QDBusMessage::createSignal(
            QString::fromLatin1(kDBusPath), QString::fromLatin1(kDBusInterface), QString::fromStdString(channel));
        message << QByteArray(data.data(), qsizetype(data.size()));
        m_bus.send(message);
    }
    void run() override { QtLoop::run(); }
    void stop() override { QtLoop::stop(); }

private:
    QtLoop m_loop;
    QDBusConnection m_bus;
    Receiver m_receiver;
};

}

const Bus kQtDBus = {
    "QtDBus", serveDBus, []() -> std::unique_ptr<Endpoint> { return std::make_unique<QtDBusEndpoint>(); }};

}

#include "qtdbus.moc"
