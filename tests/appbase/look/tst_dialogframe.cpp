// The frames that dialogs get inside themselves.
#include <QDialog>
#include <QLabel>
#include <QTest>
#include <QVBoxLayout>
#include <QWSApplication>
#include <TYXWSDecoration>

using namespace Qt::StringLiterals;

class TstDialogFrame : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whoIsFramed_data();
    void whoIsFramed();
    void theFrameFollowsTheTitle();
};

void TstDialogFrame::whoIsFramed_data()
{
    QTest::addColumn<Qt::WindowFlags>("flags");
    QTest::addColumn<QString>("title");
    QTest::addColumn<bool>("hasLayout");
    QTest::addColumn<int>("side"); // pixels that the frame takes, left, right and below
    QTest::addColumn<bool>("strip"); // above
    using F = Qt::WindowFlags;
    QTest::newRow("dialog") << F(Qt::Dialog) << u"T"_s << true << 1 << true;
    QTest::newRow("without a title") << F(Qt::Dialog) << QString() << true << 1 << false;
    QTest::newRow("frameless") << F(Qt::Dialog | Qt::FramelessWindowHint) << u"T"_s << true << 0 << false;
    QTest::newRow("asks for no title") << F(Qt::Dialog | Qt::CustomizeWindowHint) << u"T"_s << true << 0 << false;
    QTest::newRow("main window") << F(Qt::Window) << u"T"_s << true << 0 << false;
    QTest::newRow("pop-up") << F(Qt::Popup) << u"T"_s << true << 0 << false;
    QTest::newRow("without a layout") << F(Qt::Dialog) << u"T"_s << false << 0 << false;
}

void TstDialogFrame::whoIsFramed()
{
    QFETCH(Qt::WindowFlags, flags);
    QFETCH(QString, title);
    QFETCH(bool, hasLayout);
    QFETCH(int, side);
    QFETCH(bool, strip);
    QDialog dialog(nullptr, flags);
    dialog.setWindowTitle(title);
    dialog.setContentsMargins(3, 3, 3, 3);
    QLabel label(u"text"_s, &dialog);
    if (hasLayout)
        (new QVBoxLayout(&dialog))->addWidget(&label);
    dialog.ensurePolished();
    const int height = strip ? dialog.fontMetrics().height() : 0;
    const QMargins margins = dialog.contentsMargins();
    QCOMPARE(margins, QMargins(3 + side, margins.top(), 3 + side, 3 + side));
    QVERIFY(margins.top() >= 3 + side + height && (strip || margins.top() == 3 + side));

    dialog.resize(120, 100);
    const QImage picture = dialog.grab().toImage();
    const QRgb line = dialog.palette().color(QPalette::Shadow).rgb();
    QCOMPARE(picture.pixel(0, 50) == line && picture.pixel(119, 99) == line, side > 0);
    QCOMPARE(picture.pixel(60, 3) == line, strip);
    QVERIFY(picture.pixel(60, 90) != line);
}

void TstDialogFrame::theFrameFollowsTheTitle()
{
    QDialog dialog;
    (new QVBoxLayout(&dialog))->addWidget(new QLabel(u"text"_s));
    dialog.ensurePolished();
    const int bare = dialog.contentsMargins().top();
    dialog.setWindowTitle(u"T"_s);
    QVERIFY(dialog.contentsMargins().top() > bare);
    dialog.setWindowTitle({});
    QCOMPARE(dialog.contentsMargins().top(), bare);
}

int main(int argc, char **argv)
{
    QWSApplication app(argc, argv, QWSApplication::Tty);
    QWSApplication::qwsSetDecoration(new TYXWSDecoration);
    TstDialogFrame test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_dialogframe.moc"
