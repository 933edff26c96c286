#include "input/devices/util_touchpanel.h"

#include "appbase/messaging/wire.h"
#include "input/devices/devicereader.h"
#include "input/devices/testpipe.h"
#include "input/logic/touchfilter.h"
#include "platform/bus/qcopchannel.h"
#include "platform/window/qwsserver.h"

#include <QTimer>
#include <QWidget>
#include <algorithm>
#include <cstdio>

namespace {

using namespace std::chrono_literals;
using touch::PenMove;
using touch::Sample;

constexpr char kDevice[] = "/dev/tyx_ts";
constexpr auto kRescueHold = 3s;

// Panels reach a little over the edge of the screen; who touches there means the edge.
QRect reach(const QRect &screen)
{
    const int x = screen.width() / 8;
    const int y = screen.height() / 8;
    return screen.adjusted(-x, -y, x, y);
}

QPoint clamped(const QPoint &point, const QRect &area)
{
    return {std::clamp(point.x(), area.left(), area.right()), std::clamp(point.y(), area.top(), area.bottom())};
}

}

class TouchPanelData {
public:
    explicit TouchPanelData(UTIL_TouchPanel &panel);

    void take(DeviceReader::Records records);
    void deliver(const PenMove &move);
    void receive(const QCString &message, const QByteArray &arguments);

    UTIL_TouchPanel &q;
    DeviceReader device;
    touch::TouchFilter filter;

private:
    bool capture(const PenMove &move);
    void point(const PenMove &move);

    QCopChannel m_channel;
    QCString m_captor; // the channel that gets what the device counts; empty: none
    bool m_asleep = false; // the pen that is down now came to a suspended phone, which is deaf to all of its stroke
    bool m_toCaptor = false; // the same
    bool m_outside = false; // the same
    QTimer m_rescue;
    const bool m_isUnderTest = testpipe::isEnabled();
};

TouchPanelData::TouchPanelData(UTIL_TouchPanel &panel)
    : q(panel)
    , device(kDevice, Sample::kSize, [this](DeviceReader::Records records) { take(records); })
    , m_channel(UTIL_TouchPanel::kChannel)
{
    QObject::connect(&m_channel, &QCopChannel::received, &q,
        [this](const QCString &message, const QByteArray &arguments) { receive(message, arguments); });
    QObject::connect(&device, &DeviceReader::activated, &q, &UTIL_TouchPanel::ReadTouchPanelData);
    device.onLost([this] {
        if (const auto move = filter.lift())
            deliver(*move);
    });
    m_rescue.setSingleShot(true);
    m_rescue.setInterval(kRescueHold);
    QObject::connect(&m_rescue, &QTimer::timeout, &q, &UTIL_TouchPanel::calibrationNeeded);
}

void TouchPanelData::take(DeviceReader::Records records)
{
    for (; !records.empty(); records = records.subspan(Sample::kSize)) {
        const Sample sample = Sample::decode(records.first<Sample::kSize>());
        if (m_isUnderTest)
            QCopChannel::send("TYX/TestCapture", "sample(int,int,int)",
                wire::pack(int(sample.pressure), int(sample.x), int(sample.y)));
        if (const auto move = filter.feed(sample))
            deliver(*move);
    }
}

void TouchPanelData::deliver(const PenMove &move)
{
    if (move.kind == PenMove::Down)
        m_asleep = QWSServer::instance() && !QWSServer::isInputEnabled();
    if (m_asleep)
        return;
    if (move.kind == PenMove::Down)
        m_toCaptor = !m_captor.isEmpty() && QCopChannel::isRegistered(m_captor);
    if (!capture(move))
        point(move);
}

bool TouchPanelData::capture(const PenMove &move)
{
    if (m_toCaptor)
        QCopChannel::send(
            m_captor, "raw(int,int,bool)", wire::pack(move.place.x(), move.place.y(), move.kind != PenMove::Up));
    else if (move.kind == PenMove::Down)
        m_captor = {}; // gone without a word
    return m_toCaptor;
}

void TouchPanelData::point(const PenMove &move)
{
    const QWSServer *server = QWSServer::instance();
    if (!server)
        return;
    const QRect screen = server->screenWidget()->rect();
    const QPoint place = q.transform(move.place);
    if (move.kind == PenMove::Down) {
        m_outside = !reach(screen).contains(place);
        if (m_outside)
            m_rescue.start();
    }
    if (move.kind == PenMove::Up)
        m_rescue.stop();
    if (!m_outside)
        QWSServer::sendMouseEvent(
            clamped(place, screen), move.kind == PenMove::Up ? Qt::NoButton : Qt::MouseButtons(Qt::LeftButton));
}

void TouchPanelData::receive(const QCString &message, const QByteArray &arguments)
{
    QCString channel;
    if (message == "capture(QCString)" && wire::unpack(arguments, channel))
        m_captor = channel;
    else if (message == "clearCalibration()")
        q.clearCalibration();
    else if (message == "restoreCalibration()")
        q.restoreCalibration();
}

UTIL_TouchPanel::UTIL_TouchPanel() : d(std::make_unique<TouchPanelData>(*this))
{
    if (const auto opened = d->device.open(); !opened)
        std::fprintf(stderr, "Cannot open /dev/tyx_ts (%s)\n", qPrintable(qt_error_string(opened.error().number)));
}

UTIL_TouchPanel::~UTIL_TouchPanel() = default;

bool UTIL_TouchPanel::isOpen() const { return d->device.fd() >= 0; }

void UTIL_TouchPanel::restoreCalibration()
{
    clearCalibration();
    readCalibration();
}

void UTIL_TouchPanel::ReadTouchPanelData() { d->device.read(); }
