#include "tools/phone/screenlink.h"

#include "appbase/messaging/wire.h"

#include <QCoreApplication>
#include <chrono>
#include <cstring>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;
using platform::ShmAttachment;

constexpr auto kSearchPause = 250ms;
constexpr int kLargestSide = 4096; // pixels

}

// Below "TYX/Tool/": what goes there is no part of a recording.
ScreenLink::ScreenLink(QObject *parent)
    : QObject(parent)
    , m_name("TYX/Tool/" + QByteArray::number(QCoreApplication::applicationPid()) + "/screen")
    , m_channel(m_name)
{
    connect(&m_channel, &QCopChannel::received, this, &ScreenLink::receive);
    m_search.setInterval(kSearchPause);
    connect(&m_search, &QTimer::timeout, this, &ScreenLink::ask);
    m_search.start();
    ask();
}

void ScreenLink::ask() { QCopChannel::send("TYX/Screen", "frame(QCString,int)", wire::pack(m_name, m_seen)); }

void ScreenLink::receive(const QCString &message, const QByteArray &arguments)
{
    qint32 process = 0;
    qint32 number = 0;
    qint32 segment = 0;
    qint32 width = 0;
    qint32 height = 0;
    m_trouble.clear();
    if (message == "failed(QString)" && wire::unpack(arguments, m_trouble)) {
        m_search.start();
        Q_EMIT attachedChanged();
        return;
    }
    if (message != "frame(int,int,int,int,int)" || !wire::unpack(arguments, process, number, segment, width, height))
        return;
    if (!copy(segment, QSize(width, height)) || !attach(process))
        return;
    m_search.stop();
    m_seen = number;
    ask();
    Q_EMIT pictureChanged();
}

bool ScreenLink::attach(int process)
{
    if (m_isAttached)
        return true;
    m_process = platform::Fd::own(int(::syscall(SYS_pidfd_open, process, 0)));
    if (!m_process) // it has ended since, or is not of this phone
        return false;
    m_end = std::make_unique<QSocketNotifier>(m_process.get(), QSocketNotifier::Read);
    connect(m_end.get(), &QSocketNotifier::activated, this, &ScreenLink::detach);
    m_isAttached = m_wasAttached = true;
    Q_EMIT attachedChanged();
    return true;
}

void ScreenLink::detach()
{
    m_end->setEnabled(false);
    m_end.release()->deleteLater(); // this may be its slot
    m_process.reset();
    m_memory.reset();
    m_segment = -1;
    m_seen = 0;
    m_isAttached = false;
    m_search.start();
    Q_EMIT attachedChanged();
}

bool ScreenLink::copy(int segment, QSize size)
{
    if (size.width() < 1 || size.height() < 1 || size.width() > kLargestSide || size.height() > kLargestSide)
        return false;
    if (!m_memory || segment != m_segment) {
        auto memory = ShmAttachment::attach(segment, ShmAttachment::Access::ReadOnly);
        if (!memory) {
            m_trouble = memory.error().text();
            return false;
        }
        m_memory = std::move(*memory);
        m_segment = segment;
    }
    if (m_picture.size() != size)
        m_picture = QImage(size, QImage::Format_RGB32);
    const auto bytes = m_memory->bytes();
    if (m_picture.isNull() || bytes.size() < std::size_t(m_picture.sizeInBytes()))
        return false;
    std::memcpy(m_picture.bits(), bytes.data(), std::size_t(m_picture.sizeInBytes()));
    return true;
}
