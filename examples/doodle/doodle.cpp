// Draws with the pen; any key clears the page.
#include <QCoreApplication>
#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QWidget>
#include <TYXSkin>
#include <ZApplication>

namespace {

class Page : public QWidget {
public:
    Page()
    {
        setAttribute(Qt::WA_OpaquePaintEvent);
        retranslate();
    }

protected:
    void changeEvent(QEvent *event) override
    {
        if (event->type() == QEvent::LanguageChange)
            retranslate();
        QWidget::changeEvent(event);
    }

    void mousePressEvent(QMouseEvent *event) override { m_strokes.moveTo(event->position()); }

    void mouseMoveEvent(QMouseEvent *event) override
    {
        m_strokes.lineTo(event->position());
        update();
    }

    void keyPressEvent(QKeyEvent * /*event*/) override
    {
        m_strokes.clear();
        update();
    }

    void paintEvent(QPaintEvent * /*event*/) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), TYXSkin::color(QStringLiteral("paper"), QColor(0xfffdf6e3)));
        painter.setPen(TYXSkin::color(QStringLiteral("paper_hint"), QColor(0xff9c9278)));
        if (m_strokes.isEmpty())
            painter.drawText(rect(), Qt::AlignCenter, m_hint);
        painter.setRenderHint(QPainter::Antialiasing);
        const QColor ink = TYXSkin::color(QStringLiteral("ink"), QColor(0xff1b6b93));
        painter.setPen(QPen(ink, 4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPath(m_strokes);
    }

private:
    void retranslate()
    {
        setWindowTitle(QCoreApplication::translate("1.2.1;DOODLE", "Doodle"));
        m_hint = QCoreApplication::translate("1.2.1;DOODLE", "Draw here");
        update();
    }

    QString m_hint;
    QPainterPath m_strokes;
};

}

int main(int argc, char **argv)
{
    ZApplication app(argc, argv);
    Page page;
    app.setMainWidget(&page);
    page.show();
    return ZApplication::exec();
}
