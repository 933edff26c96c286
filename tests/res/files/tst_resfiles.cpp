// Both families of readers and writers, on real files.
#include "tests/support/columns.h"
#include "tests/support/standarderror.h"

#include <PixmapName>
#include <QBuffer>
#include <QDir>
#include <QImage>
#include <UTIL_Res>
#include <UTIL_ResFile>
#include <UTIL_ResFileReader>
#include <UTIL_ResFileWriter>
#include <ZRes>
#include <ZResFileReader>
#include <ZResFileWriter>

using namespace Qt::StringLiterals;

namespace {

const QString kFile = QStringLiteral("/tmp/t.tyx");

QByteArray encoded(const QSize &size, const char *format)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    return image.save(&buffer, format) ? bytes : QByteArray();
}

template <typename Writer> void writeFile(const QList<std::pair<QString, QByteArray>> &resources)
{
    Writer writer(kFile);
    for (const auto &[id, data] : resources)
        writer.add(id, data);
    QString error;
    QVERIFY2(writer.save(&error), qPrintable(error));
    QVERIFY(error.isNull());
}

template <typename Reader> QByteArray dataOf(Reader &reader, const QString &id)
{
    const char *data = "untouched";
    unsigned int length = 9;
    if (!reader.get(id, data, length))
        return data == nullptr && length == 0 ? "(none)" : "(left as it was)";
    return {data, qsizetype(length)};
}

template <typename Reader> QStringList idsOf(Reader &reader)
{
    QStringList ids;
    for (QString id = reader.getFirstID(); !id.isNull(); id = reader.getNextID())
        ids.append(id);
    ids.sort();
    return ids;
}

template <typename Writer, typename Reader> void answersAsItShould()
{
    writeFile<Writer>({{u"b.a"_s, "sound"}, {u"a.g"_s, "image"}, {u"\u00e9.g"_s, "latin"}, {u"\u20ac"_s, "other"},
        {u"b.a"_s, "a later sound"}});
    Reader reader(kFile);
    QVERIFY(reader.exists(u"a.g"_s));
    QVERIFY(!reader.exists(u"A.g"_s));
    QCOMPARE(dataOf(reader, u"a.g"_s), "image");
    QCOMPARE(dataOf(reader, u"\u00e9.g"_s), "latin");
    QCOMPARE(dataOf(reader, u"?"_s), "other");
    QCOMPARE(dataOf(reader, u"b.a"_s), "a later sound");
    QCOMPARE(dataOf(reader, QString()), "(none)");
    QCOMPARE(idsOf(reader), QStringList({u"?"_s, u"a.g"_s, u"b.a"_s, u"b.a"_s, u"\u00e9.g"_s}));
    QStringList slots;
    for (unsigned int slot = 0; slot < 8; ++slot) // 5 resources have 6
        slots.append(reader.getID(slot));
    QCOMPARE(slots.count(QString()), 3);

    const char *data = nullptr;
    unsigned int length = 0;
    QVERIFY(reader.getDataAtOffset(0, data, length));
    QCOMPARE(QByteArray(data, qsizetype(length)), "other");
    QVERIFY(!reader.getDataAtOffset(1, data, length));
    QVERIFY(!data);

    // Who has the file in memory keeps it when it is written again.
    QVERIFY(reader.get(u"a.g"_s, data, length));
    writeFile<Writer>({{u"a.g"_s, "IMAGE"}});
    QCOMPARE(QByteArray(data, qsizetype(length)), "image");
    QVERIFY(reader.load());
    QCOMPARE(dataOf(reader, u"a.g"_s), "IMAGE");

    reader.reset();
    QVERIFY(!reader.exists(u"a.g"_s) && reader.getFirstID().isNull() && reader.getID(0).isNull());
    QCOMPARE(reader.getFileName(), QString());
    reader.setFileName(kFile);
    QVERIFY(reader.load() && reader.exists(u"a.g"_s));
    QVERIFY(!reader.init(u"/tmp/none.tyx"_s));
    QCOMPARE(reader.fileName(), u"/tmp/none.tyx"_s);
    QCOMPARE(dataOf(reader, u"a.g"_s), "(none)");
    QVERIFY(QFile::remove(kFile));
}

// Notes are printed, failures are told only by save().
template <typename Writer> void writesAsItShould()
{
    Writer writer(kFile);
    const int modulo = int(qstrlen(UTIL_ResFile::headerText) % 4);
    writer.add(QString(6 - modulo, u'x'), "1"); // with its line end 3 more than a multiple of 4
    QCOMPARE(StandardError::during([&] { QVERIFY(writer.write()); }), QByteArray("aligning start block\n"));
    const QByteArray before = content(kFile);
    QCOMPARE(modeOf(kFile), mode_t(S_IFREG | 0644));

    writer.reset();
    QCOMPARE(writer.fileName(), kFile);
    writer.add(QString(7 - modulo, u'x'), "2");
    QVERIFY(QDir().mkdir(kFile + u".new"));
    QString error;
    QCOMPARE(StandardError::during([&] { QVERIFY(writer.write()); }), QByteArray());
    QVERIFY(!writer.save(&error));
    QCOMPARE(error, u"open: Is a directory"_s);
    QCOMPARE(content(kFile), before);
    QVERIFY(QDir().rmdir(kFile + u".new"));
    QCOMPARE(StandardError::during([&] { QVERIFY(writer.save(&error)); }), QByteArray());
    QVERIFY(error.isNull());
    QVERIFY(content(kFile) != before);

    writer.init(QString());
    QVERIFY(writer.write() && !writer.save(&error));
    QCOMPARE(error, u"no file name"_s);
    QVERIFY(QFile::remove(kFile));
}

}

class TstResFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void bothFamiliesAnswer();
    void bothFamiliesWrite();
    void aFullDiskKeepsTheOldFile();
    void namesThatAreNoFiles();
    void firstAndLaterAnswersAgree_data();
    void firstAndLaterAnswersAgree();
    void aFileThatIsCutShort();
    void theIconsOfThePhone();
    void pixmaps_data();
    void pixmaps();
    void pixmapsCarryTheirNamesUnderTest();
};

void TstResFiles::bothFamiliesAnswer()
{
    answersAsItShould<ZResFileWriter, ZResFileReader>();
    answersAsItShould<UTIL_ResFileWriter, UTIL_ResFileReader>();
    QCOMPARE(ZRes::createID(u"a/b.JPG"_s), UTIL_Res::createID(u"b.png"_s));
    QCOMPARE(ZRes::hashVal(u"\u20acb"_s), UTIL_Res::hashVal(u"?b"_s));
    QCOMPARE(ZRes::hashVal(QString()), 0xFFFFFFFFU);
    QCOMPARE(UTIL_Res::bigToLittle(ZRes::bigToLittle(UTIL_ResFile::startBlockCheck)), 0xABCDDCBAU);
}

void TstResFiles::bothFamiliesWrite()
{
    writesAsItShould<ZResFileWriter>();
    writesAsItShould<UTIL_ResFileWriter>();
}

void TstResFiles::aFullDiskKeepsTheOldFile() // /tmp has 1 MiB
{
    writeFile<ZResFileWriter>({{u"a"_s, "1"}});
    const QByteArray before = content(kFile);
    ZResFileWriter writer(kFile);
    for (int i = 0; i < 20; ++i)
        writer.add(QString::number(i), QByteArray(100'000, 'x'));
    QString error;
    QVERIFY(!writer.save(&error));
    QCOMPARE(error, u"write: No space left on device"_s);
    QCOMPARE(content(kFile), before);
    QVERIFY(!QFile::exists(kFile + u".new"));
}

void TstResFiles::namesThatAreNoFiles()
{
    fill(u"/tmp/empty"_s, "");
    const QByteArray printed = StandardError::during([] {
        for (const QString &name : QStringList{QString(), u"/tmp"_s, u"/dev/keypad0"_s, kFile + QChar::Null + u'x',
                 u"/tmp/empty"_s, QStringLiteral(TYX_SOURCE_DIR "/README.md")}) {
            ZResFileReader reader(name);
            QVERIFY2(!reader.load(), qPrintable(name));
            QVERIFY(!reader.exists(u"a"_s));
            QVERIFY(!reader.exists(QString()));
            QCOMPARE(dataOf(reader, u"a"_s), "(none)");
            QVERIFY(reader.getFirstID().isNull() && reader.getID(0).isNull());
        }
    });
    QCOMPARE(printed, "");
}

void TstResFiles::firstAndLaterAnswersAgree_data()
{
    const auto row = columns<QStringList>("ids");
    row("none", {});
    row("one, empty", QStringList(QString()));
    row("short chains", QStringList{u"a"_s, u"ab"_s, u"b"_s, u"xyz.g"_s, QString(300, u'x')});
    QStringList chain;
    for (int number = 0; number < 300; ++number)
        chain.append(u"icon_%1.g"_s.arg(number, 6, 10, QChar(u'0')));
    row("long chains, around the end", chain);
}

// The first questions are answered by reading, later ones by a mapping: of sound files and of damaged ones.
void TstResFiles::firstAndLaterAnswersAgree()
{
    QFETCH(QStringList, ids);
    QList<std::pair<QString, QByteArray>> resources;
    for (const QString &id : std::as_const(ids))
        resources.append({id, id.toLatin1() + '!'});
    writeFile<ZResFileWriter>(resources);
    const QByteArray sound = content(kFile);
    const qsizetype tables = qsizetype(qstrlen(UTIL_ResFile::headerText));
    QStringList asked = ids;
    asked.append({u"a!"_s, u"abc"_s, u"none"_s, QString(), QString(301, u'x')});
    for (int damage = 0; damage < 60; ++damage) {
        QByteArray bytes = sound;
        for (int byte = 0; byte < damage; ++byte) // none in the first round
            bytes[tables + qsizetype(qHash(damage * 100 + byte) % size_t(bytes.size() - tables))] = char(byte % 3 - 1);
        fill(kFile, bytes);
        ZResFileReader later(kFile);
        for (int i = 0; i < 20; ++i)
            later.exists(u"none"_s);
        for (const QString &id : std::as_const(asked)) {
            ZResFileReader first(kFile);
            QCOMPARE(first.exists(id), later.exists(id));
            QCOMPARE(dataOf(first, id), dataOf(later, id));
            if (damage == 0)
                QCOMPARE(dataOf(first, id), ids.contains(id) ? id.toLatin1() + '!' : QByteArray("(none)"));
        }
    }
}

void TstResFiles::aFileThatIsCutShort()
{
    writeFile<ZResFileWriter>({{u"a"_s, QByteArray(10'000, 'x')}});
    for (const qint64 size : {0, 24, 3000, 10'000}) {
        const QByteArray before = content(kFile);
        ZResFileReader reader(kFile);
        QVERIFY(QFile::resize(kFile, size));
        QCOMPARE(dataOf(reader, u"a"_s), "(none)");
        QVERIFY(reader.getFirstID().isNull());
        QVERIFY(!reader.exists(u"a"_s));
        fill(kFile, before);
    }

    // What was small enough to be read stays, wherever it stood.
    writeFile<ZResFileWriter>({{u"a"_s, QByteArray(10'000, 'x')}, {u"b"_s, "small"}});
    ZResFileReader reader(kFile);
    const char *data = nullptr;
    unsigned int length = 0;
    QVERIFY(reader.get(u"b"_s, data, length));
    QVERIFY(QFile::resize(kFile, 0));
    QCOMPARE(QByteArray(data, qsizetype(length)), "small");
    QCOMPARE(dataOf(reader, u"b"_s), "small");
    QCOMPARE(dataOf(reader, u"a"_s), "(none)");
}

void TstResFiles::theIconsOfThePhone()
{
    qputenv("TYX_RES_ICON_PATH", "/tmp/icons");
    QVERIFY(QDir().mkpath(u"/tmp/icons"_s));
    ZResFileWriter writer(u"/tmp/icons/iconres.tyx"_s);
    writer.add(u"a"_s, "1");
    QVERIFY(writer.save());
    ZResFileReader icons;
    QVERIFY(icons.exists(u"a"_s));
}

void TstResFiles::pixmaps_data()
{
    // size: empty when it is none
    const auto row = columns<QByteArray, QSize>("bytes", "size");
    for (const char *format : {"PNG", "JPG", "BMP", "XPM"})
        row(format, encoded({3, 2}, format), QSize(3, 2));
    QByteArray huge = encoded({1, 1}, "BMP");
    huge.replace(18, 8, QByteArray("\xA0\x86\x01\x00\xA0\x86\x01\x00", 8)); // 100 000 in each direction
    row("huge", huge, QSize(0, 0));
    row("huge XPM", encoded({1, 1}, "XPM").replace("1 1 1", "100000 100000 1"), QSize(0, 0));
    row("cut off", encoded({30, 20}, "PNG").first(40), QSize(0, 0));
    row("no image", "RIFF", QSize(0, 0));
    row("nothing", {}, QSize(0, 0));
}

void TstResFiles::pixmaps()
{
    QFETCH(QByteArray, bytes);
    writeFile<UTIL_ResFileWriter>({{u"icon.g"_s, bytes}});
    UTIL_ResFileReader reader(kFile);
    QVERIFY(reader.pixmapExists(u"icon"_s) && !reader.pixmapExists(u"icon.g"_s));
    const QPixmap pixmap = reader.getPixmap(u"icon"_s);
    QTEST(pixmap.size(), "size");
    if (!pixmap.isNull())
        QVERIFY(pixmap.toImage().pixelColor(1, 1).red() > 250);
    const char *data = nullptr;
    unsigned int length = 0;
    QVERIFY(reader.getByFileName(u"/usr/icons/icon.PNG"_s, data, length));
    QCOMPARE(QByteArray(data, qsizetype(length)), bytes);
    QVERIFY(!reader.getByFullFileName(u"/usr/icons/icon.mp3"_s, data, length));
}

void TstResFiles::pixmapsCarryTheirNamesUnderTest()
{
    writeFile<UTIL_ResFileWriter>({{u"icon.g"_s, encoded({3, 2}, "PNG")}});
    UTIL_ResFileReader reader(kFile);
    QVERIFY(platform::pixmapName(reader.getPixmap(u"icon"_s)).isNull());
    qputenv("TYX_FLEX_BIT", "1");
    const QPixmap icon = reader.getPixmap(u"icon"_s);
    const QList<QPixmap> kept{icon}; // as a widget keeps it
    QCOMPARE(platform::pixmapName(kept.first()), u"icon"_s);
    QCOMPARE(icon.size(), QSize(3, 2));
    QCOMPARE(icon.toImage().pixelColor(2, 1), QColor(Qt::red));
    const QPixmap none = reader.getPixmap(u"none"_s);
    QVERIFY(none.isNull());
    QCOMPARE(platform::pixmapName(none), u"none"_s);
    qunsetenv("TYX_FLEX_BIT");
}

QTEST_MAIN(TstResFiles)
#include "tst_resfiles.moc"
