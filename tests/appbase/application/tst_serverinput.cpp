// The application object in the GUI server: suspension, captured input, the pen on windows of clients.
#include "appbase/messaging/wire.h"
#include "tests/platform/window/windowtest.h"

#include <QCopChannel>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <Suspension>
#include <UTIL_KeyTouchPanelEvent>
#include <ZApplication>
#include <sys/ipc.h>
#include <sys/msg.h>

using namespace Qt::StringLiterals;

namespace {

constexpr QPoint kInside(120, 200);

bool isBlack()
{
    const QImage screen = server().grabScreen().convertToFormat(QImage::Format_RGB32);
    QImage black(screen.size(), screen.format());
    black.fill(Qt::black);
    return screen == black;
}

void tap(QPoint position)
{
    UTIL_KeyTouchPanelEvent::instance()->pen(position, Qt::LeftButton);
    UTIL_KeyTouchPanelEvent::instance()->pen(position, Qt::NoButton);
}

int soundsWaiting()
{
    msqid_ds status{};
    const int queue = ::msgget(::ftok("/tmp/touch_sound_msg", 't'), 0);
    return ::msgctl(queue, IPC_STAT, &status) == 0 ? int(status.msg_qnum) : -1;
}

}

class TstServerInput : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aSuspendedPhoneIsBlackAndDeaf_data();
    void aSuspendedPhoneIsBlackAndDeaf();
    void testsHearKeysAndPen();
    void theServerSoundsForItsOwnWidgetsOnly();
};

void TstServerInput::aSuspendedPhoneIsBlackAndDeaf_data()
{
    QTest::addColumn<QString>("prepare"); // a command to the client
    QTest::addColumn<bool>("serverMenu");
    QTest::addColumn<bool>("flip"); // the flip wakes the phone, not the message
    QTest::newRow("in the work area") << QString() << false << false;
    QTest::newRow("full screen") << u"full win"_s << false << true;
    QTest::newRow("menu of the client") << u"menu win"_s << false << false;
    QTest::newRow("menu of the server") << QString() << true << true;
}

void TstServerInput::aSuspendedPhoneIsBlackAndDeaf()
{
    QFETCH(QString, prepare);
    QFETCH(bool, serverMenu);
    QFETCH(bool, flip);
    QLabel bar(server().screenWidget());
    bar.setStyleSheet(u"background: yellow"_s);
    bar.setFixedSize(240, kBarHeight);
    bar.show();
    Client client;
    QVERIFY(client.shows(u"win"_s, u"main"_s));
    if (!prepare.isEmpty())
        QVERIFY(client.does(prepare));
    QMenu menu;
    menu.addAction(u"first"_s);
    if (serverMenu)
        menu.popup(server().screenWidget()->mapToGlobal(QPoint(40, 100)));
    QTRY_VERIFY(pixel({230, 310}) == QColor(Qt::red));

    QVERIFY(QCopChannel::send("TYX/System", "SetGuiToSuspension()"));
    QTRY_VERIFY(isGuiSuspended());
    SetGuiToSuspension(); // a second time changes nothing
    QTRY_VERIFY(isBlack());
    UTIL_KeyTouchPanelEvent::instance()->keyClick(0, Qt::Key_A, 0);
    tap(kInside);
    menu.close();

    if (flip)
        UTIL_KeyTouchPanelEvent::instance()->keyClick(0, Qt::Key_F3, 0);
    else
        QVERIFY(QCopChannel::send("TYX/System", "SetGuiToResume()"));
    QTRY_VERIFY(!isGuiSuspended());
    QTRY_VERIFY(pixel({230, 310}) == QColor(Qt::red));
    if (prepare.startsWith(u"menu"))
        return; // which has the keys
    UTIL_KeyTouchPanelEvent::instance()->keyClick(0, Qt::Key_B, 0);
    QVERIFY(client.says(u"win press"_s));
    QVERIFY2(client.line().startsWith(u"win press %1 "_s.arg(Qt::Key_B)), qPrintable(client.line()));
}

void TstServerInput::testsHearKeysAndPen()
{
    QStringList heard;
    QCopChannel channel("TYX/TestCapture");
    connect(&channel, &QCopChannel::received, this, [&heard](const QCString &message, const QByteArray &data) {
        QString line = QLatin1String(message.left(3));
        for (wire::Reader reader(data); !reader.atEnd();) {
            qint32 argument = 0;
            reader.i32(argument);
            line += u' ' + QString::number(argument);
        }
        heard.append(line);
    });
    SetGuiToSuspension();
    UTIL_KeyTouchPanelEvent::instance()->keyClick(0, Qt::Key_A, 0);
    tap(kInside);
    SetGuiToResume();
    UTIL_KeyTouchPanelEvent::instance()->key('a', Qt::Key_A, 0, true);
    tap({5, 6});
    const QStringList expected{u"key 97 65 0 1 0"_s, u"pen 5 6 0"_s, u"pen 5 6 1"_s, u"pen 5 6 0"_s};
    QTRY_COMPARE(heard.size(), expected.size());
    QCOMPARE(heard, expected);
}

void TstServerInput::theServerSoundsForItsOwnWidgetsOnly()
{
    QFile keyFile(u"/tmp/touch_sound_msg"_s);
    QVERIFY(keyFile.open(QIODevice::WriteOnly));
    QLabel bar(server().screenWidget());
    bar.setFixedSize(240, kBarHeight);
    bar.show();
    Client client; // makes no sounds by itself
    QVERIFY(client.shows(u"win"_s, u"main"_s));
    tap(kInside);
    QVERIFY(client.says(u"win up"_s));
    QCOMPARE(soundsWaiting(), -1);
    tap({120, 5});
    QTRY_COMPARE(soundsWaiting(), 1);
}

int main(int argc, char **argv)
{
    qputenv("TYX_FLEX_BIT", "1");
    return runOnServer<TstServerInput, ZApplication>(argc, argv);
}

#include "tst_serverinput.moc"
