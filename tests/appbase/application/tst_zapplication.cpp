// The application object: its channels, what each message does, its language; its editors and windows.
#include "appbase/application/inputmessages.h"
#include "appbase/application/inputwidgethost.h"
#include "appbase/application/routes.h"
#include "appbase/application/zmainwidget.h"
#include "appbase/messaging/keyeventex.h"
#include "appbase/messaging/wire.h"
#include "tests/support/applicationtest.h"
#include "tests/support/testfiles.h"

#include <QDialog>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScreen>
#include <QSignalSpy>
#include <QStyle>
#include <QVBoxLayout>

namespace {

const QString kPeer = QStringLiteral(TYX_BINARY_DIR "/tests/apppeer");

QCString processChannel(qint64 pid) { return QCString("TYX/Application/" + QByteArray::number(pid)); }

// What a Recorder says of a message to the server.
QString toServer(const char *message, const QByteArray &arguments)
{
    return QStringLiteral("server %1 %2").arg(QLatin1String(message), QLatin1String(arguments.toHex()));
}

constexpr char kChannel[] = "TYX/Application/tst_zapplication";

// An editor that tells what is typed into it.
class Field : public QLineEdit {
public:
    QStringList *seen = nullptr;

protected:
    void keyPressEvent(QKeyEvent *event) override { note("press", *event); }
    void keyReleaseEvent(QKeyEvent *event) override { note("release", *event); }
    void inputMethodEvent(QInputMethodEvent *event) override
    {
        QLineEdit::inputMethodEvent(event);
        if (seen && !event->preeditString().isEmpty())
            seen->append(QStringLiteral("unconfirmed ") + event->preeditString());
    }

private:
    void note(const char *what, const QKeyEvent &event)
    {
        if (seen)
            seen->append(QStringLiteral("%1 %2 %3").arg(QLatin1String(what)).arg(event.key()).arg(event.text()));
    }
};

// Destroys an editor's window as soon as the editor gets a key or a text.
class Deadly : public QObject {
public:
    Deadly(QWidget &victim, std::function<void()> kill) : m_kill(std::move(kill)) { victim.installEventFilter(this); }

    bool eventFilter(QObject * /*watched*/, QEvent *event) override
    {
        const bool strikes = event->type() == QEvent::KeyPress || event->type() == QEvent::InputMethod;
        if (strikes)
            m_kill();
        return strikes;
    }

private:
    std::function<void()> m_kill;
};

// What happens while it lives, in order: "raise", "open a.txt".
class Recorder : public QObject, public InputWidgetHost {
public:
    Recorder(ZApplication &app, Field &field, QStringList &list) : m_field(field), seen(list)
    {
        m_field.seen = &list;
        note(&app, &ZApplication::signalRaise, "raise");
        note(&app, &ZApplication::shutdown, "shutdown");
        note(&app, &ZApplication::quickQuit, "quickQuit");
        note(&app, &ZApplication::clickAppIcon, "icon");
        note(&app, &ZApplication::signalMasterClear, "clear");
        note(&app, &ZApplication::signalMasterReset, "reset");
        note(&app, &ZApplication::signalHomeKeyClicked, "home");
        note(&app, &ZApplication::signalOpenDoc, "open");
        note(&app, &ZApplication::signalCmdLine, "cmdLine");
        note(&app, &ZApplication::usbStorageInOut, "usb");
        note(&app, &ZApplication::signalAppLaunched, "launched");
        note(&app, &ZApplication::kbStateChanged, "keyboard");
        note(&app, qOverload<const QCString &, const QByteArray &>(&ZApplication::signalBridgeMessage), "bridge");
        note(&app, qOverload<const QByteArray &>(&ZApplication::signalBridgeMessage), "bridge2");
        note(&app, &ZApplication::signalBridgeMessageWithoutRaise, "bridgeWithoutRaise");
        note(&app, &ZApplication::systemMessage, "system");
        note(&app, &ZApplication::appMessage, "app");
        note(&m_toServer, &QCopChannel::received, "server");
    }
    ~Recorder() override { m_field.seen = nullptr; }
    Recorder(const Recorder &) = delete;
    Recorder &operator=(const Recorder &) = delete;

    void selectInputMethod(const QUuid &method) override { seen.append(QStringLiteral("select ") + method.toString()); }
    void showInputWidget(const Owner &owner, int show, int inputType) override
    {
        seen.append(QStringLiteral("show %1 %2 %3 %4 %5")
                        .arg(owner.editor)
                        .arg(owner.window)
                        .arg(shortName(owner))
                        .arg(show)
                        .arg(inputType));
    }
    void editorStateChanged(const Owner &owner, int state, int detail) override
    {
        seen.append(QStringLiteral("state %1 %2 %3 %4").arg(owner.editor).arg(shortName(owner)).arg(state).arg(detail));
    }
    void editorGone(int editor) override { seen.append(QStringLiteral("gone %1").arg(editor)); }

private:
    static QString shortName(const Owner &owner)
    {
        return owner.channel == kChannel ? QStringLiteral("tst") : QString::fromLatin1(owner.channel);
    }
    static QString text(const QUuid &value) { return value.toString(); }
    static QString text(const QString &value) { return value; }
    static QString text(int value) { return QString::number(value); }
    static QString text(const QByteArray &value) { return QString::fromLatin1(value.toHex()); }
    static QString text(const QCString &value) { return QString::fromLatin1(value); }

    template <typename Sender, typename Class, typename... Args>
    void note(Sender *sender, void (Class::*signal)(Args...), const char *name)
    {
        connect(sender, signal, this, [this, name](Args... args) {
            QStringList values{QString::fromLatin1(name)};
            (values.append(text(args)), ...);
            seen.append(values.join(u' '));
        });
    }

    Field &m_field;
    QCopChannel m_toServer{"TYX/QtServer"};
    QStringList &seen;
};

// What messages change in the process, set to values that no message sets.
struct Marks {
    Marks()
    {
        qputenv("TZ", "unchanged");
        qunsetenv("TYX_TEST");
        QApplication::setPalette(QPalette(Qt::red));
        QApplication::setFont(QFont(QStringLiteral("unchanged"), 77));
        QApplication::style()->setObjectName(QStringLiteral("unchanged"));
    }

    [[nodiscard]] QStringList changed() const
    {
        QStringList changes;
        if (qgetenv("TZ") != "unchanged")
            changes.append(QStringLiteral("TZ ") + qEnvironmentVariable("TZ"));
        if (qEnvironmentVariableIsSet("TYX_TEST"))
            changes.append(QStringLiteral("TYX_TEST ") + qEnvironmentVariable("TYX_TEST"));
        if (QApplication::palette().color(QPalette::Button) != QPalette(Qt::red).color(QPalette::Button))
            changes.append(QStringLiteral("palette"));
        if (QApplication::font().pointSize() != 77)
            changes.append(QStringLiteral("font"));
        if (QApplication::style()->objectName() != QStringLiteral("unchanged"))
            changes.append(QStringLiteral("style"));
        return changes;
    }
};

}

class TstZApplication : public QObject {
    Q_OBJECT

public:
    enum Channel { Process, System, Server, Application };
    struct Row { // a message, its arguments, and what it brings about ("*" stands for the arguments)
        Channel channel;
        QCString message;
        QByteArray arguments;
        QStringList seen;
    };

    TstZApplication() { DisableAMClosedRestart(); } // the tests send "amClosed()" to others

private Q_SLOTS:
    void initTestCase();
    void readsItsLanguageFromTheSystemFile();
    void everyMessageHasItsEffect_data();
    void everyMessageHasItsEffect();
    void noMessageIsForgotten();
    void editorsAreRegisteredWhileTheyLive();
    void editorsOfDeadApplicationsAreForgotten();
    void whoIsAboutToWriteGetsTheInputWidget();
    void unconfirmedTextIsNotLost();
    void aHiddenTextIsToldToNobody();
    void receiversMayGo();
    void theEditorStaysAboveTheInputWidget();
    void programsOfOneNameAllHear();
    void aSecondProcessChannelIsNotOpened();
    void ordersToQuitEndTheProcess_data();
    void ordersToQuitEndTheProcess();

private:
    QList<Row> rows() const;
    QStringList effect(const Row &row, const QByteArrayList &argumentLists);

    ZApplication &m_app = *ZApplication::instance();
    ZApplicationData m_server{m_app, "server"}; // for the server's table
    Field *m_field = nullptr;
    ZMainWidget m_window;
};

Q_DECLARE_METATYPE(TstZApplication::Row)

void TstZApplication::initTestCase()
{
    QVERIFY(!QCopChannel::isRegistered("TYX/QtServer")); // the only channel that it has no need of
    auto *content = new QWidget;
    auto *column = new QVBoxLayout(content);
    auto *above = new QWidget;
    above->setMinimumHeight(200);
    column->addWidget(above);
    m_field = new Field;
    column->addWidget(m_field);
    m_window.setContentWidget(content);
    const QRect screen = m_window.screen()->geometry();
    m_window.setGeometry(screen.left(), screen.bottom() - 299, 240, 300);
    m_field->setProperty("editor", m_app.registerEditor(m_field));
    m_window.show();
    m_field->setFocus();
    QVERIFY(QTest::qWaitForWindowActive(&m_window));
}

void TstZApplication::readsItsLanguageFromTheSystemFile()
{
    QCOMPARE(m_app.language(), QStringLiteral("en-us"));
    fill(QStringLiteral("/tmp/tyx_system.cfg"), "[SYS_SYSTEM_SET]\nLanguageType = de-de\n");
    QCOMPARE(m_app.language(), QStringLiteral("en-us"));
    QVERIFY(QCopChannel::send("TYX/System", "languageChanged()"));
    QTRY_COMPARE(m_app.language(), QStringLiteral("de-de"));
}

QList<TstZApplication::Row> TstZApplication::rows() const
{
    using namespace messages;
    const auto texts = [](const QByteArray &joined) {
        return joined.isEmpty() ? QStringList() : QString::fromLatin1(joined).split(u'|');
    };
    const QByteArray data("\x01\x02");
    const QByteArray openDoc = wire::pack(QStringLiteral("a.txt"));
    const QCString hi("hi");
    const QUuid uuid(QStringLiteral("{01234567-89ab-cdef-0123-456789abcdef}"));
    const QByteArray uuidText = uuid.toByteArray();
    const QByteArray key = encodeKeyEventEx({0, 0x41, Qt::ShiftModifier, QStringLiteral("A")});
    const int own = m_field->property("editor").toInt();
    const QList<std::pair<Channel, QList<std::tuple<const char *, QByteArray, QByteArray>>>> all{
        {Process,
            {{"raise()", {}, "raise"}, {"flush()", {}, ""}, {"nextView()", {}, ""}, {"shutdown()", {}, "shutdown"},
                {"quickQuit()", {}, "quickQuit"}, {"clickAppIcon()", {}, "icon"},
                {"openDoc(QString)", openDoc, "raise|open a.txt"},
                {"bridgeMessage", wire::pack(7, hi, data), "raise|bridge hi 0102"},
                {"bridgeMessage", wire::pack(7, QCString("openDoc(QString)"), openDoc), "raise|open a.txt"},
                {"bridgeMessageWithoutRaise", wire::pack(7, hi, data), "bridgeWithoutRaise hi 0102"},
                {"cmdLine", wire::pack(QStringLiteral("-x y")), "cmdLine -x y"}, {"bridgeMessage2", {}, "bridge2 *"},
                {"usbMassStorageEnabled(bool)", wire::pack(2), "usb 1"},
                {"usbMassStorageEnabled(bool)", wire::pack(false), "usb 0"}, {"Raise()", {}, ""}}},
        {System,
            {{"applyPalette()", {}, "palette"}, {"master clear", {}, "clear"}, {"master reset", {}, "reset"},
                {"SetGuiToSuspension()", {}, ""}, {"SetGuiToResume()", {}, "system SetGuiToResume() *"},
                {"amClosed()", {}, ""}, {"changeTextSize()", {}, "font"}, {"applyStyle()", {}, "palette|style"},
                {"setOneEnv()", wire::pack(QStringLiteral("TYX_TEST=1=2")), "TYX_TEST 1=2"},
                {"setOneEnv()", wire::pack(QStringLiteral("TYX_TEST=")), "TYX_TEST "},
                {"setOneEnv()", wire::pack(QStringLiteral("TYX_TEST=\u00e4")), "TYX_TEST \xe4"},
                {"setOneEnv()", wire::pack(QStringLiteral("TYX_TEST")), ""},
                {"setOneEnv()", wire::pack(QStringLiteral("TYX_TEST=a\0b")), ""},
                {"setOneEnv()", wire::pack(QStringLiteral("=TYX_TEST")), ""}, {"updateTouchPanelSoundInfo()", {}, ""},
                {"modifytimezone", wire::pack(8, 0, 0), "TZ GMT-8:0:0"},
                {"modifytimezone", wire::pack(-5, 0, 0), "TZ GMT+5:0:0"},
                {"modifytimezone", wire::pack(0, 30, 9), "TZ GMT+0:30:9"},
                {"modifytimezone", wire::pack(INT_MIN, 0, 0), "TZ GMT+2147483648:0:0"}, {"shutdown()", {}, "shutdown"},
                {"notifyLaunchApp", wire::pack(12), "launched 12"}, {"HomeKeyPress", {}, "home"},
                {"bridgeMessage", wire::pack(hi, data), "raise|bridge hi 0102"},
                {"bridgeMessageWithoutRaise", wire::pack(hi, data), "bridgeWithoutRaise hi 0102"},
                {"unknown", {}, "system unknown *"}, {"languageChanged()", {}, "system languageChanged() *"}}},
        {Server,
            {{kRegisterEditor, wire::pack(QCString(kChannel), 40, 9), "show 9 40 tst 1 2"},
                {kRegisterEditor, wire::pack(QCString("TYX/Application/nobody"), 40, 9), ""},
                {kUnregisterEditor, wire::pack(7), "gone 7"}, {kUnregisterEditor, wire::pack(8), ""},
                {kShowInputWidget, wire::pack(7, 50, 1, uuid, 3), "select " + uuidText + "|show 7 50 tst 1 3"},
                {kShowInputWidget, wire::pack(8, 50, 1, uuid, 3), ""},
                {kUpdateEditorState, wire::pack(7, 1, 2), "state 7 tst 1 2"},
                {kUpdateEditorState, wire::pack(8, 1, 2), ""}, {kOrderWindows, wire::pack(1, QString()), ""},
                {kFocusLatestWindow, wire::pack(0), ""}, {"languageChanged()", {}, "system languageChanged() "},
                {"HardkeySoundChanged()", {}, ""}, {"themeChanged()", {}, "palette|style"}, {"unknown", {}, ""}}},
        {Application,
            {{kObeyWindowOrder, wire::pack(4, QList<int>{1, 2}), QByteArray("app ") + kObeyWindowOrder + " *"},
                {kInputWidgetShown, wire::pack(7, 1, 2, uuid, 100),
                    "keyboard 1 " + uuidText + " 100|app " + kInputWidgetShown + " *"},
                {kHideInputWidget, wire::pack(7, 1, 2),
                    "keyboard 0 " + QUuid().toByteArray() + " 0|app " + kHideInputWidget + " *"},
                {kAutoHideInputWidget, wire::pack(7, 1, 2),
                    "keyboard 0 " + QUuid().toByteArray() + " 0|app " + kAutoHideInputWidget + " *"},
                {kUpdateEditorState, wire::pack(own, 1, 2),
                    QByteArray("app ") + kUpdateEditorState + " *|server " + kUpdateEditorState + ' '
                        + wire::pack(own, 1, 2).toHex()},
                {kUpdateEditorState, wire::pack(8, 1, 2), QByteArray("app ") + kUpdateEditorState + " *"},
                {kKeyEvent, key, "press 65 A|release 65 A"}, {kUnconfirmedText, openDoc, "unconfirmed a.txt"},
                {kUnconfirmedText, wire::pack(QString()), ""}, {"unknown", {}, "app unknown *"}}},
    };
    QList<Row> result;
    for (const auto &[channel, messagesOfChannel] : all) {
        for (const auto &[message, arguments, seen] : messagesOfChannel)
            result.append({channel, message, arguments, texts(seen)});
    }
    return result;
}

void TstZApplication::everyMessageHasItsEffect_data()
{
    QTest::addColumn<Row>("row");
    for (const Row &row : rows())
        QTest::addRow("%d %s %d", row.channel, row.message.constData(), int(row.arguments.size())) << row;
}

// An argument list that is cut anywhere has none; surplus arguments change nothing.
void TstZApplication::everyMessageHasItsEffect()
{
    QFETCH(Row, row);
    QByteArrayList cut;
    for (qsizetype size = 0; size < row.arguments.size(); ++size)
        cut.append(row.arguments.first(size));
    QCOMPARE(effect(row, cut), QStringList());
    for (const QByteArray &surplus : {QByteArray(), QByteArray("\xFF\0", 2)}) {
        const QByteArray sent = row.arguments + surplus;
        QStringList expected = row.seen;
        expected.replaceInStrings(QStringLiteral("*"), QString::fromLatin1(sent.toHex()));
        QCOMPARE(effect(row, {sent}), expected);
    }
}

void TstZApplication::noMessageIsForgotten()
{
    const QList<std::pair<Channel, routes::Rows>> tables{{Process, routes::process()}, {System, routes::system()},
        {Server, routes::server()}, {Application, routes::application()}};
    const QList<Row> known = rows();
    for (const auto &[channel, table] : tables) {
        for (const auto &route : table) {
            const auto isIt = [&, channelOfTable = channel](const Row &row) {
                return row.channel == channelOfTable && row.message == route.message;
            };
            QVERIFY2(std::any_of(known.cbegin(), known.cend(), isIt), route.message.data());
        }
    }
}

// What the message with each of these arguments brings about, in order.
QStringList TstZApplication::effect(const Row &row, const QByteArrayList &argumentLists)
{
    const Marks marks;
    m_server.appendEditor(7, QCString(kChannel));
    QStringList seen;
    const Recorder recorder(m_app, *m_field, seen);
    const QCString channels[] = {processChannel(QCoreApplication::applicationPid()), "TYX/System", {}, kChannel};
    for (const QByteArray &arguments : argumentLists) {
        if (row.channel == Server) // this process is none, but has the table
            dispatch<ZApplicationData>(routes::server(), m_server, row.message, arguments);
        else
            QCopChannel::send(channels[row.channel], row.message, arguments);
    }
    m_server.showInputWidgetAux(9, 40, 1, 2); // shows whether there is an editor 9 now
    // Its effects come before what is sent after it, and the messages that it made this process send before the second.
    const QString last = QStringLiteral("server end of test ");
    for (int i = 0; i < 2; ++i) {
        seen.removeAll(last);
        QCopChannel::send("TYX/QtServer", "end of test", {});
        std::ignore = QTest::qWaitFor([&] { return seen.contains(last); });
    }
    seen.removeLast();
    m_server.onUnregisterEditor(wire::pack(9));
    seen.removeAll(QStringLiteral("gone 9"));
    return seen + marks.changed();
}

void TstZApplication::editorsAreRegisteredWhileTheyLive()
{
    QStringList seen;
    const Recorder recorder(m_app, *m_field, seen);
    std::optional<Field> first(std::in_place);
    Field second;
    ZApplicationData other(m_app, "other");
    const int id = m_app.registerEditor(&*first);
    QCOMPARE(m_app.registerEditor(&*first), id);
    const int secondId = m_app.registerEditor(&second);
    QVERIFY(id > 0 && secondId > 0 && id != secondId);
    QCOMPARE(m_app.editor(id), &*first);
    first.reset();
    m_app.unregisterEditor(&second);
    m_app.unregisterEditor(&second);
    {
        ZApplicationData ended(m_app, "ended");
        ended.inputClient.registerEditor(&second);
    }
    ZApplication::manipulateAppWindows(ZApplication::HideWindows, QStringLiteral("hello"));
    const auto registered = [&](const char *channel, int editor) {
        return toServer(messages::kRegisterEditor, wire::pack(QCString(channel), 0, editor));
    };
    const auto gone = [&](int editor) { return toServer(messages::kUnregisterEditor, wire::pack(editor)); };
    const int endedId = int(quint32(id) & ~0x1FFU) | 1; // the first of another application object
    QTRY_COMPARE(seen,
        (QStringList{registered(kChannel, id), registered(kChannel, secondId), gone(id), gone(secondId),
            registered("TYX/Application/ended", endedId), gone(endedId),
            toServer(messages::kOrderWindows, wire::pack(4, QStringLiteral("hello")))}));
    QCOMPARE(m_app.editor(id), nullptr);

    std::vector<QWidget> many(511);
    for (QWidget &editor : many)
        QVERIFY(other.inputClient.registerEditor(&editor) != 0);
    QCOMPARE(other.inputClient.registerEditor(&second), 0);
}

void TstZApplication::editorsOfDeadApplicationsAreForgotten()
{
    m_server.onUnregisterEditor(wire::pack(7));
    QStringList seen;
    const Recorder recorder(m_app, *m_field, seen);
    std::optional<QCopChannel> application(std::in_place, "TYX/Application/dying");
    for (int id = 100; id < 100 + EditorList::kMax; ++id)
        m_server.appendEditor(id, "TYX/Application/dying");
    m_server.appendEditor(7, kChannel); // there is no room for it
    m_server.showInputWidgetAux(7, 0, 1, 0);
    m_server.showInputWidgetAux(100, 0, 1, 0);
    QCOMPARE(seen, QStringList{QStringLiteral("show 100 0 TYX/Application/dying 1 0")});
    application.reset();
    m_server.showInputWidgetAux(100, 0, 1, 0);
    m_server.appendEditor(7, kChannel);
    m_server.showInputWidgetAux(7, 0, 1, 0);
    QCOMPARE(seen.mid(1), QStringList{QStringLiteral("show 7 0 tst 1 0")});
}

void TstZApplication::whoIsAboutToWriteGetsTheInputWidget()
{
    QPlainTextEdit area;
    const int id = m_app.registerEditor(&area);
    area.show();
    QVERIFY(QTest::qWaitForWindowActive(&area));
    QStringList seen;
    const Recorder recorder(m_app, *m_field, seen);
    const auto asked = [&](int editor, const QWidget &widget, int show) {
        return toServer(
            messages::kShowInputWidget, wire::pack(editor, QWSApplication::windowId(&widget), show, QUuid(), 0));
    };
    QFocusEvent byProgram(QEvent::FocusIn, Qt::OtherFocusReason);
    QFocusEvent byKey(QEvent::FocusIn, Qt::TabFocusReason);
    QApplication::sendEvent(&area, &byProgram);
    QTest::mouseClick(area.viewport(), Qt::LeftButton);
    QApplication::sendEvent(&area, &byKey);
    area.setReadOnly(true);
    QTest::mouseClick(area.viewport(), Qt::LeftButton);
    QApplication::sendEvent(&area, &byKey);
    m_app.unregisterEditor(&area);
    QTest::mouseClick(area.viewport(), Qt::LeftButton);
    const QString last = toServer(messages::kUnregisterEditor, wire::pack(id));
    QTRY_VERIFY(seen.contains(last));
    QCOMPARE(seen, (QStringList{asked(id, area, 1), asked(id, area, 1), last}));
    area.close();
    m_window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&m_window));
}

void TstZApplication::unconfirmedTextIsNotLost()
{
    const QByteArray hide = wire::pack(0, 0, 0);
    const auto type = [&](const QString &text) {
        m_field->clear();
        m_server.onUnconfirmedText(wire::pack(text));
    };
    type(QStringLiteral("hel"));
    m_server.onAutoHideInputWidget(hide);
    QCOMPARE(m_field->text(), QString());
    m_server.onHideInputWidget(hide);
    QCOMPARE(m_field->text(), QStringLiteral("hel"));
    type(QStringLiteral("hel"));
    m_field->clearFocus();
    QTRY_COMPARE(m_field->text(), QStringLiteral("hel"));
    m_field->setFocus();
    type(QStringLiteral("hel"));
    QTest::mouseClick(m_field, Qt::LeftButton); // sets the cursor
    QCOMPARE(m_field->text(), QStringLiteral("hel"));
    type(QStringLiteral("hel"));
    m_field->setText(QStringLiteral("other")); // the editor drops it itself
    m_server.onHideInputWidget(hide);
    QCOMPARE(m_field->text(), QStringLiteral("other"));
    type(QStringLiteral("hel"));
    m_server.onUnconfirmedText(wire::pack(QString()));
    m_server.onHideInputWidget(hide);
    QCOMPARE(m_field->text(), QString());
}

void TstZApplication::aHiddenTextIsToldToNobody()
{
    QStringList seen;
    const Recorder recorder(m_app, *m_field, seen);
    const int id = m_server.inputClient.registerEditor(m_field);
    m_field->setText(QStringLiteral("abc"));
    m_field->setFocus();
    for (const auto mode : {QLineEdit::Normal, QLineEdit::Password}) {
        m_field->setEchoMode(mode);
        QTest::mouseClick(m_field, Qt::LeftButton);
        m_server.onInputWidgetShown(wire::pack(id, 0, 0, QUuid(), 100));
        QTest::keyClick(m_field, Qt::Key_Left);
    }
    m_field->setEchoMode(QLineEdit::Normal);
    m_server.onInputWidgetShown(wire::pack(0, 0, 0, QUuid(), 100));
    m_server.inputClient.unregisterEditor(m_field);
    const auto count = [&](const char *message, const QByteArray &arguments) {
        return seen.count(toServer(message, arguments));
    };
    const auto asked = [&](int inputType) {
        return count(
            messages::kShowInputWidget, wire::pack(id, QWSApplication::windowId(m_field), 1, QUuid(), inputType));
    };
    QTRY_COMPARE(count(messages::kUnregisterEditor, wire::pack(id)), 1); // the last of them
    QVERIFY(asked(0) > 0); // the application's own object asks too, with the same identifier
    QCOMPARE(asked(3), asked(0));
    QCOMPARE(count(messages::kUpdateEditorState, wire::pack(id, 0, 0)), 2); // shown, and its cursor moved
}

// A press, a text or a hidden keyboard may make the application close what they reached.
void TstZApplication::receiversMayGo()
{
    using Message = std::pair<const char *, QByteArray>;
    const QList<Message> lethal{{messages::kKeyEvent, encodeKeyEventEx({0, 0x41, 0, {}})},
        {messages::kUnconfirmedText, wire::pack(QStringLiteral("x"))},
        {messages::kInputWidgetShown, wire::pack(0, 0, 0, QUuid(), 100)}};
    for (const auto &[message, arguments] : lethal) {
        auto *window = new ZMainWidget;
        auto *field = new QLineEdit;
        window->setContentWidget(field);
        window->showMaximized();
        field->setFocus();
        QVERIFY(QTest::qWaitForWindowActive(window));
        const QPointer<ZMainWidget> alive = window;
        const auto kill = [&alive] { delete alive; };
        connect(field, &QLineEdit::textEdited, window, kill);
        connect(window, &ZMainWidget::editorRectChanged, window, kill);
        Deadly deadly(*field, kill);
        m_server.slotAppMessage(message, arguments);
        QVERIFY2(!alive, message);
        m_server.onHideInputWidget(wire::pack(0, 0, 0));
    }
    m_window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&m_window));
}

void TstZApplication::theEditorStaysAboveTheInputWidget()
{
    const auto shown = [](int height) { return wire::pack(0, 0, 0, QUuid(), height); };
    const auto bottomOfField = [this] { return m_field->mapTo(&m_window, QPoint(0, m_field->height())).y(); };
    const QByteArray hide = wire::pack(0, 0, 0);
    for (const auto &[height, left] : {std::pair(100, 200), {250, 50}, {-5, 300}, {INT_MAX, 0}, {INT_MIN, 300}}) {
        m_server.onInputWidgetShown(shown(height));
        QCOMPARE(m_window.editorRect(), QRect(0, 0, 240, left));
        QVERIFY(left < m_field->height() || bottomOfField() <= left);
    }
    m_server.onInputWidgetShown(shown(100));
    m_window.move(m_window.x(), m_window.y() - 60); // now 40 of its pixels are covered
    QCOMPARE(m_window.editorRect().height(), 260);
    m_window.move(m_window.x(), m_window.y() + 60);
    QDialog dialog; // is active when the input widget goes
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    m_server.onHideInputWidget(hide);
    QCOMPARE(m_window.editorRect(), m_window.rect());
    dialog.close();
    m_window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&m_window));
}

void TstZApplication::programsOfOneNameAllHear()
{
    PeerProcess one(QStringLiteral("apppeer"), {QStringLiteral("tell")});
    PeerProcess two(QStringLiteral("apppeer"), {QStringLiteral("tell")});
    for (PeerProcess *peer : {&one, &two})
        QCOMPARE(peer->line(), "ready");
    QVERIFY(QCopChannel::send("TYX/Application/apppeer", "hello"));
    for (PeerProcess *peer : {&one, &two})
        QCOMPARE(peer->line(), "app hello");
}

void TstZApplication::aSecondProcessChannelIsNotOpened()
{
    // The process finds a channel of its own name taken: a child asks the shell for its id before it becomes the peer.
    QProcess peer;
    peer.start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), QStringLiteral("echo $$; read go; exec ") + kPeer});
    QVERIFY(peer.waitForReadyRead());
    const QCString channel = processChannel(peer.readAll().trimmed().toLongLong());
    QCopChannel taken(channel);
    QSignalSpy received(&taken, &QCopChannel::received);
    peer.write("go\n");
    QVERIFY(peer.waitForReadyRead());
    QVERIFY(QCopChannel::send(channel, "quickQuit()"));
    QTRY_COMPARE(received.count(), 1);
    QVERIFY(QCopChannel::isRegistered("TYX/Application/apppeer"));
    QCOMPARE(peer.state(), QProcess::Running); // the order to quit did not reach it
    QVERIFY(QCopChannel::send("TYX/System", "amClosed()"));
    QVERIFY(peer.waitForFinished());
}

void TstZApplication::ordersToQuitEndTheProcess_data()
{
    QTest::addColumn<QCString>("channel"); // empty: that of the process
    QTest::addColumn<QCString>("message");
    QTest::addColumn<bool>("keep");
    const QCString process;
    QTest::addColumn<int>("times");
    QTest::newRow("shutdown()") << process << QCString("shutdown()") << false << 1;
    QTest::newRow("quickQuit()") << process << QCString("quickQuit()") << false << 1;
    QTest::newRow("shutdown() for all") << QCString("TYX/System") << QCString("shutdown()") << false << 1;
    QTest::newRow("amClosed()") << QCString("TYX/System") << QCString("amClosed()") << false << 1;
    QTest::newRow("amClosed() refused") << QCString("TYX/System") << QCString("amClosed()") << true << 1;
    QTest::newRow("shutdown() without end") << process << QCString("shutdown()") << false << 30'000;
}

void TstZApplication::ordersToQuitEndTheProcess()
{
    QFETCH(QCString, channel);
    QFETCH(QCString, message);
    QFETCH(bool, keep);
    QProcess peer;
    peer.start(kPeer, keep ? QStringList{QStringLiteral("keep")} : QStringList());
    QVERIFY(peer.waitForReadyRead());
    const QCString process = processChannel(peer.processId());
    QFETCH(int, times);
    for (int i = 0; i < times; ++i)
        QVERIFY(QCopChannel::send(channel.isEmpty() ? process : channel, message));
    if (keep) // it is still there to take the next order
        QVERIFY(QCopChannel::send(process, "quickQuit()"));
    QVERIFY(peer.waitForFinished());
    QCOMPARE(peer.exitStatus(), QProcess::NormalExit);
    QCOMPARE(peer.exitCode(), keep ? 5 : 0);
}

int main(int argc, char **argv) { return runAsApplication<TstZApplication>(argc, argv); }

#include "tst_zapplication.moc"
