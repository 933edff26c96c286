// The start of an application, and what of it is done again while it runs.
#include "appbase/messaging/wire.h"
#include "tests/support/applicationtest.h"
#include "tests/support/testfiles.h"

#include <QCopChannel>
#include <QPalette>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

const QString kPeer = QStringLiteral(TYX_BINARY_DIR "/tests/apppeer");

void setSystem(const QByteArray &line) { fill(u"/tmp/tyx_system.cfg"_s, "[SYS_SYSTEM_SET]\n" + line + '\n'); }

}

class TstAppStart : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void stepsComeInTheirOrder();
    void theLookFollowsMessages();
    void theLanguageChangesWhileItRuns();
};

// What a start asks of the system, seen from outside. (Style and decoration ask for nothing.)
void TstAppStart::stepsComeInTheirOrder()
{
    if (const char *reason = whyNotTraced())
        QSKIP(reason);
    QProcess peer;
    peer.start(u"strace"_s,
        {u"-E"_s, u"ASAN_OPTIONS=detect_leaks=0"_s, // nobody can look for them while it is traced
            u"-E"_s, u"TYX_RES_STRING_PATH=/tmp/strings"_s, u"-E"_s, u"TYX_RES_FONT_PATH=/tmp/fonts"_s, u"-o"_s,
            u"/tmp/trace"_s, u"-s"_s, u"200"_s, u"-e"_s, u"openat,sendto,sendmsg,write"_s, kPeer});
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

void TstAppStart::theLookFollowsMessages()
{
    const auto tell = [](const char *message) { QVERIFY(QCopChannel::send("TYX/System", message)); };
    const auto window = [] { return QApplication::palette().color(QPalette::Window); };
    fill(u"/tmp/colorpalette.cfg"_s, "[COLOR_PALETTE]\nWindow = #102030\n");
    tell("applyPalette()");
    QTRY_COMPARE(window(), QColor(0x10, 0x20, 0x30));
    fill(u"/tmp/colorpalette.cfg"_s, "[COLOR_PALETTE]\nWindow = #302010\n");
    tell("applyStyle()");
    QTRY_COMPARE(window(), QColor(0x30, 0x20, 0x10));
    QCOMPARE(QApplication::font().pointSizeF(), 9.0);
    setSystem("TextSize = 2");
    tell("changeTextSize()");
    QTRY_COMPARE(QApplication::font().pointSizeF(), 12.0);
}

void TstAppStart::theLanguageChangesWhileItRuns()
{
    qputenv("TYX_RES_STRING_PATH", TYX_BINARY_DIR "/strings");
    PeerProcess peer(u"apppeer"_s, {u"tell"_s});
    QCOMPARE(peer.line(), "ready");
    for (const auto &[language, cancel] : {std::pair("de-de", "Abbrechen"), {"fr-fr", "Annuler"}, {"en-us", "Cancel"},
             {"xx-xx", "Abbrechen"}, {"../..", "Abbrechen"}}) {
        setSystem(QByteArray("LanguageType = ") + language);
        QVERIFY(QCopChannel::send("TYX/System", "languageChanged()"));
        QCOMPARE(peer.line(), QByteArray("language ") + cancel);
    }
}

int main(int argc, char **argv) { return runAsApplication<TstAppStart>(argc, argv); }

#include "tst_appstart.moc"
