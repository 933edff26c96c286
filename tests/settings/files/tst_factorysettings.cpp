// The start of the settings store, on a flash that is small: a delivery of the factory against what a user set.
#include "appbase/config/zconfig.h"
#include "settings/files/setup_utility.h"
#include "tests/support/testfiles.h"

#include <QDir>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using S = SETUP_Utility;

namespace {

const QString kFactory = u"/usr/setup/"_s;
const QString kUser = u"/tmp/flash/setup/"_s; // /tmp is small here

const QByteArray kSystemOfUser = "[SYS_SYSTEM_SET]\nLcdSleepTime = 60\nMine = 1\n";
const QByteArray kSystemMerged = "[NEW]\nk = v\n[SYS_SYSTEM_SET]\nBackLight = 50\nLcdSleepTime = 60\nMine = 1\n";

void deliver(const QByteArray &stamp)
{
    fill(kFactory + u"tyx_system.cfg"_s, "[SYS_SYSTEM_SET]\nLcdSleepTime=30\nBackLight=50\n[NEW]\nk=v\n");
    fill(kFactory + u"tyx_call.cfg"_s, "[CALL]\nWaiting = 1\n");
    fill(kFactory + u"tyx_theme.cfg"_s, "[THEME_CONFIG_TABLE]\nThemeId = 1\n");
    fill(kFactory + u"colorpalette.cfg"_s, "[COLORS]\nred = 1\n");
    fill(kFactory + u"tyx_alertstyle.cfg"_s, "[ALERTSTYLE_CONFIG_TABLE]\nAlertSystemVolume = 4\n");
    fill(kFactory + u"tyx_flexbit.cfg"_s, "[SYS_FLEX_TABLE]\n1 = 1\n");
    for (const QString &file :
        {S::getTimestampFileName(), S::getThemeTimestampFileName(), S::getAlertStyleTimestampFileName()})
        fill(kFactory + file, "[T]\ntyx_timestamp = " + stamp + '\n');
}

QStringList userFiles() { return QDir(kUser).entryList(QDir::Files | QDir::Hidden); }

// Fills the disk until nothing goes on it any more.
class FullDisk {
public:
    FullDisk() : m_file(u"/tmp/ballast"_s)
    {
        QVERIFY(m_file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        while (m_file.write(QByteArray(4096, 'x')) == 4096) { }
    }
    ~FullDisk() { m_file.remove(); }
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;

private:
    QFile m_file;
};

}

class TstFactorySettings : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qputenv("TYX_APP_WRITE_PATH", "/tmp/flash"); }
    void init();
    void aVirginPhoneGetsAllOfIt();
    void anUpgradeKeepsWhatTheUserSet();
    void aFullDiskLosesNothingAndIsTriedAgain();
    void anUnreadableFileStandsInNobodysWay();
    void damagedFilesAreKept();
    void calibration();
    void theConverter();
};

void TstFactorySettings::init()
{
    QDir(u"/tmp/flash"_s).removeRecursively();
    for (const QString &folder : {u"/tmp/"_s, kFactory}) {
        for (const QString &file : QDir(folder).entryList({u"*.cfg"_s}))
            QFile::remove(folder + file);
    }
}

void TstFactorySettings::aVirginPhoneGetsAllOfIt()
{
    const QString handset = u"/tyxlocal/download/appwrite/"_s;
    QVERIFY(QDir().mkpath(handset));
    fill(u"/tmp/tyx_system.cfg"_s, "[A]\n");
    QVERIFY(S::setupInitialize()); // there is no delivery
    QVERIFY(userFiles().isEmpty() && content(u"/tmp/tyx_system.cfg"_s) == "[A]\n");
    deliver("1");
    QVERIFY(S::setupInitialize());
    QCOMPARE(content(handset + u"setup/tyx_call.cfg"_s), "[CALL]\nWaiting = 1\n");
    QVERIFY(QDir(u"/tyxlocal"_s).removeRecursively());
    QCOMPARE(userFiles(),
        QStringList(
            {u"alertstyle_timestamp.cfg"_s, u"colorpalette.cfg"_s, u"theme_timestamp.cfg"_s, u"tyx_alertstyle.cfg"_s,
                u"tyx_call.cfg"_s, u"tyx_system.cfg"_s, u"tyx_theme.cfg"_s, u"tyx_timestamp.cfg"_s}));
    for (const QString &file :
        {u"tyx_system.cfg"_s, u"tyx_theme.cfg"_s, u"tyx_alertstyle.cfg"_s, u"colorpalette.cfg"_s}) {
        QCOMPARE(content(kUser + file), content(kFactory + file));
        QCOMPARE(content(u"/tmp/"_s + file), content(kUser + file));
        QCOMPARE(modeOf(u"/tmp/"_s + file), mode_t(S_IFREG | 0666));
    }
}

void TstFactorySettings::anUpgradeKeepsWhatTheUserSet()
{
    QVERIFY(S::setupInitialize());
    fill(kUser + u"tyx_system.cfg"_s, kSystemOfUser);
    deliver("2");
    QVERIFY(S::setupInitialize());
    QCOMPARE(content(kUser + u"tyx_system.cfg"_s), kSystemMerged);
    QCOMPARE(content(u"/tmp/tyx_system.cfg"_s), kSystemMerged);
    // The same delivery once more brings back files, but not settings that were removed.
    fill(kUser + u"tyx_system.cfg"_s, kSystemOfUser);
    QVERIFY(QFile::remove(kUser + u"tyx_call.cfg"_s));
    QVERIFY(S::setupInitialize());
    QCOMPARE(content(kUser + u"tyx_system.cfg"_s), kSystemOfUser);
    QVERIFY(QFile::exists(kUser + u"tyx_call.cfg"_s));
}

void TstFactorySettings::aFullDiskLosesNothingAndIsTriedAgain()
{
    QVERIFY(S::setupInitialize());
    fill(kUser + u"tyx_system.cfg"_s, kSystemOfUser);
    deliver("3");
    {
        const FullDisk full;
        QVERIFY(!S::setupInitialize());
        QCOMPARE(content(kUser + u"tyx_system.cfg"_s), kSystemOfUser);
        QCOMPARE(userFiles(), QStringList{u"tyx_system.cfg"_s});
    }
    QVERIFY(S::setupInitialize());
    QCOMPARE(content(kUser + u"tyx_system.cfg"_s), kSystemMerged);
    QCOMPARE(userFiles().size(), 8);
}

void TstFactorySettings::anUnreadableFileStandsInNobodysWay()
{
    deliver("4");
    QVERIFY(QDir().mkpath(kUser + u"tyx_call.cfg"_s));
    QVERIFY(!S::setupInitialize());
    QVERIFY(QFileInfo(kUser + u"tyx_call.cfg"_s).isDir());
    QVERIFY(QFile::exists(kUser + u"tyx_system.cfg"_s));
    QVERIFY(QFile::exists(u"/tmp/tyx_system.cfg"_s));
    QVERIFY(!QFile::exists(kUser + u"tyx_timestamp.cfg"_s));
    QVERIFY(QDir(kUser + u"tyx_call.cfg"_s).removeRecursively());
    QVERIFY(S::setupInitialize());
    QVERIFY(QFile::exists(kUser + u"tyx_timestamp.cfg"_s));
}

void TstFactorySettings::damagedFilesAreKept()
{
    const QByteArray damaged = "[CALL]\na=1\nstray\nb=2\n";
    QVERIFY(S::setupInitialize());
    fill(kUser + u"tyx_call.cfg"_s, damaged);
    deliver("5");
    QVERIFY(S::setupInitialize());
    QCOMPARE(content(kUser + u"tyx_call.cfg"_s), "[CALL]\nWaiting = 1\na = 1\n");
    QCOMPARE(content(kUser + u"tyx_call.cfg.damaged"_s), damaged);
}

void TstFactorySettings::calibration()
{
    const QByteArray factory = "1 0 0 0 1 0 1\n";
    const QByteArray user = "2 0 0 0 2 0 1\n";
    fill(u"/etc/pointercal"_s, factory);
    QVERIFY(S::setupInitialize() && content(kUser + u"pointercal"_s) == factory);
    fill(kUser + u"pointercal"_s, user);
    QVERIFY(S::setupInitialize() && content(kUser + u"pointercal"_s) == user);
    QVERIFY(QFile::remove(u"/etc/pointercal"_s));
    QVERIFY(!S::copyFile(u"/tmp/none"_s, u"/tmp/x"_s) && !S::copyFile(u"/tmp"_s, u"/tmp/x"_s));
}

void TstFactorySettings::theConverter()
{
    const QString converter = u"/usr/SYStapi/converter"_s;
    QVERIFY(!S::dcDSMInit());
    QVERIFY(QDir().mkpath(u"/usr/SYStapi"_s));
    fill(converter,
        "#!/bin/sh\necho \"$(id -u) $(id -g)\" > /tmp/converted.new; mv /tmp/converted.new /tmp/converted\n");
    QVERIFY(!S::dcDSMInit()); // it is no program yet
    QVERIFY(QFile::setPermissions(converter, QFile::ReadOwner | QFile::ExeOwner));
    QVERIFY(S::setupInitialize());
    QTRY_COMPARE(
        content(u"/tmp/converted"_s), QByteArray::number(::geteuid()) + ' ' + QByteArray::number(::getegid()) + '\n');
    QCOMPARE(::waitpid(-1, nullptr, WNOHANG), -1); // it left nobody to wait for
    QVERIFY(QDir(u"/usr/SYStapi"_s).removeRecursively());
}

QTEST_GUILESS_MAIN(TstFactorySettings)
#include "tst_factorysettings.moc"
