// What the server's own code asks of the input method server: the find bar and completions.
#include "appbase/application/zapplication.h"
#include "appbase/messaging/wire.h"
#include "platform/bus/qcopchannel.h"
#include "tests/platform/window/windowtest.h"
#include "tests/support/testfiles.h"
#include "textinput/server/findbar.h"
#include "textinput/server/zimserver.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace {

const InputWidgetHost::Owner kOwner{513, 0, "TYX/Application/me"};
constexpr int kPlainHeight = 156; // of the plain keypad with its strip

QStringList *heard = nullptr; // texts of the find bar, and what the bad keyboard types: the commands that it gets

void note(const QCString &message, const QByteArray &arguments)
{
    QString text;
    wire::Reader reader(arguments);
    bool complete = false;
    if (message == "sendTextToContact(QString)" && wire::unpack(arguments, text))
        heard->append(u"find "_s + text);
    else if (message == "sendKeyEventEx(IM_KeyEvent_Ex)")
        heard->append(ZIMServer::translateKeyEventEx(reader.stream(), complete).typed());
}

void type(ZIMServer &server, QStringView text)
{
    for (const QChar c : text)
        server.sendKey(c.unicode(), c.toUpper().unicode(), 0);
}

}

class TstImOperations : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_heard.clear();
        heard = &m_heard;
    }
    void theFindBarTakesWhatIsTyped();
    void completionsAreAskedForAsTheUserWishes();

private:
    QStringList m_heard;
};

void TstImOperations::theFindBarTakesWhatIsTyped()
{
    ZIMServer server;
    server.enableFindBar(true);
    QVERIFY(server.inputWidgetRect().isEmpty()); // it comes with a keyboard only
    server.showInputWidget(kOwner, 1, 0);
    QCOMPARE(server.inputWidgetRect().height(), kPlainHeight + FindBar::kHeight);
    QCOMPARE(server.inputWidgetRect().bottom(), kScreen.bottom());
    type(server, u"ab");
    server.sendKey(0, IM_KeyEventEx::keyCodeOf(Qt::Key_Backspace), 0);
    for (const bool isPress : {true, false})
        QWSServer::sendKeyEvent(0xFFFF, Qt::Key_5, 0, isPress, false); // a key of the phone
    QTRY_COMPARE(m_heard, (QStringList{u"find a"_s, u"find ab"_s, u"find a"_s, u"find a5"_s}));
    m_heard.clear();
    server.enableFindBar(false);
    QCOMPARE(server.inputWidgetRect().height(), kPlainHeight);
    type(server, u"c");
    server.enableFindBar(true);
    type(server, u"d");
    QTRY_COMPARE(m_heard, (QStringList{u"c"_s, u"find d"_s})); // to the editor; then a bar that forgot
}

void TstImOperations::completionsAreAskedForAsTheUserWishes()
{
    QDir().mkpath(u"/tmp/phone/lib/inputmethods"_s);
    QVERIFY(QFile::copy(
        QStringLiteral(TYX_BINARY_DIR "/tests/libbadkeyboard.so"), u"/tmp/phone/lib/inputmethods/liba.so"_s));
    fill(u"/tmp/bad"_s, "nothing");
    ZIMServer server;
    QTRY_VERIFY(!server.createPrimaryInputMethodID({}).isNull());
    server.showInputWidget(kOwner, 1, 0);
    QTRY_VERIFY(server.currentIMWinId() != 0);
    const auto asks = [this](const QString &what) { return m_heard.contains(what); };
    server.requestWordCompletionEvent(u"b"_s, DICTLANG_INPUT);
    QTRY_VERIFY(asks(u"19 000000020062ffffffff00"_s)); // the letter, the language, the sort
    server.requestPhraseCompletion(u"c"_s, DICTLANGTYPE(5));
    QTRY_VERIFY(asks(u"19 0000000200630000000501"_s));
    INPUT_SETTING_T setting;
    setting.nextWordPrediction = false;
    QCopChannel::send("TYX/IMServer", "setInputMethodSettings(INPUT_SETTING_T)", settings::packInputSetting(setting));
    QTRY_VERIFY(asks(u"24 000000010000000000000001"_s)); // words, no phrases, the user's own
    server.requestPhraseCompletion(u"d"_s, DICTLANG_INPUT);
    server.requestWordCompletionEvent(u"e"_s, DICTLANG_INPUT);
    QTRY_VERIFY(asks(u"19 000000020065ffffffff00"_s));
    QVERIFY(!asks(u"19 000000020064ffffffff01"_s));
}

int main(int argc, char **argv)
{
    char platform[] = "--platform=offscreen";
    char *arguments[] = {argv[0], platform, nullptr};
    int count = 2;
    qputenv("QTDIR", "/tmp/phone");
    std::ignore = platform::makeKeyFile("/tmp/key_testcommand"); // without it there is no server
    const ZApplication application(count, arguments, ZApplication::GuiServer);
    ZApplication::setQuitOnLastWindowClosed(false);
    QCopChannel channel("TYX/Application/me");
    QObject::connect(&channel, &QCopChannel::received, &application, note);
    TstImOperations test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_imoperations.moc"
