// The real program on real segments: `tyx share`.
#include "tests/support/standarderror.h"
#include "tests/support/tyxtool.h"

#include <QBuffer>
#include <QDir>
#include <QImage>
#include <QJsonArray>
#include <QJsonObject>
#include <UTIL_ShareImage>
#include <sys/shm.h>

using namespace Qt::StringLiterals;

class TstTyxShare : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void listsAndDumps();
};

void TstTyxShare::listsAndDumps()
{
    const TyxCommand tyx{u"share"_s};
    const StandardError quiet;
    QCOMPARE(tyx({u"list"_s}).out, "");
    QImage image(3, 2, QImage::Format_ARGB32);
    image.fill(QColor(100, 50, 200));
    image.setPixelColor(0, 0, Qt::transparent);
    QByteArray png;
    QBuffer buffer(&png);
    QVERIFY(image.save(&buffer, "PNG"));
    UTIL_ShareImage shared(u"A"_s);
    QVERIFY(shared.create(png.constData(), unsigned(png.size())));
    const UTIL_ShareImage withoutSegment(u"none yet"_s);
    fill(u"/tmp/UTIL_ShareImage_broken%2b"_s, {});
    QVERIFY(::shmget(::ftok("/tmp/UTIL_ShareImage_broken%2b", 0x5A), 10, IPC_CREAT | 0666) >= 0);
    QCOMPARE(::symlink("/etc/passwd", "/tmp/UTIL_ShareImage_linked"), 0);

    const QJsonArray all = tyx.json({u"list"_s}).array();
    const QByteArray key = QByteArray::number(::ftok("/tmp/UTIL_ShareImage_A", 0x5A), 16);
    const QJsonObject expected{{u"name"_s, u"A"_s}, {u"file"_s, u"/tmp/UTIL_ShareImage_A"_s},
        {u"key"_s, QString(u"0x"_s + QLatin1String(key))}, {u"id"_s, all[0][u"id"]},
        {u"bytes"_s, 28 + 3 * 2 * 4 + 2 * 4}, {u"width"_s, 3}, {u"height"_s, 2}, {u"depth"_s, 32}, {u"mask"_s, true},
        {u"attached"_s, 1}, {u"processes"_s, QJsonArray{QCoreApplication::applicationPid()}}};
    QCOMPARE(all[0].toObject(), expected);
    QCOMPARE(all.size(), 4);
    for (const char *words :
        {"  segment ", "  60 bytes  3x2  32 bits  mask  1 attached  ", "  10 bytes  holds no image  ",
            "\nlinked  open: Invalid argument\n", "  nobody has stored an image yet\n"})
        QVERIFY2(tyx({u"list"_s}).out.contains(words), words);

    QCOMPARE(tyx({u"dump"_s, u"A"_s, u"/tmp/a.png"_s}).status, 0);
    QCOMPARE(QImage(u"/tmp/a.png"_s).convertToFormat(QImage::Format_ARGB32), image);
    const auto refused = [&](const QStringList &arguments, int status, const char *message) {
        const Outcome outcome = tyx(arguments);
        QCOMPARE(outcome.status, status);
        QVERIFY2(outcome.err.contains(message) && outcome.err.count('\n') == 1, outcome.err.constData());
    };
    refused({u"dump"_s, u"x"_s, u"-"_s}, 1, "nobody shares an image \"x\"");
    refused({u"dump"_s, u"none yet"_s, u"-"_s}, 1, "nobody shares an image \"none yet\"");
    refused({u"dump"_s, u"broken%2b"_s, u"-"_s}, 3, "tyx: \"broken%2b\": segment ");
    refused({u"dump"_s, u"broken%2b"_s, u"-"_s}, 3, "holds no image; store an image, or remove it with ipcrm -m ");
    refused({u"dump"_s, u"linked"_s, u"-"_s}, 3, "/tmp/UTIL_ShareImage_linked: open: Invalid argument");
    refused({u"dump"_s, u"A"_s, u"/none/a.png"_s}, 3,
        "/none/a.png: could not be saved: No such file or directory; make its folder");
    refused({u"dump"_s, u"A"_s}, 2, "FILE is required");
#ifndef TYX_EMULATED // the emulator itself does not bear the limit
    // Where there is no room, the picture that is there stays.
    const QByteArray before = content(u"/tmp/a.png"_s);
    const QString limited = u"trap '' XFSZ; ulimit -f 0; exec "_s + QStringLiteral(TYX_BINARY_DIR "/bin/tyx");
    const Outcome full = run(u"/bin/sh"_s, {u"-c"_s, limited + u" share dump A /tmp/a.png"_s});
    QCOMPARE(full.status, 3);
    QVERIFY2(full.err.contains("/tmp/a.png: could not be saved: File too large"), full.err.constData());
    QCOMPARE(content(u"/tmp/a.png"_s), before);
#endif
    QCOMPARE(QDir(u"/tmp"_s).entryList({u"UTIL_*"_s}, QDir::AllEntries | QDir::System).size(), 4);
}

QTEST_GUILESS_MAIN(TstTyxShare)
#include "tst_tyxshare.moc"
