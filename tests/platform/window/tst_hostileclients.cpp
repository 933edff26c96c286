// Clients that break, stop, flood or lie: the server and the other clients do not notice.
#include "tests/platform/window/windowtest.h"

#include <csignal>

namespace {

const QString kBadClient = QStringLiteral(TYX_BINARY_DIR "/tests/badclient");

}

class TstHostileClients : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void truncatedPictureEndsTheClient();
    void secondRoleEndsTheClient();
    void floodLeavesRoomForOthers();
    void stoppedClientIsDisconnected();
    void aBurstWaitsForItsReader();
    void coveredClientWaits();
    void foreignProgramShowsItsWindow();

private:
    std::unique_ptr<Client> m_witness;
};

void TstHostileClients::init()
{
    QTRY_VERIFY(server().clientWindows().isEmpty());
    QWSServer::setKeyRepeat(0, 0);
    m_witness = std::make_unique<Client>();
    QVERIFY(m_witness->shows(u"witness"_qs, u"main"_qs, u"blue"_qs));
}

void TstHostileClients::cleanup()
{
    if (m_witness && m_witness->window(u"witness"_qs)) {
        m_witness->window(u"witness"_qs)->raise();
        QWSServer::sendKeyEvent(0, Qt::Key_F6, 0, true, false);
        QVERIFY(m_witness->says(u"witness press"_qs));
        QTRY_COMPARE(pixel({100, 100}), QColor(Qt::blue));
    }
    m_witness.reset();
}

void TstHostileClients::truncatedPictureEndsTheClient()
{
    Client client(kBadClient, {u"truncate"_qs});
    QVERIFY(client.says(u"shown"_qs));
    // Painting the missing memory is what finds the client out.
    const QImage screen = server().grabScreen();
    QVERIFY(!screen.isNull());
    QTRY_VERIFY(!client.hasWindows());
    QVERIFY(client.says(u"error"_qs));
}

void TstHostileClients::secondRoleEndsTheClient()
{
    Client client(kBadClient, {u"role"_qs});
    QVERIFY(client.says(u"error"_qs));
    QTRY_VERIFY(!client.hasWindows());
}

void TstHostileClients::floodLeavesRoomForOthers()
{
    Client client(kBadClient, {u"flood"_qs});
    QVERIFY(client.says(u"shown"_qs));
    QTRY_VERIFY(client.hasWindows());
    m_witness->window(u"witness"_qs)->raise();
    for (int i = 0; i < 20; ++i) {
        QWSServer::sendKeyEvent(0, Qt::Key_F7, 0, true, false);
        QVERIFY(m_witness->says(QStringLiteral("witness press %1").arg(int(Qt::Key_F7))));
    }
    QVERIFY(client.hasWindows()); // it may be rude, it is not thrown out
}

void TstHostileClients::stoppedClientIsDisconnected()
{
    Client client;
    QVERIFY(client.shows(u"w"_qs, u"main"_qs));
    ::kill(client.pid(), SIGSTOP);
    for (int i = 0; i < 20'000 && client.hasWindows(); ++i) {
        QWSServer::sendKeyEvent(0, Qt::Key_F7, 0, i % 2 == 0, false);
        if (i % 100 == 0)
            QCoreApplication::processEvents();
    }
    QTRY_VERIFY(!client.hasWindows());
    ::kill(client.pid(), SIGCONT);
}

void TstHostileClients::aBurstWaitsForItsReader()
{
    constexpr int kKeys = 900;
    for (int i = 0; i < kKeys; ++i) { // no event loop in between: the client cannot read as fast as this
        QWSServer::sendKeyEvent(0, Qt::Key_F7, 0, true, false);
        QWSServer::sendKeyEvent(0, Qt::Key_F7, 0, false, false);
    }
    QVERIFY(server().pendingInput() > 0);
    for (int i = 0; i < kKeys; ++i)
        QVERIFY(m_witness->says(QStringLiteral("witness press %1").arg(int(Qt::Key_F7))));
    QCOMPARE(server().pendingInput(), 0);
}

void TstHostileClients::coveredClientWaits()
{
    Client below;
    QVERIFY(below.shows(u"w"_qs, u"main"_qs, u"red"_qs));
    m_witness->window(u"witness"_qs)->raise();
    QTRY_COMPARE(pixel({100, 100}), QColor(Qt::blue));
    for (const QString &colour : {u"green"_qs, u"yellow"_qs, u"white"_qs})
        QVERIFY(below.does(u"colour w "_qs + colour));
    m_witness->window(u"witness"_qs)->lower();
    QTRY_COMPARE(pixel({100, 100}), QColor(Qt::white));
}

void TstHostileClients::foreignProgramShowsItsWindow()
{
    const QString program = u"/usr/lib/qt6/bin/linguist"_qs;
    if (!QFile::exists(program))
        QSKIP("a program of others that this machine does not have");
    Client client(program); // the environment of the server's process points it to the screen
    QTRY_VERIFY_WITH_TIMEOUT(client.hasWindows() && server().activeWindow()->clientPid() == client.pid(), 20'000);
    QCOMPARE(server().activeWindow()->caption(), u"Qt Linguist"_qs);
    QCOMPARE(server().activeWindow()->geometry().topLeft(), kWorkArea.topLeft());
    QVERIFY(server().activeWindow()->winId() > 0);
}

int main(int argc, char **argv) { return runOnServer<TstHostileClients>(argc, argv); }

#include "tst_hostileclients.moc"
