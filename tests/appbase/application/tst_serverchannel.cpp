// What the GUI server does with the messages of its channel.
#include "appbase/messaging/wire.h"
#include "tests/support/peerprocess.h"

#include <QCopChannel>
#include <QCoreApplication>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

class TstServerChannel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itEndsAfterAllOthers();
};

void TstServerChannel::itEndsAfterAllOthers()
{
    PeerProcess server(u"../bin/tyx-guiserver"_s, {u"--platform"_s, u"offscreen"_s});
    QVERIFY(server.line().startsWith("tyx-guiserver: ready on "));
    QCopChannel answers("TYX/Tool/test");
    QSignalSpy answered(&answers, &QCopChannel::received);
    {
        QCopChannel application("TYX/System");
        QSignalSpy told(&application, &QCopChannel::received);
        QVERIFY(QCopChannel::send("TYX/System", "shutdown()"));
        QTRY_COMPARE(told.size(), 1);
        QVERIFY(QCopChannel::send("TYX/Screen", "windows(QCString)", wire::pack(QCString("TYX/Tool/test"))));
        QTRY_COMPARE(answered.size(), 1); // it serves to the last
    }
    QVERIFY(server.waitForEnd());
}

QTEST_GUILESS_MAIN(TstServerChannel)
#include "tst_serverchannel.moc"
