#include "input/devices/devicereader.h"

#include <QTest>
#include <fcntl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

using platform::Fd;

namespace {

constexpr char kPath[] = "/tmp/device";

// The end of a terminal line stands in for a device that can be pulled out: its reader then gets EIO.
Fd plugIn()
{
    Fd line = Fd::own(::posix_openpt(O_RDWR | O_NOCTTY));
    ::grantpt(line.get());
    ::unlockpt(line.get());
    termios mode{};
    ::tcgetattr(line.get(), &mode);
    ::cfmakeraw(&mode);
    ::tcsetattr(line.get(), TCSANOW, &mode);
    ::unlink(kPath);
    return ::symlink(::ptsname(line.get()), kPath) == 0 ? std::move(line) : Fd();
}

}

class TstDeviceReader : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { ::unlink(kPath); }
    void recordsMayComeInAnyPieces_data();
    void recordsMayComeInAnyPieces();
    void oneAtATime();
    void aDeviceThatIsPulledOutComesBack();
};

void TstDeviceReader::recordsMayComeInAnyPieces_data()
{
    QTest::addColumn<int>("recordSize");
    QTest::addColumn<int>("piece");
    for (const int recordSize : {2, 8}) {
        for (const int piece : {1, 3, 1023, 1024, 1025, 5000})
            QTest::addRow("records of %d in pieces of %d", recordSize, piece) << recordSize << piece;
    }
}

void TstDeviceReader::recordsMayComeInAnyPieces()
{
    QFETCH(int, recordSize);
    QFETCH(int, piece);
    QCOMPARE(::mkfifo(kPath, 0600), 0);
    QByteArray got;
    DeviceReader reader(kPath, std::size_t(recordSize), [&](DeviceReader::Records records) {
        QCOMPARE(int(records.size()) % recordSize, 0);
        got.append(reinterpret_cast<const char *>(records.data()), qsizetype(records.size()));
    });
    connect(&reader, &DeviceReader::activated, &reader, [&] { reader.read(); });
    QVERIFY(reader.open());
    const Fd writer = std::move(*Fd::open(kPath, O_WRONLY));
    QByteArray sent;
    for (int i = 0; i < 5000; ++i)
        sent.append(char(i * 7 >> 3));
    for (qsizetype at = 0; at < sent.size(); at += piece) {
        const QByteArray part = sent.mid(at, piece);
        QCOMPARE(::write(writer.get(), part.constData(), size_t(part.size())), part.size());
        if (piece < 1000)
            reader.read();
    }
    QTRY_COMPARE(got.size(), sent.size());
    QCOMPARE(got, sent);
}

void TstDeviceReader::oneAtATime()
{
    QCOMPARE(::mkfifo(kPath, 0600), 0);
    QByteArrayList got;
    DeviceReader reader(kPath, 2, [&](DeviceReader::Records records) {
        got.append(QByteArray(reinterpret_cast<const char *>(records.data()), qsizetype(records.size())));
    });
    connect(&reader, &DeviceReader::activated, &reader, [&] { reader.readOne(std::chrono::milliseconds(1)); });
    QVERIFY(reader.open());
    const Fd writer = std::move(*Fd::open(kPath, O_WRONLY));
    QCOMPARE(::write(writer.get(), "a", 1), 1);
    QVERIFY(QTest::qWaitFor([&] { return ::write(writer.get(), "Abbccdd", 7) == 7; }));
    QTRY_COMPARE(got, (QByteArrayList{"aA", "bb", "cc", "dd"}));
}

void TstDeviceReader::aDeviceThatIsPulledOutComesBack()
{
    int lost = 0;
    int found = 0;
    QByteArray got;
    DeviceReader reader(kPath, 2, [&](DeviceReader::Records records) {
        got.append(reinterpret_cast<const char *>(records.data()), qsizetype(records.size()));
    });
    connect(&reader, &DeviceReader::activated, &reader, [&] { reader.read(); });
    reader.onLost([&] { ++lost; });
    reader.onFound([&] { ++found; });
    QCOMPARE(reader.open().error().number, ENOENT);
    Fd line = plugIn();
    QVERIFY(reader.open());
    QCOMPARE(::write(line.get(), "abc", 3), 3);
    QTRY_COMPARE(got, "ab");
    line.reset();
    QTRY_COMPARE(lost, 1);
    QCOMPARE(reader.fd(), -1);
    QCOMPARE(found, 0); // opened by its owner, who knows
    line = plugIn();
    QTRY_COMPARE(found, 1);
    QVERIFY(reader.fd() >= 0);
    QCOMPARE(::write(line.get(), "de", 2), 2); // and the half record of before is forgotten
    QTRY_COMPARE(got, "abde");
}

QTEST_GUILESS_MAIN(TstDeviceReader)
#include "tst_devicereader.moc"
