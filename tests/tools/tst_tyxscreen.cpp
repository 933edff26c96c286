// tyx screen on a whole phone: the server, an application and the tool, each in its own process.
#include "tests/support/peerprocess.h"

#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString kPrograms = QStringLiteral(TYX_BINARY_DIR "/bin/");

struct Outcome {
    int status;
    QByteArray out;
    QByteArray err;
};

Outcome screen(const QStringList &arguments)
{
    QProcess tyx;
    tyx.start(kPrograms + u"tyx"_s, QStringList{u"screen"_s} + arguments);
    tyx.waitForFinished();
    return {tyx.exitCode(), tyx.readAllStandardOutput(), tyx.readAllStandardError()};
}

QJsonObject frontWindow()
{
    return QJsonDocument::fromJson(screen({u"list"_s, u"--json"_s}).out).array().first().toObject();
}

}

class TstTyxScreen : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void withoutAPhoneItSaysSo();
    void thePhoneCanBeSeenAndUsed();
};

void TstTyxScreen::withoutAPhoneItSaysSo()
{
    const Outcome shot = screen({u"shot"_s, u"/tmp/a.png"_s});
    QCOMPARE(shot.status, 3);
    QVERIFY(shot.err.startsWith("tyx: no phone is running here"));
    QVERIFY(!QFile::exists(u"/tmp/a.png"_s));
    for (const QString &name : {u"NoSuchKey"_s, u""_s, u"Ctrl+"_s, u"Hyper+A"_s, u"+Ctrl"_s, u"unknown"_s})
        QCOMPARE(screen({u"key"_s, name}).status, 2);
    QCOMPARE(screen({u"drag"_s, u"1"_s, u"2"_s, u"3"_s, u"4"_s, u"5"_s}).status, 2);
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

    QCOMPARE(screen({u"shot"_s, u"/tmp/a.png"_s}).status, 0);
    QCOMPARE(QImage(u"/tmp/a.png"_s).size(), QSize(240, 320));
    QCOMPARE(screen({u"shot"_s, u"/nowhere/a.png"_s}).status, 3);

    // Far more than a socket holds, and characters that no keyboard has.
    const QString text = QString(5000, u'x') + u"\u00e4\U0001F600"_s;
    QCOMPARE(screen({u"type"_s, text}).status, 0);
    QCOMPARE(screen({u"key"_s, u"Return"_s}).status, 0);
    QCOMPARE(hello.line(), "You said: " + text.toUtf8());

    QCOMPARE(screen({u"tap"_s, u"40"_s, u"306"_s}).status, 0);
    QTRY_VERIFY(frontWindow()[u"popup"].toBool());
    QCOMPARE(screen({u"key"_s, u"Down"_s, u"Down"_s, u"Return"_s}).status, 0);
    QCOMPARE(hello.line(), "Hello, phone!");
}

QTEST_GUILESS_MAIN(TstTyxScreen)
#include "tst_tyxscreen.moc"
