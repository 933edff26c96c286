// What the GUI server does with the messages of its channel.
#include "tests/support/peerprocess.h"

#include <QCopChannel>
#include <QCoreApplication>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

class TstServerChannel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theLanguageChangesForEverybody();
};

void TstServerChannel::theLanguageChangesForEverybody()
{
    PeerProcess server(u"../bin/tyx-guiserver"_s, {u"--platform"_s, u"offscreen"_s});
    QVERIFY(server.line().startsWith("tyx-guiserver: ready on "));
    QCopChannel everybody("TYX/System");
    QSignalSpy told(&everybody, &QCopChannel::received);
    QVERIFY(QCopChannel::send("TYX/QtServer", "languageChanged()"));
    QTRY_COMPARE(told.size(), 1);
    QCOMPARE(told[0][0].value<QCString>(), "languageChanged()");
}

QTEST_GUILESS_MAIN(TstServerChannel)
#include "tst_serverchannel.moc"
