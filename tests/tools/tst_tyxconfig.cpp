// The real program on real files: `tyx config`.
#include "tests/support/columns.h"
#include "tests/support/tyxtool.h"

#include <QDir>
#include <QJsonObject>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const QString kFile = QStringLiteral("t.cfg");

const TyxCommand tyx{u"config"_s};

// A command line of the shell, which can say what QProcess cannot; $tyx is the program.
Outcome shell(const QString &command)
{
    return run(u"sh"_s, {u"-c"_s, u"tyx=" TYX_BINARY_DIR "/bin/tyx; "_s + command});
}

}

class TstTyxConfig : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void answers();
    void changes_data();
    void changes();
    void checks_data();
    void checks();
    void otherBytesThanTextAreRefused();
    void printsJson();
    void aTerminalSeesNoControlCharacters();
    void lostOutputIsAFailure();
    void unreadableFilesFail();
    void aSaveThatDidNotHappenIsNoticed();
    void whoHoldsTheTemporaryIsNamed();
};

void TstTyxConfig::answers()
{
    fill(kFile, "[B]\n[A]\nk=a value\nempty=\n");
    const std::tuple<const char *, int, const char *> rows[] = {
        {"get t.cfg A k", 0, "a value\n"},
        {"get t.cfg A empty --default d", 0, "\n"},
        {"get t.cfg A none", 1, ""},
        {"get t.cfg none k", 1, ""},
        {"get t.cfg A none --default d", 0, "d\n"},
        {"get none.cfg A none --default d", 0, "d\n"},
        {"list t.cfg", 0, "[A]\nempty = \nk = a value\n[B]\n"},
        {"list t.cfg B", 0, "[B]\n"},
        {"list t.cfg C", 1, ""},
        {"get t.cfg A", 2, ""},
        {"frobnicate", 2, ""},
    };
    for (const auto &[line, status, out] : rows) {
        const Outcome outcome = tyx(line);
        QVERIFY2(outcome.status == status, line);
        QCOMPARE(outcome.out, out);
        QCOMPARE(outcome.err.isEmpty(), status == 0);
    }
}

void TstTyxConfig::changes_data()
{
    // arguments: FILE is put in after the first
    const auto row = columns<QByteArray, QStringList, int, QByteArray>("before", "arguments", "status", "after");
    const char *const old = "[G]\na = 1\nb = 2\n";
    row("set", old, {u"set"_s, u"G"_s, u"a"_s, u"x = y"_s}, 0, "[G]\na = x = y\nb = 2\n");
    row("set in a new group", "", {u"set"_s, u"\u00fc"_s, u"a"_s, u""_s}, 0, "[\xC3\xBC]\na = \n");
    row("a negative number", "", {u"set"_s, u"G"_s, u"a"_s, u"-5"_s}, 0, "[G]\na = -5\n");
    row("remove a key", old, {u"remove"_s, u"G"_s, u"a"_s}, 0, "[G]\nb = 2\n");
    row("remove a group", old, {u"remove"_s, u"G"_s}, 0, "");
    row("remove an empty group", "[G]\n[H]\n", {u"remove"_s, u"G"_s}, 0, "[H]\n");
    row("nothing to remove", "[G]\nz=1\na=1", {u"remove"_s, u"G"_s, u"c"_s}, 1, "[G]\nz=1\na=1");
    row("no group to remove", "[G]\nz=1\na=1", {u"remove"_s, u"H"_s}, 1, "[G]\nz=1\na=1");
    // What would not come back as it was given is refused.
    row("a line break", old, {u"set"_s, u"G"_s, u"a"_s, u"1\n[H]"_s}, 2, old);
    row("a line break in the group", old, {u"set"_s, u"G\n"_s, u"a"_s, u"1"_s}, 2, old);
    row("a padded value", old, {u"set"_s, u"G"_s, u"a"_s, u"1 "_s}, 2, old);
    row("a padded key", old, {u"set"_s, u"G"_s, u" a"_s, u"1"_s}, 2, old);
    row("a key with a sign", old, {u"set"_s, u"G"_s, u"a=b"_s, u"1"_s}, 2, old);
    row("a key like a header", old, {u"set"_s, u"G"_s, u"[a"_s, u"1"_s}, 2, old);
    row("a carriage return", old, {u"set"_s, u"G"_s, u"a"_s, u"1\r2"_s}, 2, old);
    row("no group", old, {u"set"_s, u""_s, u"a"_s, u"1"_s}, 2, old);
    // What stands behind a stray line is not lost in passing.
    row("a stray line", "[G]\na=1\nstray\nb=2\n", {u"set"_s, u"G"_s, u"c"_s, u"3"_s}, 3, "[G]\na=1\nstray\nb=2\n");
    row("a stray line, by force", "[G]\na=1\nstray\nb=2\n", {u"set"_s, u"G"_s, u"c"_s, u"3"_s, u"--force"_s}, 0,
        "[G]\na = 1\nc = 3\n");
}

void TstTyxConfig::changes()
{
    QFETCH(QByteArray, before);
    QFETCH(QStringList, arguments);
    fill(kFile, before);
    arguments.insert(1, kFile);
    const Outcome outcome = tyx(arguments);
    QTEST(outcome.status, "status");
    QTEST(content(kFile), "after");
    QCOMPARE(outcome.err.count('\n'), outcome.status == 0 ? 0 : 1);
}

void TstTyxConfig::checks_data()
{
    // remark: the beginning of the only line that is printed
    const auto row = columns<QByteArray, QByteArray, int>("bytes", "remark", "status");
    row("sound", "\n[G]\n a =\n", "", 0);
    row("stray", "[G]\n\na=1\njunk\nb\n", "t.cfg:4: no '=' in this line; reading stops here", 1);
    row("no header", "\na=1\n", "t.cfg:2: no [group] before this line; reading stops here", 1);
    row("the same group", "[G]\n[H]\n[G]\n", "t.cfg:3: group [G] was in line 1 already", 1);
    row("the same key", "[G]\na=1\nb=1\na=1\n", "t.cfg:4: key 'a' was in line 2 already", 1);
    row("the same key elsewhere", "[G]\na=1\n[H]\na=1\n", "", 0);
    row("not UTF-8", "[G]\na=\xFC\n", "t.cfg:2: this line is not UTF-8", 1);
    row("behind the end", "[G]\nstray\na=\xFC\n", "t.cfg:2: no '=' in this line", 1);
    row("NUL", QByteArray("[G]\na=\0\n", 8), "t.cfg:2: a NUL character", 1);
    row("carriage return", "[G]\r\n", "t.cfg:1: a carriage return ends this line", 0);
    row("carriage returns only", "[G]\ra=1\rb=1\r", "t.cfg:1: a carriage return", 1);
    row("byte order mark", "\xEF\xBB\xBF[G]\n", "t.cfg:1: a byte order mark", 0);
}

void TstTyxConfig::checks()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, remark);
    fill(kFile, bytes);
    const Outcome outcome = tyx("check t.cfg");
    QTEST(outcome.status, "status");
    QVERIFY2(outcome.out.startsWith(remark), outcome.out.constData());
    QCOMPARE(outcome.out.isEmpty(), remark.isEmpty());
    QCOMPARE(content(kFile), bytes);
}

void TstTyxConfig::otherBytesThanTextAreRefused()
{
    fill(kFile, "[G]\na=1\n");
    const QStringList before = QDir().entryList();
    for (const QString &arguments : {u"set $bytes.cfg G a 1"_s, u"remove t.cfg $bytes"_s, u"get t.cfg G $bytes"_s,
             u"set t.cfg G a $bytes"_s, u"get t.cfg G none --default $bytes"_s}) {
        const Outcome outcome = shell(uR"(bytes=$(printf 't\374'); $tyx config )"_s + arguments);
        QCOMPARE(outcome.status, 2);
        QVERIFY2(outcome.err.endsWith("is not UTF-8\n"), outcome.err.constData());
        QCOMPARE(content(kFile), "[G]\na=1\n");
        QCOMPARE(QDir().entryList(), before);
    }
}

void TstTyxConfig::printsJson()
{
    fill(kFile, "[G]\na=\"x\"\n[H]\nstray\n");
    QCOMPARE(tyx.json("get t.cfg G a")[u"value"].toString(), u"\"x\""_s);
    const QJsonObject groups = tyx.json("list t.cfg").object();
    QCOMPARE(groups, (QJsonObject{{u"G"_s, QJsonObject{{u"a"_s, u"\"x\""_s}}}, {u"H"_s, QJsonObject()}}));
    QCOMPARE(tyx.json("check t.cfg")[0][u"line"].toInt(), 4);
}

void TstTyxConfig::aTerminalSeesNoControlCharacters()
{
    const QByteArray colored = "[\x1B[31mG]\nk = \xF0\x9F\x98\x80\xC2\x9Bz\n";
    fill(kFile, colored);
    QCOMPARE(shell(u"$tyx config list t.cfg"_s).out, colored);
    QFile terminal;
    QVERIFY(terminal.open(::posix_openpt(O_RDWR | O_NOCTTY), QIODevice::ReadOnly, QFile::AutoCloseHandle));
    QCOMPARE(::unlockpt(terminal.handle()), 0);
    const QString name = QFile::decodeName(::ptsname(terminal.handle()));
    QCOMPARE(shell(u"$tyx config list t.cfg >"_s + name).status, 0);
    char seen[100] = {};
    QVERIFY(::read(terminal.handle(), seen, sizeof seen - 1) > 0);
    QCOMPARE(QByteArray(seen).replace("\r\n", "\n"), "[?[31mG]\nk = \xF0\x9F\x98\x80?z\n");
}

void TstTyxConfig::lostOutputIsAFailure()
{
    fill(kFile, "[G]\na=1\n");
    for (const QString &arguments : {u"config list t.cfg"_s, u"config list t.cfg --json"_s, u"--help"_s}) {
        const Outcome outcome = shell(u"$tyx %1 >/dev/full"_s.arg(arguments));
        QCOMPARE(outcome.status, 3);
        QCOMPARE(outcome.err, "tyx: cannot write to standard output: No space left on device\n");
    }
}

void TstTyxConfig::unreadableFilesFail()
{
    const std::pair<const char *, const char *> rows[] = {{"list none.cfg", "check the name"},
        {"check /tmp", "name a regular file"}, {"get /dev/keypad0 G k", "name a regular file"},
        {"set /tmp G k v", "name a regular file"}};
    for (const auto &[line, cure] : rows) {
        const Outcome outcome = tyx(line);
        QCOMPARE(outcome.status, 3);
        const QByteArray place = "tyx: " + words(line)[1].toUtf8() + ": open: ";
        QVERIFY2(outcome.err.startsWith(place) && outcome.err.contains(cure), outcome.err.constData());
    }
}

void TstTyxConfig::aSaveThatDidNotHappenIsNoticed()
{
    QVERIFY(QDir().mkdir(kFile + u".new"));
    fill(kFile, "[G]\na=1\n");
    for (const char *line : {"set t.cfg G a 2", "remove t.cfg G a", "remove t.cfg G"})
        QCOMPARE(tyx(line).status, 3);
    QCOMPARE(content(kFile), "[G]\na=1\n");
    QVERIFY(QDir().rmdir(kFile + u".new"));
}

void TstTyxConfig::whoHoldsTheTemporaryIsNamed()
{
    fill(kFile, "[G]\na=1\n");
    QFile held(kFile + u".new");
    QVERIFY(held.open(QIODevice::WriteOnly));
    QCOMPARE(::flock(held.handle(), LOCK_SH), 0);
    const Outcome outcome = tyx("set t.cfg G a 2");
    QCOMPARE(outcome.status, 3);
    QVERIFY2(outcome.err.contains("another program holds t.cfg.new"), outcome.err.constData());
    QVERIFY(held.remove());
}

QTEST_GUILESS_MAIN(TstTyxConfig)
#include "tst_tyxconfig.moc"
