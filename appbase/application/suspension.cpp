#include "appbase/application/suspension.h"

#include "appbase/application/zapplication_p.h"
#include "platform/window/qwsserver.h"

#include <QPointer>
#include <QWidget>

namespace {

QPointer<QWidget> theCover; // belongs to the screen

// A window of its own: full-screen applications and the server's menus lie above every child of the screen.
QWidget *makeCover(QWidget &screen)
{
    auto *cover = new QWidget(&screen, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    QPalette black;
    black.setColor(QPalette::Window, Qt::black);
    cover->setPalette(black);
    cover->setGeometry(QRect(screen.mapToGlobal(QPoint(0, 0)), screen.size()));
    cover->show();
    return cover;
}

}

void SetGuiToSuspension()
{
    QWSServer *server = QWSServer::instance();
    if (!server || theCover)
        return;
    QWSServer::setInputEnabled(false);
    theCover = makeCover(*server->screenWidget());
    QObject::connect(server, &QWSServer::keySent, theCover, [](int, int keycode, int, bool isPress) {
        if (keycode == Qt::Key_F3 && !isPress)
            SetGuiToResume();
    });
}

void SetGuiToResume()
{
    if (!theCover)
        return;
    theCover->hide();
    theCover->deleteLater(); // it may be what this was called by
    theCover.clear();
    QWSServer::setInputEnabled(true);
}

bool isGuiSuspended() { return theCover; }

void ZApplicationData::onSetGuiToSuspension(const QByteArray & /*arguments*/) { SetGuiToSuspension(); }
