// The real program on real files: `tyx pack`.
#include "tests/support/columns.h"
#include "tests/support/tyxtool.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <ZResFileWriter>

using namespace Qt::StringLiterals;

namespace {

const TyxCommand tyx{u"pack"_s};

}

class TstTyxPack : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void aFolderGoesThereAndBack();
    void aManifestNamesWhatItWants();
    void whatCannotBePackedIsTold_data();
    void whatCannotBePackedIsTold();
    void filesAreAdded();
    void filesAreCompared();
    void damageIsNamed();
    void extractingStaysInItsFolder();
    void failures();
};

void TstTyxPack::init()
{
    for (const QString &folder : {u"in"_s, u"out"_s}) {
        QDir(folder).removeRecursively();
        QVERIFY(QDir().mkpath(folder + u"/sub"_s));
    }
    fill(u"in/Phone.PNG"_s, "\x89PNG picture");
    fill(u"in/sub/ring.mp3"_s, "ID3 tune");
    fill(u"in/caf\u00e9.txt"_s, "text");
    fill(u"in/.hidden"_s, "");
    QFile::remove(u"t.tyx"_s);
}

void TstTyxPack::aFolderGoesThereAndBack()
{
    QCOMPARE(tyx("create t.tyx in").status, 0);
    const QByteArray packed = content(u"t.tyx"_s);
    QCOMPARE(tyx("list t.tyx").out, "Phone.g  12\ncaf\xC3\xA9.txt  4\nring.a  8\n");
    const auto entry = tyx.json("list t.tyx")[0];
    QCOMPARE(entry[u"id"].toString(), u"Phone.g"_s);
    QCOMPARE(packed.mid(entry[u"offset"].toInteger(), entry[u"size"].toInteger()), "\x89PNG picture");
    QCOMPARE(tyx("verify t.tyx").status, 0);

    QCOMPARE(tyx("extract t.tyx out/new/folder").status, 0);
    QCOMPARE(QDir(u"out/new/folder"_s).entryList(QDir::Files),
        QStringList({u"caf\u00e9.txt"_s, u"Phone.png"_s, u"ring.mp3"_s}));
    QCOMPARE(tyx("create t.tyx out/new/folder").status, 0);
    QCOMPARE(content(u"t.tyx"_s), packed);

    const Outcome again = tyx("extract t.tyx out/new/folder ring.a");
    QCOMPARE(again.status, 3);
    QCOMPARE(again.err, "tyx: t.tyx: 'ring.a' was not extracted: open: File exists; see --replace\n");
    QCOMPARE(tyx("extract t.tyx out/new/folder ring.a --replace").status, 0);
    QCOMPARE(tyx("extract t.tyx out none").status, 1);
}

void TstTyxPack::aManifestNamesWhatItWants()
{
    fill(u"in/list"_s, "# icons\n\nPhone.PNG\nsub/ring.mp3\talarm.a\nPhone.PNG\tcaf\xC3\xA9.g\n");
    QCOMPARE(tyx("create t.tyx in/list").status, 0);
    QCOMPARE(tyx("list t.tyx").out, "Phone.g  12\nalarm.a  8\ncaf\xC3\xA9.g  12\n");
}

void TstTyxPack::whatCannotBePackedIsTold_data()
{
    // file: in the folder
    const auto row = columns<QString, QByteArray, QString, QByteArray>("file", "bytes", "source", "error");
    row("two of one identifier", u"in/sub/Phone.gif"_s, "", u"in"_s,
        "tyx: in/sub/Phone.gif: has the same identifier 'Phone.g' as in/Phone.PNG; rename one of them\n");
    row("not Latin-1", u"in/\u20ac.png"_s, "", u"in"_s,
        "tyx: in/\xE2\x82\xAC.png: the identifier '\xE2\x82\xAC.g' is not Latin-1; rename it\n");
    row("a line feed", u"in/a\nb"_s, "", u"in"_s, "tyx: in/a?b: a line feed would end the identifier; rename it\n");
    row("never found", u"in/list"_s, "Phone.PNG\tAFLa;./ao5S4KycXf>\n", u"in/list"_s,
        "tyx: in/Phone.PNG: readers never find the identifier 'AFLa;./ao5S4KycXf>'; rename it\n");
    row("no identifier", u"in/list"_s, "Phone.PNG\t\n", u"in/list"_s,
        "tyx: in/Phone.PNG: the identifier is empty; rename it\n");
    row("no path", u"in/list"_s, "\n\tid\n", u"in/list"_s, "tyx: in/list:2: no path before the tab\n");
    row("a FIFO", u"in/list"_s, "/dev/keypad0\n", u"in/list"_s,
        "tyx: /dev/keypad0: open: Invalid argument; nothing was written\n");
    row("a source without end", u"in/x"_s, "", u"/dev/zero"_s, "tyx: /dev/zero: open: Invalid argument\n");
}

void TstTyxPack::whatCannotBePackedIsTold()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, source);
    fill(file, bytes);
    const Outcome outcome = tyx({u"create"_s, u"t.tyx"_s, source});
    QCOMPARE(outcome.status, 3);
    QTEST(outcome.err, "error");
    QVERIFY(!QFile::exists(u"t.tyx"_s));
}

void TstTyxPack::filesAreAdded()
{
    QCOMPARE(tyx("create t.tyx in").status, 0);
    fill(u"out/Phone.jpg"_s, "new");
    fill(u"out/z"_s, "z");
    const Outcome refused = tyx("add t.tyx out/Phone.jpg out/z");
    QCOMPARE(refused.status, 3);
    QCOMPARE(refused.err, "tyx: out/Phone.jpg: t.tyx holds 'Phone.g' already; replace it with --replace\n");
    QCOMPARE(tyx("add t.tyx --replace out/Phone.jpg out/z").status, 0);
    QCOMPARE(tyx("list t.tyx").out, "Phone.g  3\ncaf\xC3\xA9.txt  4\nring.a  8\nz  1\n");
    QCOMPARE(tyx("verify t.tyx").status, 0);
}

void TstTyxPack::filesAreCompared()
{
    QCOMPARE(tyx("create t.tyx in").status, 0);
    QVERIFY(QFile::remove(u"in/sub/ring.mp3"_s));
    fill(u"in/Phone.PNG"_s, "other");
    fill(u"in/z"_s, "");
    QCOMPARE(tyx("create other.tyx in").status, 0);
    const Outcome outcome = tyx("diff t.tyx other.tyx");
    QCOMPARE(outcome.status, 1);
    QCOMPARE(outcome.out, "added    z\nchanged  Phone.g\nremoved  ring.a\n");
    QCOMPARE(tyx.json("diff t.tyx other.tyx")[u"added"][0].toString(), u"z"_s);
    QCOMPARE(tyx("diff t.tyx t.tyx").status, 0);
}

void TstTyxPack::damageIsNamed()
{
    QCOMPARE(tyx("create t.tyx in").status, 0);
    const qint64 offset = tyx.json("list t.tyx")[0][u"offset"].toInteger();
    fill(u"t.tyx"_s, content(u"t.tyx"_s).replace(offset - 8, 1, "!"));
    const Outcome outcome = tyx("verify t.tyx");
    QCOMPARE(outcome.status, 1);
    QCOMPARE(outcome.out,
        "t.tyx: byte " + QByteArray::number(offset - 8) + ": what should be a data block is something else\n");
    QCOMPARE(tyx.json("verify t.tyx")[u"offset"].toInteger(), offset - 8);
    QCOMPARE(tyx("list t.tyx").out.left(47), "Phone.g  what should be a data block is somethi");
    QCOMPARE(tyx("add t.tyx in/Phone.PNG").status, 3);
    QCOMPARE(tyx("extract t.tyx out").status, 3);
    QCOMPARE(content(u"out/ring.mp3"_s), "ID3 tune"); // what is sound is there
}

void TstTyxPack::extractingStaysInItsFolder()
{
    ZResFileWriter writer(u"t.tyx"_s);
    for (const QString &id : {u"../escaped"_s, u"/tmp/escaped"_s, u".."_s, u"sub/escaped"_s, u"link"_s, u"fine"_s})
        writer.add(id, "new");
    QVERIFY(writer.save());
    fill(u"escaped"_s, "old");
    QVERIFY(QFile::link(u"../escaped"_s, u"out/link"_s));
    const Outcome outcome = tyx("extract t.tyx out");
    QCOMPARE(outcome.status, 3);
    QCOMPARE(outcome.err.count('\n'), 5);
    QCOMPARE(tyx("extract t.tyx out --replace").err.count('\n'), 4);
    QCOMPARE(content(u"out/link"_s), "new");
    QCOMPARE(content(u"escaped"_s), "old");
    QCOMPARE(QDir(u"out"_s).entryList(QDir::Files), QStringList({u"fine"_s, u"link"_s}));
    QVERIFY(QDir(u"out/sub"_s).isEmpty());
}

void TstTyxPack::failures()
{
    const std::tuple<const char *, int, const char *> rows[] = {
        {"list none", 3, ": none: open: No such file or directory; check the name\n"},
        {"extract in out", 3, ": in: mmap: No such device; name a regular file\n"},
        {"diff in/.hidden in/.hidden", 3,
            ": in/.hidden: the first line is not that of the format; it is no resource file, or damaged: make it "
            "again\n"},
        {"create none/t.tyx in", 3,
            ": none/t.tyx: could not be saved: open: No such file or directory; make its folder first\n"},
        {"", 2, " pack: which command?; see tyx pack --help\n"}};
    for (const auto &[line, status, error] : rows) {
        const Outcome outcome = tyx(line);
        QCOMPARE(outcome.err, "tyx" + QByteArray(error));
        QCOMPARE(outcome.status, status);
    }
}

QTEST_GUILESS_MAIN(TstTyxPack)
#include "tst_tyxpack.moc"
