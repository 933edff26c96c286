// The reader of skin files: what it says about files that are none, and what it cuts out of those that are.
#include "res/files/util_skinfilewriter.h"
#include "res/format/reslayout.h"
#include "res/share/util_shareimage.h"
#include "res/skin/skincut.h"
#include "res/skin/util_skinfilereader.h"
#include "tests/support/columns.h"
#include "tests/support/standarderror.h"

using namespace Qt::StringLiterals;

namespace {

const QString kFile = QStringLiteral("/tmp/t.skn");
const QString kOther = QStringLiteral("/tmp/other.skn");

// What the reader prints meanwhile; what the shared image says besides is left out.
QByteArray printed(const auto &action)
{
    QByteArrayList lines = StandardError::during(action).split('\n');
    lines.removeIf([](const QByteArray &line) {
        return line.startsWith("UTIL_ShareImage::") || line == "Create new shared memory";
    });
    return lines.join('\n');
}

// Every pixel is another one; the columns are opaque, soft and clear by turns.
QImage atlas(int blue)
{
    QImage image(40, 30, QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgba(x * 6, y * 8, blue, x % 3 == 0 ? 255 : x % 3 == 1 ? 100 + y : 0));
    }
    return image;
}

struct Row {
    const char *name;
    QRect rect;
    QSize size; // of what is cut out
    QPoint color; // the pixel that is its colour; (-1, -1): none
};

constexpr QPoint kNone(-1, -1);
const Row kRows[] = {
    {"all", {0, 0, 40, 30}, {40, 30}, {20, 15}},
    {"inside", {9, 3, 20, 7}, {20, 7}, {19, 6}},
    {"one", {39, 29, 1, 1}, {1, 1}, {39, 29}},
    {"whole bytes", {8, 0, 16, 2}, {16, 2}, {16, 1}},
    {"right", {35, 20, 8, 4}, {8, 4}, {39, 22}},
    {"bottom", {3, 28, 4, 9}, {4, 9}, kNone},
    {"outside", {40, 0, 4, 4}, {4, 4}, kNone},
    {"negative", {-4, 0, 4, 4}, {4, 4}, kNone},
    {"largest", {39, 29, 4096, 4096}, {4096, 4096}, kNone},
    {"too large", {39, 29, 4097, 4096}, {1, 1}, kNone},
    {"huge", {1, 1, 2147483646, 2147483646}, {39, 29}, kNone},
    {"empty", {1, 1, 0, 5}, {0, 0}, kNone},
};

void write(const QString &file, int blue)
{
    QVERIFY(atlas(blue).save(u"/tmp/atlas.png"_s));
    UTIL_SkinFileWriter writer(file, u"/tmp/atlas.png"_s);
    for (const Row &row : kRows)
        writer.add(QString::fromLatin1(row.name) + u".g", row.rect);
    QVERIFY(writer.save());
}

QByteArray word(quint32 value)
{
    QByteArray bytes(4, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

}

class TstSkinFileReader : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void failures_data();
    void failures();
    void loadingSharesTheImage();
    void pictures();
    void everyBitOfTheMaskCounts();
    void sixteenBits();
    void answers();
    void anotherSkin();
    void anImageThatDoesNotDecode();
    void aFileThatIsCutShort();
};

void TstSkinFileReader::initTestCase()
{
    write(kFile, 7);
    write(kOther, 200);
}

void TstSkinFileReader::failures_data()
{
    // bytes: of the file, when it is "/tmp/bad"
    const auto add = columns<QString, QByteArray, QByteArray, bool>("name", "bytes", "message", "loaded");
    const QString bad = u"/tmp/bad"_s;
    const QByteArray good = content(kFile);
    const qsizetype start = good.mid(16, 8).toInt(nullptr, 16);
    const auto wordAt = [&](qsizetype at) { return qFromLittleEndian<quint32>(good.constData() + at); };
    const auto data = qsizetype(wordAt(start + 16));
    const auto with = [&](qsizetype at, const QByteArray &bytes) {
        return QByteArray(good).replace(at, bytes.size(), bytes);
    };
    const auto row = [&](const char *name, const QByteArray &bytes, const char *message) {
        add(name, bad, bytes, message, false);
    };
    add("no name", {}, {}, "File Name is NULL\n", false);
    add("missing", u"/tmp/none.skn"_s, {}, "could not open /tmp/none.skn\n", false);
    add("cannot be sought", u"/dev/keypad0"_s, {}, {}, false);
    row("cannot be mapped", {}, "i/o error\n");
    row("magic", with(13, "00"), "header bytes don't match\n");
    row("short", good.first(10), "header bytes don't match\n");
    row("start block outside", with(16, QByteArray::number(good.size() - 19, 16).rightJustified(8, '0')),
        "start block offset too large\n");
    row("start block far outside", with(16, "fffffff0"), "start block offset too large\n");
    row("check word", with(start, "x"), "start block check bytes not correct\n");
    row("check word, odd place", with(16, QByteArray::number(start + 1, 16).rightJustified(8, '0')),
        "start block not aligned properly\nstart block check bytes not correct\n");
    row("ID table outside", with(start + 4, word(quint32(good.size() + 1))), "resource data file not valid\n");
    row("hash table outside", with(start + 12, word(0xFFFFFFFF)), "resource data file not valid\n");
    row("hash table end outside", with(start + 8, word(0x0AAAAAAB)), "resource data file not valid\n"); // * 24 wraps
    row("data outside", with(start + 16, word(quint32(good.size() + 1))), "resource data file not valid\n");
    row("block check word", with(data, word(0x00C0FFEE)),
        "error reading resource data (data block check failed, got 00c0ffee, expected dcbaabcd)\n");
    row("block too large", with(data + 4, word(0xFFFFFFF8)), "error reading resource data (resource too large)\n");
    row("block cut short", good.chopped(1), "error reading resource data (resource too large)\n");
    row("block header cut short", good.first(data + 6), "error reading resource data (resource too large)\n");
    row("no block", good.first(data), "error reading resource data (resource too large)\n");
    // Everything one byte further: a warning only.
    QByteArray moved = QByteArray(good).insert(start, 'x');
    moved.replace(16, 8, QByteArray::number(start + 1, 16).rightJustified(8, '0'));
    moved.replace(start + 1 + 12, 4, word(wordAt(start + 12) + 1))
        .replace(start + 1 + 16, 4, word(wordAt(start + 16) + 1));
    add("odd place", bad, moved, "start block not aligned properly\n", true);
}

void TstSkinFileReader::failures()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, message);
    QFETCH(bool, loaded);
    fill(u"/tmp/bad"_s, bytes);
    qputenv("TYX_RES_SKIN_FILE", QFile::encodeName(kOther));
    printed([&] {
        UTIL_SkinFileReader reader;
        const QByteArray said = printed([&] { QCOMPARE(reader.init(name), loaded); });
        QVERIFY(said.startsWith(message));
        QCOMPARE(reader.exists(u"all.g"_s), loaded);
        QCOMPARE(reader.getFirstID().isNull(), !loaded);
        if (loaded)
            return;
        QCOMPARE(said, message);
        QCOMPARE(
            printed([&] { QCOMPARE(reader.getPixmap(u"all"_s).size(), QSize(20, 20)); }), QByteArray("load failed\n"));
        QVERIFY(!reader.getColor(u"all"_s).isValid());
    });
}

void TstSkinFileReader::loadingSharesTheImage()
{
    delete UTIL_SkinFileReader::pSkinImage;
    UTIL_SkinFileReader::pSkinImage = nullptr;
    qunsetenv("TYX_RES_SKIN_FILE");
    const int before = UTIL_SkinFileReader::instanceCount;
    printed([] {
        UTIL_SkinFileReader reader;
        QCOMPARE(UTIL_SkinFileReader::curFileName, QString());
        QVERIFY(!UTIL_SkinFileReader::pSkinImage);
        // The segment is that of the rows above, whose image stays.
        QCOMPARE(printed([&] { QVERIFY(reader.init(kFile)); }), QByteArray());
        QVERIFY(UTIL_SkinFileReader::pSkinImage);
        QCOMPARE(reader.getPixmap(u"one"_s).toImage().pixelColor(0, 0).blue(), 200);
        QCOMPARE(printed([&] { QVERIFY(reader.setFileName(kFile)); }),
            QByteArray("shared image should be reload, create new one\nsetting image data\nset image data done\n"));
        QCOMPARE(reader.getPixmap(u"one"_s).toImage().pixelColor(0, 0).blue(), 7);
        QCOMPARE(UTIL_SkinFileReader::curFileName, kFile);
        UTIL_SkinFileReader::pSkinImage->destroy();
        QCOMPARE(printed([&] { QVERIFY(reader.load(false)); }),
            QByteArray("creating new share image\ncreate new share image done\n"));
        UTIL_SkinFileReader::pSkinImage->destroy();
        QCOMPARE(printed([&] { QVERIFY(reader.load(true)); }),
            QByteArray("shared image should be reload, create new one\ncreating new share image\n"
                       "create new share image done\n"));
    });
    QCOMPARE(UTIL_SkinFileReader::instanceCount, before + 1);
}

void TstSkinFileReader::pictures()
{
    printed([] {
        UTIL_SkinFileReader reader;
        QVERIFY(reader.setFileName(kFile));
        const QImage image = atlas(7).convertToFormat(QImage::Format_ARGB32_Premultiplied);
        for (const Row &row : kRows) {
            const QString name = QString::fromLatin1(row.name);
            const QPixmap picture = reader.getPixmap(name);
            QVERIFY2(picture.size() == row.size, row.name);
            QVERIFY2(
                row.size.isEmpty() || picture.toImage() == image.copy(QRect(row.rect.topLeft(), row.size)), row.name);
            QVERIFY2(reader.pixmapExists(name) && reader.colorExists(name) && !reader.exists(name), row.name);
            QCOMPARE(reader.getColor(name), row.color == kNone ? QColor() : image.pixelColor(row.color));
        }
    });
}

void TstSkinFileReader::everyBitOfTheMaskCounts()
{
    QImage image(37, 2, QImage::Format_ARGB32_Premultiplied);
    QImage mask(image.size(), QImage::Format_MonoLSB);
    mask.setColorTable({0xFFFFFFFF, 0xFF000000});
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < 2; ++y) {
            image.setPixel(x, y, qRgba(x, y, 0, 200)); // the mask alone makes holes
            mask.setPixel(x, y, x * x % 7 < 4 || (x > 7 && x < 25) ? 1 : 0);
        }
    }
    for (uint x = 0; x < 37; ++x) {
        for (uint width = 1; x + width <= 37; ++width) {
            const QImage part = res::cut(image, mask, {x, 0, width, 2});
            for (int i = 0; i < int(width); ++i)
                QCOMPARE(part.pixel(i, 1), mask.pixelIndex(int(x) + i, 1) ? image.pixel(int(x) + i, 1) : 0U);
        }
    }
    // A mask of another size is none.
    QCOMPARE(res::cut(image, mask.copy(0, 0, 36, 2), {0, 0, 37, 2}), image);
}

void TstSkinFileReader::sixteenBits()
{
    const QImage image = atlas(7).convertToFormat(QImage::Format_RGB16);
    QImage mask(image.size(), QImage::Format_MonoLSB);
    mask.setColorTable({0xFFFFFFFF, 0xFF000000});
    mask.fill(1);
    mask.setPixel(11, 5, 0);
    const QImage part = res::cut(image, mask, {9, 3, 20, 7});
    QCOMPARE(part.pixel(2, 2), 0U);
    QCOMPARE(part.pixel(3, 2), image.pixel(12, 5));
    QCOMPARE(res::cut(image, {}, {9, 3, 20, 7}), image.copy(9, 3, 20, 7));
    QVERIFY(
        res::cut(image, {}, {39, 29, 2, 1}).pixel(0, 0) != 0 && res::cut(image, {}, {39, 29, 2, 1}).pixel(1, 0) == 0);
}

void TstSkinFileReader::answers()
{
    printed([] {
        UTIL_SkinFileReader reader;
        QVERIFY(reader.setFileName(kFile));
        QStringList ids;
        for (QString id = reader.getFirstID(); !id.isNull(); id = reader.getNextID())
            ids.append(id);
        QCOMPARE(ids.size(), qsizetype(std::size(kRows)));
        QVERIFY(ids.contains(u"whole bytes.g"_s));
        const char *data = nullptr;
        unsigned int length = 0;
        QVERIFY(reader.get(u"one.g"_s, data, length) && reader.getByFileName(u"/a/one.PNG"_s, data, length));
        QVERIFY(QImage::fromData(QByteArray(data, qsizetype(length))) == atlas(7));
        QVERIFY(!reader.getByFullFileName(u"one.txt"_s, data, length));
        QVERIFY(!data && length == 0);
        QCOMPARE(printed([&] { QCOMPARE(reader.getPixmap(u"none"_s).size(), QSize(40, 30)); }),
            QByteArray("Icon none lost\n"));
        QVERIFY(!reader.colorExists(u"none"_s) && !reader.getColor(u"none"_s).isValid());
        reader.reset();
        QVERIFY(!reader.exists(u"one.g"_s));
        QCOMPARE(UTIL_SkinFileReader::fileName(), kFile);
    });
}

// A picture that was cut out stays as it is when the skin is switched.
void TstSkinFileReader::anotherSkin()
{
    printed([] {
        UTIL_SkinFileReader reader;
        QVERIFY(reader.setFileName(kFile));
        const QPixmap before = reader.getPixmap(u"inside"_s);
        UTIL_SkinFileReader other;
        QVERIFY(other.setFileName(kOther));
        QCOMPARE(before.toImage().pixelColor(0, 0).blue(), 7);
        QCOMPARE(reader.getPixmap(u"inside"_s).toImage().pixelColor(0, 0).blue(), 200); // all have the new image
    });
}

void TstSkinFileReader::anImageThatDoesNotDecode()
{
    printed([] {
        fill(u"/tmp/text"_s, "text");
        UTIL_SkinFileWriter writer(u"/tmp/text.skn"_s, u"/tmp/text"_s);
        writer.add(u"one.g"_s, QRect(0, 0, 9, 9));
        QVERIFY(writer.save());
        UTIL_SkinFileReader reader;
        QVERIFY(reader.setFileName(u"/tmp/text.skn"_s));
        QCOMPARE(reader.getPixmap(u"one"_s).size(), QSize(9, 9)); // of the image that was there before
        UTIL_SkinFileReader::pSkinImage->destroy();
        QVERIFY(reader.load(true));
        QVERIFY(reader.getPixmap(u"one"_s).isNull() && reader.getPixmap(u"none"_s).isNull());
        QVERIFY(!reader.getColor(u"one"_s).isValid());
    });
}

// Names and rectangles were read when it was loaded: nobody who draws is killed.
void TstSkinFileReader::aFileThatIsCutShort()
{
    printed([] {
        const QString file = u"/tmp/short.skn"_s;
        write(file, 7);
        UTIL_SkinFileReader reader;
        QVERIFY(reader.setFileName(file) && QFile::resize(file, 0));
        QCOMPARE(reader.getPixmap(u"inside"_s).size(), QSize(20, 7));
        QVERIFY(!reader.exists(u"none.g"_s) && !reader.getFirstID().isNull());
    });
}

QTEST_MAIN(TstSkinFileReader)
#include "tst_skinfilereader.moc"
