#include "appbase/look/phonepalette.h"
#include "appbase/look/softkeybar.h"
#include "appbase/look/tyxskin.h"
#include "appbase/look/tyxstyle.h"
#include "res/files/util_skinfilewriter.h"
#include "res/skin/util_skinfilereader.h"

#include <QAction>
#include <QMenu>
#include <QPainter>
#include <QPushButton>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr int kSide = 16;

struct Part {
    const char *name;
    QRgb light;
    QRgb dark;
};

constexpr Part parts[] = {{"button", 0xffc0c0c0, 0xff404040}, {"button_O", 0xff80a0c0, 0xff204060},
    {"button_A", 0xffc0c0ff, 0xff404080}, {"button_D", 0xffeeeeee, 0xff111111}, {"list", 0xfffafafa, 0xff050505},
    {"Window", 0xfff0f0f0, 0xff101010}, {"WindowText", 0xff000001, 0xfffffffe}};

// Each part is a square of its colour with a red line around it.
QString makeSkin(const QString &name, QRgb Part::*color)
{
    QImage atlas(kSide * int(std::size(parts)), kSide, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&atlas);
    UTIL_SkinFileWriter writer(u"/tmp/"_s + name + u".skn"_s, u"/tmp/"_s + name + u".png"_s);
    for (int i = 0; i < int(std::size(parts)); ++i) {
        const QRect rect(i * kSide, 0, kSide, kSide);
        painter.fillRect(rect, Qt::red);
        painter.fillRect(rect.adjusted(1, 1, -1, -1), QColor(parts[i].*color));
        writer.add(QString::fromLatin1(parts[i].name) + u".g"_s, rect);
    }
    painter.end();
    return atlas.save(writer.imageFileName()) && writer.save() ? writer.fileName() : QString();
}

QImage drawn(const QString &name, TYXSkin::State state)
{
    QImage image(60, 40, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::green);
    QPainter painter(&image);
    TYXSkin::draw(painter, image.rect(), name, state);
    return image;
}

}

class TstSkinnedControls : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        qputenv("TYX_RES_SKIN_FILE", QFile::encodeName(makeSkin(u"light"_s, &Part::light)));
        TYXSkin::reload();
    }

    void aPartIsDrawnForEachState_data()
    {
        QTest::addColumn<TYXSkin::State>("state");
        QTest::addColumn<QString>("part");
        QTest::addColumn<QRgb>("middle");
        QTest::newRow("rest") << TYXSkin::State{} << u"button"_s << 0xffc0c0c0;
        QTest::newRow("pressed") << TYXSkin::State{.on = true} << u"button"_s << 0xff80a0c0;
        QTest::newRow("focus") << TYXSkin::State{.active = true} << u"button"_s << 0xffc0c0ff;
        QTest::newRow("disabled") << TYXSkin::State{.on = true, .enabled = false} << u"button"_s << 0xffeeeeee;
        QTest::newRow("no image for both") << TYXSkin::State{.on = true, .active = true} << u"button"_s << 0xffc0c0c0;
        QTest::newRow("unknown") << TYXSkin::State{} << u"wheel"_s << 0xff00ff00;
    }
    void aPartIsDrawnForEachState()
    {
        QFETCH(QString, part);
        QFETCH(QRgb, middle);
        QFETCH(TYXSkin::State, state);
        QCOMPARE(QString::number(drawn(part, state).pixel(30, 20), 16), QString::number(middle, 16));
    }

    void theBorderIsNotStretched()
    {
        const QImage image = drawn(u"button"_s, {});
        for (const QPoint onLine : {QPoint(0, 20), QPoint(59, 20), QPoint(30, 0), QPoint(30, 39), QPoint(59, 39)})
            QCOMPARE(image.pixelColor(onLine), QColor(Qt::red));
        for (const QPoint inside : {QPoint(1, 20), QPoint(58, 20), QPoint(30, 1), QPoint(30, 38)})
            QCOMPARE(image.pixel(inside), 0xffc0c0c0);
        // Smaller than its border: what there is room for.
        QImage tiny(3, 3, QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&tiny);
        QVERIFY(TYXSkin::draw(painter, tiny.rect(), u"button"_s));
    }

    void anotherSkinIsPutOn()
    {
        TYXStyle style;
        QPushButton button;
        button.setStyle(&style);
        button.resize(80, 30);
        QCOMPARE(button.grab().toImage().pixel(8, 15), 0xffc0c0c0);
        QCOMPARE(skinPalette().color(QPalette::Window), QColor(0xfff0f0f0));
        QCOMPARE(skinPalette().color(QPalette::Highlight), builtInPalette().color(QPalette::Highlight));

        const QString dark = makeSkin(u"dark"_s, &Part::dark);
        UTIL_SkinFileReader server;
        QVERIFY(server.setFileName(dark));
        qputenv("TYX_RES_SKIN_FILE", QFile::encodeName(dark));
        TYXSkin::reload();
        QCOMPARE(button.grab().toImage().pixel(8, 15), 0xff404040);
        QCOMPARE(skinPalette().color(QPalette::WindowText), QColor(0xfffffffe));

        qputenv("TYX_RES_SKIN_FILE", "/tmp/absent.skn");
        TYXSkin::reload();
        QVERIFY(!TYXSkin::color(u"Window"_s).isValid());
        QCOMPARE(skinPalette(), builtInPalette());
        QVERIFY(button.grab().toImage().pixel(8, 15) != 0xff404040);
    }

    void softKeysTriggerTheirActions()
    {
        QWidget window;
        SoftKeyBar bar(&window);
        window.setGeometry(0, 200, 240, 28);
        bar.resize(240, 28);
        QMenu menu;
        menu.addAction(u"Entry"_s);
        QAction options(u"Options"_s, nullptr);
        options.setMenu(&menu);
        auto exit = std::make_unique<QAction>(u"Exit"_s);
        int exits = 0;
        connect(exit.get(), &QAction::triggered, this, [&exits] { ++exits; });
        bar.setLeft(&options);
        bar.setRight(exit.get());
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        const auto tap = [&](int x) { QTest::mouseClick(bar.childAt(x, 14), Qt::LeftButton); };
        tap(200);
        QTest::keyClick(&window, Qt::Key_F12);
        QCOMPARE(exits, 2);
        exit->setEnabled(false);
        tap(200);
        QTest::keyClick(&window, Qt::Key_F12);
        QCOMPARE(exits, 2);
        exit.reset();
        QVERIFY(!bar.childAt(200, 14));
        QTest::keyClick(&window, Qt::Key_F12);
        tap(20);
        QVERIFY(menu.isVisible());
        QCOMPARE(menu.geometry().bottom() + 1, bar.mapToGlobal(QPoint(0, 0)).y());
    }
};

QTEST_MAIN(TstSkinnedControls)
#include "tst_skinnedcontrols.moc"
