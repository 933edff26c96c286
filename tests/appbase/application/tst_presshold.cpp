// A pen that is held on a widget, and the sign of a busy application. Time is what the tests say it is.
#include "appbase/application/animation.h"
#include "appbase/application/presshold.h"
#include "appbase/application/zapplication.h"
#include "tests/support/peerprocess.h"

#include <QAbstractEventDispatcher>
#include <QDialog>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <map>

using namespace Qt::StringLiterals;

namespace {

using Logic = PressHoldLogic;

Logic::Time now{};

// One step of a script: "down 5,5", "move 9,5", "up", "300" (milliseconds since the script began).
Logic::Action step(Logic &logic, const QString &step)
{
    const QStringList place = step.section(u' ', 1).split(u',');
    const QPoint position(place.value(0).toInt(), place.value(1).toInt());
    if (step.startsWith(u"down"))
        return logic.down(position, now);
    if (step.startsWith(u"move"))
        return logic.move(position);
    if (step == u"up")
        return logic.up();
    if (step == u"interrupt")
        return logic.interrupt();
    now = Logic::Time(step.toInt());
    return logic.elapse(now);
}

class Button : public QPushButton {
public:
    explicit Button(QWidget *parent) : QPushButton(parent) { }
    std::function<void()> onMenu;
    std::function<void()> onRelease;

protected:
    void mouseReleaseEvent(QMouseEvent *event) override
    {
        if (onRelease)
            onRelease();
        else
            QPushButton::mouseReleaseEvent(event);
    }
    void contextMenuEvent(QContextMenuEvent *) override { onMenu(); }
};

// One that is seen: what was taken away is destroyed later.
const Animation *animationIn(const QWidget &window)
{
    const auto *animation = window.findChild<Animation *>();
    return animation && !animation->isHidden() ? animation : nullptr;
}

// A window with one button, the filter in front of it, and the pen.
class Scene : public QObject {
public:
    Scene() : hold(*this, [] { return now; })
    {
        menu.addAction(u"first"_s, &window, [this] { ++clicks; });
        now = {};
        window.resize(200, 200);
        button->setGeometry(50, 50, 100, 100);
        QObject::connect(button, &QPushButton::clicked, &window, [this] { ++clicks; });
        button->onMenu = [this] { ++menus; };
        window.show();
        qApp->installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        return watched->isWidgetType() && hold.filter(static_cast<QWidget &>(*watched), *event);
    }

    // By way of the window, as a real pen comes; what is below it may be gone.
    void pen(QEvent::Type type, Qt::MouseButton which, QPoint at = {100, 100})
    {
        static ulong timestamp = 1;
        if (type == QEvent::MouseButtonPress)
            buttons |= which;
        if (type == QEvent::MouseButtonRelease)
            buttons &= ~Qt::MouseButtons(which);
        QMouseEvent event(type, at, window.mapToGlobal(at), which, buttons, Qt::NoModifier);
        event.setTimestamp(++timestamp);
        QApplication::sendEvent(window.windowHandle(), &event);
    }
    void waitUntil(int milliseconds)
    {
        now = Logic::Time(milliseconds);
        for (const auto &timer : QAbstractEventDispatcher::instance()->registeredTimers(this)) {
            QTimerEvent event(timer.timerId);
            QVERIFY(hold.timer(event));
        }
    }
    void act(const QString &what)
    {
        const std::map<QString, std::function<void()>> acts{
            {u"down"_s, [this] { pen(QEvent::MouseButtonPress, Qt::LeftButton); }},
            {u"up"_s, [this] { pen(QEvent::MouseButtonRelease, Qt::LeftButton); }},
            {u"move"_s,
                [this] {
                    pen(QEvent::MouseMove, Qt::NoButton, {120, 100});
                }},
            {u"second"_s, [this] { pen(QEvent::MouseButtonPress, Qt::MiddleButton); }},
            {u"hide"_s, [this] { button->hide(); }},
            {u"hide window"_s, [this] { window.hide(); }},
            {u"delete"_s, [this] { delete button; }},
            {u"deletes itself"_s, [this] { button->onMenu = [this] { ++menus, delete button; }; }},
            {u"lets go and deletes itself"_s, [this] { button->onRelease = [this] { delete button; }; }},
            {u"menu"_s,
                [this] { button->onMenu = [this] { ++menus, menu.popup(window.mapToGlobal(QPoint(90, 90))); }; }},
        };
        const auto known = acts.find(what);
        known == acts.end() ? waitUntil(what.toInt()) : known->second();
    }
    bool isAnimated() const { return animationIn(window) != nullptr; }

    QWidget window;
    QPointer<Button> button = new Button(&window);
    QMenu menu;
    PressHold hold;
    Qt::MouseButtons buttons;
    int clicks = 0;
    int menus = 0;
};

}

class TstPressHold : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void decisions_data();
    void decisions();
    void widgetsSeeWhatTheyShould_data();
    void widgetsSeeWhatTheyShould();
    void theModeIsInherited();
    void theWaitingCursorCountsAndFollows();
};

void TstPressHold::decisions_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("actions"); // one letter a step: None, Animate, Stop, Hold, sWallow
    QTest::newRow("tap") << u"down 5,5; up; 300; 1000"_s << u"NNNN"_s;
    QTest::newRow("held") << u"down 5,5; 299; 300; 999; 1000; up"_s << u"NNANHW"_s;
    QTest::newRow("trembling") << u"down 5,5; move 11,-1; 300; move 5,11; 1000; move 90,90; up; up"_s << u"NNANHWWN"_s;
    QTest::newRow("moved early") << u"down 5,5; move 12,5; 300; 1000; up"_s << u"NNNNN"_s;
    QTest::newRow("moved late") << u"down 5,5; 300; move 5,-2; 1000; up"_s << u"NASNN"_s;
    QTest::newRow("let go late") << u"down 5,5; 999; up; 1000"_s << u"NASN"_s;
    QTest::newRow("interrupted") << u"down 5,5; 300; interrupt; 1000; up"_s << u"NASNN"_s;
    QTest::newRow("interrupted when held") << u"down 5,5; 1000; interrupt; up"_s << u"NHNW"_s;
    QTest::newRow("a busy second") << u"down 5,5; 1500; up"_s << u"NHW"_s;
    QTest::newRow("lost release") << u"down 5,5; 300; down 90,90; move 90,95; 600; 1300; down 5,5; up"_s
                                  << u"NASNAHNN"_s;
}

void TstPressHold::decisions()
{
    QFETCH(QString, script);
    now = {};
    Logic logic;
    QString actions;
    for (const QString &one : script.split(u"; "_s))
        actions += u"NASHW"_s.at(int(step(logic, one)));
    QTEST(actions, "actions");
    QVERIFY(!logic.deadline());
}

void TstPressHold::widgetsSeeWhatTheyShould_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<int>("menus");
    QTest::addColumn<int>("clicks");
    QTest::newRow("tap after held") << u"down; 300; 1000; up; down; up"_s << 1 << 1;
    QTest::newRow("moved") << u"down; 300; move; 1000; up"_s << 0 << 1;
    QTest::newRow("another button") << u"down; 300; second; 1000; up"_s << 0 << 1;
    QTest::newRow("hidden") << u"down; 300; hide; 1000; up"_s << 0 << 0;
    QTest::newRow("window hidden") << u"down; 300; hide window; 1000; up"_s << 0 << 0;
    QTest::newRow("deleted") << u"down; 300; delete; 1000; up"_s << 0 << 0;
    QTest::newRow("deleted when held") << u"down; 1000; delete; move; up"_s << 1 << 0;
    QTest::newRow("deletes itself") << u"deletes itself; down; 300; 1000; move; up"_s << 1 << 0;
    QTest::newRow("lets go and deletes itself") << u"lets go and deletes itself; down; 300; 1000; up"_s << 0 << 0;
    QTest::newRow("a menu is not clicked") << u"menu; down; 300; 1000; up"_s << 1 << 0;
}

void TstPressHold::widgetsSeeWhatTheyShould()
{
    QFETCH(QString, script);
    Scene scene;
    QVERIFY(QTest::qWaitForWindowActive(&scene.window));
    ZApplication::setMouseMode(&scene.window, ZApplication::MouseMode::PressHold);
    bool wasAnimated = false;
    for (const QString &one : script.split(u"; "_s)) {
        scene.act(one);
        wasAnimated |= scene.isAnimated();
    }
    QTEST(scene.menus, "menus");
    QTEST(scene.clicks, "clicks");
    QCOMPARE(wasAnimated, script.contains(u"300"_s));
    QVERIFY(!scene.isAnimated());
    QVERIFY(!scene.button || scene.button->isHidden() || !scene.button->isDown());
    QCOMPARE(scene.menu.isVisible(), script.contains(u"menu"_s));
}

void TstPressHold::theModeIsInherited()
{
    using Mode = ZApplication::MouseMode;
    QWidget window;
    auto *inner = new QWidget(&window);
    const QDialog dialog(inner);
    ZApplication::setMouseMode(&window, Mode::PressHold);
    QCOMPARE(ZApplication::mouseMode(inner), Mode::PressHold);
    QCOMPARE(ZApplication::mouseMode(&dialog), Mode::Plain);
    ZApplication::setMouseMode(inner, Mode::Plain);
    QCOMPARE(ZApplication::mouseMode(inner), Mode::Plain);
}

void TstPressHold::theWaitingCursorCountsAndFollows()
{
    ZApplication &app = *ZApplication::instance();
    auto window = std::make_unique<QWidget>();
    QWidget other;
    const auto middle = [](const QWidget &where) {
        const auto *animation = animationIn(where);
        return animation && (animation->geometry().center() - where.rect().center()).manhattanLength() < 3;
    };
    app.hideWaitingCursor(); // one too many
    app.showWaitingCursor(); // before there is a window
    app.showWaitingCursor();
    window->resize(200, 100);
    window->show();
    QTRY_VERIFY(middle(*window));
    window->resize(100, 200);
    QTRY_VERIFY(middle(*window));
    app.hideWaitingCursor();
    QVERIFY(middle(*window));
    other.show();
    other.activateWindow();
    QTRY_VERIFY(middle(other));
    QVERIFY(!animationIn(*window));
    window->activateWindow();
    QTRY_VERIFY(middle(*window));
    window.reset();
    other.activateWindow();
    QTRY_VERIFY(middle(other));
    app.hideWaitingCursor();
    QVERIFY(!animationIn(other));
}

int main(int argc, char **argv)
{
    PeerProcess server(u"buspeer"_s);
    if (server.ask("host") != "hosting")
        return 1;
    auto app = std::make_unique<ZApplication>(argc, argv, ZApplication::Tty);
    ZApplication::setQuitOnLastWindowClosed(false);
    TstPressHold test;
    const int result = QTest::qExec(&test, argc, argv);
    // An application may end while it is busy and the pen is down, with windows that nobody destroyed.
    static auto *const window = new QWidget;
    ZApplication::setMouseMode(window, ZApplication::MouseMode::PressHold);
    window->show();
    window->activateWindow();
    app->showWaitingCursor();
    QTest::mousePress(window->windowHandle(), Qt::LeftButton);
    app.reset();
    return result;
}

#include "tst_presshold.moc"
