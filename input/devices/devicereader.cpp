#include "input/devices/devicereader.h"

#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;

constexpr auto kFirstDelay = 1s;
constexpr auto kLongestDelay = 60s;

}

DeviceReader::DeviceReader(const char *path, std::size_t recordSize, std::function<void(Records)> take)
    : m_path(path), m_recordSize(recordSize), m_take(std::move(take))
{
}

platform::Result<> DeviceReader::open()
{
    auto fd = platform::Fd::open(m_path, O_RDWR | O_NONBLOCK | O_NOCTTY);
    if (!fd)
        return tl::make_unexpected(fd.error());
    adopt(std::move(*fd));
    return {};
}

void DeviceReader::adopt(platform::Fd fd)
{
    m_fd = std::move(fd);
    m_filled = 0;
    m_notifier = std::make_unique<QSocketNotifier>(m_fd.get(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] { Q_EMIT activated(m_fd.get()); });
}

void DeviceReader::read() { read(kBufferSize); }

void DeviceReader::readOne(std::chrono::milliseconds pause)
{
    read(m_filled + (m_recordSize - m_filled % m_recordSize));
    if (!m_notifier)
        return;
    m_notifier->setEnabled(false);
    QTimer::singleShot(pause, Qt::PreciseTimer, m_notifier.get(), [this] { m_notifier->setEnabled(true); });
}

// `room` is how far the buffer may be filled.
void DeviceReader::read(std::size_t room)
{
    while (m_fd && m_filled < room) {
        const ssize_t count = ::read(m_fd.get(), m_buffer.data() + m_filled, room - m_filled);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0 && errno == EAGAIN)
            break;
        if (count <= 0) {
            const platform::SysError error{"read", count < 0 ? errno : ENODEV}; // the end is the end of the device
            handOver();
            lose(error);
            return;
        }
        m_filled += std::size_t(count);
        m_delay.reset();
    }
    handOver();
}

void DeviceReader::handOver()
{
    const std::size_t whole = m_filled - m_filled % m_recordSize;
    if (whole == 0)
        return;
    // A copy: what takes the records may run an event loop, and be back here.
    std::array<std::byte, kBufferSize> records;
    std::memcpy(records.data(), m_buffer.data(), whole);
    m_filled -= whole;
    std::memmove(m_buffer.data(), m_buffer.data() + whole, m_filled);
    m_take(Records(records).first(whole));
}

void DeviceReader::lose(const platform::SysError &error)
{
    if (!m_delay)
        std::fprintf(stderr, "%s: %s; it is looked for again\n", m_path, qPrintable(error.text()));
    m_notifier.release()->deleteLater(); // this may be its slot
    m_fd.reset();
    m_delay = m_delay ? std::min<std::chrono::seconds>(2 * *m_delay, kLongestDelay) : kFirstDelay;
    QTimer::singleShot(*m_delay, this, &DeviceReader::retry);
    if (m_lost)
        m_lost();
}

void DeviceReader::retry()
{
    if (m_fd)
        return;
    if (open()) {
        if (m_found)
            m_found();
        return;
    }
    m_delay = std::min<std::chrono::seconds>(2 * *m_delay, kLongestDelay); // NOLINT(bugprone-unchecked-optional-access)
    QTimer::singleShot(*m_delay, this, &DeviceReader::retry);
}
