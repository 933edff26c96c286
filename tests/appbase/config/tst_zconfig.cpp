// ZConfig: what an application reads, changes and saves, and what each operation answers.
#include "appbase/config/zconfig.h"
#include "tests/support/testfiles.h"

#include <QDir>
#include <QFileInfo>
#include <cmath>
#include <limits>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const QString kPath = QStringLiteral("/tmp/test.cfg");

// A directory where the temporary file would stand: it cannot be opened.
class BlockedSaves {
public:
    BlockedSaves() { QDir().mkdir(kPath + u".new"); }
    ~BlockedSaves() { QDir().rmdir(kPath + u".new"); }
};

}

class TstZConfig : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void valuesAreStoredAsText();
    void numbersAreReadWithoutComplaint_data();
    void numbersAreReadWithoutComplaint();
    void listsDropEmptyPieces();
    void nullIsAbsentAndEmptyIsAValue();

    void anEmptyGroupMeansTheCurrentOne();
    void aReadingEntersOnlyAnExistingGroup();
    void afterClearGroupThereIsNoCurrentGroup();
    void anEmptyGroupSurvivesClearGroup();
    void listingsAreOrderedSnapshots();

    void savesOnlyWhatHasChanged();
    void writeThroughSavesEveryOperation();
    void writeTakesANewName();
    void aFailedSaveKeepsEverything();
    void aFailedRenameCountsAsSaved();
    void savedFilesAreForEveryone();

    void whatIsNoFileReadsAsEmpty_data();
    void whatIsNoFileReadsAsEmpty();
    void aHugeFileReadsAsEmpty();
    void settingDirectory_data();
    void settingDirectory();
};

void TstZConfig::init() { QVERIFY(!QFile::exists(kPath)); }

void TstZConfig::cleanup()
{
    QFile::remove(kPath);
    QVERIFY2(!QFile::exists(kPath + u".new"), "a temporary file is left");
}

void TstZConfig::valuesAreStoredAsText()
{
    ZConfig config(kPath, false);
    QVERIFY(config.writeEntry(u"G"_s, u"text"_s, "gr\xC3\xBC\xC3\x9F"));
    QVERIFY(config.writeEntry(u"G"_s, u"int"_s, std::numeric_limits<int>::min()));
    QVERIFY(config.writeEntry(u"G"_s, u"unsigned"_s, std::numeric_limits<unsigned int>::max()));
    QVERIFY(config.writeEntry(u"G"_s, u"double"_s, 1234567.0));
    QVERIFY(config.writeEntry(u"G"_s, u"small"_s, -0.5));
    QVERIFY(config.writeEntry(u"G"_s, u"infinite"_s, -HUGE_VAL));
    QVERIFY(config.writeEntry(u"G"_s, u"yes"_s, true));
    QVERIFY(config.writeEntry(u"G"_s, u"no"_s, false));
    QVERIFY(config.flush());
    QCOMPARE(content(kPath),
        QByteArray("[G]\ndouble = 1.23457e+06\ninfinite = -inf\nint = -2147483648\nno = 0\nsmall = -0.5\n"
                   "text = gr\xC3\xBC\xC3\x9F\nunsigned = 4294967295\nyes = 1\n"));
    ZConfig read(kPath, false);
    QCOMPARE(read.readEntry(u"G"_s, u"text"_s), u"grüß"_s);
    QCOMPARE(read.readNumEntry(u"G"_s, u"int"_s, 1), std::numeric_limits<int>::min());
    QCOMPARE(read.readUIntEntry(u"G"_s, u"unsigned"_s, 1), std::numeric_limits<unsigned int>::max());
    QVERIFY(read.readBoolEntry(u"G"_s, u"yes"_s, false));
    QVERIFY(!read.readBoolEntry(u"G"_s, u"no"_s, true));
}

void TstZConfig::numbersAreReadWithoutComplaint_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<int>("number"); // the default is 7
    QTest::addColumn<uint>("unsignedNumber");
    QTest::addColumn<bool>("truth"); // the default is true
    QTest::newRow("empty is the default") << u""_s << 7 << 7U << true;
    QTest::newRow("a word is 0") << u"true"_s << 0 << 0U << false;
    QTest::newRow("digits and letters") << u"12abc"_s << 0 << 0U << false;
    QTest::newRow("negative") << u"-3"_s << -3 << 0U << true;
    QTest::newRow("out of int's range") << u"3000000000"_s << 0 << 3000000000U << false;
    QTest::newRow("not octal") << u"010"_s << 10 << 10U << true;
}

void TstZConfig::numbersAreReadWithoutComplaint()
{
    QFETCH(QString, value);
    ZConfig config(kPath, false);
    config.writeEntry(u"G"_s, u"k"_s, value);
    QTEST(config.readNumEntry(u"G"_s, u"k"_s, 7), "number");
    QTEST(config.readUIntEntry(u"G"_s, u"k"_s, 7), "unsignedNumber");
    QTEST(config.readBoolEntry(u"G"_s, u"k"_s, true), "truth");
    QCOMPARE(config.readNumEntry(u"G"_s, u"missing"_s, 7), 7);
}

void TstZConfig::listsDropEmptyPieces()
{
    ZConfig config(kPath, false);
    config.writeEntry(u"G"_s, u"list"_s, QStringList{u"a"_s, u""_s, u"b"_s}, u';');
    QCOMPARE(config.readEntry(u"G"_s, u"list"_s), u"a;;b;"_s);
    QCOMPARE(config.readListEntry(u"G"_s, u"list"_s, u';'), QStringList({u"a"_s, u"b"_s}));
    config.writeEntry(u"G"_s, u"empty"_s, QStringList(), u';');
    QVERIFY(!config.readEntry(u"G"_s, u"empty"_s, u"default"_s).isNull());
    QVERIFY(config.readListEntry(u"G"_s, u"empty"_s, u';').isEmpty());
    QVERIFY(config.readListEntry(u"G"_s, u"missing"_s, u';').isEmpty());
}

void TstZConfig::nullIsAbsentAndEmptyIsAValue()
{
    fill(kPath, "[G]\nold = 1\n");
    {
        ZConfig config(kPath, false);
        QVERIFY(config.writeEntry(u"G"_s, u"none"_s, QString()));
        QVERIFY(config.writeEntry(u"G"_s, u"none"_s, static_cast<const char *>(nullptr)));
        QCOMPARE(config.readEntry(u"G"_s, u"none"_s, u"default"_s), u"default"_s);
        QVERIFY(config.writeEntry(u"G"_s, u"some"_s, u""_s));
        QCOMPARE(config.readEntry(u"G"_s, u"some"_s, u"default"_s), u""_s);
        QVERIFY(config.writeEntry(u"G"_s, u"old"_s, QString()));
        QCOMPARE(config.readEntry(u"G"_s, u"old"_s, u"default"_s), QString());
    }
    QCOMPARE(content(kPath), QByteArray("[G]\nold = \nsome = \n"));
}

void TstZConfig::anEmptyGroupMeansTheCurrentOne()
{
    fill(kPath, "[]\nk = nobody reaches me\n[A]\nk = a\n[B]\nk = b\n");
    ZConfig config(kPath, false);
    QCOMPARE(config.readEntry(u""_s, u"k"_s, u"none"_s), u"none"_s);
    QVERIFY(!config.writeEntry(u""_s, u"k"_s, 1));
    QVERIFY(config.removeEntry(u""_s, u"k"_s));
    QVERIFY(config.clearGroup(u""_s));
    QVERIFY(!config.getGroupEntriesKeyList(u""_s));
    config.setGroup(u"A"_s);
    config.setGroup(u""_s);
    QCOMPARE(config.readEntry(u""_s, u"k"_s), u"a"_s);
    QCOMPARE(config.readEntry(u"B"_s, u"k"_s), u"b"_s);
    QCOMPARE(config.readEntry(QString(), u"k"_s), u"b"_s);
    QVERIFY(config.writeEntry(u"A"_s, u"l"_s, 1));
    QVERIFY(config.writeEntry(u""_s, u"m"_s, 2));
    QVERIFY(config.removeEntry(u""_s, u"k"_s));
    QVERIFY(config.flush());
    QCOMPARE(content(kPath), QByteArray("[]\nk = nobody reaches me\n[A]\nl = 1\nm = 2\n[B]\nk = b\n"));
}

void TstZConfig::aReadingEntersOnlyAnExistingGroup()
{
    fill(kPath, "[A]\nk = a\n[B]\n");
    ZConfig config(kPath, false);
    QCOMPARE(config.readEntry(u"none"_s, u"k"_s, u"d"_s), u"d"_s);
    QCOMPARE(config.readEntry(u""_s, u"k"_s, u"d"_s), u"d"_s);
    QCOMPARE(config.readEntry(u"A"_s, u"missing"_s, u"d"_s), u"d"_s);
    QCOMPARE(config.readEntry(u"none"_s, u"k"_s, u"d"_s), u"d"_s);
    QCOMPARE(config.readEntry(u""_s, u"k"_s, u"d"_s), u"a"_s);
    QVERIFY(config.getGroupEntriesKeyList(u"B"_s));
    QCOMPARE(config.readEntry(u""_s, u"k"_s, u"d"_s), u"a"_s);
    QVERIFY(config.flush());
    QCOMPARE(content(kPath), QByteArray("[A]\nk = a\n[B]\n"));
}

void TstZConfig::afterClearGroupThereIsNoCurrentGroup()
{
    fill(kPath, "[A]\nk = a\n[B]\nk = b\n");
    ZConfig config(kPath, false);
    QVERIFY(config.clearGroup(u"A"_s));
    // The name is still that of the last group, so naming it again does not make it.
    QVERIFY(!config.writeEntry(u"A"_s, u"k"_s, 1));
    QVERIFY(config.removeEntry(u"A"_s, u"k"_s));
    QVERIFY(config.clearGroup(u"A"_s));
    QCOMPARE(config.readNumEntry(u"A"_s, u"k"_s, 5), 5);
    QVERIFY(!config.getGroupEntriesKeyList(u"A"_s));
    QCOMPARE(config.readEntry(u"B"_s, u"k"_s), u"b"_s);
    QVERIFY(config.writeEntry(u"A"_s, u"k"_s, 2));
    QVERIFY(config.clearGroup(u"A"_s));
    config.setGroup(u"A"_s);
    QVERIFY(config.writeEntry(u"A"_s, u"k"_s, 3));
    QVERIFY(config.flush());
    QCOMPARE(content(kPath), QByteArray("[A]\nk = 3\n[B]\nk = b\n"));
}

void TstZConfig::anEmptyGroupSurvivesClearGroup()
{
    fill(kPath, "[A]\n");
    ZConfig config(kPath, false);
    QVERIFY(config.clearGroup(u"A"_s));
    QVERIFY(config.clearGroup(u"made"_s)); // creates it, as every change does
    QVERIFY(config.writeEntry(u""_s, u"k"_s, 1)); // and it is current
    QVERIFY(config.flush());
    QCOMPARE(content(kPath), QByteArray("[A]\n[made]\nk = 1\n"));
}

void TstZConfig::listingsAreOrderedSnapshots()
{
    fill(kPath, "[A]\nz = 1\na = 2\n");
    std::unique_ptr<QMap<QString, QString>> kept;
    {
        ZConfig config(kPath, false);
        QVERIFY(!config.getGroupEntriesKeyList(u"none"_s));
        const auto *listing = config.getGroupEntriesKeyList(u"A"_s);
        QVERIFY(listing);
        QCOMPARE(listing->keys(), QStringList({u"a"_s, u"z"_s}));
        // A caller who changes what he walks through walks through what it was.
        for (auto at = listing->cbegin(); at != listing->cend(); ++at)
            config.writeEntry(u"copy of "_s + at.key(), at.key(), at.value());
        for (auto at = listing->cbegin(); at != listing->cend(); ++at)
            config.removeEntry(u"A"_s, at.key());
        QVERIFY(config.getGroupEntriesKeyList(u"A"_s)->isEmpty());
        kept = std::make_unique<QMap<QString, QString>>(*config.getGroupEntriesKeyList(u"copy of z"_s));
    }
    QCOMPARE(kept->value(u"z"_s), u"1"_s); // strings outlive the configuration
    QCOMPARE(content(kPath), QByteArray("[A]\n[copy of a]\na = 2\n[copy of z]\nz = 1\n"));
}

void TstZConfig::savesOnlyWhatHasChanged()
{
    fill(kPath, "[G]\nk=1\n");
    {
        ZConfig config(kPath, false);
        config.setGroup(u"G"_s);
        QVERIFY(config.writeEntry(u"G"_s, u"k"_s, 1));
        QVERIFY(config.flush());
    }
    QCOMPARE(content(kPath), QByteArray("[G]\nk=1\n"));
    ZConfig(kPath, false).removeEntry(u"G"_s, u"was not there"_s);
    QCOMPARE(content(kPath), QByteArray("[G]\nk = 1\n"));
    ZConfig(kPath, false).setGroup(u"H"_s);
    QCOMPARE(content(kPath), QByteArray("[G]\nk = 1\n[H]\n"));
}

void TstZConfig::writeThroughSavesEveryOperation()
{
    fill(kPath, "[G]\nk = 1\n[H]\nh = 1\n");
    ZConfig config(kPath, true);
    const auto overwritten = [] { return content(kPath) != "others"; };
    const auto spoil = [] { fill(kPath, "others"); };
    spoil();
    config.setGroup(u"new"_s);
    QVERIFY(!overwritten());
    QVERIFY(config.writeEntry(u"G"_s, u"k"_s, 1)); // even the same value
    QCOMPARE(content(kPath), QByteArray("[G]\nk = 1\n[H]\nh = 1\n[new]\n"));
    spoil();
    QVERIFY(config.removeEntry(u"G"_s, u"none"_s));
    QVERIFY(overwritten());
    spoil();
    QVERIFY(config.clearGroup(u"new"_s)); // even though it stays
    QVERIFY(overwritten());
    QVERIFY(config.clearGroup(u"H"_s));
    QCOMPARE(content(kPath), QByteArray("[G]\nk = 1\n[new]\n"));
    spoil();
    QVERIFY(!config.writeEntry(u"H"_s, u"k"_s, 1)); // there is no current group: nothing to save
    QVERIFY(config.removeEntry(u"H"_s, u"k"_s));
    QVERIFY(!overwritten());
}

void TstZConfig::writeTakesANewName()
{
    const QString other = u"/tmp/other.cfg"_s;
    {
        ZConfig config(kPath, false);
        QVERIFY(config.write(other));
        QCOMPARE(content(other), QByteArray()); // a configuration without groups is an empty file
        config.writeEntry(u"G"_s, u"k"_s, 1);
    }
    QCOMPARE(content(other), QByteArray("[G]\nk = 1\n"));
    QVERIFY(!QFile::exists(kPath));
    QVERIFY(QFile::remove(other));
}

void TstZConfig::aFailedSaveKeepsEverything()
{
    fill(kPath, "[G]\nk = 1\n");
    auto config = std::make_unique<ZConfig>(kPath, true);
    auto blocked = std::make_unique<BlockedSaves>();
    QVERIFY(!config->writeEntry(u"G"_s, u"k"_s, 2));
    QVERIFY(!config->flush());
    QCOMPARE(content(kPath), QByteArray("[G]\nk = 1\n"));
    // The change is here, but the current group is not.
    QCOMPARE(config->getGroupEntriesKeyList(u"G"_s)->value(u"k"_s), u"2"_s);
    QCOMPARE(config->readNumEntry(u"G"_s, u"k"_s, 7), 7);
    blocked.reset();
    QVERIFY(!config->writeEntry(u"G"_s, u"k"_s, 3));
    QCOMPARE(content(kPath), QByteArray("[G]\nk = 1\n"));
    config.reset(); // tries again
    QCOMPARE(content(kPath), QByteArray("[G]\nk = 2\n"));
}

void TstZConfig::aFailedRenameCountsAsSaved()
{
    QVERIFY(QDir().mkdir(kPath)); // nothing can be renamed over a directory
    {
        ZConfig config(kPath, false);
        QVERIFY(config.writeEntry(u"G"_s, u"k"_s, 1));
        QVERIFY(config.flush());
        QVERIFY(!QFile::exists(kPath + u".new"));
        QCOMPARE(config.readNumEntry(u""_s, u"k"_s, 7), 1);
    }
    QVERIFY(modeOf(kPath) & S_IXUSR); // the mode of files is not for directories
    QVERIFY(QDir().rmdir(kPath));
}

void TstZConfig::savedFilesAreForEveryone()
{
    const mode_t before = ::umask(077);
    ZConfig(kPath, false).setGroup(u"G"_s);
    ::umask(before);
    QCOMPARE(modeOf(kPath), mode_t(S_IFREG | 0666));
}

void TstZConfig::whatIsNoFileReadsAsEmpty_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("missing") << u"/tmp/none/none.cfg"_s;
    QTest::newRow("no name") << u""_s;
    QTest::newRow("directory") << u"/tmp"_s;
    QTest::newRow("FIFO without a writer") << u"/dev/keypad0"_s;
    QTest::newRow("device without an end") << u"/dev/zero"_s;
    QTest::newRow("NUL in the name") << u"/proc/version\0.cfg"_s;
    QTest::newRow("name too long") << u"/tmp/"_s + QString(5000, u'x');
}

void TstZConfig::whatIsNoFileReadsAsEmpty()
{
    QFETCH(QString, path);
    ZConfig config(path, false);
    QCOMPARE(config.readEntry(u"G"_s, u"k"_s, u"default"_s), u"default"_s);
    QVERIFY(config.flush());
}

// Damage makes such files, and one would not fit into memory.
void TstZConfig::aHugeFileReadsAsEmpty()
{
    fill(kPath, "[G]\nk=1\n");
    QVERIFY(QFile::resize(kPath, 10'000'000'000)); // mostly a hole
    QCOMPARE(ZConfig(kPath, false).readEntry(u"G"_s, u"k"_s, u"default"_s), u"default"_s);
}

void TstZConfig::settingDirectory_data()
{
    QTest::addColumn<QByteArray>("environment");
    QTest::addColumn<QString>("directory");
    QTest::newRow("unset") << QByteArray() << u"/setup/"_s;
    QTest::newRow("empty") << QByteArray("") << u"/setup/"_s;
    QTest::newRow("without a slash") << QByteArray("/tmp/a/u") << u"/tmp/a/u/setup/"_s;
    QTest::newRow("with a slash") << QByteArray("/tmp/b/u/") << u"/tmp/b/u/setup/"_s;
    QTest::newRow("not trimmed") << QByteArray("/tmp/c ") << u"/tmp/c /setup/"_s;
}

void TstZConfig::settingDirectory()
{
    QFETCH(QByteArray, environment);
    QFETCH(QString, directory);
    if (environment.isNull())
        qunsetenv("TYX_APP_WRITE_PATH");
    else
        qputenv("TYX_APP_WRITE_PATH", environment);
    QCOMPARE(ZConfig::getSettingDirectory(), directory);
    if (!environment.isEmpty())
        QVERIFY(!QFile::exists(directory));
    QCOMPARE(ZConfig::initSettingDirectory(), directory);
    QVERIFY(QFileInfo(directory).isDir());
    QCOMPARE(modeOf(directory), mode_t(S_IFDIR | 0777));
    // The directory's mode is repaired each time, its parent's is given only to a new one.
    QCOMPARE(::chmod(QFile::encodeName(directory).constData(), 0700), 0);
    if (!environment.isEmpty())
        QCOMPARE(::chmod(environment.constData(), 0755), 0);
    ZConfig::initSettingDirectory();
    QCOMPARE(modeOf(directory), mode_t(S_IFDIR | 0777));
    if (!environment.isEmpty())
        QCOMPARE(modeOf(QFile::decodeName(environment)), mode_t(S_IFDIR | 0755));
}

QTEST_APPLESS_MAIN(TstZConfig)
#include "tst_zconfig.moc"
