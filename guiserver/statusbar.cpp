#include "guiserver/statusbar.h"

#include "platform/window/qwsserver.h"

#include <QPainter>
#include <QTime>

namespace {

constexpr int kMargin = 6; // pixels left and right of the texts

QString timeOfDay() { return QTime::currentTime().toString(QStringLiteral("HH:mm")); }

}

StatusBar::StatusBar(QWidget *screen) : QWidget(screen)
{
    setGeometry(0, 0, screen->width(), kHeight);
    setAttribute(Qt::WA_OpaquePaintEvent);
    connect(QWSServer::instance(), &QWSServer::windowEvent, this, &StatusBar::followActiveWindow);
    waitForNextMinute();
    show();
}

void StatusBar::followActiveWindow()
{
    const QWSWindow *window = QWSServer::instance()->activeWindow();
    const QString title = window ? window->caption() : QString();
    if (title == m_title)
        return;
    m_title = title;
    update();
}

// One wake-up a minute: an idle phone sleeps.
void StatusBar::waitForNextMinute()
{
    constexpr int kMinute = 60'000;
    m_minute.start(kMinute - QTime::currentTime().msecsSinceStartOfDay() % kMinute, Qt::PreciseTimer, this);
}

void StatusBar::timerEvent(QTimerEvent * /*event*/)
{
    waitForNextMinute();
    update();
}

void StatusBar::mousePressEvent(QMouseEvent * /*event*/)
{
    if (QWSWindow *window = QWSServer::instance()->activeWindow())
        window->lower();
}

void StatusBar::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    QLinearGradient ground(0, 0, 0, height());
    ground.setColorAt(0, QColor(0xff3a4a5c));
    ground.setColorAt(1, QColor(0xff1d2731));
    painter.fillRect(rect(), ground);
    painter.setPen(Qt::white);
    const QRect inside = rect().adjusted(kMargin, 0, -kMargin, 0);
    const QString time = timeOfDay();
    painter.drawText(inside, Qt::AlignRight | Qt::AlignVCenter, time);
    const int room = inside.width() - fontMetrics().horizontalAdvance(time) - kMargin;
    painter.drawText(inside, Qt::AlignLeft | Qt::AlignVCenter, fontMetrics().elidedText(m_title, Qt::ElideRight, room));
}
