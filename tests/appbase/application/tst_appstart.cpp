// The start of an application, and what of it is done again while it runs.
#include "appbase/messaging/wire.h"
#include "tests/support/peerprocess.h"
#include "tests/support/testfiles.h"

#include <QCopChannel>
#include <QPalette>
#include <QProcess>
#include <QRegularExpression>
#include <QStyle>
#include <QTest>
#include <ZApplication>
#include <ZConfig>

using namespace Qt::StringLiterals;

namespace {

const QString kPeer = QStringLiteral(TYX_BINARY_DIR "/tests/apppeer");

void setSystem(const QString &key, const QString &value)
{
    ZConfig config(u"/tmp/tyx_system.cfg"_s, false);
    config.writeEntry(u"SYS_SYSTEM_SET"_s, key, value);
}

}

class TstAppStart : public QObject {
    Q_OBJECT

public:
    explicit TstAppStart(ZApplication &app) : m_app(app) { }

private Q_SLOTS:
    void stepsComeInTheirOrder();
    void theLookFollowsMessages();
    void oneVariableIsSet();
    void theLanguageChangesWhileItRuns();

private:
    void sendAndWait(const QCString &message, const QByteArray &arguments = {});

    ZApplication &m_app;
};

// What a start asks of the system, seen from outside. (Style and decoration ask for nothing.)
void TstAppStart::stepsComeInTheirOrder()
{
    if (const char *reason = whyNotTraced())
        QSKIP(reason);
    QProcess peer;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"ASAN_OPTIONS"_s, u"detect_leaks=0"_s); // it cannot look for leaks while it is traced
    environment.insert(u"TYX_RES_STRING_PATH"_s, u"/tmp/strings"_s);
    environment.insert(u"TYX_RES_FONT_PATH"_s, u"/tmp/fonts"_s);
    peer.setProcessEnvironment(environment);
    peer.start(
        u"strace"_s, {u"-o"_s, u"/tmp/trace"_s, u"-s"_s, u"200"_s, u"-e"_s, u"openat,sendto,sendmsg,write"_s, kPeer});
    QVERIFY(peer.waitForReadyRead());
    QVERIFY(QCopChannel::send("TYX/Application/apppeer", "ignored"));
    QVERIFY(QCopChannel::send("TYX/System", "shutdown()"));
    QVERIFY(peer.waitForFinished());

    static const QRegularExpression interesting(
        u"(TYX/System|TYX/Application/apppeer|qcop-msg-apppeer|TYX/Application/\\d+|qcop-msg-\\d+"
        "|colorpalette.cfg|fontdef.cfg.bak|tyx_system.cfg|apppeer_en-us.qm|lib_en-us.qm)\\b"_s);
    QStringList seen;
    for (const QString &line : QString::fromUtf8(content(u"/tmp/trace"_s)).section(u"ready"_s, 0, 0).split(u'\n')) {
        const QString what = interesting.match(line).captured(1).replace(QRegularExpression(u"\\d+$"_s), u"PID"_s);
        if (!what.isEmpty() && (seen.isEmpty() || seen.constLast() != what)) // a registration may take two calls
            seen << what;
    }
    const QStringList expected{u"TYX/System"_s, u"TYX/Application/apppeer"_s, u"qcop-msg-apppeer"_s, u"qcop-msg-PID"_s,
        u"colorpalette.cfg"_s, u"fontdef.cfg.bak"_s, u"tyx_system.cfg"_s, u"apppeer_en-us.qm"_s, u"lib_en-us.qm"_s,
        u"TYX/Application/PID"_s};
    QCOMPARE(seen, expected);
}

void TstAppStart::sendAndWait(const QCString &message, const QByteArray &arguments)
{
    bool done = false;
    const auto end = connect(&m_app, &ZApplication::systemMessage, this, [&done] { done = true; });
    QVERIFY(QCopChannel::send("TYX/System", message, arguments));
    QVERIFY(QCopChannel::send("TYX/System", "end of test", {}));
    QTRY_VERIFY(done);
    disconnect(end);
}

void TstAppStart::theLookFollowsMessages()
{
    struct Row {
        const char *message;
        bool palette; // what it applies
        bool size;
        bool style;
    };
    for (const Row &row : {Row{"applyPalette()", true, false, false}, Row{"changeTextSize()", false, true, false},
             Row{"applyStyle()", true, false, true}, Row{"applystyle()", false, false, false}}) {
        QFile::remove(u"/tmp/colorpalette.cfg"_s);
        QFile::remove(u"/tmp/tyx_system.cfg"_s);
        m_app.applyPalette();
        m_app.changeTextSize();
        const QPointer<QStyle> before = QApplication::style();
        fill(u"/tmp/colorpalette.cfg"_s, "[COLOR_PALETTE]\nWindow = #102030\n");
        setSystem(u"TextSize"_s, u"2"_s);
        sendAndWait(row.message);
        QCOMPARE(QApplication::palette().color(QPalette::Window) == QColor(0x10, 0x20, 0x30), row.palette);
        QCOMPARE(QApplication::font().pointSizeF(), row.size ? 12.0 : 9.0);
        QCOMPARE(QApplication::style() != before, row.style);
    }
}

void TstAppStart::oneVariableIsSet()
{
    const QByteArray whole = wire::pack(u"TYX_TEST=new"_s);
    for (const auto &[arguments, value] : {std::pair(whole, "new"), std::pair(whole.chopped(1), "old"),
             std::pair(wire::pack(u"TYX_TEST="_s), ""), std::pair(wire::pack(u"TYX_TEST=a=b"_s), "a=b"),
             std::pair(wire::pack(u"TYX_TEST=\u00e4"_s), "\xc3\xa4"), std::pair(wire::pack(u"TYX_TEST"_s), "old"),
             std::pair(wire::pack(u"=TYX_TEST"_s), "old"), std::pair(wire::pack(u"TYX_TEST=a\0b"_s), "old")}) {
        qputenv("TYX_TEST", "old");
        sendAndWait("setOneEnv()", arguments);
        QCOMPARE(qgetenv("TYX_TEST"), value);
    }
}

void TstAppStart::theLanguageChangesWhileItRuns()
{
    qputenv("TYX_RES_STRING_PATH", TYX_BINARY_DIR "/strings");
    PeerProcess peer(u"apppeer"_s, {u"tell"_s});
    QCOMPARE(peer.line(), "ready");
    for (const auto &[language, cancel] : {std::pair(u"de-de"_s, "Abbrechen"), std::pair(u"fr-fr"_s, "Annuler"),
             std::pair(u"en-us"_s, "Cancel"), std::pair(u"xx-xx"_s, "Abbrechen"), std::pair(u"../.."_s, "Abbrechen")}) {
        setSystem(u"LanguageType"_s, language);
        QVERIFY(QCopChannel::send("TYX/System", "languageChanged()"));
        QCOMPARE(peer.line(), QByteArray("language ") + cancel);
    }
}

int main(int argc, char **argv)
{
    PeerProcess server(QStringLiteral("buspeer"));
    if (server.ask("host") != "hosting")
        return 1;
    ZApplication app(argc, argv, ZApplication::Tty);
    TstAppStart test(app);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_appstart.moc"
