// tyx screen on a whole phone: the server, an application and the tool, each in its own process.
#include "tests/support/peerprocess.h"
#include "tests/support/tyxtool.h"

#include <QImage>
#include <QJsonArray>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

const TyxCommand screen{u"screen"_s};

QJsonObject frontWindow() { return screen.json("list").array().first().toObject(); }

}

class TstTyxScreen : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void withoutAPhoneItSaysSo();
    void thePhoneCanBeSeenAndUsed();
};

void TstTyxScreen::withoutAPhoneItSaysSo()
{
    const Outcome shot = screen("shot /tmp/a.png");
    QCOMPARE(shot.status, 3);
    QVERIFY(shot.err.startsWith("tyx: no phone is running: "));
    QVERIFY(!QFile::exists(u"/tmp/a.png"_s));
    for (const QString &name : {u"NoSuchKey"_s, u""_s, u"Ctrl+"_s, u"Hyper+A"_s, u"+Ctrl"_s, u"unknown"_s})
        QCOMPARE(screen({u"key"_s, name}).status, 2);
    QCOMPARE(screen("drag 1 2 3 4 5").status, 2);
}

void TstTyxScreen::thePhoneCanBeSeenAndUsed()
{
    PeerProcess server(u"../bin/tyx-guiserver"_s, {u"--platform"_s, u"offscreen"_s});
    QVERIFY(server.line().startsWith("tyx-guiserver: ready on "));
    PeerProcess hello(u"../bin/hello"_s);
    QCOMPARE(hello.line(), "Language: en-us");
    QTRY_COMPARE(frontWindow()[u"title"].toString(), u"Hello"_s);
    QCOMPARE(frontWindow()[u"geometry"].toArray(), (QJsonArray{0, 20, 240, 300}));
    QCOMPARE(frontWindow()[u"pid"].toInteger(), hello.pid());

    QCOMPARE(screen("shot /tmp/a.png").status, 0);
    QCOMPARE(QImage(u"/tmp/a.png"_s).size(), QSize(240, 320));
    QCOMPARE(screen("shot /nowhere/a.png").status, 3);

    // Far more than a socket holds, and characters that no keyboard has.
    const QString text = QString(5000, u'x') + u"\u00e4\U0001F600"_s;
    QCOMPARE(screen({u"type"_s, text}).status, 0);
    QCOMPARE(screen("key Return").status, 0);
    QCOMPARE(hello.line(), "You said: " + text.toUtf8());

    QCOMPARE(screen("tap 40 306").status, 0);
    QTRY_VERIFY(frontWindow()[u"popup"].toBool());
    QCOMPARE(screen("key Down Down Return").status, 0);
    QCOMPARE(hello.line(), "Hello, phone!");
}

QTEST_GUILESS_MAIN(TstTyxScreen)
#include "tst_tyxscreen.moc"
