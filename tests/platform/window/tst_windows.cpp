// Where windows go, which one lies over which, and which one has the focus.
#include "tests/platform/window/windowtest.h"

#include <QSignalSpy>

class TstWindows : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void mainWindowFillsTheWorkArea();
    void workAreaMovesWindows();
    void fullScreenCoversTheBarAndGivesItBack();
    void framelessKeepsItsPlaceOnTheScreen();
    void dialogIsCentredAndCutToTheWorkArea();
    void popupStaysOnTheScreen();
    void raisingBringsToFrontAndFocus();
    void closingGivesTheFocusToTheNext();
    void modalDialogStandsInForItsProgram();
    void dialogOfBackgroundProgramStaysThere();
    void dialogTakesItsProgramAlong();
    void focusIsNotTaken();
    void clickRaisesAndClosesPopupsOfOthers();
    void menuClosesOnClickOnTheServersBar();
    void identifiersAreUniqueAndLast();
    void eventsTellALife();
    void killedClientIsGoneAtOnce();
};

void TstWindows::init()
{
    QTRY_VERIFY(server().clientWindows().isEmpty());
    server().setWorkArea(kWorkArea);
}

void TstWindows::mainWindowFillsTheWorkArea()
{
    Client client;
    QVERIFY(client.shows(u"w"_qs, u"main"_qs));
    QTRY_COMPARE(client.window(u"w"_qs)->geometry(), kWorkArea);
    QTRY_COMPARE(pixel(kWorkArea.bottomRight()), QColor(Qt::red));
    QCOMPARE(pixel({0, kBarHeight - 1}), QColor(Qt::black));
    QVERIFY(client.does(u"title w Calendar"_qs));
    QTRY_COMPARE(client.window(u"w"_qs)->caption(), u"Calendar"_qs);
}

void TstWindows::workAreaMovesWindows()
{
    Client client;
    QVERIFY(client.shows(u"w"_qs, u"main"_qs));
    const QRect smaller = kWorkArea.adjusted(0, 10, 0, -50);
    server().setWorkArea(smaller);
    QTRY_COMPARE(client.window(u"w"_qs)->geometry(), smaller);
    server().setWorkArea({}); // not an area
    server().setWorkArea({500, 500, 10, 10}); // not on the screen
    QCOMPARE(server().workArea(), smaller);
}

void TstWindows::fullScreenCoversTheBarAndGivesItBack()
{
    QWidget bar(server().screenWidget());
    bar.setGeometry(0, 0, 240, kBarHeight);
    bar.setAutoFillBackground(true);
    bar.setPalette(QPalette(Qt::blue));
    bar.show();
    Client client;
    QVERIFY(client.shows(u"w"_qs, u"main"_qs));
    QTRY_COMPARE(pixel({5, 5}), QColor(Qt::blue));
    client.tell(u"full w"_qs);
    QTRY_COMPARE(client.window(u"w"_qs)->geometry(), kScreen);
    QTRY_COMPARE(pixel({5, 5}), QColor(Qt::red));
    client.tell(u"normal w"_qs);
    QTRY_COMPARE(client.window(u"w"_qs)->geometry(), kWorkArea);
    QTRY_COMPARE(pixel({5, 5}), QColor(Qt::blue));
}

void TstWindows::framelessKeepsItsPlaceOnTheScreen()
{
    Client client;
    QVERIFY(client.shows(u"f"_qs, u"frameless"_qs, u"green"_qs, {50, 40}));
    QVERIFY(client.does(u"move f 300 100"_qs));
    QTRY_COMPARE(client.window(u"f"_qs)->geometry(), QRect(190, 100, 50, 40));
}

void TstWindows::dialogIsCentredAndCutToTheWorkArea()
{
    Client client;
    QVERIFY(client.shows(u"small"_qs, u"dialog"_qs));
    QTRY_COMPARE(client.window(u"small"_qs)->geometry(), QRect(70, kBarHeight + 120, 100, 60));
    QVERIFY(client.shows(u"huge"_qs, u"dialog"_qs, u"blue"_qs, {500, 500}));
    QTRY_COMPARE(client.window(u"huge"_qs)->geometry(), kWorkArea);
}

void TstWindows::popupStaysOnTheScreen()
{
    Client client;
    QVERIFY(client.shows(u"w"_qs, u"main"_qs));
    client.tell(u"make p popup 80 50 green"_qs);
    client.tell(u"move p 200 300"_qs);
    client.tell(u"show p"_qs);
    QTRY_VERIFY(client.window(u"p"_qs) && client.window(u"p"_qs)->isVisible());
    QTRY_COMPARE(client.window(u"p"_qs)->geometry(), QRect(160, 270, 80, 50));
    QTRY_COMPARE(pixel({170, 280}), QColor(Qt::darkGreen));
    QVERIFY(client.window(u"w"_qs)->isActive()); // a pop-up leaves the focus where it is
}

void TstWindows::raisingBringsToFrontAndFocus()
{
    Client one;
    Client two;
    QVERIFY(one.shows(u"w"_qs, u"main"_qs, u"red"_qs));
    QVERIFY(two.shows(u"w"_qs, u"main"_qs, u"blue"_qs));
    QTRY_COMPARE(pixel({100, 100}), QColor(Qt::blue));
    QCOMPARE(server().activeWindow(), two.window(u"w"_qs));
    one.tell(u"raise w"_qs);
    QVERIFY(one.says(u"w active"_qs));
    QTRY_COMPARE(pixel({100, 100}), QColor(Qt::red));
    QCOMPARE(server().clientWindows().first(), one.window(u"w"_qs));
    one.window(u"w"_qs)->lower();
    QTRY_COMPARE(server().activeWindow(), two.window(u"w"_qs));
    QCOMPARE(server().clientWindows().last(), one.window(u"w"_qs));
    QTRY_COMPARE(pixel({100, 100}), QColor(Qt::blue));
}

void TstWindows::closingGivesTheFocusToTheNext()
{
    Client one;
    Client two;
    QVERIFY(one.shows(u"w"_qs, u"main"_qs));
    QVERIFY(two.shows(u"w"_qs, u"main"_qs));
    two.tell(u"hide w"_qs);
    QTRY_COMPARE(server().activeWindow(), one.window(u"w"_qs));
    QVERIFY(!two.window(u"w"_qs)->isVisible()); // it is hidden, not gone
    one.tell(u"delete w"_qs);
    QTRY_VERIFY(!one.window(u"w"_qs));
    QVERIFY(!server().activeWindow());
}

void TstWindows::modalDialogStandsInForItsProgram()
{
    Client client;
    Client other;
    QVERIFY(client.shows(u"w"_qs, u"main"_qs, u"red"_qs));
    QVERIFY(client.shows(u"ask"_qs, u"modal"_qs, u"green"_qs));
    QCOMPARE(server().activeWindow(), client.window(u"ask"_qs));
    QVERIFY(other.shows(u"w"_qs, u"main"_qs, u"blue"_qs));
    QCOMPARE(server().activeWindow(), other.window(u"w"_qs));
    client.window(u"w"_qs)->raise();
    QCOMPARE(server().activeWindow(), client.window(u"ask"_qs));
    QTRY_COMPARE(pixel(client.window(u"ask"_qs)->geometry().center()), QColor(Qt::darkGreen));
    client.tell(u"delete ask"_qs);
    QTRY_COMPARE(server().activeWindow(), client.window(u"w"_qs));
}

void TstWindows::dialogOfBackgroundProgramStaysThere()
{
    Client background;
    Client front;
    QVERIFY(background.shows(u"w"_qs, u"main"_qs));
    QVERIFY(front.shows(u"w"_qs, u"main"_qs, u"blue"_qs));
    QVERIFY(background.shows(u"d"_qs, u"dialog"_qs));
    QCOMPARE(server().activeWindow(), front.window(u"w"_qs));
    QCOMPARE(server().clientWindows(),
        (QList<QWSWindow *>{front.window(u"w"_qs), background.window(u"d"_qs), background.window(u"w"_qs)}));
}

void TstWindows::dialogTakesItsProgramAlong()
{
    Client asking;
    Client other;
    QVERIFY(other.shows(u"w"_qs, u"main"_qs, u"blue"_qs));
    QVERIFY(asking.shows(u"w"_qs, u"main"_qs));
    QVERIFY(asking.shows(u"d"_qs, u"dialog"_qs));
    asking.window(u"d"_qs)->lower();
    QCOMPARE(server().activeWindow(), other.window(u"w"_qs));
    QCOMPARE(server().clientWindows(),
        (QList<QWSWindow *>{other.window(u"w"_qs), asking.window(u"d"_qs), asking.window(u"w"_qs)}));
    QVERIFY(asking.shows(u"w2"_qs, u"main"_qs)); // comes to the front, but not over the dialog
    QCOMPARE(server().clientWindows().first(), asking.window(u"d"_qs));
}

void TstWindows::focusIsNotTaken()
{
    Client one;
    Client two;
    QVERIFY(one.shows(u"w"_qs, u"main"_qs));
    QVERIFY(two.shows(u"w"_qs, u"main"_qs));
    QVERIFY(one.does(u"activate w"_qs)); // not in front: not heard
    QVERIFY(one.shows(u"keyboard"_qs, u"nofocus"_qs));
    QCOMPARE(server().activeWindow(), two.window(u"w"_qs));
    one.window(u"w"_qs)->setActiveWindow(); // the server may, whatever lies above
    QCOMPARE(server().activeWindow(), one.window(u"w"_qs));
}

void TstWindows::clickRaisesAndClosesPopupsOfOthers()
{
    Client below;
    Client above;
    QVERIFY(below.shows(u"w"_qs, u"main"_qs, u"red"_qs));
    QVERIFY(above.shows(u"small"_qs, u"frameless"_qs, u"blue"_qs, {60, 60}));
    QVERIFY(above.does(u"menu small"_qs));
    QTRY_VERIFY(server().clientWindows().first()->isPopup());
    server().sendMouseEvent({200, 250}, Qt::LeftButton);
    QVERIFY(above.says(u"menu closed"_qs));
    QVERIFY(below.says(u"w down 200 230"_qs));
    server().sendMouseEvent({200, 250}, Qt::NoButton);
    QCOMPARE(server().activeWindow(), below.window(u"w"_qs));
    QCOMPARE(server().clientWindows().first(), below.window(u"w"_qs));
}

void TstWindows::menuClosesOnClickOnTheServersBar()
{
    Client client;
    QVERIFY(client.shows(u"w"_qs, u"main"_qs));
    QVERIFY(client.does(u"menu w"_qs));
    QTRY_VERIFY(server().clientWindows().first()->isPopup());
    QCOMPARE(server().clientWindows().first()->geometry().topLeft(), kWorkArea.topLeft() + QPoint(30, 40));
    server().sendMouseEvent({100, 5}, Qt::LeftButton);
    server().sendMouseEvent({100, 5}, Qt::NoButton);
    QVERIFY(client.says(u"menu closed"_qs));
    QVERIFY(client.window(u"w"_qs)->isActive());
}

void TstWindows::identifiersAreUniqueAndLast()
{
    Client one;
    Client two;
    QSet<int> all;
    for (Client *client : {&one, &two}) {
        for (const QString &name : {u"w"_qs, u"d"_qs}) {
            QVERIFY(client->shows(name, name == u"w"_qs ? u"main"_qs : u"dialog"_qs));
            client->tell(u"id "_qs + name);
            QVERIFY(client->says(u"id "_qs + name));
            QCOMPARE(client->line().section(u' ', 2).toInt(), client->window(name)->winId());
            all.insert(client->window(name)->winId());
        }
    }
    QCOMPARE(all.size(), 4);
    const int id = one.window(u"w"_qs)->winId();
    QVERIFY(one.does(u"hide w"_qs));
    QTRY_VERIFY(!server().window(id)->isVisible());
    QVERIFY(one.does(u"show w"_qs));
    QTRY_VERIFY(server().window(id)->isVisible());
    QCOMPARE(one.window(u"w"_qs)->winId(), id);
    QCOMPARE(server().clientWindows().size(), 4);
}

void TstWindows::eventsTellALife()
{
    QList<int> events;
    const auto connection = connect(&server(), &QWSServer::windowEvent, this,
        [&events](QWSWindow *, QWSServer::WindowEvent event) { events.append(event); });
    const auto take = [&events](int event) { return QTest::qWaitFor([&] { return events.contains(event); }); };
    Client client;
    QVERIFY(client.shows(u"w"_qs, u"main"_qs));
    QVERIFY(take(QWSServer::Active));
    QCOMPARE(events.first(), int(QWSServer::Create));
    QVERIFY(events.indexOf(QWSServer::Show) < events.indexOf(QWSServer::Active));
    QVERIFY(events.contains(QWSServer::Geometry));
    QVERIFY(client.does(u"title w News"_qs));
    QVERIFY(take(QWSServer::Name));
    events.clear();
    client.tell(u"hide w"_qs);
    QVERIFY(take(QWSServer::Hide));
    client.tell(u"delete w"_qs);
    QVERIFY(take(QWSServer::Destroy));
    QCOMPARE(events.last(), int(QWSServer::Destroy));
    disconnect(connection);
}

void TstWindows::killedClientIsGoneAtOnce()
{
    Client survivor;
    QVERIFY(survivor.shows(u"w"_qs, u"main"_qs, u"blue"_qs));
    Client client;
    QVERIFY(client.shows(u"w"_qs, u"main"_qs));
    QVERIFY(client.shows(u"d"_qs, u"dialog"_qs));
    QVERIFY(client.does(u"menu w"_qs));
    QVERIFY(client.does(u"hide d"_qs));
    client.process().kill();
    QTRY_COMPARE(server().clientWindows(), QList<QWSWindow *>{survivor.window(u"w"_qs)});
    QCOMPARE(server().activeWindow(), survivor.window(u"w"_qs));
    QTRY_COMPARE(pixel({100, 100}), QColor(Qt::blue));
}

int main(int argc, char **argv) { return runOnServer<TstWindows>(argc, argv); }

#include "tst_windows.moc"
