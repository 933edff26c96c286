// The real program: `tyx new-app`. That what it makes can be built and runs is tested with the installed SDK.
#include "tests/support/tyxtool.h"

#include <QDir>
#include <QDirIterator>

using namespace Qt::StringLiterals;

namespace {

const TyxCommand tyx{u"new-app"_s};

QStringList filesIn(const QString &folder)
{
    QStringList files;
    for (QDirIterator each(folder, QDir::Files, QDirIterator::Subdirectories); each.hasNext();)
        files += each.next().sliced(folder.size() + 1);
    files.sort();
    return files;
}

}

class TstTyxNewApp : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void aFolderIsMade();
    void badNamesAreRefused();
    void whatIsThereStays();
    void placesThatCannotBeWrittenAreNamed();
};

void TstTyxNewApp::init()
{
    QDir(u"apps"_s).removeRecursively();
    QVERIFY(QDir().mkpath(u"apps"_s));
}

void TstTyxNewApp::aFolderIsMade()
{
    QCOMPARE(tyx("my-app_2 --directory apps").status, 0);
    QCOMPARE(filesIn(u"apps/my-app_2"_s),
        QStringList({u"CMakeLists.txt"_s, u"icon.xpm"_s, u"main.cpp"_s, u"strings/my-app_2_de-de.ts"_s}));
    for (const QString &file : filesIn(u"apps/my-app_2"_s)) {
        const QByteArray bytes = content(u"apps/my-app_2/"_s + file);
        QVERIFY2(!bytes.isEmpty() && !bytes.contains('@'), qPrintable(file));
    }
}

void TstTyxNewApp::badNamesAreRefused()
{
    for (const QString &name : {QString(), u"a/b"_s, u".."_s, u"4you"_s, u"-app"_s, u"class"_s, u"test"_s, u"lib"_s,
             u"my app"_s, u"m\u00fcsli"_s, u"app\n"_s, QString(41, u'a')}) {
        const auto outcome = tyx({u"--directory"_s, u"apps"_s, u"--"_s, name});
        QVERIFY2(outcome.status == 2 && outcome.err.count('\n') == 1, outcome.err);
        QVERIFY(QDir(u"apps"_s).isEmpty());
    }
}

void TstTyxNewApp::whatIsThereStays()
{
    fill(u"apps/taken"_s, "mine");
    const auto outcome = tyx("taken --directory apps");
    QCOMPARE(outcome.status, 3);
    QCOMPARE(outcome.err, "tyx: apps/taken is already there; take another name, or --directory\n");
    QCOMPARE(content(u"apps/taken"_s), "mine");
}

void TstTyxNewApp::placesThatCannotBeWrittenAreNamed()
{
    const auto absent = tyx("app --directory apps/none");
    QCOMPARE(absent.status, 3);
    QVERIFY2(absent.err.startsWith("tyx: apps/none/app: No such file or directory; name a folder"), absent.err);
    const auto system = tyx("app --directory /proc");
    QCOMPARE(system.status, 3);
    QCOMPARE(system.err.count('\n'), 1);
}

QTEST_GUILESS_MAIN(TstTyxNewApp)
#include "tst_tyxnewapp.moc"
