// Keys and pointer on their way to clients and to the server's own widgets.
#include "platform/window/qwskeyboardhandler.h"
#include "tests/platform/window/windowtest.h"

#include <QLineEdit>

namespace {

void type(int unicode, int keycode, int modifiers = 0)
{
    QWSServer::sendKeyEvent(unicode, keycode, modifiers, true, false);
    QWSServer::sendKeyEvent(unicode, keycode, modifiers, false, false);
}

QString pressed(int key, bool again = false) { return QStringLiteral("w press %1  0 %2").arg(key).arg(int(again)); }

QString nextPress(Client &client) { return client.says(u"w press"_qs) ? client.line() : u"no press"_qs; }

}

class TstInput : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void keysArriveWhole_data();
    void keysArriveWhole();
    void driversRepeatIsPassedOn();
    void heldKeyRepeatsUntilReleased();
    void aKeyThatComesUpUnderAnotherNameStopsRepeating();
    void releaseFollowsThePress();
    void filterSeesKeysFirst();
    void serverWidgetWithFocusGetsKeys();
    void pointerIsRelativeAndGrabbed();
    void wheelTurns();
    void ownKeyboardAndPointerOfTheScreen();
    void disabledInputReachesNobody();

private:
    std::unique_ptr<Client> m_client; // shows a main window "w"
};

void TstInput::init()
{
    QTRY_VERIFY(server().clientWindows().isEmpty());
    QWSServer::setKeyRepeat(0, 0);
    m_client = std::make_unique<Client>();
    QVERIFY(m_client->shows(u"w"_qs, u"main"_qs));
}

void TstInput::cleanup() { m_client.reset(); }

void TstInput::keysArriveWhole_data()
{
    QTest::addColumn<int>("unicode");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("seen"); // key, text in hexadecimal UTF-8, modifiers
    const auto row = [](const char *name, int unicode, int key, const char *text, int modifiers = 0) {
        const int keySeen = key == 0 ? int(Qt::Key_Q) : key; // it is found for a character alone
        QTest::newRow(name) << unicode << key << modifiers
                            << QStringLiteral("%1 %2 %3 0").arg(keySeen).arg(QLatin1String(text)).arg(modifiers);
    };
    row("hard key", 0, Qt::Key_F20, "");
    row("no unicode, said by drivers as FFFF", 0xFFFF, Qt::Key_F14, "");
    row("enter", 0, Qt::Key_Enter, "0d");
    row("letter by its code", 0, Qt::Key_A, "61");
    row("with shift", 0, Qt::Key_A, "41", Qt::ShiftModifier);
    row("with control, no letter", 0, Qt::Key_A, "01", Qt::ControlModifier);
    row("Chinese", 0x4E2D, Qt::Key_unknown, "e4b8ad");
    row("outside the first plane", 0x1F600, Qt::Key_unknown, "f09f9880");
    row("character alone", u'q', 0, "71");
    row("half a surrogate types nothing", 0xD800, Qt::Key_F6, "");
    row("beyond Unicode", 0x7FFFFFFF, Qt::Key_F7, "");
}

void TstInput::keysArriveWhole()
{
    QFETCH(int, unicode);
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(QString, seen);
    type(unicode, key, modifiers);
    QCOMPARE(nextPress(*m_client), u"w press "_qs + seen);
    QVERIFY(m_client->says(u"w release "_qs + seen.section(u' ', 0, 0)));
}

void TstInput::driversRepeatIsPassedOn()
{
    QWSKeyboardHandler driver;
    driver.processKeyEvent(0, Qt::Key_Up, 0, true, false);
    driver.processKeyEvent(0, Qt::Key_Up, 0, true, true);
    QVERIFY(m_client->says(pressed(Qt::Key_Up)));
    QVERIFY(m_client->says(pressed(Qt::Key_Up, true)));
}

void TstInput::heldKeyRepeatsUntilReleased()
{
    QWSServer::setKeyRepeat(1, 1);
    QWSServer::sendKeyEvent(0, Qt::Key_F6, 0, true, false); // a hard key: never repeats
    QWSServer::sendKeyEvent(0, Qt::Key_Down, 0, true, false);
    const QString repeated = pressed(Qt::Key_Down, true);
    for (int i = 0; i < 3; ++i) {
        QVERIFY(m_client->says(u"w press"_qs));
        QVERIFY(m_client->line() == repeated || !m_client->line().endsWith(u'1'));
    }
    QVERIFY(m_client->says(repeated));
    QWSServer::sendKeyEvent(0, Qt::Key_Down, 0, false, false);
    type(0, Qt::Key_F7);
    QVERIFY(m_client->says(QStringLiteral("w release %1").arg(int(Qt::Key_Down))));
    QCOMPARE(nextPress(*m_client), pressed(Qt::Key_F7));
}

void TstInput::aKeyThatComesUpUnderAnotherNameStopsRepeating()
{
    QWSServer::setKeyRepeat(1, 1);
    QWSServer::sendKeyEvent('!', Qt::Key_Exclam, int(Qt::ShiftModifier), true, false);
    QVERIFY(m_client->says(u"w press"_qs));
    QWSServer::sendKeyEvent('1', Qt::Key_1, 0, false, false);
    QWSServer::sendKeyEvent(0, Qt::Key_F7, 0, true, false);
    QVERIFY(m_client->says(pressed(Qt::Key_F7))); // after repeats that were under way
    QWSServer::sendKeyEvent(0, Qt::Key_F8, 0, true, false);
    QCOMPARE(nextPress(*m_client), pressed(Qt::Key_F8));
}

void TstInput::releaseFollowsThePress()
{
    QWSServer::sendKeyEvent(0, Qt::Key_F9, 0, true, false);
    QVERIFY(m_client->says(u"w press"_qs));
    Client two;
    QVERIFY(two.shows(u"w"_qs, u"main"_qs));
    QWSServer::sendKeyEvent(0, Qt::Key_F9, 0, false, false);
    QVERIFY(m_client->says(u"w release"_qs));
    QWSServer::sendKeyEvent(0, Qt::Key_F10, 0, true, false);
    QCOMPARE(nextPress(two), pressed(Qt::Key_F10));
}

void TstInput::filterSeesKeysFirst()
{
    class Filter : public QWSServer::KeyboardFilter {
    public:
        bool filter(int, int keycode, int, bool isPress, bool) override
        {
            seen.append(isPress ? keycode : -keycode);
            return keycode == Qt::Key_F6;
        }
        QList<int> seen;
    };
    {
        Filter filter;
        QWSServer::setKeyboardFilter(&filter);
        type(0, Qt::Key_F6);
        type(0, Qt::Key_F7);
        QCOMPARE(filter.seen, (QList<int>{Qt::Key_F6, -Qt::Key_F6, Qt::Key_F7, -Qt::Key_F7}));
    }
    type(0, Qt::Key_F6); // a filter that died is out
    QCOMPARE(nextPress(*m_client), pressed(Qt::Key_F7));
    QVERIFY(m_client->says(pressed(Qt::Key_F6)));
}

void TstInput::serverWidgetWithFocusGetsKeys()
{
    QLineEdit search(server().screenWidget());
    search.show();
    search.setFocus();
    QTRY_VERIFY(search.hasFocus());
    type(u'x', 0);
    QCOMPARE(search.text(), u"x"_qs);
    server().sendMouseEvent({100, 200}, Qt::LeftButton);
    server().sendMouseEvent({100, 200}, Qt::NoButton);
    m_client->window(u"w"_qs)->raise();
    search.clearFocus();
    type(u'y', 0);
    QCOMPARE(nextPress(*m_client).section(u' ', 3, 3), u"79"_qs);
    QCOMPARE(search.text(), u"x"_qs);
}

void TstInput::pointerIsRelativeAndGrabbed()
{
    QVERIFY(m_client->shows(u"f"_qs, u"frameless"_qs, u"blue"_qs, {50, 50}));
    QVERIFY(m_client->does(u"move f 100 100"_qs));
    QTRY_COMPARE(m_client->window(u"f"_qs)->geometry().topLeft(), QPoint(100, 100));
    server().sendMouseEvent({110, 120}, Qt::LeftButton);
    QVERIFY(m_client->says(u"f down 10 20"_qs));
    server().sendMouseEvent({10, 60}, Qt::LeftButton); // outside, but held
    QVERIFY(m_client->says(u"f move -90 -40"_qs));
    server().sendMouseEvent({10, 60}, Qt::NoButton);
    QVERIFY(m_client->says(u"f up -90 -40"_qs));
    server().sendMouseEvent({10, 60}, Qt::LeftButton);
    server().sendMouseEvent({10, 60}, Qt::NoButton);
    QVERIFY(m_client->says(u"w down 10 40"_qs));
}

void TstInput::wheelTurns()
{
    server().sendMouseEvent({110, 120}, Qt::NoButton, -120);
    QVERIFY(m_client->says(u"w wheel -120"_qs));
}

void TstInput::ownKeyboardAndPointerOfTheScreen()
{
    QWindow *screen = server().screenWidget()->windowHandle();
    QTest::keyClick(screen, Qt::Key_F13);
    QVERIFY(m_client->says(pressed(Qt::Key_F13)));
    QTest::mouseClick(screen, Qt::LeftButton, Qt::NoModifier, {30, 50});
    QVERIFY(m_client->says(u"w down 30 30"_qs));
}

void TstInput::disabledInputReachesNobody()
{
    server().setInputEnabled(false);
    type(0, Qt::Key_F6);
    server().sendMouseEvent({110, 120}, Qt::LeftButton);
    QTest::keyClick(server().screenWidget()->windowHandle(), Qt::Key_F7);
    server().sendMouseEvent({110, 120}, Qt::NoButton);
    server().setInputEnabled(true);
    type(0, Qt::Key_F8);
    QCOMPARE(nextPress(*m_client), pressed(Qt::Key_F8));
}

int main(int argc, char **argv) { return runOnServer<TstInput>(argc, argv); }

#include "tst_input.moc"
