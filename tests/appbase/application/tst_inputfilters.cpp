// What the application object does with keys before widgets get them, and the order of its virtual functions.
#include "appbase/application/hardkeys.h"
#include "appbase/application/windowsbyuse.h"
#include "appbase/messaging/soundqueue.h"
#include "appbase/messaging/wire.h"
#include "platform/bus/qcopchannel.h"
#include "platform/system/keyfile.h"
#include "settings/status/systemstatus.h"
#include "tests/support/applicationtest.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QSignalSpy>
#include <cstring>

using namespace Qt::StringLiterals;

namespace {

// Itanium C++ ABI: a pointer to a virtual member holds the offset of its slot (and a mark in the lowest bit).
template <typename Member> std::ptrdiff_t slotOf(Member member)
{
    std::ptrdiff_t offset = 0;
    std::memcpy(&offset, &member, sizeof offset);
    return offset / std::ptrdiff_t(sizeof(void *));
}

// What the phone's programs are told, as "channel message key".
class Programs : public QObject {
public:
    Programs()
    {
        for (const char *name : {"/TYX/CLI", "TYX/CLI_INCOMINGCALL", "/AM/Launcher", "TYX/Phone/", "/TYX/Volume"}) {
            auto *channel = new QCopChannel(name, this);
            connect(
                channel, &QCopChannel::received, this, [this, name](const QCString &message, const QByteArray &data) {
                    qint32 key = 0;
                    QVERIFY(wire::unpack(data, key));
                    told.append(
                        u"%1 %2 F%3"_s.arg(QLatin1String(name), QLatin1String(message)).arg(key - Qt::Key_F1 + 1));
                });
        }
    }
    QStringList told;
};

class Editor : public QLineEdit {
public:
    int keys = 0;

protected:
    void keyPressEvent(QKeyEvent *event) override { ++keys, QLineEdit::keyPressEvent(event); }
    void keyReleaseEvent(QKeyEvent *event) override { ++keys, QLineEdit::keyReleaseEvent(event); }
};

}

class TstInputFilters : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void virtualFunctionsKeepTheirPlaces();
    void eachHardKeyHasItsMessage();
    void hardKeysReachNoWidget();
    void insertedTextIsCommitted();
    void thePenSoundsOnceEachTimeItGoesDown();
    void windowsStandInTheOrderOfTheirUse();
    void tryQuitTellsNobody();
};

void TstInputFilters::virtualFunctionsKeepTheirPlaces()
{
    using Z = ZApplication;
    const QList<std::ptrdiff_t> own{slotOf(&Z::setMainWidget), slotOf(&Z::qwsEventFilter), slotOf(&Z::insertStr),
        slotOf(&Z::tryQuit), slotOf(&Z::hardKeyEventFilter), slotOf(&Z::slotShutdown), slotOf(&Z::slotQuickQuit),
        slotOf(&Z::slotUsbStorageInOut), slotOf(&Z::slotClickAppIcon), slotOf(&Z::slotRaise)};
    for (qsizetype i = 1; i < own.size(); ++i)
        QCOMPARE(own[i], own[0] + i);
    QVERIFY(slotOf(&Z::eventFilter) < slotOf(&Z::timerEvent));
    QVERIFY(slotOf(&Z::timerEvent) < own[0]);
}

void TstInputFilters::eachHardKeyHasItsMessage()
{
    using enum KeyEdge;
    using enum CallState;
    const auto sent = [](int key, KeyEdge edge, CallState call) {
        const HardKeyMessage *found = hardKeyMessage(key, edge, call);
        return found ? QByteArray(found->channel) + ' ' + found->message : QByteArray();
    };
    QCOMPARE(sent(Qt::Key_F6, Press, ComesIn), "/TYX/CLI voice_call_answer");
    QCOMPARE(sent(Qt::Key_F7, Press, ComesIn), "TYX/CLI_INCOMINGCALL voice_call_reject");
    QCOMPARE(sent(Qt::Key_F7, Press, Quiet), "/AM/Launcher launchApp");
    QCOMPARE(sent(Qt::Key_F6, Release, Quiet), "TYX/Phone/ SendKeyRelease");
    for (const CallState call : {Quiet, ComesIn}) {
        QCOMPARE(sent(Qt::Key_F9, Press, call), "/TYX/Volume LKeyPress");
        QCOMPARE(sent(Qt::Key_F10, Press, call), "/TYX/Volume RKeyPress");
        for (const int key : {Qt::Key_F7, Qt::Key_F9, Qt::Key_F10})
            QCOMPARE(sent(key, Release, call), "");
    }
    QCOMPARE(sent(Qt::Key_F6, Press, Quiet), "");
    QCOMPARE(sent(Qt::Key_F6, Release, ComesIn), "");
}

void TstInputFilters::hardKeysReachNoWidget()
{
    Programs programs;
    Editor editor;
    QShortcut shortcut(Qt::Key_F9, &editor);
    QSignalSpy triggered(&shortcut, &QShortcut::activated);
    editor.show();
    QVERIFY(QTest::qWaitForWindowActive(&editor));
    const auto press = [&](int key, bool repeat) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, QString(), repeat);
        QApplication::sendEvent(&editor, &event);
    };
    QTest::keyPress(editor.windowHandle(), Qt::Key_F9);
    press(Qt::Key_F9, true);
    press(Qt::Key_F9, true);
    QTest::keyRelease(editor.windowHandle(), Qt::Key_F9);
    QTest::keyClick(editor.windowHandle(), Qt::Key_F6);
    const QStringList told{u"/TYX/Volume LKeyPress F9"_s, u"TYX/Phone/ SendKeyRelease F6"_s};
    QTRY_COMPARE(programs.told, told);
    QCOMPARE(editor.keys, 0);
    QCOMPARE(triggered.count(), 0);

    ZApplication::instance()->enableHardKeyEventFilter(false);
    QTest::keyClick(editor.windowHandle(), Qt::Key_F6);
    QTest::keyClick(editor.windowHandle(), Qt::Key_F9);
    ZApplication::instance()->enableHardKeyEventFilter(true);
    QCOMPARE(triggered.count(), 1);
    QTest::keyClick(editor.windowHandle(), Qt::Key_F10); // told last, so nothing came before it
    QTRY_COMPARE(programs.told, told + QStringList{u"/TYX/Volume RKeyPress F10"_s});
    QCOMPARE(editor.keys, 3); // Send, and the release of the shortcut's key
}

void TstInputFilters::insertedTextIsCommitted()
{
    QLineEdit editor;
    editor.show();
    QVERIFY(QTest::qWaitForWindowActive(&editor));
    QWSKeyEvent key(0);
    key.text = u"\u00e9"_s;
    ZApplication::instance()->insertStr(&key); // a release types nothing
    key.isPress = true;
    ZApplication::instance()->insertStr(&key);
    QCOMPARE(editor.text(), u"\u00e9"_s);
    QWSFocusEvent focus(0, true);
    ZApplication::instance()->insertStr(&focus);
    ZApplication::instance()->insertStr(nullptr);
    editor.clearFocus();
    ZApplication::instance()->insertStr(&key);
    QCOMPARE(editor.text(), u"\u00e9"_s);
}

void TstInputFilters::thePenSoundsOnceEachTimeItGoesDown()
{
    QWidget window;
    QLabel label(&window); // does not want the pen, so its window is asked too
    label.resize(100, 100);
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton); // nobody plays sounds yet
    QVERIFY(platform::makeKeyFile(SoundQueue::kKeyFile));
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton); // and nobody set any
    QVERIFY(platform::makeKeyFile("/tmp/key_testcommand"));
    UTIL_CreateSystemStatusTable();
    UTIL_InitSystemTable();
    QSignalSpy told(ZApplication::instance(), &ZApplication::systemMessage);
    QVERIFY(QCopChannel::send("TYX/System", "updateTouchPanelSoundInfo()"));
    QVERIFY(QCopChannel::send("TYX/System", "told"));
    QTRY_COMPARE(told.size(), 1);
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton);
    QTest::mouseClick(window.windowHandle(), Qt::RightButton);
    SoundQueue queue;
    QCOMPARE(queue.waiting(), 1U);
    QTest::mouseDClick(window.windowHandle(), Qt::LeftButton);
    QCOMPARE(queue.waiting(), 3U);
    const auto sounds = platform::MessageQueue::open({*platform::ipcKey(SoundQueue::kKeyFile, 't'), 0});
    const auto sound = sounds->receive(SoundMessage::kSize);
    const QByteArray expected =
        QByteArray::fromHex("0200000007000000") + "/usr/SYSqtapp/setup/soundfile/Touch_Scr_Tone.wav";
    QCOMPARE(QByteArray(reinterpret_cast<const char *>(sound->bytes.data()), expected.size()), expected);
}

void TstInputFilters::windowsStandInTheOrderOfTheirUse()
{
    WindowsByUse windows;
    for (const int id : {1, 2, 3, 1})
        windows.note(id, QWSServer::Active);
    for (const auto event : {QWSServer::Create, QWSServer::Raise, QWSServer::Hide})
        windows.note(2, event);
    windows.note(3, QWSServer::Destroy);
    QCOMPARE(windows.ids(), (QList<int>{1, 2}));
}

void TstInputFilters::tryQuitTellsNobody()
{
    QStringList heard;
    connect(ZApplication::instance(), &ZApplication::systemMessage, this,
        [&heard](const QCString &message) { heard.append(QLatin1String(message)); });
    QMetaObject::invokeMethod(
        ZApplication::instance(), [] { ZApplication::instance()->tryQuit(); }, Qt::QueuedConnection);
    QCOMPARE(ZApplication::exec(), 0);
    QVERIFY(QCopChannel::send("TYX/System", "end of test"));
    QTRY_COMPARE(heard, QStringList{u"end of test"_s});
}

int main(int argc, char **argv) { return runAsApplication<TstInputFilters>(argc, argv); }

#include "tst_inputfilters.moc"
