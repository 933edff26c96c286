#include "guiserver/statusbar.h"

#include "appbase/look/tyxskin.h"
#include "guiserver/statusicons.h"
#include "platform/window/qwsserver.h"

#include <QPainter>
#include <QTime>
#include <QTimerEvent>

namespace {

constexpr int kMargin = 6; // pixels left and right of the texts
constexpr int kGap = 4; // pixels between signs

QString timeOfDay() { return QTime::currentTime().toString(QStringLiteral("HH:mm")); }

QString titleInFront()
{
    const QWSWindow *window = QWSServer::instance()->activeWindow();
    return window ? window->caption() : QString();
}

void showNextApplication()
{
    if (QWSWindow *window = QWSServer::instance()->activeWindow())
        window->lower();
}

void drawGround(QPainter &painter, const QRect &rect)
{
    if (TYXSkin::draw(painter, rect, QStringLiteral("statusbar")))
        return;
    QLinearGradient ground(rect.topLeft(), rect.bottomLeft());
    ground.setColorAt(0, QColor(0xff3a4a5c));
    ground.setColorAt(1, QColor(0xff1d2731));
    painter.fillRect(rect, ground);
}

QColor textInk() { return TYXSkin::color(QStringLiteral("statusbar_text"), Qt::white); }

// Shares the room: the operator leaves the title what it needs, as far as half of the room is left for itself.
void drawTexts(QPainter &painter, QRect room, const StatusContent &content)
{
    const QFontMetrics metrics = painter.fontMetrics();
    const int forTitle = content.title.isEmpty() ? 0 : metrics.horizontalAdvance(content.title) + kMargin;
    const int most = std::max(room.width() / 2, room.width() - forTitle);
    const QString network = metrics.elidedText(content.operatorName, Qt::ElideRight, most);
    painter.setPen(TYXSkin::color(QStringLiteral("statusbar_dim"), QColor(0xffb8c6d4)));
    painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter, network);
    if (!network.isEmpty())
        room.setLeft(room.left() + metrics.horizontalAdvance(network) + kMargin);
    painter.setPen(textInk());
    painter.drawText(
        room, Qt::AlignLeft | Qt::AlignVCenter, metrics.elidedText(content.title, Qt::ElideRight, room.width()));
}

}

StatusBar::StatusBar(QWidget *screen) : QWidget(screen)
{
    setGeometry(0, 0, screen->width(), kHeight);
    setAttribute(Qt::WA_OpaquePaintEvent);
    connect(QWSServer::instance(), &QWSServer::windowEvent, this, &StatusBar::refresh);
    connect(&m_watcher, &SystemStatusWatcher::changed, this, &StatusBar::refresh);
    connect(&m_clock, &ClockWatch::clockSet, this, &StatusBar::showTheTime);
    showTheTime();
    setAcceptDrops(true);
    show();
}

void StatusBar::refresh()
{
    StatusContent content = contentOf(m_watcher.current());
    content.title = titleInFront();
    content.time = timeOfDay();
    if (content == m_content)
        return;
    m_content = content;
    update();
}

void StatusBar::showTheTime()
{
    waitForNextMinute();
    refresh();
}

// The clock wakes the phone once a minute.
void StatusBar::waitForNextMinute()
{
    constexpr int kMinute = 60'000;
    m_minute.start(kMinute - QTime::currentTime().msecsSinceStartOfDay() % kMinute, Qt::PreciseTimer, this);
}

void StatusBar::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == m_held.timerId()) {
        showNextApplication(); // and the one behind it, as long as it is held there
        return;
    }
    showTheTime();
}

void StatusBar::mousePressEvent(QMouseEvent * /*event*/) { showNextApplication(); }

void StatusBar::dragEnterEvent(QDragEnterEvent * /*event*/)
{
    constexpr int kHold = 700; // milliseconds: longer than it takes to cross the bar
    m_held.start(kHold, this);
}

void StatusBar::dragLeaveEvent(QDragLeaveEvent * /*event*/) { m_held.stop(); }

int StatusBar::drawSigns(QPainter &painter, int right) const
{
    using icons::Sign;
    const int top = (height() - icons::kHeight) / 2;
    right -= icons::kBatteryWidth;
    icons::drawBattery(painter, QPoint(right, top), m_content.batteryPercent, m_content.charging);
    const auto sign = [&](bool shown, Sign which) {
        if (!shown)
            return;
        right -= icons::width(which) + kGap;
        icons::draw(painter, QPoint(right, top), which);
    };
    sign(m_content.call == StatusContent::Call::Up, Sign::Call);
    sign(m_content.call == StatusContent::Call::Incoming, Sign::IncomingCall);
    sign(m_content.locked, Sign::Lock);
    sign(m_content.headset, Sign::Headset);
    sign(m_content.roaming, Sign::Roaming);
    return right;
}

void StatusBar::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    drawGround(painter, rect());
    QRect room = rect().adjusted(kMargin, 0, -kMargin, 0);
    icons::drawSignal(painter, QPoint(room.left(), (height() - icons::kHeight) / 2), m_content.signalBars);
    painter.setPen(textInk());
    painter.drawText(room, Qt::AlignRight | Qt::AlignVCenter, m_content.time);
    const int clock = room.right() - fontMetrics().horizontalAdvance(m_content.time);
    room.setLeft(room.left() + icons::kSignalWidth + kMargin);
    room.setRight(drawSigns(painter, clock - kMargin) - kMargin);
    drawTexts(painter, room, m_content);
}
