// The writer of skin files, on real files.
#include "res/files/mappedfile.h"
#include "tests/support/columns.h"
#include "tests/support/standarderror.h"

#include <QDir>
#include <UTIL_SkinFile>
#include <UTIL_SkinFileWriter>

using namespace Qt::StringLiterals;

class TstSkinFileWriter : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writesRectanglesAndImage();
    void failuresAreTold_data();
    void failuresAreTold();
};

void TstSkinFileWriter::writesRectanglesAndImage()
{
    fill(u"/tmp/image"_s, "the image");
    UTIL_SkinFileWriter writer(u"/tmp/t.skn"_s, u"/tmp/image"_s);
    writer.add(u"b.g"_s, QRect(QPoint(1, 2), QPoint(3, 5)));
    writer.add(u"a.g"_s, QRect(9, 9, 9, 9));
    writer.add(u"a.g"_s, QRect(0, 0, 7, 8)); // in place of the one before
    QVERIFY(StandardError::during([&] { QVERIFY(writer.write()); }).startsWith("Total account is 3\n"));
    const auto file = res::MappedFile::open(u"/tmp/t.skn"_s, res::Version::Skin);
    QVERIFY(file);
    QVERIFY(content(u"/tmp/t.skn"_s).startsWith(QByteArray(UTIL_SkinFile::headerText).first(16)));
    const auto block = file->index().block(0);
    QVERIFY(block);
    QCOMPARE(QByteArrayView(block->data(), qsizetype(block->size())), QByteArrayView("the image"));
    QCOMPARE(file->index().rectAt(*file->index().find("a.g")), (res::ImageRect{0, 0, 7, 8}));
    QCOMPARE(file->index().rectAt(*file->index().find("b.g")), (res::ImageRect{1, 2, 3, 4}));

    writer.reset();
    QVERIFY(writer.save());
    QCOMPARE(writer.getFileName(), u"/tmp/t.skn"_s);
    QCOMPARE(res::MappedFile::open(u"/tmp/t.skn"_s, res::Version::Skin)->index().slotCount(), 0U);
}

void TstSkinFileWriter::failuresAreTold_data()
{
    // printed: besides the number of pictures
    const auto row = columns<QString, QString, QByteArray, QString>("file", "image", "printed", "error");
    row("no image", u"/tmp/t.skn"_s, {}, "writeData: fatal error, skin filename is NULL\n",
        u"no file name of the image"_s);
    row("image is missing", u"/tmp/t.skn"_s, u"/tmp/none.png"_s, "writeData: error opening file /tmp/none.png\n",
        u"/tmp/none.png: open: No such file or directory"_s);
    row("image is a FIFO", u"/tmp/t.skn"_s, u"/dev/keypad0"_s, "writeData: error opening file /dev/keypad0\n",
        u"/dev/keypad0: open: Invalid argument"_s);
    row("image is too large", u"/tmp/t.skn"_s, u"/tmp/large"_s, "readFile: error reading file /tmp/large\n",
        u"/tmp/large: read: File too large"_s);
    row("no file", {}, u"/tmp/image"_s, {}, u"no file name"_s);
    row("no folder", u"/tmp/none/t.skn"_s, u"/tmp/image"_s, {}, u"open: No such file or directory"_s);
}

void TstSkinFileWriter::failuresAreTold()
{
    QFETCH(QString, file);
    QFETCH(QString, image);
    QFETCH(QByteArray, printed);
    fill(u"/tmp/image"_s, "the image");
    fill(u"/tmp/t.skn"_s, "old");
    QFile large(u"/tmp/large"_s);
    QVERIFY(large.open(QIODevice::WriteOnly) && large.resize(qint64{300} << 20));
    UTIL_SkinFileWriter writer;
    writer.init(file, image);
    writer.add(u"a.g"_s, QRect(0, 0, 1, 1));
    const QByteArray all = StandardError::during([&] { QVERIFY(writer.write()); });
    QCOMPARE(QByteArray(all).replace("aligning start block\n", ""), QByteArray("Total account is 1\n" + printed));
    QString error;
    QVERIFY(!writer.save(&error));
    QTEST(error, "error");
    QCOMPARE(content(u"/tmp/t.skn"_s), "old");
}

QTEST_MAIN(TstSkinFileWriter)
#include "tst_skinfilewriter.moc"
