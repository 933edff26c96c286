#include "appbase/application/testcapturehandler.h"

#include "appbase/messaging/wire.h"
#include "platform/bus/qcopchannel.h"
#include "platform/window/qwsserver.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QWidget>
#include <QWindow>

namespace {

constexpr char kChannel[] = "TYX/TestCapture";

}

QTestCaptureHandler::QTestCaptureHandler(QObject *parent) : QObject(parent)
{
    connect(QWSServer::instance(), &QWSServer::keySent, this, &QTestCaptureHandler::key);
    QCoreApplication::instance()->installEventFilter(this);
}

void QTestCaptureHandler::key(int unicode, int keycode, int modifiers, bool isPress, bool autoRepeat)
{
    if (QWSServer::isInputEnabled())
        QCopChannel::send(
            kChannel, "key(int,int,int,bool,bool)", wire::pack(unicode, keycode, modifiers, isPress, autoRepeat));
}

// At the screen's window: everything that the pen does passes there, wherever it goes then.
bool QTestCaptureHandler::eventFilter(QObject *watched, QEvent *event)
{
    const auto type = event->type();
    if (type != QEvent::MouseButtonPress && type != QEvent::MouseButtonRelease && type != QEvent::MouseMove)
        return false;
    const QWidget &screen = *QWSServer::instance()->screenWidget();
    if (watched != screen.windowHandle() || !QWSServer::isInputEnabled())
        return false;
    const auto &mouse = static_cast<const QMouseEvent &>(*event);
    const QPoint place = screen.mapFromGlobal(mouse.globalPosition().toPoint());
    QCopChannel::send(kChannel, "pen(int,int,int)", wire::pack(place.x(), place.y(), int(mouse.buttons())));
    return false;
}
