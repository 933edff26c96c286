// Where windows go, which one lies over which, and which one has the focus.
#include "tests/platform/window/windowtest.h"

#include <QSignalSpy>

class TstWindows : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
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

private:
    std::unique_ptr<Client> m_client; // shows a main window "w", red
};

void TstWindows::init()
{
    QTRY_VERIFY(server().clientWindows().isEmpty());
    server().setWorkArea(kWorkArea);
    m_client = std::make_unique<Client>();
    QVERIFY(m_client->shows(u"w"_qs, u"main"_qs));
}

void TstWindows::cleanup() { m_client.reset(); }

void TstWindows::mainWindowFillsTheWorkArea()
{
    QTRY_COMPARE(m_client->window(u"w"_qs)->geometry(), kWorkArea);
    QTRY_COMPARE(pixel(kWorkArea.bottomRight()), QColor(Qt::red));
    QCOMPARE(pixel({0, kBarHeight - 1}), QColor(Qt::black));
    QVERIFY(m_client->does(u"title w Calendar"_qs));
    QTRY_COMPARE(m_client->window(u"w"_qs)->caption(), u"Calendar"_qs);
}

void TstWindows::workAreaMovesWindows()
{
    const QRect smaller = kWorkArea.adjusted(0, 10, 0, -50);
    server().setWorkArea(smaller);
    QTRY_COMPARE(m_client->window(u"w"_qs)->geometry(), smaller);
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
    QTRY_COMPARE(pixel({5, 5}), QColor(Qt::blue));
    m_client->tell(u"full w"_qs);
    QTRY_COMPARE(m_client->window(u"w"_qs)->geometry(), kScreen);
    QTRY_COMPARE(pixel({5, 5}), QColor(Qt::red));
    m_client->tell(u"normal w"_qs);
    QTRY_COMPARE(m_client->window(u"w"_qs)->geometry(), kWorkArea);
    QTRY_COMPARE(pixel({5, 5}), QColor(Qt::blue));
}

void TstWindows::framelessKeepsItsPlaceOnTheScreen()
{
    QVERIFY(m_client->shows(u"f"_qs, u"frameless"_qs, u"green"_qs, {50, 40}));
    QVERIFY(m_client->does(u"move f 300 100"_qs));
    QTRY_COMPARE(m_client->window(u"f"_qs)->geometry(), QRect(190, 100, 50, 40));
}

void TstWindows::dialogIsCentredAndCutToTheWorkArea()
{
    QVERIFY(m_client->shows(u"small"_qs, u"dialog"_qs));
    QTRY_COMPARE(m_client->window(u"small"_qs)->geometry(), QRect(70, kBarHeight + 120, 100, 60));
    QVERIFY(m_client->shows(u"huge"_qs, u"dialog"_qs, u"blue"_qs, {500, 500}));
    QTRY_COMPARE(m_client->window(u"huge"_qs)->geometry(), kWorkArea);
}

void TstWindows::popupStaysOnTheScreen()
{
    m_client->tell(u"make p popup 80 50 green"_qs);
    m_client->tell(u"move p 200 300"_qs);
    m_client->tell(u"show p"_qs);
    QTRY_VERIFY(m_client->window(u"p"_qs) && m_client->window(u"p"_qs)->isVisible());
    QTRY_COMPARE(m_client->window(u"p"_qs)->geometry(), QRect(160, 270, 80, 50));
    QTRY_COMPARE(pixel({170, 280}), QColor(Qt::darkGreen));
    QVERIFY(m_client->window(u"w"_qs)->isActive()); // a pop-up leaves the focus where it is
}

void TstWindows::raisingBringsToFrontAndFocus()
{
    Client two;
    QVERIFY(two.shows(u"w"_qs, u"main"_qs, u"blue"_qs));
    QTRY_COMPARE(pixel({100, 100}), QColor(Qt::blue));
    QCOMPARE(server().activeWindow(), two.window(u"w"_qs));
    m_client->tell(u"raise w"_qs);
    QVERIFY(m_client->says(u"w active"_qs));
    QTRY_COMPARE(pixel({100, 100}), QColor(Qt::red));
    QCOMPARE(server().clientWindows().first(), m_client->window(u"w"_qs));
    m_client->window(u"w"_qs)->lower();
    QTRY_COMPARE(server().activeWindow(), two.window(u"w"_qs));
    QCOMPARE(server().clientWindows().last(), m_client->window(u"w"_qs));
    QTRY_COMPARE(pixel({100, 100}), QColor(Qt::blue));
}

void TstWindows::closingGivesTheFocusToTheNext()
{
    Client two;
    QVERIFY(two.shows(u"w"_qs, u"main"_qs));
    two.tell(u"hide w"_qs);
    QTRY_COMPARE(server().activeWindow(), m_client->window(u"w"_qs));
    QVERIFY(!two.window(u"w"_qs)->isVisible()); // it is hidden, not gone
    m_client->tell(u"delete w"_qs);
    QTRY_VERIFY(!m_client->window(u"w"_qs));
    QVERIFY(!server().activeWindow());
}

void TstWindows::modalDialogStandsInForItsProgram()
{
    Client other;
    QVERIFY(m_client->shows(u"ask"_qs, u"modal"_qs, u"green"_qs));
    QCOMPARE(server().activeWindow(), m_client->window(u"ask"_qs));
    QVERIFY(other.shows(u"w"_qs, u"main"_qs, u"blue"_qs));
    QCOMPARE(server().activeWindow(), other.window(u"w"_qs));
    m_client->window(u"w"_qs)->raise();
    QCOMPARE(server().activeWindow(), m_client->window(u"ask"_qs));
    QTRY_COMPARE(pixel(m_client->window(u"ask"_qs)->geometry().center()), QColor(Qt::darkGreen));
    m_client->tell(u"delete ask"_qs);
    QTRY_COMPARE(server().activeWindow(), m_client->window(u"w"_qs));
}

void TstWindows::dialogOfBackgroundProgramStaysThere()
{
    Client front;
    QVERIFY(front.shows(u"w"_qs, u"main"_qs, u"blue"_qs));
    QVERIFY(m_client->shows(u"d"_qs, u"dialog"_qs));
    QCOMPARE(server().activeWindow(), front.window(u"w"_qs));
    QCOMPARE(server().clientWindows(),
        (QList<QWSWindow *>{front.window(u"w"_qs), m_client->window(u"d"_qs), m_client->window(u"w"_qs)}));
}

void TstWindows::dialogTakesItsProgramAlong()
{
    Client asking;
    QVERIFY(asking.shows(u"w"_qs, u"main"_qs));
    QVERIFY(asking.shows(u"d"_qs, u"dialog"_qs));
    asking.window(u"d"_qs)->lower();
    QCOMPARE(server().activeWindow(), m_client->window(u"w"_qs));
    QCOMPARE(server().clientWindows(),
        (QList<QWSWindow *>{m_client->window(u"w"_qs), asking.window(u"d"_qs), asking.window(u"w"_qs)}));
    QVERIFY(asking.shows(u"w2"_qs, u"main"_qs)); // comes to the front, but not over the dialog
    QCOMPARE(server().clientWindows().first(), asking.window(u"d"_qs));
}

void TstWindows::focusIsNotTaken()
{
    Client two;
    QVERIFY(two.shows(u"w"_qs, u"main"_qs));
    QVERIFY(m_client->does(u"activate w"_qs)); // not in front: not heard
    QVERIFY(m_client->shows(u"keyboard"_qs, u"nofocus"_qs));
    QCOMPARE(server().activeWindow(), two.window(u"w"_qs));
    m_client->window(u"w"_qs)->setActiveWindow(); // the server may, whatever lies above
    QCOMPARE(server().activeWindow(), m_client->window(u"w"_qs));
}

void TstWindows::clickRaisesAndClosesPopupsOfOthers()
{
    Client above;
    QVERIFY(above.shows(u"small"_qs, u"frameless"_qs, u"blue"_qs, {60, 60}));
    QVERIFY(above.does(u"menu small"_qs));
    QTRY_VERIFY(server().clientWindows().first()->isPopup());
    server().sendMouseEvent({200, 250}, Qt::LeftButton);
    QVERIFY(above.says(u"menu closed"_qs));
    QVERIFY(m_client->says(u"w down 200 230"_qs));
    server().sendMouseEvent({200, 250}, Qt::NoButton);
    QCOMPARE(server().activeWindow(), m_client->window(u"w"_qs));
    QCOMPARE(server().clientWindows().first(), m_client->window(u"w"_qs));
}

void TstWindows::menuClosesOnClickOnTheServersBar()
{
    QVERIFY(m_client->does(u"menu w"_qs));
    QTRY_VERIFY(server().clientWindows().first()->isPopup());
    QCOMPARE(server().clientWindows().first()->geometry().topLeft(), kWorkArea.topLeft() + QPoint(30, 40));
    server().sendMouseEvent({100, 5}, Qt::LeftButton);
    server().sendMouseEvent({100, 5}, Qt::NoButton);
    QVERIFY(m_client->says(u"menu closed"_qs));
    QVERIFY(m_client->window(u"w"_qs)->isActive());
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
    QCOMPARE(server().clientWindows().size(), 1 + 4);
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
    Client client;
    QVERIFY(client.shows(u"w"_qs, u"main"_qs, u"blue"_qs));
    QVERIFY(client.shows(u"d"_qs, u"dialog"_qs));
    QVERIFY(client.does(u"menu w"_qs));
    QVERIFY(client.does(u"hide d"_qs));
    client.process().kill();
    QTRY_COMPARE(server().clientWindows(), QList<QWSWindow *>{m_client->window(u"w"_qs)});
    QCOMPARE(server().activeWindow(), m_client->window(u"w"_qs));
    QTRY_COMPARE(pixel({100, 100}), QColor(Qt::red));
}

int main(int argc, char **argv) { return runOnServer<TstWindows>(argc, argv); }

#include "tst_windows.moc"
