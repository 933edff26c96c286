// The client of the measurement: one window that changes its colour with every key.
#include "platform/window/qwsapplication.h"

#include <QPainter>
#include <QWidget>

namespace {

class Painter : public QWidget {
protected:
    void keyPressEvent(QKeyEvent *) override
    {
        m_isRed = !m_isRed;
        update();
    }
    void paintEvent(QPaintEvent *) override { QPainter(this).fillRect(rect(), m_isRed ? Qt::red : Qt::blue); }

private:
    bool m_isRed = false;
};

}

int main(int argc, char **argv)
{
    QWSApplication application(argc, argv, QWSApplication::GuiClient);
    Painter window;
    window.show();
    return QWSApplication::exec();
}
