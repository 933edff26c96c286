#include "input/logic/calibration.h"

#include <QTest>
#include <limits>

using calibration::Corners;
using calibration::Parameters;

namespace {

constexpr int kMin = std::numeric_limits<int>::min();
constexpr int kMax = std::numeric_limits<int>::max();

}

class TstCalibration : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void points_data();
    void points();
    void corners_data();
    void corners();
    void texts_data();
    void texts();
};

void TstCalibration::points_data()
{
    QTest::addColumn<QList<int>>("p");
    QTest::addColumn<QPoint>("device");
    QTest::addColumn<QPoint>("screen");
    QTest::newRow("identity") << QList{1, 0, 0, 0, 1, 0, 1} << QPoint(-5, 4095) << QPoint(-5, 4095);
    QTest::newRow("all terms") << QList{1, 2, 3, 4, 5, 6, 1} << QPoint(10, 100) << QPoint(213, 546);
    QTest::newRow("towards zero") << QList{1, 0, 0, 0, 1, 0, 2} << QPoint(-7, 7) << QPoint(-3, 3);
    QTest::newRow("negative divisor") << QList{1, 0, 0, 0, 1, 0, -2} << QPoint(-7, 7) << QPoint(3, -3);
    QTest::newRow("wide intermediates") << QList{65536, 0, 0, 0, 65536, 0, 65536} << QPoint(kMax, kMin)
                                        << QPoint(kMax, kMin);
    QTest::newRow("too large") << QList{2, 0, 0, 0, 2, 0, 1} << QPoint(kMax, kMin) << QPoint(kMax, kMin);
    QTest::newRow("the largest sum") << QList{kMin, kMin, kMax, kMin, kMin, kMin, 1} << QPoint(kMin, kMin)
                                     << QPoint(kMax, kMax);
    QTest::newRow("the largest sum, divided")
        << QList{kMin, kMin, kMax, kMin, kMin, 0, kMin} << QPoint(kMin, kMin) << QPoint(kMin, kMin);
    QTest::newRow("no divisor") << QList{1, 0, 0, 0, 1, 0, 0} << QPoint(3, 4) << QPoint(3, 4);
}

void TstCalibration::points()
{
    QFETCH(QList<int>, p);
    QFETCH(QPoint, device);
    QTEST(calibration::map({p[0], p[1], p[2], p[3], p[4], p[5], p[6]}, device), "screen");
}

void TstCalibration::corners_data()
{
    QTest::addColumn<QRect>("device"); // x, y of top left and bottom right
    QTest::addColumn<QRect>("screen");
    QTest::addColumn<QByteArray>("text");
    const auto row = [](const char *name, const Corners &device, const Corners &screen, const char *text) {
        QTest::newRow(name) << QRect(device.topLeft, device.bottomRight) << QRect(screen.topLeft, screen.bottomRight)
                            << QByteArray(text);
    };
    const Corners screen{{20, 20}, {219, 299}};
    row("usual", {{300, 250}, {3700, 3800}}, screen, "3835 0 160220 0 5150 23220 65536\n");
    row("mirrored", {{3700, 3800}, {300, 250}}, screen, "-3835 0 15500220 0 -5150 20880720 65536\n");
    row("same x", {{300, 250}, {300, 3800}}, screen, "");
    row("same y", {{300, 250}, {3700, 250}}, screen, "");
    row("same place on the screen", {{300, 250}, {3700, 3800}}, {{20, 20}, {20, 299}}, "");
    row("a factor that is 0", {{-1'000'000, 0}, {1'000'000, 4000}}, {{0, 0}, {1, 319}}, "");
    row("a factor that does not fit", {{0, 0}, {1, 1}}, {{0, 0}, {40'000, 40'000}}, "");
    row("an offset that does not fit", {{60'000, 0}, {60'001, 1}}, {{0, 0}, {239, 319}}, "");
    row("the ends of the numbers", {{kMin, kMin}, {kMax, kMax}}, {{kMin, kMin}, {kMax, kMax}},
        "65536 0 0 0 65536 0 65536\n");
}

void TstCalibration::corners()
{
    QFETCH(QRect, device);
    QFETCH(QRect, screen);
    QFETCH(QByteArray, text);
    const Corners shown{screen.topLeft(), screen.bottomRight()};
    const auto computed = calibration::fromCorners({device.topLeft(), device.bottomRight()}, shown);
    QCOMPARE(computed ? calibration::format(*computed) : QByteArray(), text);
    if (!computed)
        return;
    QVERIFY((calibration::map(*computed, device.topLeft()) - screen.topLeft()).manhattanLength() <= 2);
    const auto back = calibration::deviceCorners(*computed, shown);
    QVERIFY(back);
    if (!back)
        return;
    QCOMPARE(back->topLeft, device.topLeft());
    const qint64 wide = qint64(device.right()) - device.left();
    if (wide >= 0 && wide < 3999)
        QVERIFY((back->bottomRight - device.bottomRight()).manhattanLength() <= 2);
    for (const Parameters &useless : {Parameters{.a = 0}, Parameters{.e = 0}, Parameters{.s = 0}})
        QVERIFY(!calibration::deviceCorners(useless, shown));
    std::ignore = calibration::deviceCorners({-1, 0, kMin, 0, -1, kMin, kMin}, {{kMin, kMin}, {kMax, kMax}});
}

void TstCalibration::texts_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("read");
    QTest::newRow("plain") << QByteArray("1 2 3 4 5 6 7") << QByteArray("1 2 3 4 5 6 7\n");
    QTest::newRow("white space") << QByteArray("\n -1\t+2\r\n3 4 5 6 7 240 320\n") << QByteArray("-1 2 3 4 5 6 7\n");
    QTest::newRow("limits") << QByteArray("-2147483648 2147483647 0 0 0 0 1")
                            << QByteArray("-2147483648 2147483647 0 0 0 0 1\n");
    for (const char *bad : {"", " \n", "1 2 3 4 5 6", "1 2 3 4 5 6 0", "2147483648 2 3 4 5 6 7", "1 2 3 4 5 6 -",
             "1 2 x 4 5 6 7", "1,2,3,4,5,6,7", "0x1 2 3 4 5 6 7", "1 2 3 4 5 6 7.5", "+-1 2 3 4 5 6 7", "calibration"})
        QTest::newRow(bad) << QByteArray(bad) << QByteArray();
}

void TstCalibration::texts()
{
    QFETCH(QByteArray, text);
    const auto read = calibration::parse(text);
    QTEST(read ? calibration::format(*read) : QByteArray(), "read");
}

QTEST_APPLESS_MAIN(TstCalibration)
#include "tst_calibration.moc"
