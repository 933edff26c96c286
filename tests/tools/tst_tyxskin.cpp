// The real program on real files: `tyx skin`.
#include "tests/support/columns.h"
#include "tests/support/tyxtool.h"

#include <QDir>
#include <QImage>
#include <QJsonArray>
#include <QJsonObject>
#include <QRegion>
#include <UTIL_SkinFileWriter>

using namespace Qt::StringLiterals;

namespace {

const TyxCommand tyx{u"skin"_s};

// Its pixels differ from one another, half of them in how transparent they are.
QImage picture(int width, int height)
{
    QImage image(width, height, QImage::Format_ARGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, qRgba(x * 7 % 256, y * 5 % 256, width, x % 2 ? 255 : y % 256));
    }
    return image;
}

QMap<QString, QRect> rectsOf(const QString &file)
{
    QMap<QString, QRect> rects;
    for (const auto &entry : tyx.json({u"list"_s, file})[u"pictures"].toArray())
        rects.insert(entry[u"id"].toString(),
            QRect(entry[u"x"].toInt(), entry[u"y"].toInt(), entry[u"width"].toInt(), entry[u"height"].toInt()));
    return rects;
}

// The image of a skin, which stands behind everything else.
QByteArray imageOf(const QString &file) { return content(file).mid(content(file).indexOf("\x89PNG")); }

}

class TstTyxSkin : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void aFolderGoesThereAndBack();
    void picturesDoNotOverlap();
    void anImageWithRectangles();
    void whatCannotBePackedIsTold_data();
    void whatCannotBePackedIsTold();
    void faultsAreNamed();
    void skinsAreCompared();
    void aSheetShowsThem();
    void commandLines();
};

void TstTyxSkin::init()
{
    for (const QString &folder : {u"in"_s, u"out"_s}) {
        QDir(folder).removeRecursively();
        QVERIFY(QDir().mkpath(folder));
    }
    QVERIFY(picture(30, 20).save(u"in/Phone.png"_s) && picture(5, 40).save(u"in/bar.png"_s));
    fill(u"in/base.colors"_s, "# comment\nWindow #3366cc\n\ntwo words\t#ABCDEF\n");
    QFile::remove(u"t.skn"_s);
}

void TstTyxSkin::aFolderGoesThereAndBack()
{
    QCOMPARE(tyx("create t.skn in").status, 0);
    QCOMPARE(rectsOf(u"t.skn"_s).keys(), QStringList({u"Phone.g"_s, u"Window.g"_s, u"bar.g"_s, u"two words.g"_s}));
    QCOMPARE(tyx("verify t.skn").status, 0);
    QCOMPARE(tyx("extract t.skn out").status, 0);
    QCOMPARE(QImage(u"out/Phone.png"_s).convertToFormat(QImage::Format_ARGB32), picture(30, 20));
    QCOMPARE(QImage(u"out/bar.png"_s).convertToFormat(QImage::Format_ARGB32), picture(5, 40));
    const QImage color(u"out/two words.png"_s);
    QCOMPARE(color.pixelColor(color.width() / 2, color.height() / 2), QColor(u"#abcdef"_s));

    QCOMPARE(tyx("create again.skn out").status, 0);
    QCOMPARE(content(u"again.skn"_s), content(u"t.skn"_s));
    const Outcome again = tyx("extract t.skn out bar.g");
    QCOMPARE(again.status, 3);
    QCOMPARE(again.err, "tyx: t.skn: 'bar.g' was not extracted: open: File exists; see --replace\n");
    QCOMPARE(tyx("extract t.skn out none.g").status, 1);
}

void TstTyxSkin::picturesDoNotOverlap()
{
    for (int i = 0; i < 120; ++i)
        QVERIFY(picture(1 + i * 37 % 61, 1 + i * 53 % 47).save(u"in/%1.png"_s.arg(i)));
    for (const QStringList &size : {QStringList(), QStringList{u"--size"_s, u"301x700"_s}}) {
        QCOMPARE(tyx(QStringList{u"create"_s, u"t.skn"_s, u"in"_s} + size).status, 0);
        const QImage atlas = QImage::fromData(imageOf(u"t.skn"_s));
        QRegion used;
        qint64 area = 0;
        for (const QRect &rect : rectsOf(u"t.skn"_s)) {
            QVERIFY(atlas.rect().contains(rect));
            area += qint64{rect.width()} * rect.height();
            QVERIFY(!used.intersects(rect));
            used += rect;
        }
        if (size.isEmpty())
            QVERIFY2(area * 10 > qint64{atlas.width()} * atlas.height() * 9, "a tenth is wasted");
        else
            QCOMPARE(atlas.size(), QSize(301, 700));
    }
}

void TstTyxSkin::anImageWithRectangles()
{
    QVERIFY(picture(64, 64).save(u"in/atlas.png"_s));
    fill(u"in/rects"_s, "# image\ntwo words 0 0 64 64\r\nPhone.g\t1 2  3 4\n");
    QCOMPARE(tyx("create t.skn --image in/atlas.png --rects in/rects").status, 0);
    QCOMPARE(imageOf(u"t.skn"_s), content(u"in/atlas.png"_s));
    const Outcome list = tyx("list t.skn");
    QCOMPARE(list.out,
        "# 64 x 64 pixels, " + QByteArray::number(content(u"in/atlas.png"_s).size())
            + " bytes of png\nPhone.g  1 2 3 4\ntwo words.g  0 0 64 64\n");
    fill(u"in/rects"_s, list.out); // which says the same
    QCOMPARE(tyx("create again.skn --image in/atlas.png --rects in/rects").status, 0);
    QCOMPARE(content(u"again.skn"_s), content(u"t.skn"_s));
}

void TstTyxSkin::whatCannotBePackedIsTold_data()
{
    // arguments: behind the file
    const auto row = columns<QString, QByteArray, QByteArray, QStringList>("file", "bytes", "error", "arguments");
    const QStringList folder{u"in"_s};
    row("no image", u"in/a.png"_s, "text", "in/a.png: no image, or one of more than 64 MiB; save it anew as PNG\n",
        folder);
    row("no picture's name", u"in/a.txt"_s, "",
        "in/a.txt: the identifier of a picture ends in .g; convert it to PNG, or name it in a manifest\n", folder);
    row("a picture and a colour", u"in/more.colors"_s, "\nPhone #ffffff\n",
        "in/more.colors:2: has the same identifier 'Phone.g' as in/Phone.png; rename one of them\n", folder);
    row("no colour", u"in/more.colors"_s, "Base #12345\n", "in/more.colors:1: should be a name and a colour, #rrggbb\n",
        folder);
    row("no room", u"in/more.colors"_s, "Base #123456\n",
        "in: the pictures do not fit into 34 x 40; make them smaller or fewer, or give a larger --size\n",
        {u"in"_s, u"--size"_s, u"34x40"_s});
    const QStringList image{u"--image"_s, u"in/Phone.png"_s, u"--rects"_s, u"in/rects"_s};
    row("no rectangle", u"in/rects"_s, "a 1 2 3\n", "in/rects:1: should be a name, x, y, width and height\n", image);
    row("huge", u"in/rects"_s, "a 4294967295 0 1 1\n", "in/rects:1: should be a name, x, y, width and height\n", image);
    row("empty", u"in/rects"_s, "a 1 2 0 4\n", "in/rects:1: nothing is in it; width and height are 1 or more\n", image);
    row("outside", u"in/rects"_s, "#\na 29 0 2 1\n",
        "in/rects:2: it reaches out of the image, which has 30 x 20 pixels\n", image);
    row("twice", u"in/rects"_s, "a 0 0 1 1\na.g 0 0 2 2\n",
        "in/rects:2: has the same identifier 'a.g' as in/rects:1; rename one of them\n", image);
    row("no such image", u"in/rects"_s, "a 0 0 1 1\n", "none.png: open: No such file or directory; check the name\n",
        {u"--image"_s, u"none.png"_s, u"--rects"_s, u"in/rects"_s});
}

void TstTyxSkin::whatCannotBePackedIsTold()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, error);
    QFETCH(QStringList, arguments);
    fill(file, bytes);
    const Outcome outcome = tyx(QStringList{u"create"_s, u"t.skn"_s} + arguments);
    QCOMPARE(outcome.err, "tyx: " + error);
    QCOMPARE(outcome.status, 3);
    QVERIFY(!QFile::exists(u"t.skn"_s));
}

void TstTyxSkin::faultsAreNamed()
{
    UTIL_SkinFileWriter writer(u"t.skn"_s, u"in/Phone.png"_s);
    writer.add(u"in.g"_s, QRect(0, 0, 30, 20));
    writer.add(u"part.g"_s, QRect(28, 18, 4, 4));
    writer.add(u"out.g"_s, QRect(-1, 0, 1, 1));
    writer.add(u"none.g"_s, QRect(1, 1, 0, 1));
    QVERIFY(writer.save());
    Outcome outcome = tyx("verify t.skn");
    QCOMPARE(outcome.status, 1);
    QCOMPARE(outcome.out,
        "ok     header, identifiers, hash table and data are as writers make them\n"
        "ok     the image has 30 x 20 pixels\n"
        "wrong  the rectangle of 'none.g' is empty: 1 1 0 1\n"
        "wrong  the rectangle of 'out.g' reaches out of the image: 4294967295 0 1 1\n"
        "wrong  the rectangle of 'part.g' reaches out of the image: 28 18 4 4\n");
    outcome = tyx("extract t.skn out part.g out.g");
    QCOMPARE(outcome.err, "tyx: t.skn: 'out.g' was not extracted: its rectangle has nothing of the image\n");
    QCOMPARE(QImage(u"out/part.png"_s).size(), QSize(2, 2));

    fill(u"in/text"_s, "text");
    writer.init(u"t.skn"_s, u"in/text"_s);
    QVERIFY(writer.save());
    const QJsonDocument checks = tyx.json("verify t.skn");
    QVERIFY(!checks[u"sound"].toBool());
    QVERIFY(checks[u"checks"][0][u"sound"].toBool() && !checks[u"checks"][1][u"sound"].toBool());
    QCOMPARE(tyx("list t.skn").out, "# no image, 4 bytes\n");
    QVERIFY(!tyx.json("list t.skn").object().contains(u"width"_s));
    QCOMPARE(tyx("extract t.skn out").err, "tyx: t.skn: its image does not decode; tyx skin verify tells more\n");
    fill(u"t.skn"_s, content(u"t.skn"_s).first(100));
    QCOMPARE(tyx("verify t.skn").out, "wrong  byte 16: the start block is behind the end of the file\n");
}

void TstTyxSkin::skinsAreCompared()
{
    QVERIFY(picture(64, 64).save(u"in/atlas.png"_s));
    UTIL_SkinFileWriter writer(u"t.skn"_s, u"in/atlas.png"_s);
    writer.add(u"same.g"_s, QRect(0, 0, 8, 8));
    writer.add(u"changed.g"_s, QRect(8, 0, 8, 8));
    writer.add(u"removed.g"_s, QRect(16, 0, 8, 8));
    writer.add(u"moved.g"_s, QRect(0, 0, 8, 8));
    QVERIFY(writer.save());
    QCOMPARE(tyx("diff t.skn t.skn").status, 0);
    QImage atlas(128, 64, QImage::Format_ARGB32);
    atlas.fill(Qt::transparent);
    for (int x = 0; x < 64; ++x) {
        for (int y = 0; y < 64; ++y) {
            atlas.setPixel(x, y, picture(64, 64).pixel(x, y));
            atlas.setPixel(x + 64, y, picture(64, 64).pixel(x, y));
        }
    }
    QVERIFY(atlas.save(u"in/atlas.png"_s));
    writer.init(u"other.skn"_s, u"in/atlas.png"_s);
    writer.add(u"same.g"_s, QRect(0, 0, 8, 8));
    writer.add(u"changed.g"_s, QRect(8, 1, 8, 8));
    writer.add(u"added.g"_s, QRect(16, 0, 8, 8));
    writer.add(u"moved.g"_s, QRect(64, 0, 8, 8));
    QVERIFY(writer.save());
    const Outcome outcome = tyx("diff t.skn other.skn");
    QCOMPARE(outcome.status, 1);
    QCOMPARE(outcome.out,
        "added    added.g\nchanged  changed.g\nmoved    moved.g\nremoved  removed.g\n"
        "size     128 x 64, was 64 x 64\n");
}

void TstTyxSkin::aSheetShowsThem()
{
    QVERIFY(picture(300, 500).save(u"in/large.png"_s));
    QCOMPARE(tyx("create t.skn in").status, 0);
    const Outcome outcome = tyx("sheet t.skn out/sheet.png");
    QCOMPARE(outcome.err, "");
    QCOMPARE(outcome.status, 0);
    const QImage all(u"out/sheet.png"_s);
    QCOMPARE(all.width(), 960);
    QCOMPARE(tyx("sheet t.skn out/sheet.png bar.g").status, 0);
    QVERIFY(QImage(u"out/sheet.png"_s).height() < all.height());
    QVERIFY(QFile::link(u"sheet.png"_s, u"out/link.png"_s));
    QCOMPARE(tyx({u"sheet"_s, u"t.skn"_s, u"out/link.png"_s}).status, 0);
    QVERIFY(S_ISLNK(modeOf(u"out/link.png"_s)));
    QCOMPARE(QImage(u"out/sheet.png"_s), all);
    QCOMPARE(QImage::fromData(tyx({u"sheet"_s, u"t.skn"_s, u"-"_s}).out), all);
}

void TstTyxSkin::commandLines()
{
    const std::tuple<const char *, int, const char *> rows[] = {{"", 2, " skin: which command?; see tyx skin --help\n"},
        {"paint t.skn", 2, " skin: there is no command 'paint'; see tyx skin --help\n"},
        {"create t.skn", 2, ": skin create: give a folder or manifest, or else --image and --rects\n"},
        {"create t.skn in --image a --rects b", 2,
            ": skin create: give a folder or manifest, or else --image and --rects\n"},
        {"create t.skn --image a", 2, " skin create: --image requires --rects; see tyx skin create --help\n"},
        {"create t.skn in --size 10x", 2,
            " skin create: --size: \"10x\" should be a size in pixels, like 256x512, of 64 MiB at most; see tyx skin "
            "create --help\n"},
        {"create t.skn in --size +10x10", 2,
            " skin create: --size: \"+10x10\" should be a size in pixels, like 256x512, of 64 MiB at most; see tyx "
            "skin "
            "create --help\n"},
        {"create t.skn in --size 32000x32000", 2,
            " skin create: --size: \"32000x32000\" should be a size in pixels, like 256x512, of 64 MiB at most; see "
            "tyx skin create --help\n"},
        {"list", 2, " skin list: FILE is required; see tyx skin list --help\n"},
        {"list in/Phone.png", 3,
            ": in/Phone.png: the first line is not that of the format; it is no skin file, or damaged: make it "
            "again\n"},
        {"create none/t.skn in", 3,
            ": none/t.skn: could not be saved: open: No such file or directory; make its folder first\n"}};
    for (const auto &[line, status, error] : rows) {
        const Outcome outcome = tyx(line);
        QCOMPARE(outcome.err, "tyx" + QByteArray(error));
        QCOMPARE(outcome.status, status);
    }
}

QTEST_MAIN(TstTyxSkin)
#include "tst_tyxskin.moc"
