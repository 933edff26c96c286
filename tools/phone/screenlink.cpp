#include "tools/phone/screenlink.h"

#include "appbase/messaging/wire.h"

#include <QCoreApplication>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <initializer_list>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace {

using namespace std::chrono_literals;
using platform::ShmAttachment;

constexpr auto kSearchPause = 250ms;
constexpr auto kReminderPause = 5s;
constexpr int kLargestSide = 4096; // pixels

// `ofTheDead`: what the call answers when the server has ended.
tl::unexpected<QString> problem(const platform::SysError &error, std::initializer_list<int> ofTheDead)
{
    const bool hasEnded = std::find(ofTheDead.begin(), ofTheDead.end(), error.number) != ofTheDead.end();
    return tl::make_unexpected(hasEnded ? QString() : error.text());
}

}

// Below "TYX/Tool/": what goes there is no part of a recording.
ScreenLink::ScreenLink(QObject *parent)
    : QObject(parent)
    , m_name("TYX/Tool/" + QByteArray::number(QCoreApplication::applicationPid()) + "/screen")
    , m_channel(m_name)
{
    connect(&m_channel, &QCopChannel::received, this, &ScreenLink::receive);
    connect(&m_search, &QTimer::timeout, this, &ScreenLink::ask);
    m_search.start(kSearchPause);
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
    QString why;
    if (message == "failed(QString)" && wire::unpack(arguments, why)) {
        fail(why);
        return;
    }
    if (message != "frame(int,int,int,int,int)" || !wire::unpack(arguments, process, number, segment, width, height))
        return;
    if (const Done done = copy(segment, QSize(width, height)).and_then([&] { return attach(process); }); !done) {
        fail(done.error());
        return;
    }
    m_trouble.clear();
    m_search.start(kReminderPause);
    m_seen = number;
    ask();
    Q_EMIT pictureChanged();
}

void ScreenLink::fail(const QString &why)
{
    releaseMemory();
    m_seen = 0; // the next answer comes at once, if there is a picture
    m_search.start(kSearchPause);
    if (std::exchange(m_trouble, why) != why)
        Q_EMIT attachedChanged();
}

ScreenLink::Done ScreenLink::attach(int process)
{
    if (m_isAttached)
        return {};
    const int fd = int(::syscall(SYS_pidfd_open, process, 0));
    if (fd < 0)
        return problem({"pidfd_open", errno}, {ESRCH});
    m_process = platform::Fd::own(fd);
    m_end = std::make_unique<QSocketNotifier>(m_process.get(), QSocketNotifier::Read);
    connect(m_end.get(), &QSocketNotifier::activated, this, &ScreenLink::detach);
    m_isAttached = m_wasAttached = true;
    m_trouble.clear();
    Q_EMIT attachedChanged();
    return {};
}

void ScreenLink::detach()
{
    m_end->setEnabled(false);
    m_end.release()->deleteLater(); // this may be its slot
    m_process.reset();
    releaseMemory();
    m_trouble.clear();
    m_seen = 0;
    m_isAttached = false;
    m_search.start(kSearchPause);
    Q_EMIT attachedChanged();
}

void ScreenLink::releaseMemory()
{
    m_memory.reset();
    m_segment = -1;
}

// The last picture stays until all of the next one is there.
ScreenLink::Done ScreenLink::copy(int segment, QSize size)
{
    if (size.width() < 1 || size.height() < 1 || size.width() > kLargestSide || size.height() > kLargestSide)
        return tl::make_unexpected(tr("a screen of %1 x %2 pixels").arg(size.width()).arg(size.height()));
    if (!m_memory || segment != m_segment) {
        auto memory = ShmAttachment::attach(segment, ShmAttachment::Access::ReadOnly);
        if (!memory)
            return problem(memory.error(), {EINVAL, EIDRM});
        m_memory = std::move(*memory);
        m_segment = segment;
    }
    const std::size_t needed = std::size_t(size.width()) * std::size_t(size.height()) * sizeof(QRgb);
    const auto bytes = m_memory->bytes();
    if (bytes.size() < needed)
        return tl::make_unexpected(tr("the shared memory is smaller than the screen"));
    if (m_picture.size() != size) {
        QImage picture(size, QImage::Format_RGB32);
        if (picture.isNull())
            return tl::make_unexpected(qt_error_string(ENOMEM));
        m_picture = std::move(picture);
    }
    std::memcpy(m_picture.bits(), bytes.data(), needed);
    return {};
}
