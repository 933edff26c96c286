#include "platform/bus/busbroker.h"
#include "tests/support/columns.h"
#include "tests/support/tyxtool.h"

#include <QJsonArray>
#include <QJsonObject>
#include <sys/sem.h>
#include <sys/shm.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

// The program as it is typed, on a machine with one fault at a time.
class TstTyxDoctor : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void findsNothingWrongOnAVirginPhone();
    void namesTheFaultAndTheCure_data();
    void namesTheFaultAndTheCure();
    void looksAtDisksAndVariables();
    void asksTheServer();
};

namespace {

const TyxCommand tyx{u"doctor"_s};

constexpr char kKeyFile[] = "/tmp/key_testcommand";

QJsonArray findings(int status)
{
    const Outcome outcome = tyx("--json");
    if (outcome.status != status)
        qWarning("status %d: %s", outcome.status, QByteArray(outcome.out + outcome.err).constData());
    return outcome.status == status ? QJsonDocument::fromJson(outcome.out).array() : QJsonArray();
}

QJsonObject about(const QJsonArray &all, const QString &place)
{
    for (const auto &finding : all) {
        if (finding[u"about"].toString().startsWith(place))
            return finding.toObject();
    }
    return {};
}

}

void TstTyxDoctor::findsNothingWrongOnAVirginPhone()
{
    const QJsonArray all = findings(0);
    QCOMPARE(about(all, u"/tmp/run/tyx-bus"_s)[u"state"], u"note"_s);
    QCOMPARE(about(all, u"/setup/"_s)[u"state"], u"ok"_s);
    QCOMPARE(about(all, u"/dev/keypad0"_s)[u"state"], u"ok"_s);
    QCOMPARE(tyx("now").status, 2);
}

void TstTyxDoctor::namesTheFaultAndTheCure_data()
{
    // damage: done by the shell
    const auto row = columns<QString, QString, QString>("damage", "place", "cure");
    row("a linked key file", u"ln -s /etc/passwd /tmp/touch_sound_msg"_s, u"/tmp/touch_sound_msg"_s, u"remove it"_s);
    row("a segment of the wrong size", u"touch /tmp/key_testcommand"_s, u"/tmp/key_testcommand 'm'"_s, u"ipcrm -m"_s);
    row("a segment that its owner may not use", u"touch /tmp/key_testcommand"_s, u"/tmp/key_testcommand 'n'"_s,
        u"ipcrm -m"_s);
    row("a broken settings file", u"printf '[A]\\nb=1\\njunk\\n' > /tmp/tyx_system.cfg"_s, u"/tmp/tyx_system.cfg"_s,
        u"tyx config check"_s);
    row("a folder instead of settings", u"mkdir /tmp/tyx_theme.cfg"_s, u"/tmp/tyx_theme.cfg"_s,
        u"put a readable file there"_s);
    row("damaged messages", u"echo damage > /tmp/qcop-msg-x"_s, u"/tmp/qcop-msg-x"_s, u"tyx queue drop x"_s);
    row("another program's semaphores", u"true"_s, u"TYX_INSTALLED_QT_PATH=/usr"_s, u"ipcrm -s"_s);
    row("the socket of a dead server",
        u"python3 -c 'import socket; socket.socket(socket.AF_UNIX).bind(\"/tmp/run/tyx-bus\")'"_s,
        u"/tmp/run/tyx-bus"_s, u"start tyx-guiserver"_s);
}

void TstTyxDoctor::namesTheFaultAndTheCure()
{
    QFETCH(QString, damage);
    QFETCH(QString, place);
    QFETCH(QString, cure);
    QCOMPARE(run(u"/bin/sh"_s, {u"-c"_s, damage}).status, 0);
    const auto make = [](char project, std::size_t size, int mode) {
        const key_t key = ::ftok(kKeyFile, project);
        return key == -1 ? -1 : ::shmget(key, size, IPC_CREAT | mode);
    };
    const int small = make('m', 100, 0600);
    const int closed = make('n', 4096, 0232); // as the lookup of a program makes it before there is a phone
    const int semaphores = ::semget(::ftok("/usr", 0), 2, IPC_CREAT | 0600);
    qputenv("TYX_INSTALLED_QT_PATH", "/usr");
    const QJsonArray all = findings(1);
    qunsetenv("TYX_INSTALLED_QT_PATH");
    ::semctl(semaphores, 0, IPC_RMID);
    ::shmctl(small, IPC_RMID, nullptr);
    ::shmctl(closed, IPC_RMID, nullptr);
    run(u"/bin/sh"_s,
        {u"-c"_s, u"rm -rf /tmp/key_testcommand /tmp/touch_sound_msg /tmp/tyx_* /tmp/qcop-* /tmp/run/tyx-bus"_s});
    const QJsonObject finding = about(all, place);
    QCOMPARE(finding[u"state"], u"wrong"_s);
    QVERIFY2(finding[u"cure"].toString().contains(cure), qPrintable(finding[u"cure"].toString()));
}

void TstTyxDoctor::looksAtDisksAndVariables()
{
    const QString locked = u"/tmp/locked/setup"_s; // the source tree, which is mounted read-only here
    QCOMPARE(run(u"/bin/sh"_s, {u"-c"_s, u"mkdir /tmp/locked && ln -s " TYX_SOURCE_DIR "/docs "_s + locked}).status, 0);
    qputenv("TYX_APP_WRITE_PATH", "/tmp/locked");
    qputenv("TYX_RES_SKIN_FILE", "/etc/passwd");
    const QJsonArray readOnly = findings(1);
    QCOMPARE(about(readOnly, locked)[u"state"], u"wrong"_s);
    QVERIFY(about(readOnly, locked)[u"cure"].toString().contains(u"remount"_s));
    QCOMPARE(about(readOnly, u"TYX_RES_SKIN_FILE=/etc/passwd"_s)[u"state"], u"wrong"_s);
    qunsetenv("TYX_APP_WRITE_PATH");
    qunsetenv("TYX_RES_SKIN_FILE");
    run(u"/bin/sh"_s, {u"-c"_s, u"cat /dev/zero > /tmp/large"_s});
    const QJsonArray full = findings(1);
    QVERIFY(QFile::remove(u"/tmp/large"_s));
    QVERIFY(about(full, u"/tmp"_s)[u"text"].toString().contains(u"is full: 0 bytes"_s));
    QVERIFY(about(full, u"TYX_RES_SKIN_FILE"_s)[u"text"].toString().contains(u"environment"_s));
}

void TstTyxDoctor::asksTheServer()
{
    const auto broker = platform::BusBroker::listen();
    QVERIFY(broker);
    const QJsonArray all = findings(0);
    QCOMPARE(about(all, u"/tmp/run/tyx-bus"_s)[u"text"], u"a bus without a GUI server; 0 programs have channels"_s);
}

QTEST_GUILESS_MAIN(TstTyxDoctor)
#include "tst_tyxdoctor.moc"
