// The files of translations: which one speaks which language, and which ones are trusted. And where the theme is.
#include "appbase/application/strings.h"
#include "appbase/application/themepaths.h"
#include "tests/support/standarderror.h"

#include <QDir>
#include <QTest>
#include <QXmlStreamReader>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

const QString kCompiled = QStringLiteral(TYX_BINARY_DIR "/strings/de-de/lib_de-de.qm");

QString cancel() { return QCoreApplication::translate("QPlatformTheme", "Cancel"); }

// "context: source" of every text.
QStringList sourcesOf(const QString &path)
{
    QFile file(path);
    QStringList sources;
    QString context;
    QXmlStreamReader reader(file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray());
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (reader.name() == u"name")
            context = reader.readElementText();
        else if (reader.name() == u"source")
            sources << context + u": "_s + reader.readElementText();
    }
    return sources;
}

}

class TstStrings : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void languagesAndTheirFiles_data();
    void languagesAndTheirFiles();
    void onlySoundFilesAreLoaded_data();
    void onlySoundFilesAreLoaded();
    void translationsMayBeEmpty();
    void damageDoesNoHarm();
    void everyTextIsInEveryLanguage();
    void themePathsAreTakenAndPublished();
};

void TstStrings::languagesAndTheirFiles_data()
{
    QTest::addColumn<QStringList>("folders");
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("file"); // of the application, below the directory
    const QStringList three{u"fr-fr"_s, u"de-de"_s, u"en-us"_s};
    const QString german = u"de-de/app_de-de.qm"_s;
    QTest::newRow("it is there") << three << u"fr-fr"_s << u"fr-fr/app_fr-fr.qm"_s;
    QTest::newRow("another one, first by name") << three << u"it-it"_s << german;
    QTest::newRow("no folder at all") << QStringList() << u"it-it"_s << u"en-us/app_en-us.qm"_s;
    QTest::newRow("a file is no folder") << QStringList{u"de-de"_s} << u"file"_s << german;
    for (const char *language : {"", ".", "..", "../s/fr-fr", "/tmp", "fr-fr/", "fr-fr/../fr-fr"})
        QTest::addRow("leads out: %s", language) << three << QString::fromLatin1(language) << german;
}

void TstStrings::languagesAndTheirFiles()
{
    QFETCH(QStringList, folders);
    QFETCH(QString, language);
    QFETCH(QString, file);
    QVERIFY(QDir(u"/tmp/s"_s).removeRecursively() && QDir().mkpath(u"/tmp/s"_s));
    fill(u"/tmp/s/file"_s, {});
    for (const QString &folder : folders)
        QVERIFY(QDir().mkpath(u"/tmp/s/"_s + folder));
    for (const char *directory : {"/tmp/s", "/tmp/s/"}) {
        qputenv("TYX_RES_STRING_PATH", directory);
        QCOMPARE(stringFiles(stringDirectory(), language, u"app"_s).application, u"/tmp/s/"_s + file);
        QCOMPARE(stringFiles(stringDirectory(), language, u"../app"_s).application, QString());
    }
    QCOMPARE(
        stringFiles(stringDirectory(), language, u"app"_s).library, u"/tmp/s/"_s + file.replace(u"app_"_s, u"lib_"_s));
    qunsetenv("TYX_RES_STRING_PATH");
    QCOMPARE(stringFiles(stringDirectory(), language, u"app"_s).library, QString());
}

void TstStrings::onlySoundFilesAreLoaded_data()
{
    QTest::addColumn<QString>("make"); // a shell command; $f is the file, a good one at first
    QTest::addColumn<QString>("told");
    QTest::newRow("good") << u"true"_s << QString();
    QTest::newRow("missing") << u"rm $f"_s << QString();
    QTest::newRow("empty") << u": > $f"_s << u"no compiled translations, or damaged"_s;
    QTest::newRow("foreign") << u"cp /bin/true $f"_s << u"no compiled translations, or damaged"_s;
    QTest::newRow("cut off") << u"truncate -s -1 $f"_s << u"no compiled translations, or damaged"_s;
    QTest::newRow("huge") << u"truncate -s 3G $f"_s << u"read: File too large"_s;
    QTest::newRow("FIFO") << u"rm $f; mkfifo $f"_s << u"open: Invalid argument"_s;
    QTest::newRow("folder") << u"rm $f; mkdir $f"_s << u"open: Is a directory"_s;
    QTest::newRow("link to itself") << u"rm $f; ln -s $f $f"_s << u"open: Too many levels of symbolic links"_s;
}

void TstStrings::onlySoundFilesAreLoaded()
{
    QFETCH(QString, make);
    QFETCH(QString, told);
    const QString path = u"/tmp/lib.qm"_s;
    LoadedStrings strings;
    QVERIFY(strings.load(kCompiled));
    QCOMPARE(cancel(), u"Abbrechen"_s);
    QCOMPARE(std::system(qPrintable(u"f="_s + path + u"; rm -rf $f; cp "_s + kCompiled + u" $f; "_s + make)), 0);
    const bool good = make == u"true";
    const StandardError error;
    QCOMPARE(strings.load(path), good);
    QCOMPARE(cancel(), good ? u"Abbrechen"_s : u"Cancel"_s); // what was loaded before is gone in every case
    const QString line = u"strings: "_s + path + u": "_s + told + u'\n';
    QCOMPARE(StandardError::text(), told.isEmpty() ? QByteArray() : line.toUtf8());
}

// "Hello" has an empty translation and so has the first plural of "%n x"; "Bye" has one.
void TstStrings::translationsMayBeEmpty()
{
    const QByteArray compiled = QByteArray::fromHex(
        "3cb86418caef9c95cd211cbf60a1bddda70000000564655f44454200000018000049f5000000210002c0780000000000"
        "4ec32f00000042690000005d03ffffffff0300000002006208000000000600000004256e207807000000015801030000"
        "00080054007300630068080000000006000000034279650700000001580103ffffffff0800000000060000000548656c"
        "6c6f0700000001580188000000020101");
    QVERIFY(areSoundStrings(compiled));
    const std::vector<uchar> bytes(compiled.begin(), compiled.end());
    QTranslator translator;
    QVERIFY(translator.load(bytes.data(), int(bytes.size())));
    QCOMPARE(translator.translate("X", "Bye"), u"Tsch"_s);
    QCOMPARE(translator.translate("X", "Hello"), QString());
}

// The toolkit reads what is let through: the sanitizers see whether it stays inside.
void TstStrings::damageDoesNoHarm()
{
    const QByteArray whole = content(kCompiled);
    QVERIFY(areSoundStrings(whole));
    const QStringList sources = sourcesOf(QStringLiteral(TYX_SOURCE_DIR "/appbase/strings/lib_de-de.ts"));
    QVERIFY(sources.contains(u"QPlatformTheme: Cancel"_s));
    int passed = 0;
    for (qsizetype place = 0; place < whole.size(); ++place) {
        for (const char value : {'\0', '\x7f', '\xff', char(whole[place] ^ 1), char(whole[place] + 8)}) {
            // In memory of just that size, so that not one byte too many can be read.
            std::vector<uchar> damaged(whole.begin(), whole.end());
            damaged[size_t(place)] = uchar(value);
            const auto *bytes = reinterpret_cast<const char *>(damaged.data());
            QTranslator translator;
            if (!areSoundStrings(QByteArray::fromRawData(bytes, qsizetype(damaged.size())))
                || !translator.load(damaged.data(), int(damaged.size())))
                continue;
            ++passed;
            for (const QString &source : sources)
                translator.translate(qPrintable(source.section(u": "_s, 0, 0)), qPrintable(source.section(u": "_s, 1)));
        }
    }
    QVERIFY(passed > 0);
}

void TstStrings::everyTextIsInEveryLanguage()
{
    for (const char *files :
        {"appbase/strings/lib_", "examples/hello/strings/hello_", "examples/doodle/strings/doodle_"}) {
        const QString start = QStringLiteral(TYX_SOURCE_DIR "/") + QLatin1String(files);
        const QStringList english = sourcesOf(start + u"en-us.ts"_s);
        QVERIFY(!english.isEmpty());
        QCOMPARE(sourcesOf(start + u"de-de.ts"_s), english);
        QCOMPARE(sourcesOf(start + u"fr-fr.ts"_s), english);
    }
}

void TstStrings::themePathsAreTakenAndPublished()
{
    publishThemePaths({});
    QVERIFY(
        !qEnvironmentVariableIsSet("TYX_RES_SKIN_FILE") && !qEnvironmentVariableIsSet("TYX_DOWNLOAD_RES_ICON_PATH"));
    publishThemePaths({.skinFile = u"/a/\u00e4.skn"_s, .iconPath = u"/icons"_s});
    QCOMPARE(qgetenv("TYX_RES_SKIN_FILE"), "/a/\xc3\xa4.skn");
    publishThemePaths({.skinFile = u"/b.skn"_s, .iconPath = {}});
    QCOMPARE(qgetenv("TYX_RES_SKIN_FILE"), "/b.skn");
    QVERIFY(!qEnvironmentVariableIsSet("TYX_DOWNLOAD_RES_ICON_PATH"));
    // What was given comes back when the theme is taken off, also in a program that was started in between.
    qputenv("TYX_RES_SKIN_FILE", "/given.skn");
    QCOMPARE(themePaths().skinFile, u"/given.skn"_s);
    publishThemePaths({.skinFile = u"/theme.skn"_s, .iconPath = u"/icons"_s});
    QCOMPARE(themePaths().skinFile, u"/given.skn"_s);
    QVERIFY(themePaths().iconPath.isEmpty());
}

QTEST_GUILESS_MAIN(TstStrings)
#include "tst_strings.moc"
