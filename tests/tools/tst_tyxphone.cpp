// The viewer on a whole phone: what is done to the drawn one reaches applications through the devices.
#include "settings/status/systemstatus.h"
#include "tests/support/peerprocess.h"
#include "tests/support/testfiles.h"
#include "tools/phone/desktopkeys.h"
#include "tools/phone/phoneview.h"
#include "tools/phone/phonewindow.h"

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QSlider>
#include <csignal>
#include <set>

using namespace Qt::StringLiterals;

namespace {

QPoint on(const PhoneView &view, QPointF place) { return view.toWidget(place).toPoint(); }
QPoint on(const PhoneView &view, const char *key)
{
    const phone::Key &drawn = *phone::keyNamed(key);
    const QPointF outwards = drawn.side == phone::Side::Left ? QPointF(-32, 0) : QPointF(0, 32); // of left and down
    return on(view, drawn.place.center() + (drawn.shape == phone::Key::Arm ? outwards : QPointF()));
}
QPoint onScreen(const PhoneView &view, int x, int y)
{
    return on(view, phone::kScreen.topLeft() + QPointF(x + 0.25, y + 0.25));
}

struct Server : PeerProcess {
    Server() : PeerProcess(u"../bin/tyx-guiserver"_s, {u"--platform"_s, u"offscreen"_s}) { ready = line(); }
    QByteArray ready;
};

// An application that fills the work area: its upper left corner is at 0, 20 of the screen.
struct Application : PeerProcess {
    Application() : PeerProcess(u"windowpeer"_s)
    {
        ask("make w main 100 100 red");
        tell("show w");
        next("w active");
    }
    // The next line that begins like that, or what went wrong.
    QByteArray next(const QByteArray &beginning)
    {
        QByteArray event = line();
        while (!event.startsWith('(') && !event.startsWith(beginning))
            event = line();
        return event;
    }
    // The next of keys and pen, but for those that begin like `skipped`.
    QByteArray input(const QByteArray &skipped = "w shown")
    {
        QByteArray event = line();
        while (event.startsWith("w shown") || event == "w active" || event.startsWith(skipped))
            event = line();
        return event;
    }
};

// A viewer of its own, for the test to kill: holds a key and the pen until then.
int hold(int argc, char **argv)
{
    auto orders = Hand::start();
    const QApplication application(argc, argv);
    PhoneWindow window(std::move(*orders), {});
    window.resize(window.sizeHint());
    window.show();
    if (!QTest::qWaitFor([&] { return window.screen().isAttached(); }))
        return 1;
    QTest::keyPress(&window.view(), Qt::Key_5);
    QTest::mousePress(&window.view(), Qt::LeftButton, {}, onScreen(window.view(), 50, 120));
    return QApplication::exec();
}

}

class TstTyxPhone : public QObject {
    Q_OBJECT

public:
    explicit TstTyxPhone(platform::Fd orders) : m_orders(std::move(orders)) { }

private Q_SLOTS:
    void initTestCase();
    void withoutADisplayItSaysSo();
    void everyKeyIsHitWhereItIsDrawn();
    void everyKeyCanBeTyped();
    void keysAndPenReachTheApplication();
    void theFlipTakesTheKeysAway();
    void thePictureFollowsTheScreen();
    void thePanelIsTheStatusTable();
    void aKilledViewerLetsGo();
    void aStoppedToolLetsGo_data();
    void aStoppedToolLetsGo();
    void aPhoneThatDiesIsToldAndTheNextOneTaken();

private:
    [[nodiscard]] PhoneView &view() const { return m_window->view(); }
    [[nodiscard]] QColor shown() const { return m_window->screen().picture().pixelColor(120, 160); }

    platform::Fd m_orders;
    std::unique_ptr<Server> m_server;
    std::unique_ptr<PhoneWindow> m_window;
};

void TstTyxPhone::initTestCase()
{
    // Upside down: the panel's numbers are not those of the screen. Stored before there is a server to be told.
    const QStringList calibrate = u"touch calibrate 3900 3800 60 120 0 0 240 320"_s.split(u' ');
    QCOMPARE(run(QStringLiteral(TYX_BINARY_DIR "/bin/tyx"), calibrate).status, 0);
    m_window = std::make_unique<PhoneWindow>(std::move(m_orders), PhoneWindow::Options{{}, u"/tmp"_s});
    m_window->resize(m_window->sizeHint()); // a pixel of the phone is one of the window
    m_window->show(); // before there is a phone
    QVERIFY(!m_window->screen().isAttached());
    m_server = std::make_unique<Server>();
    QVERIFY2(m_server->ready.startsWith("tyx-guiserver: ready on "), m_server->ready.constData());
    QTRY_VERIFY(m_window->screen().isAttached());
    const auto *flip = m_window->findChild<QCheckBox *>(u"flip"_s);
    QTRY_VERIFY(flip->isChecked()); // the table is seen, and the flip not moved yet
    view().turnFlip(false);
    QTRY_VERIFY(!flip->isChecked());
}

void TstTyxPhone::withoutADisplayItSaysSo()
{
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    qunsetenv("QT_QPA_PLATFORM");
    qputenv("DISPLAY", ":65000"); // nobody has so many
    const Outcome dead = run(QStringLiteral(TYX_BINARY_DIR "/bin/tyx"), {u"phone"_s});
    qunsetenv("DISPLAY");
    const Outcome none = run(QStringLiteral(TYX_BINARY_DIR "/bin/tyx"), {u"phone"_s});
    qputenv("QT_QPA_PLATFORM", platform);
    for (const Outcome &outcome : {dead, none}) {
        QCOMPARE(outcome.status, 3);
        QCOMPARE(outcome.err.count('\n'), 1);
        QVERIFY2(outcome.err.contains("display") && outcome.err.contains("set DISPLAY"), outcome.err.constData());
    }
}

void TstTyxPhone::everyKeyIsHitWhereItIsDrawn()
{
    const phone::Posture withHeadset{.flipOpen = false, .headset = true};
    for (const phone::Key &key : phone::keys()) {
        QVERIFY2(keypad::rawKeyNamed(key.name), key.name.data());
        QPointF place = key.place.center();
        if (key.shape == phone::Key::Arm) {
            constexpr QPointF kWays[] = {{-32, 0}, {0, -32}, {32, 0}, {0, 32}};
            place += kWays[int(key.side)];
        }
        const phone::Hit hit = phone::hitAt(place, withHeadset);
        QCOMPARE(hit.what, phone::Hit::KeyOfPhone);
        QCOMPARE(hit.key, &key);
        QCOMPARE(phone::hitAt(place, {.flipOpen = true, .headset = true}).what == phone::Hit::KeyOfPhone,
            !phone::isOnFlip(key));
    }
    // A screen of other proportions is shown whole.
    QCOMPARE(phone::pixelAt(phone::kScreen.topLeft(), {320, 240}), std::nullopt);
    QCOMPARE(phone::pixelAt(phone::kScreen.center(), {320, 240}), QPoint(160, 120));
    QCOMPARE(phone::nearestPixel({0, 0}, {240, 320}), QPoint(0, 0));
}

void TstTyxPhone::everyKeyCanBeTyped()
{
    std::set<std::string_view> typed;
    for (const int first : {0, int(Qt::Key_Escape)}) {
        for (int key = first; key < first + 0x100; ++key) {
            const std::string_view name = phone::keyOfDesktop(key);
            QVERIFY2(name.empty() || phone::keyNamed(name), name.data());
            typed.insert(name);
        }
    }
    for (const phone::Key &key : phone::keys())
        QVERIFY2(typed.contains(key.name), key.name.data());
    QVERIFY(phone::keyOfDesktop(Qt::Key_S).empty());
}

void TstTyxPhone::keysAndPenReachTheApplication()
{
    Application application;
    QTest::mousePress(&view(), Qt::LeftButton, {}, on(view(), "left"));
    QCOMPARE(application.input(), "w press 16777234  0 0");
    QCOMPARE(application.input(), "w press 16777234  0 1"); // the phone repeats what is held
    QTest::mouseRelease(&view(), Qt::LeftButton, {}, QPoint(0, 0));
    QCOMPARE(application.input("w press 16777234  0 1"), "w release 16777234");

    QTest::keyPress(&view(), Qt::Key_5);
    QCOMPARE(application.input(), "w press 53 35 0 0");
    QTest::keyRelease(&view(), Qt::Key_5);
    QCOMPARE(application.input(), "w release 53");

    constexpr quint32 kScanCode = 12; // one key, of which Shift comes up first
    QKeyEvent press(QEvent::KeyPress, Qt::Key_NumberSign, Qt::ShiftModifier, kScanCode, 0, 0);
    QKeyEvent release(QEvent::KeyRelease, Qt::Key_3, Qt::NoModifier, kScanCode, 0, 0);
    QCoreApplication::sendEvent(&view(), &press);
    QCOMPARE(application.input(), "w press 35 23 0 0");
    QCoreApplication::sendEvent(&view(), &release);
    QCOMPARE(application.input(), "w release 35");

    QTest::mousePress(&view(), Qt::LeftButton, {}, onScreen(view(), 30, 70));
    QCOMPARE(application.input("w move"), "w down 30 50");
    QTest::mouseMove(&view(), onScreen(view(), 200, 300));
    QCOMPARE(application.input(), "w move 200 280");
    QTest::mouseRelease(&view(), Qt::LeftButton, {}, onScreen(view(), 200, 300));
    QCOMPARE(application.input(), "w up 200 280");
}

void TstTyxPhone::theFlipTakesTheKeysAway()
{
    Application application;
    auto *flip = m_window->findChild<QCheckBox *>(u"flip"_s);
    const auto move = [&](bool open) {
        QTest::mouseClick(&view(), Qt::LeftButton, {}, on(view(), phone::kHinges.center()));
        return QTest::qWaitFor([&] { return UTIL_GetFlipStatus() != open && flip->isChecked() == open; });
    };
    QVERIFY(move(true));
    QVERIFY(move(false));
    QVERIFY(move(true));
    QTest::mouseClick(&view(), Qt::LeftButton, {}, on(view(), "5")); // where the flip was: closes it
    QTRY_VERIFY(UTIL_GetFlipStatus());
    QTRY_VERIFY(!flip->isChecked());
    QTest::mouseClick(&view(), Qt::LeftButton, {}, on(view(), "6"));
    QCOMPARE(application.next("w press 5"), "w press 54 36 0 0");
    QTest::mouseClick(&view(), Qt::LeftButton, {}, on(view(), phone::kJack.center()));
    QTRY_VERIFY(UTIL_GetHeadsetStatus());
}

void TstTyxPhone::thePictureFollowsTheScreen()
{
    Application application;
    QTRY_COMPARE(shown(), QColor(Qt::red));
    application.tell("colour w blue");
    QTRY_COMPARE(shown(), QColor(Qt::blue));
    QVERIFY(m_window->savePicture(u"/tmp/shot.png"_s));
    QCOMPARE(run(QStringLiteral(TYX_BINARY_DIR "/bin/tyx"), {u"screen"_s, u"shot"_s, u"/tmp/asked.png"_s}).status, 0);
    QCOMPARE(QImage(u"/tmp/shot.png"_s), QImage(u"/tmp/asked.png"_s).convertToFormat(QImage::Format_RGB32));
    QVERIFY(!m_window->savePicture(u"/nowhere/shot.png"_s));
    application.kill();
    QTRY_COMPARE(shown(), QColor(Qt::black)); // nothing is drawn then but the place that is free
}

void TstTyxPhone::thePanelIsTheStatusTable()
{
    const auto slider = [&](const char *name) { return m_window->findChild<QSlider *>(QLatin1String(name)); };
    UTIL_SetBatteryPercent(7, 9);
    QTRY_COMPARE(slider("battery")->value(), 7); // of others
    slider("battery")->setValue(80);
    quint8 first = 0;
    quint8 second = 0;
    UTIL_GetBatteryPercent(&first, &second);
    QCOMPARE(first, 80);
    QCOMPARE(second, 9);
    slider("signal")->setValue(3);
    QCOMPARE(UTIL_GetSignalQuality(), 3);

    auto *name = m_window->findChild<QLineEdit *>(u"operator"_s);
    char stored[61];
    QTest::keyClicks(name, u"\u00dc"_s.repeated(40)); // 80 bytes: the field holds 60
    UTIL_GetServiceName(stored);
    QCOMPARE(QString::fromUtf8(stored), u"\u00dc"_s.repeated(30));
    UTIL_SetServiceName("Nordfunk");
    QTRY_COMPARE(name->text(), u"Nordfunk"_s);
}

void TstTyxPhone::aKilledViewerLetsGo()
{
    Application application;
    PeerProcess other(u"tst_tyxphone"_s, {u"hold"_s});
    QCOMPARE(application.next("w down"), "w down 50 100");
    other.kill();
    QByteArrayList ends;
    while (ends.size() < 2) {
        const QByteArray line = application.input();
        QVERIFY2(line.startsWith("w "), line.constData());
        if (line == "w release 53" || line.startsWith("w up"))
            ends.append(line);
    }
    std::sort(ends.begin(), ends.end());
    QCOMPARE(ends, QByteArrayList({"w release 53", "w up 50 100"}));
}

void TstTyxPhone::aStoppedToolLetsGo_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("signal");
    QTest::addColumn<QByteArray>("begin");
    QTest::addColumn<QByteArray>("end");
    QTest::newRow("replay") << u"keys replay /tmp/held"_s << SIGTERM << QByteArray("w down") << QByteArray("w up");
    QTest::newRow("terminal") << u"keys replay /tmp/held"_s << SIGHUP << QByteArray("w down") << QByteArray("w up");
    QTest::newRow("key") << u"keys hold 5 6 --for 600000"_s << SIGINT << QByteArray("w press 53 35 0 0")
                         << QByteArray("w release 53");
    QTest::newRow("pen") << u"touch drag --raw --for 600000 2000 2000 2100 2100"_s << SIGTERM << QByteArray("w down")
                         << QByteArray("w up");
}

void TstTyxPhone::aStoppedToolLetsGo()
{
    QFETCH(QString, line);
    QFETCH(int, signal);
    QFETCH(QByteArray, begin);
    QFETCH(QByteArray, end);
    Application application;
    fill(u"/tmp/held"_s,
        "tyx-recording 1\n" + QByteArray("0 touch 200 2000 2000\n").repeated(4) + "600000 touch 0 2000 2000\n");
    PeerProcess tool(u"../bin/tyx"_s, line.split(u' '));
    QVERIFY(application.next(begin).startsWith(begin));
    ::kill(pid_t(tool.pid()), signal);
    const QByteArray last = application.input(begin.startsWith("w press") ? "w press" : "w move"); // on the way by then
    QVERIFY2(last.startsWith(end), last.constData());
    QVERIFY(tool.waitForEnd());
}

void TstTyxPhone::aPhoneThatDiesIsToldAndTheNextOneTaken()
{
    const auto death = [&](int signal) {
        QTest::keyPress(&view(), Qt::Key_5); // held while it dies
        ::kill(pid_t(m_server->pid()), signal);
        const bool isTold = QTest::qWaitFor([&] { return !m_window->screen().isAttached(); });
        QTest::keyRelease(&view(), Qt::Key_5);
        m_server = std::make_unique<Server>();
        return isTold && QTest::qWaitFor([&] { return m_window->screen().isAttached(); });
    };
    for (const int signal : {SIGKILL, SIGTERM}) {
        QVERIFY(death(signal));
        QVERIFY(view().notice().isEmpty());
        Application application;
        QTRY_COMPARE(shown(), QColor(Qt::red));
        QTest::keyClick(&view(), Qt::Key_6);
        QCOMPARE(application.input(), "w press 54 36 0 0"); // nothing of before
        QCOMPARE(application.input(), "w release 54");
    }
    ::kill(pid_t(m_server->pid()), SIGSTOP); // one that hangs keeps nobody waiting
    for (int i = 0; i < 100; ++i)
        QTest::mouseClick(&view(), Qt::LeftButton, {}, onScreen(view(), i, i));
    ::kill(pid_t(m_server->pid()), SIGKILL);
    QTRY_VERIFY(!m_window->screen().isAttached());
    QVERIFY(view().notice().startsWith(u"The phone has stopped\n"_s));
}

int main(int argc, char **argv)
{
    if (argc == 2 && argv[1] == QByteArrayView("hold"))
        return hold(argc, argv);
    auto orders = Hand::start();
    const QApplication application(argc, argv);
    TstTyxPhone test(std::move(*orders));
    return QTest::qExec(&test, argc, argv);
}
#include "tst_tyxphone.moc"
