#include "input/logic/calibration.h"

#include <QTest>
#include <limits>

using calibration::Corners;
using calibration::Parameters;

namespace {

constexpr int kMin = std::numeric_limits<int>::min();
constexpr int kMax = std::numeric_limits<int>::max();

void tryCorners(const Corners &device, const Corners &screen, const QByteArray &text)
{
    const auto computed = calibration::fromCorners(device, screen);
    QCOMPARE(computed ? calibration::format(*computed) : QByteArray(), text);
    if (!computed)
        return;
    QVERIFY((calibration::map(*computed, device.topLeft) - screen.topLeft).manhattanLength() <= 2);
    const auto back = calibration::deviceCorners(*computed, screen);
    QVERIFY(back);
    if (!back)
        return;
    QCOMPARE(back->topLeft, device.topLeft);
    const qint64 wide = qint64(device.bottomRight.x()) - device.topLeft.x();
    if (wide >= 0 && wide < 3999)
        QVERIFY((back->bottomRight - device.bottomRight).manhattanLength() <= 2);
    for (const Parameters &useless : {Parameters{.a = 0}, Parameters{.e = 0}, Parameters{.s = 0}})
        QVERIFY(!calibration::deviceCorners(useless, screen));
}

}

class TstCalibration : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void points();
    void corners();
    void texts();
};

void TstCalibration::points()
{
    using calibration::map;
    QCOMPARE(map({1, 0, 0, 0, 1, 0, 1}, {-5, 4095}), QPoint(-5, 4095));
    QCOMPARE(map({1, 2, 3, 4, 5, 6, 1}, {10, 100}), QPoint(213, 546));
    QCOMPARE(map({1, 0, 0, 0, 1, 0, 2}, {-7, 7}), QPoint(-3, 3)); // towards zero
    QCOMPARE(map({1, 0, 0, 0, 1, 0, -2}, {-7, 7}), QPoint(3, -3));
    QCOMPARE(map({65536, 0, 0, 0, 65536, 0, 65536}, {kMax, kMin}), QPoint(kMax, kMin)); // wide intermediates
    QCOMPARE(map({2, 0, 0, 0, 2, 0, 1}, {kMax, kMin}), QPoint(kMax, kMin)); // too large
    QCOMPARE(map({kMin, kMin, kMax, kMin, kMin, kMin, 1}, {kMin, kMin}), QPoint(kMax, kMax)); // the largest sum
    QCOMPARE(map({kMin, kMin, kMax, kMin, kMin, 0, kMin}, {kMin, kMin}), QPoint(kMin, kMin)); // the same, divided
    QCOMPARE(map({1, 0, 0, 0, 1, 0, 0}, {3, 4}), QPoint(3, 4)); // no divisor
}

void TstCalibration::corners()
{
    const Corners screen{{20, 20}, {219, 299}};
    tryCorners({{300, 250}, {3700, 3800}}, screen, "3835 0 160220 0 5150 23220 65536\n");
    tryCorners({{3700, 3800}, {300, 250}}, screen, "-3835 0 15500220 0 -5150 20880720 65536\n");
    tryCorners({{300, 250}, {300, 3800}}, screen, "");
    tryCorners({{300, 250}, {3700, 250}}, screen, "");
    tryCorners({{300, 250}, {3700, 3800}}, {{20, 20}, {20, 299}}, "");
    tryCorners({{-1'000'000, 0}, {1'000'000, 4000}}, {{0, 0}, {1, 319}}, ""); // a factor that is 0
    tryCorners({{0, 0}, {1, 1}}, {{0, 0}, {40'000, 40'000}}, ""); // one that does not fit
    tryCorners({{60'000, 0}, {60'001, 1}}, {{0, 0}, {239, 319}}, ""); // an offset that does not
    const Corners widest{{kMin, kMin}, {kMax, kMax}};
    tryCorners(widest, widest, "65536 0 0 0 65536 0 65536\n");
    std::ignore = calibration::deviceCorners({-1, 0, kMin, 0, -1, kMin, kMin}, widest);
}

void TstCalibration::texts()
{
    const auto read = [](const char *text) {
        const auto parameters = calibration::parse(text);
        return parameters ? calibration::format(*parameters) : QByteArray();
    };
    QCOMPARE(read("1 2 3 4 5 6 7"), "1 2 3 4 5 6 7\n");
    QCOMPARE(read("\n -1\t+2\r\n3 4 5 6 7 240 320\n"), "-1 2 3 4 5 6 7\n");
    QCOMPARE(read("-2147483648 2147483647 0 0 0 0 1"), "-2147483648 2147483647 0 0 0 0 1\n");
    for (const char *bad : {"", " \n", "1 2 3 4 5 6", "1 2 3 4 5 6 0", "2147483648 2 3 4 5 6 7", "1 2 3 4 5 6 -",
             "1 2 x 4 5 6 7", "1,2,3,4,5,6,7", "0x1 2 3 4 5 6 7", "1 2 3 4 5 6 7.5", "+-1 2 3 4 5 6 7", "calibration"})
        QVERIFY2(read(bad).isEmpty(), bad);
}

QTEST_APPLESS_MAIN(TstCalibration)
#include "tst_calibration.moc"
