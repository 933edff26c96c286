#include "tools/phone/hand.h"

#include "tools/tyx/inputwriter.h"

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace {

constexpr quint16 kPressure = 200;
constexpr int kSettle = 4; // samples, more than the panel's filter wants
constexpr int kMedian = 2; // samples that bring the filter's median along

}

// What the child does.
class Hand::Fingers {
public:
    explicit Fingers(int orders) : m_orders(orders) { }

    void work()
    {
        Packet packet;
        while (::recv(m_orders, packet.data(), sizeof packet, 0) == sizeof packet)
            obey(packet);
        letGo();
    }

private:
    void obey(const Packet &packet)
    {
        const auto [order, first, second, third] = packet;
        if (order == LetGo)
            letGo();
        else if (order == Touch)
            tell(m_writer.write(recording::Touch{{first, second, third}}));
        else
            tell(m_writer.write(recording::Key{keypad::Device(first), second}));
    }

    void letGo() // without a word: a phone that is gone needs no release
    {
        m_writer.letGo();
        m_writer = tyx::InputWriter();
    }

    void tell(const tyx::InputWriter::Done &done) const
    {
        if (done)
            return;
        const QByteArray text = done.error().toUtf8();
        ::send(m_orders, text.constData(), size_t(text.size()), MSG_DONTWAIT | MSG_NOSIGNAL);
    }

    int m_orders;
    tyx::InputWriter m_writer;
};

platform::Result<platform::Fd> Hand::start()
{
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0)
        return platform::failed("socketpair");
    platform::Fd ours = platform::Fd::own(ends[0]);
    const platform::Fd theirs = platform::Fd::own(ends[1]);
    const pid_t child = ::fork();
    if (child < 0)
        return platform::failed("fork");
    if (child > 0)
        return ours;
    ours.reset();
    ::setsid(); // what interrupts the viewer at its terminal must not end the hand before it let go
    std::signal(SIGPIPE, SIG_IGN);
    Fingers(theirs.get()).work();
    ::_exit(0);
}

Hand::Hand(platform::Fd orders)
    : m_orders(std::move(orders))
    , m_answers(m_orders.get(), QSocketNotifier::Read)
    , m_room(m_orders.get(), QSocketNotifier::Write)
{
    m_room.setEnabled(false);
    connect(&m_answers, &QSocketNotifier::activated, this, &Hand::listen);
    connect(&m_room, &QSocketNotifier::activated, this, &Hand::flush);
}

void Hand::put(const keypad::RawKey &key, bool pressed)
{
    send({Key, quint16(key.device), quint16(key.number | (pressed ? keypad::kPressed : 0)), 0});
}

void Hand::touch(QPoint place)
{
    m_pen = place;
    sendSamples(kSettle, kPressure);
}

void Hand::moveTo(QPoint place)
{
    if (m_pen == place || !m_unsent.empty()) // a phone that does not keep up misses some of the way
        return;
    m_pen = place;
    sendSamples(kMedian, kPressure);
}

void Hand::lift() { sendSamples(1, 0); }

void Hand::letGo()
{
    m_unsent.clear();
    send({LetGo, 0, 0, 0});
}

void Hand::sendSamples(int count, quint16 pressure)
{
    for (int i = 0; i < count; ++i)
        send({Touch, pressure, quint16(m_pen.x()), quint16(m_pen.y())});
}

void Hand::send(const Packet &packet)
{
    m_unsent.push_back(packet);
    flush();
}

void Hand::flush()
{
    while (!m_unsent.empty()) {
        const Packet &packet = m_unsent.front();
        if (::send(m_orders.get(), packet.data(), sizeof packet, MSG_DONTWAIT | MSG_NOSIGNAL) < 0 && errno == EAGAIN)
            break;
        m_unsent.pop_front(); // also when the hand is gone, which is told where it is listened to
    }
    m_room.setEnabled(!m_unsent.empty());
}

void Hand::listen()
{
    std::array<char, 1024> text;
    const ssize_t size = ::recv(m_orders.get(), text.data(), text.size(), MSG_DONTWAIT);
    if (size > 0) {
        Q_EMIT failed(QString::fromUtf8(text.data(), qsizetype(size)));
    } else if (size == 0) {
        m_answers.setEnabled(false);
        Q_EMIT failed(tr("the process that presses keys has ended; close this window and start again"));
    }
}
