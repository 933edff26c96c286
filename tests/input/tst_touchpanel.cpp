// From samples of the touch panel to the pen in an application, and the calibration between them.
#include "appbase/messaging/wire.h"
#include "input/logic/touchfilter.h"
#include "platform/system/fd.h"
#include "tests/platform/window/windowtest.h"
#include "tests/support/testfiles.h"

#include <QCopChannel>
#include <QDir>
#include <QSignalSpy>
#include <TouchPanel>
#include <UTIL_TouchPanel>
#include <ZApplication>
#include <ZConfig>
#include <fcntl.h>
#include <sys/ioctl.h>

using namespace Qt::StringLiterals;
using touch::Sample;

namespace {

void feed(const QList<Sample> &samples)
{
    const auto fd = platform::Fd::open("/dev/tyx_ts", O_WRONLY | O_NONBLOCK);
    QVERIFY(fd);
    for (const Sample &sample : samples)
        QVERIFY(platform::writeAll(fd->get(), sample.encode()));
}

QList<Sample> tap(quint16 x, quint16 y) { return {{90, x, y}, {90, x, y}, {90, x, y}, {0, x, y}}; }

// "300:10,20" is a sample.
QByteArray filtered(const QByteArray &script)
{
    touch::TouchFilter filter;
    QByteArrayList moves;
    for (const QByteArray &word : script.split(' ')) {
        const auto numbers = QByteArray(word).replace(':', ',').split(',');
        const auto move = filter.feed({numbers[0].toUShort(), numbers[1].toUShort(), numbers[2].toUShort()});
        if (move)
            moves.append(
                "DMU"[move->kind] + QByteArray::number(move->place.x()) + ',' + QByteArray::number(move->place.y()));
    }
    return moves.join(' ');
}

bool isAllRead()
{
    const auto fd = platform::Fd::open("/dev/tyx_ts", O_WRONLY | O_NONBLOCK);
    int left = -1;
    return fd && ::ioctl(fd->get(), FIONREAD, &left) == 0 && left == 0;
}

QString storedPath() { return ZConfig::getSettingDirectory() + u"pointercal"_s; }

}

class TstTouchPanel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void samplesAreFiltered();
    void aTouchReachesTheApplication();
    void strokesEndWhereThePhoneIsSuspended();
    void theStoredCalibrationIsRead();
    void aCalibrationIsSetClearedAndRestored();
    void whoCapturesThePenGetsWhatTheDeviceCounts();
    void aPanelThatCannotBeUsedAsksForCalibration();
};

void TstTouchPanel::samplesAreFiltered()
{
    QCOMPARE(filtered("90:10,20 90:10,20 90:10,20 0:0,0"), "D10,20 U10,20");
    QCOMPARE(filtered("90:10,20 0:0,0 90:10,20 90:10,20 0:0,0"), "");
    QCOMPARE(filtered("90:4000,9 90:10,20 90:12,24"), "D12,20"); // a wild first sample
    QCOMPARE(filtered("90:10,20 90:10,20 90:10,20 90:3000,20 90:10,20 90:10,20"), "D10,20"); // or later
    QCOMPARE(filtered("90:10,20 90:10,20 90:10,20 90:14,16 90:14,16 90:14,16"), "D10,20"); // noise
    QCOMPARE(filtered("90:10,20 90:10,20 90:10,20 90:30,20 90:50,20 90:70,20 0:0,0"), "D10,20 M30,20 M50,20 U50,20");
    // A light touch holds, but does not begin.
    QCOMPARE(filtered("90:10,20 90:10,20 90:10,20 12:70,70 8:80,80 90:10,20 7:0,0"), "D10,20 U10,20");
    QCOMPARE(filtered("15:1,1 15:1,1 15:1,1 15:1,1"), "");
    QCOMPARE(filtered("0:1,1 0:1,1"), "");
}

void TstTouchPanel::aTouchReachesTheApplication()
{
    const TP_Calibration_Parameter_T half{1, 0, 0, 0, 1, 0, 2};
    QVERIFY(UTIL_SetTPCalibrate(&half));
    Client client;
    QVERIFY(client.shows(u"win"_s, u"main"_s));
    feed(tap(200, 400));
    QVERIFY(client.says(u"win down"_s));
    QCOMPARE(client.line(), u"win down 100 %1"_s.arg(200 - kBarHeight));
    QVERIFY(client.says(u"win up"_s));
    feed(tap(490, 400)); // a little over the edge
    QVERIFY(client.says(u"win down"_s));
    QCOMPARE(client.line(), u"win down 239 %1"_s.arg(200 - kBarHeight));
    for (int i = 0; i < 200; ++i) // of records that are cut in all ways
        feed({{90, quint16(i), 300}, {90, quint16(i), 300}});
    feed({{0, 0, 0}});
    QVERIFY(client.says(u"win up"_s));
}

void TstTouchPanel::strokesEndWhereThePhoneIsSuspended()
{
    UTIL_ClearTPCalibrate();
    Client client;
    QVERIFY(client.shows(u"win"_s, u"main"_s));
    const auto hold = [](quint16 x) { feed({{90, x, 200}, {90, x, 200}, {90, x, 200}}); };
    hold(10);
    QVERIFY(client.says(u"win down"_s));
    QWSServer::setInputEnabled(false);
    QVERIFY(client.says(u"win up"_s));
    feed({{0, 0, 0}});
    hold(20);
    QTRY_VERIFY(isAllRead());
    QWSServer::setInputEnabled(true);
    hold(30); // the pen that the phone did not hear going down
    feed({{0, 0, 0}});
    feed(tap(40, 200));
    QVERIFY(client.says(u"win down"_s));
    QCOMPARE(client.line(), u"win down 40 %1"_s.arg(200 - kBarHeight));
}

void TstTouchPanel::theStoredCalibrationIsRead()
{
    QDir().mkpath(ZConfig::getSettingDirectory());
    // "-": there is no such file, "/": a folder
    const auto factor = [](const QByteArray &stored, const QByteArray &system) {
        for (const auto &[path, text] : {std::pair(storedPath(), stored), std::pair(u"/etc/pointercal"_s, system)}) {
            QDir().rmdir(path);
            QFile::remove(path);
            if (text == "/")
                QDir().mkdir(path);
            else if (text != "-")
                fill(path, text);
        }
        TP_Calibration_Parameter_T read;
        TyxCalibratedTouchPanel().getCalibration(&read);
        return read.a;
    };
    QCOMPARE(factor("-", "-"), 1);
    QCOMPARE(factor("2 0 0 0 2 0 1", "3 0 0 0 3 0 1"), 2);
    QCOMPARE(factor("-", "3 0 0 0 3 0 1"), 3);
    QCOMPARE(factor("x", "3 0 0 0 3 0 1"), 1);
    QCOMPARE(factor("/", "3 0 0 0 3 0 1"), 1);
    QCOMPARE(factor(QByteArray(100'000, ' '), "-"), 1);
    QFile::remove(u"/etc/pointercal"_s);
}

void TstTouchPanel::aCalibrationIsSetClearedAndRestored()
{
    const TP_Calibration_Parameter_T wanted{3, 0, 5, 0, 4, 6, 2};
    TP_Calibration_Parameter_T now;
    QVERIFY(UTIL_SetTPCalibrate(&wanted));
    QCOMPARE(content(storedPath()), "3 0 5 0 4 6 2\n");
    for (const TP_Calibration_Parameter_T &useless :
        {TP_Calibration_Parameter_T{.a = 0}, TP_Calibration_Parameter_T{.e = 0}, TP_Calibration_Parameter_T{.s = 0}})
        QVERIFY(!UTIL_SetTPCalibrate(&useless));
    QVERIFY(!UTIL_SetTPCalibrate(nullptr) && !UTIL_GetTPCalibrate(nullptr));
    QVERIFY(UTIL_GetTPCalibrate(&now));
    QCOMPARE(now, wanted);
    // As other processes ask for it.
    QVERIFY(QCopChannel::send("TYX/TouchPanel", "clearCalibration()"));
    QTRY_VERIFY((UTIL_GetTPCalibrate(&now), now == TP_Calibration_Parameter_T{}));
    QVERIFY(QCopChannel::send("TYX/TouchPanel", "restoreCalibration()"));
    QTRY_VERIFY((UTIL_GetTPCalibrate(&now), now == wanted));

    UTIL_TouchPanel &panel = *UTIL_TouchPanel::instance();
    QWSPointerCalibrationData points;
    points.screenPoints[QWSPointerCalibrationData::BottomRight] = {100, 200};
    points.devPoints[QWSPointerCalibrationData::BottomRight] = {1000, 1000};
    panel.calibrate(&points);
    QCOMPARE(panel.transform({500, 500}), QPoint(49, 99));
    points.devPoints[QWSPointerCalibrationData::BottomRight] = {};
    panel.calibrate(&points); // refused
    panel.calibrate(nullptr);
    QPoint raw(500, 500);
    panel.getCalibration(&now);
    QCOMPARE(TyxCalibratedTouchPanel::CalculatePoint(raw, now), QPoint(49, 99));
    panel.getCalibration(&points);
    QVERIFY((points.devPoints[QWSPointerCalibrationData::BottomRight] - QPoint(1000, 1000)).manhattanLength() <= 2);
    QCOMPARE(content(storedPath()), "3 0 5 0 4 6 2\n");
}

void TstTouchPanel::whoCapturesThePenGetsWhatTheDeviceCounts()
{
    Client client;
    QVERIFY(client.shows(u"win"_s, u"main"_s));
    const TP_Calibration_Parameter_T half{1, 0, 0, 0, 1, 0, 2};
    QVERIFY(UTIL_SetTPCalibrate(&half));
    {
        QCopChannel channel("TYX/Tool/captor");
        QSignalSpy heard(&channel, &QCopChannel::received);
        QVERIFY(QCopChannel::send("TYX/TouchPanel", "capture(QCString)", wire::pack(QCString("TYX/Tool/captor"))));
        QTest::qWait(0);
        QTRY_VERIFY((feed(tap(3000, 2000)), QTest::qWait(1), heard.size() >= 2));
        QCOMPARE(heard[0][1].toByteArray(), wire::pack(3000, 2000, true));
        QCOMPARE(heard[1][1].toByteArray(), wire::pack(3000, 2000, false));
    }
    feed(tap(100, 200)); // it is gone
    QVERIFY(client.says(u"win down"_s));
    QCOMPARE(client.line(), u"win down 50 %1"_s.arg(100 - kBarHeight));
}

void TstTouchPanel::aPanelThatCannotBeUsedAsksForCalibration()
{
    UTIL_ClearTPCalibrate();
    QSignalSpy asked(UTIL_TouchPanel::instance(), &UTIL_TouchPanel::calibrationNeeded);
    feed(tap(3000, 2000)); // too short
    feed({{90, 3000, 2000}, {90, 3000, 2000}, {90, 3000, 2000}});
    QVERIFY(asked.wait(20'000));
    feed({{0, 0, 0}});
    QCOMPARE(asked.size(), 1);
}

int main(int argc, char **argv) { return runOnServer<TstTouchPanel, ZApplication>(argc, argv); }

#include "tst_touchpanel.moc"
