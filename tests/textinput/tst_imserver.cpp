// The input method server of a whole phone: its messages, its list, and what becomes of text when input methods fail.
#include "appbase/application/inputmessages.h"
#include "appbase/messaging/keyeventex.h"
#include "appbase/messaging/wire.h"
#include "platform/bus/qcopchannel.h"
#include "tests/support/peerprocess.h"
#include "tests/support/testfiles.h"
#include "textinput/plugin/imstatecmd.h"
#include "textinput/server/methodlist.h"
#include "textinput/server/restartpolicy.h"
#include "textinput/state/zinputmethodstate.h"

#include <QDir>
#include <QTest>
#include <algorithm>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

const QUuid kKeyboard(u"{5f2c9d61-0f5e-4c0a-8a8e-3d3b7b1a6c01}"_s);
const QUuid kLetters(u"{8b1f3c52-6a0d-4b7e-9d34-1f6e2c0a7b11}"_s);
const QUuid kBad(u"{00000000-0000-0000-0000-0000000000bd}"_s);
const QUuid kAbroad(u"{00000000-0000-0000-0000-0000000000ab}"_s);
constexpr int kEditor = 513;
constexpr char kInputMethods[] = "TYX/IMServer";
const QPoint kPlainA(12, 235); // of the plain keypad; on the bad keyboard too
const QString kLibraries = u"/tmp/phone/lib/inputmethods/"_s;

// A GUI server, and an application with an editor.
class Phone {
public:
    explicit Phone(const QByteArray &bad = "nothing")
    {
        QDir().mkpath(kLibraries);
        fill(u"/tmp/bad"_s, bad);
        qputenv("QTDIR", "/tmp/phone");
        m_server = std::make_unique<PeerProcess>(u"../bin/tyx-guiserver"_s, QStringList{u"--platform=offscreen"_s});
        m_isUp = m_server->line().startsWith("tyx-guiserver: ready on ");
        m_channel = std::make_unique<QCopChannel>("TYX/Application/me");
        QObject::connect(m_channel.get(), &QCopChannel::received, m_channel.get(),
            [this](const QCString &message, const QByteArray &arguments) { note(message, arguments); });
    }

    [[nodiscard]] bool knows(const QUuid &method) const { return m_isUp && state.findInputMethod(method) >= 0; }
    [[nodiscard]] QUuid checked() const
    {
        const int index = state.getIndexOfCheckedInputMethod();
        return index < 0 ? QUuid() : state.imQuuid(index);
    }
    static void tell(const QCString &message, const QByteArray &arguments = {})
    {
        QCopChannel::send(kInputMethods, message, arguments);
    }
    static void ask(bool show)
    {
        QCopChannel::send(
            "TYX/QtServer", messages::kRegisterEditor, wire::pack(QCString("TYX/Application/me"), 0, kEditor));
        QCopChannel::send("TYX/QtServer", messages::kShowInputWidget, wire::pack(kEditor, 0, show ? 1 : 0, QUuid(), 0));
    }
    static void press(int key)
    {
        QCopChannel::send("TYX/Screen", "key(QCString,int,int,int)", wire::pack(QCString("TYX/Tool/me"), 0, key, 0));
    }
    static void tap(QPoint at)
    {
        for (const int buttons : {1, 0})
            QCopChannel::send("TYX/Screen", "pointer(QCString,int,int,int)",
                wire::pack(QCString("TYX/Tool/nobody"), at.x(), at.y(), buttons));
    }
    bool got(const QString &what) { return seen.contains(what); }
    // To be tried until it is so: at first there may be no picture to tap on.
    bool isTyped(QPoint at, const QString &text)
    {
        tap(at);
        return got(u"text "_s + text);
    }
    bool isShown()
    {
        ask(true);
        return std::ranges::any_of(seen, [](const QString &line) { return line.startsWith(u"shown"); });
    }

    ZInputMethodState state;
    QStringList seen; // "shown HEIGHT", "hidden", "text TEXT", the names of others

private:
    void note(const QCString &message, const QByteArray &arguments)
    {
        qint32 number = 0;
        qint32 height = 0;
        QUuid method;
        QMap<QUuid, QString> names;
        if (message == messages::kInputWidgetShown && wire::unpack(arguments, number, number, number, method, height))
            seen.append(u"shown %1"_s.arg(height));
        else if (message == messages::kHideInputWidget)
            seen.append(u"hidden"_s);
        else if (message == "IMNameList(IMMap)" && wire::unpack(arguments, names))
            seen.append(u"names "_s + names.values().join(u','));
        else if (message == messages::kKeyEvent)
            noteKey(arguments);
        else
            seen.append(QString::fromLatin1(message));
    }
    void noteKey(const QByteArray &arguments)
    {
        wire::Reader reader(arguments);
        bool complete = false;
        const IM_KeyEventEx event = decodeKeyEventEx(reader.stream(), complete);
        seen.append(u"text "_s + event.typed());
    }

    std::unique_ptr<PeerProcess> m_server;
    std::unique_ptr<QCopChannel> m_channel;
    bool m_isUp = false;
};

InputMethodInfo method(uint number, quint32 type, const QString &languages)
{
    InputMethodInfo info;
    info.id = QUuid(number, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    info.name = QString::number(number);
    info.type = type;
    info.languages = languages;
    return info;
}

void install(const QString &library, const QString &name)
{
    QDir().mkpath(kLibraries);
    QFile::copy(QStringLiteral(TYX_BINARY_DIR) + library, kLibraries + name);
}

}

class TstIMServer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QDir(u"/tmp/phone"_s).removeRecursively(); }
    void theBestMethodIsChosen();
    void pausesGrow();
    void commandsTravelWhole();
    void onlyInputMethodsAreListed();
    void everyMessageHasItsEffect();
    void editorsShowAndHide();
    void theNumberPadTypes();
    void keysGoToTheMethodThatTakesThem();
    void textIsTypedWhateverFails_data();
    void textIsTypedWhateverFails();
    void itDiesAgainAndAgain();
    void hostileArgumentsDoNothing();
};

void TstIMServer::theBestMethodIsChosen()
{
    MethodList list;
    list.setLoaded({method(1, 0, u"ru"_s), method(2, 0, u"en de"_s), method(3, 1, {})});
    QVERIFY(list.addExternal(kAbroad, u"abroad"_s));
    QVERIFY(!list.addExternal(list.all()[0].id, u"thief"_s));
    const auto chosen = [&list](quint32 type, quint32 language) {
        INPUT_SETTING_T setting;
        setting.preferredInputMethodType = type;
        setting.preferredInputLanguage = language;
        const InputMethodInfo *info = list.find(list.primary(setting));
        return info ? info->name : QString();
    };
    QCOMPARE(chosen(0, 5), u"2"_s); // de-de
    QCOMPARE(chosen(1, 5), u"3"_s);
    QCOMPARE(chosen(9, 5), u"2"_s);
    list.setFavourites({list.all()[0].id, kBad, list.all()[0].id});
    QCOMPARE(list.offered().size(), 1);
    QCOMPARE(chosen(0, 5), u"1"_s);
    for (int i = 1; i <= MethodList::kMostDeaths; ++i)
        QCOMPARE(list.died(list.all()[0].id), i == MethodList::kMostDeaths);
    QCOMPARE(chosen(0, 5), QString());
    list.setLoaded(QList<InputMethodInfo>(20, method(4, 0, {}))); // an external one finds no room any more
    QCOMPARE(list.all().size(), MethodList::kMost);
}

void TstIMServer::pausesGrow()
{
    QCOMPARE(restartDelayMs(1), 0);
    QCOMPARE(restartDelayMs(2), 100);
    QCOMPARE(restartDelayMs(kMostRestartDeaths - 1), 12'800);
}

void TstIMServer::commandsTravelWhole()
{
    SetContextCmd context;
    context.kind = 7;
    context.text = u"ab"_s;
    context.position = 0x102;
    QCOMPARE(int(context.number), 23);
    QCOMPARE(context.pack().toHex(),
        "07"
        "00000004"
        "00610062"
        "0102");
    for (int number = 0; number < 40; ++number) {
        const auto command = IMStateCmd::unpack(number, QByteArray(64, '\0'));
        QCOMPARE(command != nullptr, number >= IMStateCmd::TipWord && number <= IMStateCmd::HWROption);
        if (!command)
            continue;
        QCOMPARE(int(command->number), number);
        const QByteArray whole = command->pack();
        QCOMPARE(IMStateCmd::unpack(number, whole)->pack(), whole);
        QVERIFY(!IMStateCmd::unpack(number, whole.chopped(1)));
    }
}

void TstIMServer::onlyInputMethodsAreListed()
{
    install(u"/lib/inputmethods/libtyxkeyboard.so"_s, u"liba.so"_s);
    install(u"/lib/inputmethods/libtyxkeyboard.so"_s, u"libb.so"_s); // of the same identifier
    install(u"/tests/libbadkeyboard.so"_s, u"libc.so"_s);
    install(u"/lib/libtyxappbase-xscale-r.so"_s, u"libd.so"_s); // no plug-in
    fill(kLibraries + u"libe.so"_s, "no library");
    fill(kLibraries + u"libf.so"_s, "\177ELF" + QByteArray(3000, '\xff'));
    Phone phone;
    QTRY_VERIFY(phone.knows(kKeyboard));
    QCOMPARE(phone.state.getInputMethodCount(), 2);
    QCOMPARE(phone.state.imName(phone.state.findInputMethod(kBad)), u"Bad keyboard"_s);
    QCOMPARE(phone.checked(), kKeyboard);
    QVERIFY(phone.state.isSystemIM(0));
}

void TstIMServer::everyMessageHasItsEffect()
{
    install(u"/lib/inputmethods/libtyxkeyboard.so"_s, u"liba.so"_s);
    install(u"/tests/libbadkeyboard.so"_s, u"libb.so"_s);
    Phone phone;
    QTRY_VERIFY(phone.knows(kBad));
    phone.tell("getIMNameList(QString)", wire::pack(u"TYX/Application/me"_s));
    QTRY_VERIFY(phone.got(u"names Bad keyboard,Keyboard"_s));
    phone.tell("selectInputMethod(QString)", wire::pack(u"nobody"_s));
    phone.tell("selectInputMethod(QString)", wire::pack(kBad.toString()));
    QTRY_COMPARE(phone.checked(), kBad);
    phone.ask(true);
    QTRY_VERIFY(phone.got(u"shown 122"_s)); // its 100 pixels, and the strip
    // This one tells what it is told.
    phone.tell("setContextString(QString)", wire::pack(quint8(7), u"ab"_s, quint16(0x102)));
    QTRY_VERIFY(phone.got(u"text 23 0700000004006100620102"_s));
    for (const int key : {int(Qt::Key_F5), int(Qt::Key_5)}) // keys that type are the method's
        phone.press(key);
    QTRY_VERIFY(phone.got(u"text key 53"_s));
    QVERIFY(!phone.got(u"text key %1"_s.arg(int(Qt::Key_F5))));
    phone.tell("completedWordConfirmed(QString)", wire::pack(u"a"_s));
    QTRY_VERIFY(phone.got(u"text 16 000000020061"_s));
    phone.tell("associationSeed(QString,int)", wire::pack(u"b"_s, 0));
    QTRY_VERIFY(phone.got(u"text 19 000000020062ffffffff00"_s));
    INPUT_SETTING_T setting;
    setting.wordCompletion = false;
    setting.preferredInputLanguage = 5;
    phone.tell("setInputMethodSettings(INPUT_SETTING_T)", settings::packInputSetting(setting));
    QTRY_VERIFY(phone.got(u"text 22 0000000500000000"_s));
    QCOMPARE(settings::loadInputSetting(), setting);
    QTRY_COMPARE(phone.checked(), kKeyboard); // which speaks that language
    phone.tell("selectInputMethod(QString)", wire::pack(u"Bad keyboard"_s));
    QTRY_COMPARE(phone.seen.count(u"text 22 0000000500000000"_s), 2); // is told the settings when it is loaded
    phone.tell("associationSeed(QString,int)", wire::pack(u"c"_s, 0)); // completion is off by now
    phone.tell("toolBarShown(int,QUuid)", wire::pack(1, kBad));
    phone.tell("lowerKBWidget(int)", wire::pack(4711));
    phone.tell("setEntryfavoriteIMList(int,QValueList)", wire::pack(1, kBad));
    phone.tell("registerExternalInputMethod(QUuid, QString)", wire::pack(kAbroad, u"me"_s));
    QTRY_VERIFY(phone.knows(kAbroad));
    QVERIFY(!phone.got(u"text 19 000000020063ffffffff00"_s));
    phone.tell("selectInputMethod(QString)", wire::pack(u"me"_s));
    QTRY_VERIFY(phone.got(QString::fromLatin1(messages::kShowInputWidget))); // is shown by its own process
    phone.tell("hideInputMethod()");
    QTRY_VERIFY(phone.got(u"hidden"_s));
}

void TstIMServer::editorsShowAndHide()
{
    install(u"/lib/inputmethods/libtyxkeyboard.so"_s, u"liba.so"_s);
    Phone phone;
    QTRY_VERIFY(phone.knows(kKeyboard));
    phone.ask(true);
    QTRY_VERIFY(phone.got(u"shown 156"_s));
    phone.ask(false);
    phone.ask(true); // the next editor has it before it goes
    QTRY_VERIFY(phone.isTyped({84, 205}, u"r"_s));
    QVERIFY(!phone.got(u"hidden"_s));
    phone.ask(false);
    QTRY_VERIFY(phone.got(u"hidden"_s));
    phone.seen.clear();
    phone.ask(true);
    QTRY_VERIFY(phone.got(u"shown 156"_s));
    QCopChannel::send("TYX/QtServer", messages::kUnregisterEditor, wire::pack(kEditor));
    QTRY_VERIFY(phone.got(u"hidden"_s));
    int owner = -1;
    QVERIFY(phone.state.getCurrentOwner(&owner, nullptr));
    QCOMPARE(owner, 0);
}

void TstIMServer::theNumberPadTypes()
{
    install(u"/lib/inputmethods/libtyxnumberpad.so"_s, u"liba.so"_s);
    Phone phone;
    QTRY_VERIFY_WITH_TIMEOUT(phone.isShown(), kSoonMs);
    QTRY_VERIFY_WITH_TIMEOUT(phone.isTyped({100, 236}, u"5"_s), kSoonMs); // second of the second row
    QTRY_VERIFY_WITH_TIMEOUT(phone.isTyped({100, 300}, u"0"_s), kSoonMs);
}

void TstIMServer::keysGoToTheMethodThatTakesThem()
{
    install(u"/lib/inputmethods/libtyxmultitap.so"_s, u"liba.so"_s);
    Phone phone;
    QTRY_VERIFY_WITH_TIMEOUT(phone.knows(kLetters), kSoonMs);
    QTRY_VERIFY_WITH_TIMEOUT(phone.isShown(), kSoonMs);
    // With a letter that waits, the cursor is the method's too: up comes back behind the letter, right does not.
    for (const int key : {Qt::Key_Up, Qt::Key_4, Qt::Key_4, Qt::Key_3, Qt::Key_Up, Qt::Key_5, Qt::Key_Right, Qt::Key_6,
             Qt::Key_NumberSign, Qt::Key_F5, Qt::Key_9, Qt::Key_Return})
        phone.press(key);
    QTRY_VERIFY_WITH_TIMEOUT(phone.got(u"text w"_s), kSoonMs);
    QTRY_COMPARE_WITH_TIMEOUT(phone.seen.filter(u"text "_s),
        (QStringList{u"text h"_s, u"text d"_s, u"text "_s, u"text j"_s, u"text m"_s, u"text w"_s, u"text "_s}),
        kSoonMs);
    QVERIFY(phone.got(QString::fromLatin1(messages::kUnconfirmedText)));
}

void TstIMServer::textIsTypedWhateverFails_data()
{
    QTest::addColumn<QByteArray>("bad");
    QTest::addColumn<bool>("isSetAside"); // or silent, or it works
    QTest::newRow("no keyboard") << QByteArray("none") << true;
    for (const char *when : {"load", "create", "command", "press"}) {
        QTest::addRow("crash in %s", when) << QByteArray("crash in ") + when << true;
        QTest::addRow("hang in %s", when) << QByteArray("hang in ") + when << false;
        QTest::addRow("throw in %s", when) << QByteArray("throw in ") + when << true;
    }
    QTest::newRow("huge") << QByteArray("huge") << false;
    QTest::newRow("tiny") << QByteArray("tiny") << false;
}

void TstIMServer::textIsTypedWhateverFails()
{
    QFETCH(QByteArray, bad);
    QFETCH(bool, isSetAside);
    install(u"/tests/libbadkeyboard.so"_s, u"liba.so"_s);
    Phone phone(bad);
    QTRY_VERIFY_WITH_TIMEOUT(phone.knows(kBad), kSoonMs);
    QTRY_VERIFY_WITH_TIMEOUT(phone.isShown(), kSoonMs);
    if (bad == "huge" || bad == "tiny") {
        QTRY_VERIFY_WITH_TIMEOUT(phone.got(bad == "huge" ? u"shown 182"_s : u"shown 62"_s), kSoonMs);
        return;
    }
    // Taps until the plain keypad has taken over.
    QTRY_VERIFY_WITH_TIMEOUT(phone.isTyped(kPlainA, u"a"_s), kSoonMs);
    if (isSetAside) {
        const auto aside = [&] {
            phone.tap(kPlainA);
            return phone.checked().isNull();
        };
        QTRY_VERIFY_WITH_TIMEOUT(aside(), kSoonMs);
    }
}

// TYX_CRASHES=1000 for a long trial.
void TstIMServer::itDiesAgainAndAgain()
{
    const int crashes = qEnvironmentVariableIsSet("TYX_CRASHES") ? qEnvironmentVariableIntValue("TYX_CRASHES") : 8;
    install(u"/tests/libbadkeyboard.so"_s, u"liba.so"_s);
    Phone phone("crash in press");
    QTRY_VERIFY(phone.knows(kBad));
    for (int i = 0; i < crashes; ++i) {
        phone.seen.clear();
        phone.tell("selectInputMethod(QString)", wire::pack(kBad.toString()));
        phone.ask(true);
        QTRY_VERIFY_WITH_TIMEOUT(phone.got(u"shown 122"_s), 20'000); // its own 100 pixels
        const auto plainIsShown = [&phone] {
            phone.tap(kPlainA); // on the one that dies of it, if it is still there
            return phone.got(u"shown 156"_s);
        };
        QTRY_VERIFY_WITH_TIMEOUT(plainIsShown(), 20'000);
        QTRY_VERIFY_WITH_TIMEOUT(phone.isTyped(kPlainA, u"a"_s), 20'000);
        const auto wrong = [](const QString &line) { // longer ones are the bad keyboard's commands
            return line.size() == QLatin1String("text a").size() && line != u"text a";
        };
        QVERIFY(std::ranges::none_of(phone.seen, wrong));
    }
    std::fprintf(stderr, "%d crashes\n", crashes);
}

void TstIMServer::hostileArgumentsDoNothing()
{
    install(u"/lib/inputmethods/libtyxkeyboard.so"_s, u"liba.so"_s);
    Phone phone;
    QTRY_VERIFY(phone.knows(kKeyboard));
    phone.ask(true);
    QTRY_VERIFY(phone.got(u"shown 156"_s));
    const QCString names[] = {"selectInputMethod(QString)", "getIMNameList(QString)",
        "setInputMethodSettings(INPUT_SETTING_T)", "associationSeed(QString,int)", "lowerKBWidget(int)",
        "setContextString(QString)", "setEntryfavoriteIMList(int,QValueList)",
        "registerExternalInputMethod(QUuid, QString)", "toolBarShown(int,QUuid)", "completedWordConfirmed(QString)",
        "methods(int,QByteArray)", "shown(int,QUuid,int,int)", "failed(int,QUuid,QString)", "pong(int,int)",
        "key(int,QByteArray)", "unconfirmed(int,QString)", "tip(int,QString)", "leave(int)", ""};
    for (const QCString &name : names) {
        for (const char filler : {'\0', '\1', '\x7f', '\xff'}) {
            for (const int size : {0, 1, 3, 4, 8, 19, 20, 24, 64, 5000}) {
                for (const char *channel : {kInputMethods, "TYX/IMHost/Server"})
                    QCopChannel::send(channel, name, QByteArray(size, filler));
            }
        }
    }
    for (uint i = 0; i < 20; ++i)
        phone.tell("registerExternalInputMethod(QUuid, QString)", wire::pack(method(i, 0, {}).id, QString(9000, u'x')));
    QTRY_COMPARE(phone.state.getInputMethodCount(), MethodList::kMost);
    phone.seen.clear();
    QTRY_VERIFY(phone.isTyped({84, 205}, u"r"_s));
}

QTEST_GUILESS_MAIN(TstIMServer)
#include "tst_imserver.moc"
