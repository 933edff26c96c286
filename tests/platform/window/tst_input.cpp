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

}

class TstInput : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
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
};

void TstInput::init()
{
    QTRY_VERIFY(server().clientWindows().isEmpty());
    QWSServer::setKeyRepeat(0, 0);
}

void TstInput::keysArriveWhole_data()
{
    QTest::addColumn<int>("unicode");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("seen"); // key, text in hexadecimal UTF-8, modifiers
    const auto seen = [](int key, const char *text, int modifiers = 0) {
        return QStringLiteral("%1 %2 %3 0").arg(key).arg(QLatin1String(text)).arg(modifiers);
    };
    QTest::newRow("hard key") << 0 << int(Qt::Key_F20) << 0 << seen(Qt::Key_F20, "");
    QTest::newRow("no unicode, said by drivers as FFFF") << 0xFFFF << int(Qt::Key_F14) << 0 << seen(Qt::Key_F14, "");
    QTest::newRow("enter") << 0 << int(Qt::Key_Enter) << 0 << seen(Qt::Key_Enter, "0d");
    QTest::newRow("letter by its code") << 0 << int(Qt::Key_A) << 0 << seen(Qt::Key_A, "61");
    QTest::newRow("with shift") << 0 << int(Qt::Key_A) << int(Qt::ShiftModifier)
                                << seen(Qt::Key_A, "41", Qt::ShiftModifier);
    QTest::newRow("with control, no letter")
        << 0 << int(Qt::Key_A) << int(Qt::ControlModifier) << seen(Qt::Key_A, "01", Qt::ControlModifier);
    QTest::newRow("Chinese") << 0x4E2D << int(Qt::Key_unknown) << 0 << seen(Qt::Key_unknown, "e4b8ad");
    QTest::newRow("outside the first plane")
        << 0x1F600 << int(Qt::Key_unknown) << 0 << seen(Qt::Key_unknown, "f09f9880");
    QTest::newRow("character alone") << int(u'q') << 0 << 0 << seen(Qt::Key_Q, "71");
    QTest::newRow("half a surrogate types nothing") << 0xD800 << int(Qt::Key_F6) << 0 << seen(Qt::Key_F6, "");
    QTest::newRow("beyond Unicode") << 0x7FFFFFFF << int(Qt::Key_F7) << 0 << seen(Qt::Key_F7, "");
}

void TstInput::keysArriveWhole()
{
    QFETCH(int, unicode);
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(QString, seen);
    Client client;
    QVERIFY(client.shows(u"w"_qs, u"main"_qs));
    type(unicode, key, modifiers);
    QVERIFY(client.says(u"w press"_qs));
    QCOMPARE(client.line(), u"w press "_qs + seen);
    QVERIFY(client.says(u"w release "_qs + seen.section(u' ', 0, 0)));
}

void TstInput::driversRepeatIsPassedOn()
{
    Client client;
    QVERIFY(client.shows(u"w"_qs, u"main"_qs));
    QWSKeyboardHandler driver;
    driver.processKeyEvent(0, Qt::Key_Up, 0, true, false);
    driver.processKeyEvent(0, Qt::Key_Up, 0, true, true);
    QVERIFY(client.says(QStringLiteral("w press %1  0 0").arg(int(Qt::Key_Up))));
    QVERIFY(client.says(QStringLiteral("w press %1  0 1").arg(int(Qt::Key_Up))));
}

void TstInput::heldKeyRepeatsUntilReleased()
{
    Client client;
    QVERIFY(client.shows(u"w"_qs, u"main"_qs));
    QWSServer::setKeyRepeat(1, 1);
    QWSServer::sendKeyEvent(0, Qt::Key_F6, 0, true, false); // a hard key: never repeats
    QWSServer::sendKeyEvent(0, Qt::Key_Down, 0, true, false);
    const QString repeated = QStringLiteral("w press %1  0 1").arg(int(Qt::Key_Down));
    for (int i = 0; i < 3; ++i) {
        QVERIFY(client.says(u"w press"_qs));
        QVERIFY(client.line() == repeated || !client.line().endsWith(u'1'));
    }
    QVERIFY(client.says(repeated));
    QWSServer::sendKeyEvent(0, Qt::Key_Down, 0, false, false);
    type(0, Qt::Key_F7);
    QVERIFY(client.says(QStringLiteral("w release %1").arg(int(Qt::Key_Down))));
    QVERIFY(client.says(u"w press"_qs));
    QCOMPARE(client.line(), QStringLiteral("w press %1  0 0").arg(int(Qt::Key_F7)));
}

void TstInput::aKeyThatComesUpUnderAnotherNameStopsRepeating()
{
    Client client;
    QVERIFY(client.shows(u"w"_qs, u"main"_qs));
    QWSServer::setKeyRepeat(1, 1);
    QWSServer::sendKeyEvent('!', Qt::Key_Exclam, int(Qt::ShiftModifier), true, false);
    QVERIFY(client.says(u"w press"_qs));
    QWSServer::sendKeyEvent('1', Qt::Key_1, 0, false, false);
    QWSServer::sendKeyEvent(0, Qt::Key_F7, 0, true, false);
    const QString last = QStringLiteral("w press %1  0 0").arg(int(Qt::Key_F7));
    do
        QVERIFY(client.says(u"w press"_qs)); // repeats that were under way
    while (client.line() != last);
    QWSServer::sendKeyEvent(0, Qt::Key_F8, 0, true, false);
    QVERIFY(client.says(u"w press"_qs));
    QCOMPARE(client.line(), QStringLiteral("w press %1  0 0").arg(int(Qt::Key_F8)));
}

void TstInput::releaseFollowsThePress()
{
    Client one;
    QVERIFY(one.shows(u"w"_qs, u"main"_qs));
    QWSServer::sendKeyEvent(0, Qt::Key_F9, 0, true, false);
    QVERIFY(one.says(u"w press"_qs));
    Client two;
    QVERIFY(two.shows(u"w"_qs, u"main"_qs));
    QWSServer::sendKeyEvent(0, Qt::Key_F9, 0, false, false);
    QVERIFY(one.says(u"w release"_qs));
    QWSServer::sendKeyEvent(0, Qt::Key_F10, 0, true, false);
    QVERIFY(two.says(u"w press"_qs));
    QCOMPARE(two.line().section(u' ', 2, 2).toInt(), int(Qt::Key_F10));
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
    Client client;
    QVERIFY(client.shows(u"w"_qs, u"main"_qs));
    {
        Filter filter;
        QWSServer::setKeyboardFilter(&filter);
        type(0, Qt::Key_F6);
        type(0, Qt::Key_F7);
        QCOMPARE(filter.seen, (QList<int>{Qt::Key_F6, -Qt::Key_F6, Qt::Key_F7, -Qt::Key_F7}));
    }
    type(0, Qt::Key_F6); // a filter that died is out
    QVERIFY(client.says(u"w press"_qs));
    QCOMPARE(client.line().section(u' ', 2, 2).toInt(), int(Qt::Key_F7));
    QVERIFY(client.says(QStringLiteral("w press %1").arg(int(Qt::Key_F6))));
}

void TstInput::serverWidgetWithFocusGetsKeys()
{
    Client client;
    QVERIFY(client.shows(u"w"_qs, u"main"_qs));
    QLineEdit search(server().screenWidget());
    search.show();
    search.setFocus();
    QTRY_VERIFY(search.hasFocus());
    type(u'x', 0);
    QCOMPARE(search.text(), u"x"_qs);
    server().sendMouseEvent({100, 200}, Qt::LeftButton);
    server().sendMouseEvent({100, 200}, Qt::NoButton);
    client.window(u"w"_qs)->raise();
    search.clearFocus();
    type(u'y', 0);
    QVERIFY(client.says(u"w press"_qs));
    QCOMPARE(client.line().section(u' ', 3, 3), u"79"_qs);
    QCOMPARE(search.text(), u"x"_qs);
}

void TstInput::pointerIsRelativeAndGrabbed()
{
    Client client;
    QVERIFY(client.shows(u"w"_qs, u"main"_qs));
    QVERIFY(client.shows(u"f"_qs, u"frameless"_qs, u"blue"_qs, {50, 50}));
    QVERIFY(client.does(u"move f 100 100"_qs));
    QTRY_COMPARE(client.window(u"f"_qs)->geometry().topLeft(), QPoint(100, 100));
    server().sendMouseEvent({110, 120}, Qt::LeftButton);
    QVERIFY(client.says(u"f down 10 20"_qs));
    server().sendMouseEvent({10, 60}, Qt::LeftButton); // outside, but held
    QVERIFY(client.says(u"f move -90 -40"_qs));
    server().sendMouseEvent({10, 60}, Qt::NoButton);
    QVERIFY(client.says(u"f up -90 -40"_qs));
    server().sendMouseEvent({10, 60}, Qt::LeftButton);
    server().sendMouseEvent({10, 60}, Qt::NoButton);
    QVERIFY(client.says(u"w down 10 40"_qs));
}

void TstInput::wheelTurns()
{
    Client client;
    QVERIFY(client.shows(u"w"_qs, u"main"_qs));
    server().sendMouseEvent({110, 120}, Qt::NoButton, -120);
    QVERIFY(client.says(u"w wheel -120"_qs));
}

void TstInput::ownKeyboardAndPointerOfTheScreen()
{
    Client client;
    QVERIFY(client.shows(u"w"_qs, u"main"_qs));
    QWindow *screen = server().screenWidget()->windowHandle();
    QTest::keyClick(screen, Qt::Key_F13);
    QVERIFY(client.says(QStringLiteral("w press %1").arg(int(Qt::Key_F13))));
    QTest::mouseClick(screen, Qt::LeftButton, Qt::NoModifier, {30, 50});
    QVERIFY(client.says(u"w down 30 30"_qs));
}

void TstInput::disabledInputReachesNobody()
{
    Client client;
    QVERIFY(client.shows(u"w"_qs, u"main"_qs));
    server().setInputEnabled(false);
    type(0, Qt::Key_F6);
    server().sendMouseEvent({110, 120}, Qt::LeftButton);
    QTest::keyClick(server().screenWidget()->windowHandle(), Qt::Key_F7);
    server().sendMouseEvent({110, 120}, Qt::NoButton);
    server().setInputEnabled(true);
    type(0, Qt::Key_F8);
    QVERIFY(client.says(u"w press"_qs));
    QCOMPARE(client.line().section(u' ', 2, 2).toInt(), int(Qt::Key_F8));
}

int main(int argc, char **argv) { return runOnServer<TstInput>(argc, argv); }

#include "tst_input.moc"
