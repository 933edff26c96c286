#include "settings/status/statuslayout.h"
#include "settings/status/systemstatuswatcher.h"
#include "tests/support/testfiles.h"

#include <QSignalSpy>
#include <QTest>
#include <fcntl.h>
#include <sys/shm.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

// Its loop runs only where a test waits, so that what a setter does and what the watcher does are told apart.
class TstSystemStatusWatcher : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void manyChangesWakeTheWatcherOnce();
    void aProgramWithoutTheLibraryShowsUpToo();
    void aTableThatGoesAndComesIsSeen();
    void aKeyFileThatComesLaterIsSeen();

private:
    static bool touchesKeyFile(void (*set)());
};

namespace {

const QString kKeyFile = u"/tmp/key_testcommand"_s;

}

void TstSystemStatusWatcher::init()
{
    fill(kKeyFile, {});
    UTIL_CreateSystemStatusTable();
    UTIL_InitSystemTable();
}

void TstSystemStatusWatcher::cleanup()
{
    UTIL_ReleaseSystemTable();
    ::unlink("/tmp/key_testcommand");
}

bool TstSystemStatusWatcher::touchesKeyFile(void (*set)())
{
    const timespec past[2] = {};
    ::utimensat(AT_FDCWD, "/tmp/key_testcommand", past, 0);
    set();
    struct stat status = {};
    ::stat("/tmp/key_testcommand", &status);
    return status.st_mtim.tv_sec != 0;
}

void TstSystemStatusWatcher::manyChangesWakeTheWatcherOnce()
{
    SystemStatusWatcher watcher;
    QSignalSpy changed(&watcher, &SystemStatusWatcher::changed);
    QVERIFY(watcher.tableExists());
    QVERIFY(!touchesKeyFile([] { UTIL_SetBatteryLevel(0); })); // what it was
    QVERIFY(touchesKeyFile([] { UTIL_SetBatteryLevel(3); }));
    QVERIFY(!touchesKeyFile([] { UTIL_SetServiceName("Nord"); }));
    QVERIFY(changed.wait());
    QCOMPARE(changed.size(), 1);
    QCOMPARE(status::valueOf(watcher.current(), status::batteryLevel), 3);
    QCOMPARE(status::valueOf(watcher.current(), status::serviceName), "Nord");
    QCOMPARE(status::valueOf(changed[0][0].value<SystemTableCopy>(), status::serviceName), "");
    QVERIFY(touchesKeyFile([] { UTIL_SetBatteryLevel(2); })); // it asked again
}

void TstSystemStatusWatcher::aProgramWithoutTheLibraryShowsUpToo()
{
    SystemStatusWatcher watcher;
    QSignalSpy changed(&watcher, &SystemStatusWatcher::changed);
    auto *table = static_cast<quint8 *>(UTIL_GetTableAddress());
    table[0x0F] = 2;
    ::shmdt(table);
    QVERIFY(changed.wait());
    QCOMPARE(status::valueOf(watcher.current(), status::batteryLevel), 2);
}

void TstSystemStatusWatcher::aTableThatGoesAndComesIsSeen()
{
    SystemStatusWatcher watcher;
    QSignalSpy changed(&watcher, &SystemStatusWatcher::changed);
    UTIL_SetCountryId(49);
    UTIL_ReleaseSystemTable();
    QVERIFY(changed.wait());
    QVERIFY(!watcher.tableExists());
    QCOMPARE(status::valueOf(watcher.current(), status::pin), 0xFF);
    UTIL_CreateSystemStatusTable();
    UTIL_InitSystemTable();
    UTIL_SetPinStatus(3);
    QVERIFY(changed.wait());
    QVERIFY(watcher.tableExists());
    QTRY_COMPARE(status::valueOf(watcher.current(), status::pin), 3);
}

void TstSystemStatusWatcher::aKeyFileThatComesLaterIsSeen()
{
    cleanup();
    SystemStatusWatcher watcher;
    QSignalSpy changed(&watcher, &SystemStatusWatcher::changed);
    QVERIFY(!watcher.tableExists());
    init();
    QVERIFY(changed.wait());
    QVERIFY(watcher.tableExists());
    QVERIFY(touchesKeyFile([] { UTIL_SetBatteryLevel(1); }));
}

QTEST_GUILESS_MAIN(TstSystemStatusWatcher)
#include "tst_systemstatuswatcher.moc"
