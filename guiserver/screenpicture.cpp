#include "guiserver/screenpicture.h"

#include "appbase/messaging/wire.h"
#include "platform/bus/qcopchannel.h"
#include "platform/window/qwsserver.h"

#include <QCoreApplication>
#include <QEvent>
#include <QImage>
#include <QWidget>
#include <algorithm>
#include <chrono>
#include <cstring>
#include <tuple>
#include <utility>

namespace {

using namespace std::chrono_literals;
using platform::ShmAttachment;

constexpr auto kFrame = 16ms; // the pace of the clients' frame callbacks
constexpr qsizetype kMostViewers = 16;

void sendFailed(const QCString &channel, const QString &why)
{
    QCopChannel::send(channel, "failed(QString)", wire::pack(why));
}

// What is drawn by the toolkit or changed by the window system behind its back: a menu of the server that closes.
bool changesTheScreen(QObject *watched, QEvent::Type type)
{
    switch (type) {
    case QEvent::Paint:
        return watched->isWidgetType();
    case QEvent::Show:
    case QEvent::Hide:
    case QEvent::Move:
    case QEvent::ZOrderChange:
        return watched->isWidgetType() && static_cast<QWidget *>(watched)->isWindow();
    default:
        return false;
    }
}

}

ScreenPicture::ScreenPicture(QObject *parent) : QObject(parent)
{
    m_pace.setSingleShot(true);
    m_pace.setTimerType(Qt::PreciseTimer);
    connect(&m_pace, &QTimer::timeout, this, &ScreenPicture::answer);
}

void ScreenPicture::ask(const QCString &channel, int seen)
{
    m_waiting.removeOne(channel);
    m_waiting.append(channel);
    if (m_waiting.size() > kMostViewers)
        sendFailed(m_waiting.takeFirst(), QStringLiteral("more than %1 viewers show the screen").arg(kMostViewers));
    if (m_isOutdated || seen != m_number)
        answerSoon();
}

bool ScreenPicture::eventFilter(QObject *watched, QEvent *event)
{
    if (!changesTheScreen(watched, event->type()))
        return false;
    m_isOutdated = true;
    QCoreApplication::instance()->removeEventFilter(this); // until the next picture: one change is enough to know
    if (!m_waiting.isEmpty())
        answerSoon();
    return false;
}

void ScreenPicture::answerSoon()
{
    if (m_pace.isActive())
        return;
    const auto passed = m_sinceAnswer.isValid() ? std::chrono::milliseconds(m_sinceAnswer.elapsed()) : kFrame;
    m_pace.start(std::max(kFrame - passed, 0ms));
}

void ScreenPicture::answer()
{
    m_sinceAnswer.start();
    const auto taken = m_isOutdated ? take() : tl::expected<void, QString>();
    for (const QCString &channel : std::exchange(m_waiting, {})) {
        if (taken)
            QCopChannel::send(channel, "frame(int,int,int,int,int)",
                wire::pack(
                    int(QCoreApplication::applicationPid()), m_number, m_segment, m_size.width(), m_size.height()));
        else
            sendFailed(channel, taken.error());
    }
}

tl::expected<void, QString> ScreenPicture::take()
{
    const QImage picture = QWSServer::instance()->grabScreen().convertToFormat(QImage::Format_RGB32);
    if (picture.isNull())
        return tl::make_unexpected(QStringLiteral("there is no memory for a picture of the screen"));
    const auto room = roomFor(picture);
    if (!room)
        return tl::make_unexpected(room.error());
    std::memcpy(room->data(), picture.constBits(), std::size_t(picture.sizeInBytes()));
    ++m_number;
    m_isOutdated = false;
    QCoreApplication::instance()->installEventFilter(this);
    return {};
}

// Rows follow each other without a gap: they are of 32-bit pixels.
tl::expected<std::span<std::byte>, QString> ScreenPicture::roomFor(const QImage &picture)
{
    if (m_memory && m_size == picture.size())
        return m_memory->bytes();
    constexpr int kOwnerOnly = 0600;
    const auto segment =
        ShmAttachment::segment({IPC_PRIVATE, IPC_CREAT | kOwnerOnly}, std::size_t(picture.sizeInBytes()));
    if (!segment)
        return tl::make_unexpected(segment.error().text());
    auto memory = ShmAttachment::attach(*segment, ShmAttachment::Access::ReadWrite);
    std::ignore = ShmAttachment::remove(*segment); // it can be attached by its number while somebody has it
    if (!memory)
        return tl::make_unexpected(memory.error().text());
    m_segment = *segment;
    m_size = picture.size();
    return m_memory.emplace(std::move(*memory)).bytes();
}
