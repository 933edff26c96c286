// Many programs, one settings file.
#include "appbase/config/zconfig.h"
#include "platform/system/filereplace.h"
#include "settings/files/settingstransaction.h"
#include "settings/files/settingswatch.h"
#include "tests/support/peerprocess.h"
#include "tests/support/testfiles.h"

#include <QDir>
#include <QSignalSpy>
#include <list>

using namespace Qt::StringLiterals;

const QString kFile = u"/tmp/t.cfg"_s;

class TstSettingsTransaction : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nothingIsLostBetweenProcesses();
    void withoutCommitNothingChanges();
    void whatItCannotKeepItDoesNotTouch();
    void everySaveIsSeen();
};

// SETTINGS_ROUNDS=1000 for as many as it may well be.
void TstSettingsTransaction::nothingIsLostBetweenProcesses()
{
    constexpr int kProcesses = 8;
    const int rounds = std::max(100, qEnvironmentVariableIntValue("SETTINGS_ROUNDS"));
    fill(kFile, "[G]\nother = 1\n");
    std::list<PeerProcess> writers;
    for (int i = 0; i < kProcesses; ++i)
        writers.emplace_back(u"settingswriter"_s, QStringList{kFile, u"own%1"_s.arg(i), QString::number(rounds)});
    for (PeerProcess &writer : writers)
        QCOMPARE(writer.line(), "0");
    ZConfig config(kFile, false);
    QCOMPARE(config.readNumEntry(u"G"_s, u"all"_s, 0), kProcesses * rounds);
    QCOMPARE(config.readNumEntry(u"G"_s, u"other"_s, 0), 1);
    for (int i = 0; i < kProcesses; ++i)
        QCOMPARE(config.readNumEntry(u"G"_s, u"own%1"_s.arg(i), 0), rounds);
}

void TstSettingsTransaction::withoutCommitNothingChanges()
{
    fill(kFile, "[G]\na = 1\n");
    {
        SettingsTransaction change(kFile);
        QVERIFY(change.isOpen());
        change.set(u"G"_s, u"a"_s, 2);
        // It holds the file: a plain save gives up.
        QVERIFY(!ZConfig(kFile, true).writeEntry(u"G"_s, u"b"_s, 1));
    }
    QCOMPARE(content(kFile), "[G]\na = 1\n");
    QVERIFY(ZConfig(kFile, true).writeEntry(u"G"_s, u"b"_s, 1));
    SettingsTransaction change(kFile);
    change.remove(u"G"_s, u"a"_s);
    change.set(u"H"_s, u"c"_s, u"text"_s);
    QCOMPARE(change.text(u"H"_s, u"c"_s), u"text"_s);
    QVERIFY(change.commit());
    QVERIFY(!change.commit());
    QCOMPARE(content(kFile), "[G]\nb = 1\n[H]\nc = text\n");
}

void TstSettingsTransaction::whatItCannotKeepItDoesNotTouch()
{
    const QByteArray sound = "[G]\na = 1\n";
    const QByteArray damaged = "[G]\na=1\nstray\nb=2\n";
    const auto error = [](const QString &file, const QString &key, const QString &value) {
        SettingsTransaction change(file);
        change.set(u"G"_s, key, value);
        return change.commit() ? u"(none)"_s : change.errorText();
    };
    fill(kFile, damaged);
    QCOMPARE(error(kFile, u"a"_s, u"v"_s), u"read: Bad message"_s);
    QCOMPARE(content(kFile), damaged);
    fill(kFile, sound);
    QCOMPARE(error(kFile, u"a"_s, u"v\n[H]"_s), u"write: Invalid argument"_s);
    QCOMPARE(error(kFile, u"a=b"_s, u"v"_s), u"write: Invalid argument"_s);
    QCOMPARE(content(kFile), sound);
    QVERIFY(!QFile::exists(kFile + u".new"_s));
    QCOMPARE(error(u"/tmp/none/t.cfg"_s, u"a"_s, u"v"_s), u"open: No such file or directory"_s);
}

void TstSettingsTransaction::everySaveIsSeen()
{
    QFile::remove(kFile);
    SettingsWatch watch({kFile, u"/tmp/other.cfg"_s, u"/none/x.cfg"_s});
    QCOMPARE(watch.unwatched(), QStringList{u"/none"_s});
    QSignalSpy spy(&watch, &SettingsWatch::changed);
    const auto seen = [&](const auto &act) {
        spy.clear();
        act();
        return (!spy.isEmpty() || spy.wait()) && spy.first().first() == kFile;
    };
    QVERIFY(seen([] { ZConfig(kFile, true).writeEntry(u"G"_s, u"a"_s, 1); })); // made
    QVERIFY(seen([] { ZConfig(kFile, true).writeEntry(u"G"_s, u"a"_s, 2); })); // replaced
    QVERIFY(seen([] { fill(kFile, "[G]\na = 33\n"); })); // written in place
    QVERIFY(seen([] { QFile::remove(kFile); }));
    QVERIFY(seen([] { fill(kFile, "[G]\n"); }));
}

QTEST_GUILESS_MAIN(TstSettingsTransaction)
#include "tst_settingstransaction.moc"
