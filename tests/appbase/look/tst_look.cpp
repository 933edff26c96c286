// What the phone's look is read from: font definitions, colours, text size.
#include "appbase/look/fontdefinition.h"
#include "appbase/look/phonefonts.h"
#include "appbase/look/phonepalette.h"
#include "appbase/look/textsize.h"
#include "tests/support/standarderror.h"

#include <QApplication>
#include <QDir>
#include <QFontDatabase>
#include <QTest>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace {

// "family|file|renderer|italic|weight|size|flags" a font, then "line: complaint" a complaint.
QStringList told(const FontDefinitions &definitions)
{
    QStringList lines;
    for (const FontDefinition &font : definitions.fonts)
        lines << u"%1|%2|%3|%4|%5|%6|%7"_s.arg(font.family, font.file, font.renderer, font.italic ? u"y"_s : u"n"_s)
                     .arg(font.weight)
                     .arg(font.decipoints)
                     .arg(font.flags);
    for (const FontComplaint &complaint : definitions.complaints)
        lines << u"%1: %2"_s.arg(complaint.line).arg(complaint.why);
    return lines;
}

const QByteArray kSans = "DejaVu_Sans /usr/share/fonts/truetype/dejavu/DejaVuSans.ttf FT n 50 0 -\n";

}

class TstLook : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void fontDefinitions_data();
    void fontDefinitions();
    void whichFileIsUsed_data();
    void whichFileIsUsed();
    void ofFixedSizesTheNearestIsTaken();
    void palettes_data();
    void palettes();
    void textSizes();
};

void TstLook::fontDefinitions_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QStringList>("expected");
    const QString sans = u"Sans|s.ttf|FT|n|50|0|-"_s;
    const QString fewer = u"1: fewer than seven fields"_s;
    QTest::newRow("seven fields") << QByteArray("A_B a/b.ttf FT y 75 120 ab\n")
                                  << QStringList{u"A B|a/b.ttf|FT|y|75|120|ab"_s};
    QTest::newRow("any white space") << QByteArray("\t Sans  s.ttf\tFT\vn 50 0 -\r\n") << QStringList{sans};
    QTest::newRow("an eighth field") << QByteArray("Sans s.ttf FT n 50 0 - more") << QStringList{sans};
    QTest::newRow("comments and empty lines") << QByteArray("# x\n\n  \nSans s.ttf FT n 50 0 -") << QStringList{sans};
    QTest::newRow("six fields") << QByteArray("Sans s.ttf FT n 50 0\n") << QStringList{fewer};
    QTest::newRow("good ones around") << QByteArray("Sans s.ttf FT n 50 0 -\nx\nSans s.ttf FT n 50 0 -\n")
                                      << QStringList{sans, sans, u"2: fewer than seven fields"_s};
    QTest::newRow("italic") << QByteArray("Sans s.ttf FT Y 50 0 -") << QStringList{u"1: italic is neither y nor n"_s};
    for (const char *weight : {"0", "100", "-1", "bold", "5x", "99999999999999999999"})
        QTest::addRow("weight %s", weight) << "Sans s.ttf FT n " + QByteArray(weight) + " 0 -"
                                           << QStringList{u"1: the weight is no number from 1 to 99"_s};
    QTest::newRow("size") << QByteArray("Sans s.ttf FT n 50 2001 -")
                          << QStringList{u"1: the size is no number from 0 to 2000"_s};
    QTest::newRow("NULs") << QByteArray("Sans\0s.ttf FT n 50 0 -", 23) << QStringList{fewer};
    QTest::newRow("nothing") << QByteArray() << QStringList();
}

void TstLook::fontDefinitions()
{
    QFETCH(QByteArray, text);
    QTEST(told(parseFontDefinitions(text)), "expected");
}

void TstLook::whichFileIsUsed_data()
{
    QTest::addColumn<QByteArray>("first"); // "-": there is none
    QTest::addColumn<QByteArray>("backup");
    QTest::addColumn<QString>("family"); // empty: the toolkit's
    QTest::addColumn<QByteArray>("message");
    const QByteArray serif = QByteArray(kSans).replace("Sans", "Serif");
    QTest::newRow("both") << kSans << serif << u"DejaVu Sans"_s << QByteArray();
    QTest::newRow("backup alone") << QByteArray("-") << serif << u"DejaVu Serif"_s << QByteArray();
    QTest::newRow("first without fonts") << QByteArray("#\n") << serif << u"DejaVu Serif"_s << QByteArray();
    QTest::newRow("first is junk") << QByteArray("junk\n") << serif << u"DejaVu Serif"_s
                                   << QByteArray("fonts: /tmp/f/fontdef.cfg: line 1: fewer than seven fields\n");
    QTest::newRow("first is huge") << kSans.repeated(2000) << serif << u"DejaVu Serif"_s
                                   << QByteArray("fonts: /tmp/f/fontdef.cfg: read: File too large\n");
    QTest::newRow("neither") << QByteArray("-") << QByteArray("-") << QString()
                             << QByteArray("Cannot find font definition file /tmp/f/fontdef.cfg - "
                                           "is TYX_RES_FONT_PATH set correctly?\n");
    QTest::newRow("no such font") << QByteArray("Sans no.ttf FT n 50 0 -\n") << QByteArray("-") << u"Sans"_s
                                  << QByteArray("fonts: /tmp/f/no.ttf: is no font that can be loaded\n");
}

void TstLook::whichFileIsUsed()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, backup);
    QFETCH(QString, family);
    QVERIFY(QDir(u"/tmp/f"_s).removeRecursively() && QDir().mkpath(u"/tmp/f"_s));
    for (const auto &[name, text] : {std::pair(u"fontdef.cfg"_s, first), std::pair(u"fontdef.cfg.bak"_s, backup)}) {
        if (text != "-")
            fill(u"/tmp/f/"_s + name, text);
    }
    qputenv("TYX_RES_FONT_PATH", "/tmp/f");
    const StandardError error;
    PhoneFonts fonts;
    fonts.read();
    QCOMPARE(fonts.font(TextSize::Large).family(), family.isEmpty() ? QFont().family() : family);
    QCOMPARE(fonts.font(TextSize::Large).pointSizeF(), 12.0);
    QWidget().ensurePolished();
    QTEST(StandardError::text(), "message");
}

void TstLook::ofFixedSizesTheNearestIsTaken()
{
    fill(u"/tmp/f/fontdef.cfg"_s,
        "Fixed 7.bdf FT n 50 70 -\nFixed 14.bdf FT n 50 140 -\nFixed bold.bdf FT n 75 90 -\nFixed 10.bdf FT n 50 100 "
        "-\n");
    PhoneFonts fonts;
    fonts.read();
    QCOMPARE(fonts.font(TextSize::Small).pointSizeF(), 7.0);
    QCOMPARE(fonts.font(TextSize::Normal).pointSizeF(), 10.0);
    QCOMPARE(fonts.font(TextSize::Large).pointSizeF(), 14.0);
}

void TstLook::palettes_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("window");
    QTest::addColumn<QString>("text");
    const QString window = builtInPalette().color(QPalette::Window).name();
    const QString text = builtInPalette().color(QPalette::Text).name();
    QTest::newRow("none") << QByteArray() << window << text;
    QTest::newRow("one colour") << QByteArray("[COLOR_PALETTE]\nWindow = #102030\n") << u"#102030"_s << text;
    QTest::newRow("two") << QByteArray("[COLOR_PALETTE]\nText=#ABCDEF\nWindow=#102030\n") << u"#102030"_s
                         << u"#abcdef"_s;
    QTest::newRow("unknown keys") << QByteArray("[COLOR_PALETTE]\nNoRole=x\nNColorRoles=x\nX=y\n") << window << text;
    QTest::newRow("other group") << QByteArray("[X]\nWindow = #102030\n") << window << text;
    for (const char *color : {"", "red", "#12345", "#12345g", "#1234567", "#\303\244bcdef"})
        QTest::addRow("no colour: %s", color) << "[COLOR_PALETTE]\nText=#102030\nWindow=" + QByteArray(color) + '\n'
                                              << window << text;
}

void TstLook::palettes()
{
    QFETCH(QByteArray, file);
    fill(u"/tmp/colorpalette.cfg"_s, file);
    const QPalette palette = currentPalette();
    QTEST(palette.color(QPalette::Window).name(), "window");
    QTEST(palette.color(QPalette::Text).name(), "text");
}

void TstLook::textSizes()
{
    for (const char *value : {"0", "1", "2", "", "3", "-1", "x", "2x", "4294967296"}) {
        fill(u"/tmp/tyx_system.cfg"_s, QByteArray("[SYS_SYSTEM_SET]\nTextSize = ") + value + '\n');
        QCOMPARE(int(currentTextSize()), qstrcmp(value, "0") == 0 ? 0 : qstrcmp(value, "2") == 0 ? 2 : 1);
    }
}

QTEST_MAIN(TstLook)
#include "tst_look.moc"
