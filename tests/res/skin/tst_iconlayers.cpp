// Both icon sets: which file answers.
#include "tests/support/testfiles.h"

#include <QBuffer>
#include <QDir>
#include <QMovie>
#include <UTIL_Skin>
#include <ZResFileWriter>
#include <ZSkin>

using namespace Qt::StringLiterals;

namespace {

QByteArray icon(QColor color)
{
    QImage image(2, 2, QImage::Format_RGB32);
    image.fill(color);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    return image.save(&buffer, "PNG") ? bytes : QByteArray();
}

// /tmp/N/iconres.tyx has "N.g" and every "M-N.g" with M up to N in its own colour.
constexpr Qt::GlobalColor kColors[] = {Qt::red, Qt::green, Qt::blue, Qt::yellow};

QString fileOf(int layer) { return u"/tmp/%1/iconres.tyx"_s.arg(layer); }

// "none" for what is not there.
QString colorOf(const QImage &image) { return image.isNull() ? u"none"_s : image.pixelColor(0, 0).name(); }
QString colorName(int layer) { return layer < 0 ? u"none"_s : QColor(kColors[layer]).name(); }

}

class TstIconLayers : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void theLastFileAnswers();
    void aDamagedIconIsNoAnswer();
    void theIconsOfTheProcess();
    void everyKindOfImage();
};

void TstIconLayers::initTestCase()
{
    for (int layer = 0; layer < 4; ++layer) {
        QVERIFY(QDir().mkpath(u"/tmp/%1"_s.arg(layer)));
        ZResFileWriter writer(fileOf(layer));
        for (int up = layer; up < 4; ++up)
            writer.add(u"to%1.g"_s.arg(up), icon(kColors[layer]));
        writer.add(u"from%1.g"_s.arg(layer), icon(kColors[layer]));
        writer.add(u"damaged.g"_s, layer == 0 ? icon(Qt::red) : QByteArray("\x89PNG"));
        QVERIFY(writer.save());
    }
}

void TstIconLayers::theLastFileAnswers()
{
    const struct {
        QString name;
        int ofTwo; // the layer that answers; -1: none
        int ofFour;
    } rows[] = {{u"to0"_s, 0, 0}, {u"to1"_s, 1, 1}, {u"to2"_s, 1, 2}, {u"to3"_s, 1, 3}, {u"from1"_s, 1, 1},
        {u"from3"_s, -1, 3}, {u"none"_s, -1, -1}};
    for (const auto &[name, ofTwo, ofFour] : rows) {
        UTIL_Skin two(fileOf(0), fileOf(1));
        QCOMPARE(two.exists(name + u".g"), ofTwo >= 0);
        QCOMPARE(two.pixmapExists(name), ofTwo >= 0);
        QCOMPARE(colorOf(two.getPixmap(name).toImage()), colorName(ofTwo));
        const char *data = "untouched";
        unsigned int length = 9;
        QCOMPARE(two.getByFullFileName(u"/a/"_s + name + u".PNG", data, length), ofTwo >= 0);
        QCOMPARE(QByteArray(data, qsizetype(length)), ofTwo < 0 ? QByteArray() : icon(kColors[ofTwo]));
        QCOMPARE(two.getByFileName(name + u".gif", data, length), ofTwo >= 0);

        ZSkin four(fileOf(0), fileOf(1), fileOf(2), fileOf(3));
        QCOMPARE(four.exists(name + u".g"), ofFour >= 0);
        QCOMPARE(colorOf(four.getQImage(name + u".g")), colorName(ofFour));
        QCOMPARE(ZSkin(fileOf(0), QString(), u"/tmp/none"_s, fileOf(3)).exists(name + u".g"),
            ofFour == 0 || ofFour == 3 || name.startsWith(u"to"));
    }
}

void TstIconLayers::aDamagedIconIsNoAnswer()
{
    QCOMPARE(colorOf(UTIL_Skin(fileOf(0), fileOf(1)).getPixmap(u"damaged"_s).toImage()), colorName(0));
    // The bytes are those of the last file all the same, and so is what is made of them.
    QVERIFY(ZSkin(fileOf(0), fileOf(1), QString(), QString()).getQImage(u"damaged.g"_s).isNull());
}

void TstIconLayers::theIconsOfTheProcess()
{
    qputenv("TYX_RES_ICON_PATH", "/tmp/0");
    qputenv("TYX_DOWNLOAD_RES_ICON_PATH", "/tmp/1");
    QVERIFY(!UTIL_Skin::defaultSkin && !ZSkin::defaultSkin);
    QCOMPARE(colorOf(UTIL_Skin::get()->getPixmap(u"to1"_s).toImage()), colorName(1));
    QCOMPARE(colorOf(ZSkin::skin()->getQImage(u"to1.g"_s)), colorName(1));
    QCOMPARE(UTIL_Skin::get(), UTIL_Skin::defaultSkin);
    QCOMPARE(ZSkin::skin(), ZSkin::defaultSkin);

    qputenv("TYX_DOWNLOAD_RES_ICON_PATH", "/tmp/2");
    QVERIFY(!UTIL_Skin::get()->exists(u"from2.g"_s) && !ZSkin::skin()->exists(u"from2.g"_s));
    UTIL_Skin::reloadDef();
    ZSkin::reloadSkin();
    QVERIFY(UTIL_Skin::get()->exists(u"from2.g"_s) && ZSkin::skin()->exists(u"from2.g"_s));
}

void TstIconLayers::everyKindOfImage()
{
    // Two frames of one pixel, white and black.
    const QByteArray gif = QByteArray::fromHex("474946383961 01000100 800000 000000ffffff"
                                               "2c 00000000 01000100 00 02 02 4c01 00"
                                               "2c 00000000 01000100 00 02 02 4401 00 3b");
    ZResFileWriter writer(u"/tmp/kinds.tyx"_s);
    writer.add(u"movie.g"_s, gif);
    writer.add(u"icon.g"_s, icon(Qt::black));
    QVERIFY(writer.save());
    std::unique_ptr<QMovie> movie;
    {
        ZSkin skin(u"/tmp/kinds.tyx"_s, QString(), QString(), QString());
        QCOMPARE(skin.getQPixmap(u"icon.g"_s).toImage().pixelColor(1, 1), QColor(Qt::black));
        QCOMPARE(skin.getQBitmap(u"icon.g"_s).size(), QSize(2, 2));
        QCOMPARE(skin.getQBitmap(u"icon.g"_s).depth(), 1);
        QVERIFY(skin.getQPixmap(u"none.g"_s).isNull() && skin.getQBitmap(u"none.g"_s).isNull());
        QVERIFY(!skin.getQMovie(u"none.g"_s)->isValid());
        movie = skin.getQMovie(u"movie.g"_s);
    }
    QVERIFY(movie->isValid());
    QVERIFY(movie->jumpToFrame(0) && movie->jumpToNextFrame()); // the skin is gone
    QCOMPARE(movie->currentImage().pixelColor(0, 0), QColor(Qt::black));
}

QTEST_MAIN(TstIconLayers)
#include "tst_iconlayers.moc"
