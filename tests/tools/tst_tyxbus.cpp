// The command `tyx bus`: what it prints, what it answers, and its errors.
#include "appbase/messaging/queuefile.h"
#include "platform/bus/busbroker.h"
#include "platform/bus/businspector.h"
#include "tests/support/columns.h"
#include "tests/support/tyxtool.h"

#include <QCopChannel>
#include <QJsonArray>
#include <QJsonObject>
#include <QSignalSpy>
#include <vector>

using platform::BusBroker;

// The program as it is typed, against a broker in this process.
class TstTyxBus : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_broker.reset(); }
    void sendWritesTheArgumentsAsTheyAreTyped_data();
    void sendWritesTheArgumentsAsTheyAreTyped();
    void senderIsWarnedOfWhatIsKnownBetter();
    void queuedMessagesWaitOrAreSent();
    void refusedSenderIsToldWhy();
    void listNamesChannelsAndProcesses();
    void monitorShowsWhatOthersSend();
    void describeTellsWhatIsAskedFor();
    void waitEndsWhenTheChannelAppearsOrInTime();
    void impossibleNumbersAreRefused();
    void withoutServerTheCureIsNamed();

private:
    std::unique_ptr<BusBroker> m_broker;
};

namespace {

const TyxCommand tyx{QStringLiteral("bus")};

}

void TstTyxBus::init()
{
    auto broker = BusBroker::listen();
    QVERIFY(broker);
    m_broker = std::move(*broker);
}

void TstTyxBus::sendWritesTheArgumentsAsTheyAreTyped_data()
{
    // data: or part of the error
    const auto row = columns<QStringList, int, QByteArray>("arguments", "status", "data");
    row("none", {}, 0, {});
    row("hex", words("--hex 00fF"), 0, "00ff");
    row("half a byte", words("--hex 0ff"), 2, "not pairs of hexadecimal digits");
    row("numbers", words("int:-2 uint:0x10 bool:true"), 0, "fffffffe0000001000000001");
    row("decimal", words("int:010"), 0, "0000000a");
    row("texts", words("qstring:a: qcstring:"), 0, "000000040061003a0000000100");
    row("bytes", words("bytes:0102 raw:0102"), 0, "0000000201020102");
    row("uuid", words("uuid:{01234567-89ab-cdef-0123-456789abcdef}"), 0, "0123456789abcdef0123456789abcdef");
    row("no type", words("3"), 2, "argument \"3\" has no type that is known: write one of int:");
    row("many", words("ints:1,-1 uint8:255 bool8:1"), 0, "0000000200000001ffffffffff01");
    row("too many", words("uint8:256"), 2, "should be a whole number from 0 to 255");
    row("no number", words("int:3x"), 2, "argument \"int:3x\" should be a whole number");
    row("no bool", words("bool:yes"), 2, "should be 1, 0, true or false");
    row("no uuid", words("uuid:1234"), 2, "should be an identifier like");
}

void TstTyxBus::sendWritesTheArgumentsAsTheyAreTyped()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, status);
    QFETCH(QByteArray, data);
    QCopChannel channel("TYX/System");
    QSignalSpy spy(&channel, &QCopChannel::received);
    const Outcome sent = tyx(words("send TYX/System m()") + arguments);
    QCOMPARE(sent.status, status);
    if (status != 0) {
        QVERIFY2(sent.err.startsWith("tyx: ") && sent.err.contains(data), sent.err.constData());
        QCOMPARE(sent.err.count('\n'), 1);
        return;
    }
    QTRY_COMPARE(spy.size(), 1);
    QCOMPARE(spy[0][0].value<QCString>(), "m()");
    QCOMPARE(spy[0][1].toByteArray().toHex(), data);
}

void TstTyxBus::senderIsWarnedOfWhatIsKnownBetter()
{
    const QByteArray zone = "\"modifytimezone\" takes int:h int:m int:s";
    const QByteArray process = "\"raise()\" is for the channel of the process: send it to TYX/Application/"
        + QByteArray::number(QCoreApplication::applicationPid());
    const std::pair<const char *, QByteArray> rows[] = {
        {"TYX/System modifytimezone int:8 int:0 int:0", {}},
        {"TYX/System modifytimezone int:8 uint:0 bool:0", {}},
        {"TYX/System modifytimezone --hex 000000080000000000000000", {}},
        {"TYX/Private modifytimezone", {}},
        {"TYX/Application/app greet()", {}},
        {"TYX/System modifytimezone", zone},
        {"TYX/System modifytimezone int:8 int:0 int:0 int:0", zone},
        {"TYX/Application/7 openDoc(QString) qcstring:a", "\"openDoc(QString)\" takes qstring:document"},
        {"TYX/System applyStyle() int:1", "\"applyStyle()\" takes no arguments"},
        {"TYX/System applystyle", "\"applystyle\" is not known; there is \"applyStyle()\""},
        {"TYX/QtServer raise", "\"raise\" is not known there; \"raise()\" belongs on TYX/Application/PID"},
        {"TYX/Application/app raise()", process},
    };
    const QCopChannel program("TYX/Application/app");
    for (const auto &[line, warning] : rows) {
        const QStringList arguments = words(line);
        QCopChannel channel(arguments.first().toLatin1());
        QSignalSpy received(&channel, &QCopChannel::received);
        const Outcome sent = tyx(words("send") + arguments);
        QCOMPARE(sent.err, warning.isEmpty() ? warning : "tyx: warning: " + warning + "; sent all the same\n");
        QCOMPARE(sent.status, 0);
        QTRY_COMPARE(received.size(), 1);
        const Outcome strict = tyx(words("send --strict") + arguments);
        QCOMPARE(strict.err, warning.isEmpty() ? warning : "tyx: " + warning + "; it was not sent\n");
        QCOMPARE(strict.status, warning.isEmpty() ? 0 : 2);
        QTRY_COMPARE(received.size(), warning.isEmpty() ? 2 : 1);
    }
}

void TstTyxBus::queuedMessagesWaitOrAreSent()
{
    const QStringList command = words("send --queued TYX/Application/app openDoc(QString) qstring:a");
    QCOMPARE(tyx(command).status, 0);
    const QList<queue::Record> stored = queue::take("app");
    QCOMPARE(stored.size(), 1);
    QCOMPARE(stored[0], (queue::Record{"TYX/Application/app", "openDoc(QString)", QByteArray("\0\0\0\2\0a", 6)}));

    QCopChannel channel("TYX/Application/app");
    QSignalSpy received(&channel, &QCopChannel::received);
    QCOMPARE(tyx(command).status, 0);
    QTRY_COMPARE(received.size(), 1);

    m_broker.reset(); // messages wait for applications of a phone that does not run, and for nobody else
    QCOMPARE(tyx(command).status, 0);
    QCOMPARE(queue::take("app").size(), 1);
    const Outcome lost = tyx("send --queued TYX/System applyStyle()");
    QCOMPARE(lost.status, 3);
    QVERIFY2(lost.err.startsWith("tyx: the message to \"TYX/System\" is lost: no phone"), lost.err.constData());
}

void TstTyxBus::refusedSenderIsToldWhy()
{
    m_broker.reset();
    auto broker = BusBroker::listen({.greetingWait = std::chrono::minutes(10)});
    QVERIFY(broker);
    m_broker = std::move(*broker);
    std::vector<std::unique_ptr<platform::BusInspector>> others;
    for (int i = 0; i < 256; ++i) { // all that the bus serves
        auto other = platform::BusInspector::open();
        QVERIFY(other);
        others.push_back(std::move(*other));
        m_broker->process();
    }
    const Outcome sent = tyx("send c m");
    QCOMPARE(sent.err, "tyx: the phone closed the connection: too many clients, the bus serves 256\n");
    QCOMPARE(sent.status, 3);
}

void TstTyxBus::listNamesChannelsAndProcesses()
{
    const QCopChannel first("TYX/System");
    const QCopChannel second("a\x1b[31m");
    const Outcome text = tyx("list");
    const QByteArray pid = QByteArray::number(QCoreApplication::applicationPid());
    QCOMPARE(text.status, 0);
    QCOMPARE(text.out.simplified(), pid + " TYX/System " + pid + " a?[31m");
    const QJsonArray array = tyx.json("list").array();
    QCOMPARE(array.size(), 2);
    QCOMPARE(array[0][u"channel"].toString(), QStringLiteral("TYX/System"));
    QCOMPARE(array[0][u"pid"].toInteger(), QCoreApplication::applicationPid());
}

void TstTyxBus::monitorShowsWhatOthersSend()
{
    QProcess text;
    QProcess asJson;
    tyx.start(text, words("monitor --count 1 nobody/has/it"));
    tyx.start(asJson, words("monitor --count 1 --json TYX/System"));
    const auto ended = [&] { return text.state() == QProcess::NotRunning && asJson.state() == QProcess::NotRunning; };
    QVERIFY(QTest::qWaitFor(
        [&] { // until both have begun to look
            QCopChannel::send("TYX/System", "notifyLaunchApp", QByteArray("\0\0\0\7x", 5));
            QCopChannel::send("nobody/has/it", "n", QByteArray("\0\xFF", 2));
            return ended();
        },
        20'000));
    const QByteArray pid = QByteArray::number(QCoreApplication::applicationPid());
    QCOMPARE(text.readAllStandardOutput(), pid + "  nobody/has/it  n  2  00 ff\n");
    const QByteArray expected = R"({"arguments":[{"name":"application","type":"int","value":7}],)"
                                R"("channel":"TYX/System","data":"0000000778","message":"notifyLaunchApp",)"
                                R"("pid":)"
        + pid + R"(,"size":5,"surplus":"78"})" + '\n';
    QCOMPARE(asJson.readAllStandardOutput(), expected);
}

void TstTyxBus::describeTellsWhatIsAskedFor()
{
    m_broker.reset(); // it needs no phone
    const std::tuple<const char *, int, QByteArray> rows[] = {
        {"describe modifytimezone", 1, "TYX/System\n  modifytimezone int:h int:m int:s  -- sets TZ"},
        {"describe Shutdown", 2, "TYX/System\n  shutdown()  -- "}, // nearly, on two channels
        {"describe /TYX/Volume", 2, "  RKeyPress int:key  -- "},
        {"describe TYX/Tool/PID", 5, "TYX/Tool/PID\n  raw("},
        {"describe ?", 0, {}},
    };
    for (const auto &[line, count, part] : rows) {
        const Outcome text = tyx(line);
        QCOMPARE(text.status, count > 0 ? 0 : 1);
        QVERIFY2(text.out.contains(part), text.out.constData());
        QCOMPARE(text.out.count(" -- "), count);
        QCOMPARE(tyx.json(line).array().size(), count);
    }
}

void TstTyxBus::waitEndsWhenTheChannelAppearsOrInTime()
{
    QCOMPARE(tyx("wait c --timeout 0").status, 1);
    QProcess waiting;
    tyx.start(waiting, words("wait c"));
    QVERIFY(waiting.waitForStarted());
    const QCopChannel channel("c");
    QCOMPARE(finish(waiting).status, 0);
}

void TstTyxBus::impossibleNumbersAreRefused()
{
    for (const char *line : {"wait c --timeout nan", "wait c --timeout 1e300", "wait c --timeout -1",
             "monitor --count 0", "monitor --count nan"}) {
        const Outcome outcome = tyx(line);
        QCOMPARE(outcome.status, 2);
        const QByteArray said = '"' + words(line).last().toLatin1() + "\" should be ";
        QVERIFY2(outcome.err.contains(said), outcome.err.constData());
    }
}

void TstTyxBus::withoutServerTheCureIsNamed()
{
    m_broker.reset();
    for (const char *line : {"send c m", "monitor", "list", "wait c --timeout 0"}) {
        const Outcome outcome = tyx(line);
        QCOMPARE(outcome.status, 3);
        QCOMPARE(outcome.out, "");
        QCOMPARE(outcome.err,
            "tyx: no phone is running: nothing listens at /tmp/run/tyx-bus; start tyx-guiserver, on a desktop in a "
            "shell of tyx-sandbox (of the source tree: scripts/run.sh)\n");
    }
}

QTEST_GUILESS_MAIN(TstTyxBus)
#include "tst_tyxbus.moc"
