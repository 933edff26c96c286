#include "guiserver/screenservice.h"

#include "appbase/application/keytouchpanelevent.h"
#include "appbase/messaging/route.h"
#include "appbase/messaging/wire.h"
#include "platform/window/qwsserver.h"

#include <QBuffer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimer>
#include <chrono>

namespace {

using namespace std::chrono_literals;

// A longer text comes in several requests, each after the answer to the one before: an application may be slow to read.
constexpr qsizetype kMaxText = 500;
// How often an answer looks whether the application has read everything, and when it gives up (after four seconds).
constexpr auto kLookAgain = 2ms;
constexpr int kLooks = 2000;

using Row = Route<ScreenService>;

constexpr Row screenRoutes[] = {
    {"shot(QCString)", &ScreenService::onShot},
    {"frame(QCString,int)", &ScreenService::onFrame},
    {"windows(QCString)", &ScreenService::onWindows},
    {"key(QCString,int,int,int)", &ScreenService::onKey},
    {"text(QCString,QString)", &ScreenService::onText},
    {"pointer(QCString,int,int,int)", &ScreenService::onPointer},
};

void refuse(const QCString &channel, const QString &reason)
{
    QCopChannel::send(channel, "failed(QString)", wire::pack(reason));
}

void answer(const QCString &channel, const QCString &message, const QByteArray &content = {})
{
    // A picture of a large screen may be more than one message holds.
    if (!QCopChannel::send(channel, message, content))
        refuse(channel, QStringLiteral("the answer does not fit a message"));
}

QJsonObject describe(const QWSWindow &window)
{
    const QRect place = window.geometry();
    return {
        {QStringLiteral("id"), window.winId()},
        {QStringLiteral("pid"), int(window.clientPid())},
        {QStringLiteral("title"), window.caption()},
        {QStringLiteral("name"), window.name()},
        {QStringLiteral("geometry"), QJsonArray{place.x(), place.y(), place.width(), place.height()}},
        {QStringLiteral("visible"), window.isVisible()},
        {QStringLiteral("active"), window.isActive()},
        {QStringLiteral("popup"), window.isPopup()},
    };
}

}

ScreenService::ScreenService(QObject *parent) : QObject(parent), m_channel("TYX/Screen")
{
    connect(&m_channel, &QCopChannel::received, this, &ScreenService::receive);
}

void ScreenService::receive(const QCString &message, const QByteArray &arguments)
{
    dispatch<ScreenService>(screenRoutes, *this, message, arguments);
}

// So that the next request finds room: what is sent to an application that does not read ends in its disconnection.
void ScreenService::answerWhenRead(const QCString &channel, int looks)
{
    if (QWSServer::instance()->pendingInput() == 0)
        answer(channel, "done()");
    else if (looks == 0)
        refuse(channel, QStringLiteral("an application does not read its keys"));
    else
        QTimer::singleShot(kLookAgain, this, [this, channel, looks] { answerWhenRead(channel, looks - 1); });
}

void ScreenService::onShot(const QByteArray &arguments)
{
    QCString channel;
    if (!wire::unpack(arguments, channel))
        return;
    QBuffer png;
    QWSServer::instance()->grabScreen().save(&png, "PNG");
    answer(channel, "shot(QByteArray)", wire::pack(png.data()));
}

void ScreenService::onFrame(const QByteArray &arguments)
{
    QCString channel;
    qint32 seen = 0;
    if (wire::unpack(arguments, channel, seen))
        m_picture.ask(channel, seen);
}

void ScreenService::onWindows(const QByteArray &arguments)
{
    QCString channel;
    if (!wire::unpack(arguments, channel))
        return;
    QJsonArray windows;
    for (const QWSWindow *window : QWSServer::instance()->clientWindows())
        windows.append(describe(*window));
    answer(channel, "windows(QByteArray)", wire::pack(QJsonDocument(windows).toJson(QJsonDocument::Compact)));
}

void ScreenService::onKey(const QByteArray &arguments)
{
    QCString channel;
    qint32 unicode = 0;
    qint32 keycode = 0;
    qint32 modifiers = 0;
    if (!wire::unpack(arguments, channel, unicode, keycode, modifiers))
        return;
    UTIL_KeyTouchPanelEvent::instance()->keyClick(unicode, keycode, modifiers);
    answerWhenRead(channel, kLooks);
}

void ScreenService::onText(const QByteArray &arguments)
{
    QCString channel;
    QString text;
    if (!wire::unpack(arguments, channel, text))
        return;
    if (text.size() > kMaxText) {
        refuse(channel, QStringLiteral("one request types at most %1 characters").arg(kMaxText));
        return;
    }
    for (const uint character : text.toUcs4())
        UTIL_KeyTouchPanelEvent::instance()->keyClick(
            int(character), character == '\n' ? Qt::Key_Return : int(QChar::toUpper(character)), 0);
    answerWhenRead(channel, kLooks);
}

void ScreenService::onPointer(const QByteArray &arguments)
{
    QCString channel;
    qint32 x = 0;
    qint32 y = 0;
    qint32 buttons = 0;
    if (!wire::unpack(arguments, channel, x, y, buttons))
        return;
    UTIL_KeyTouchPanelEvent::instance()->pen(QPoint(x, y), Qt::MouseButtons(QFlag(buttons)));
    answerWhenRead(channel, kLooks);
}
