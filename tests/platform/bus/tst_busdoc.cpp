// The example in docs/bus.md, run as it is printed there.
#include <QCopChannel>
#include <QSignalSpy>

#include "platform/bus/busbroker.h"
#include "tests/support/testfiles.h"

// docs/bus.md is a promise to programs that do not use this library.
class TstBusDoc : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pythonClientTalksToTheBus();
};

void TstBusDoc::pythonClientTalksToTheBus()
{
    const QString page = QString::fromUtf8(content(QStringLiteral(TYX_SOURCE_DIR "/docs/bus.md")));
    const QString code = page.section(QStringLiteral("```python\n"), 1).section(QStringLiteral("```"), 0, 0);
    QVERIFY(code.count(u'\n') >= 20);
    const auto broker = platform::BusBroker::listen();
    QVERIFY(broker);
    QCopChannel channel("here");
    QSignalSpy spy(&channel, &QCopChannel::received);

    QProcess python;
    python.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    python.start(
        QStringLiteral("python3"), {QStringLiteral("-c"), code, QStringLiteral("here"), QStringLiteral("there")});
    QTRY_COMPARE_WITH_TIMEOUT(spy.size(), 1, 20'000);
    QCOMPARE(spy[0][0].value<QCString>(), "hello");
    const QByteArray pid = QByteArray::number(python.processId(), 16).rightJustified(8, '0');
    QCOMPARE(spy[0][1].toByteArray().toHex(), pid);

    QTRY_VERIFY(QCopChannel::isRegistered("there"));
    QVERIFY(QCopChannel::send("there", "both()", QByteArray("\0\xFF", 2)));
    QVERIFY(QCopChannel::send("there", "stop"));
    QTRY_COMPARE_WITH_TIMEOUT(python.state(), QProcess::NotRunning, 20'000);
    QCOMPARE(python.exitCode(), 0);
    QCOMPARE(python.readAllStandardOutput(),
        "here hello " + pid + "\nthere hello " + pid + "\nthere both() 00ff\nthere stop \n");
}

QTEST_GUILESS_MAIN(TstBusDoc)
#include "tst_busdoc.moc"
