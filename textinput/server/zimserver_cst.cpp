#include "textinput/server/zimserver_cst.h"

#include <QHBoxLayout>
#include <QPainter>

namespace {

// Drawn, so that they need neither a font nor a file.
QIcon sign(const QPolygonF &line, const QColor &colour)
{
    QPixmap picture(14, 14);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colour, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(line);
    return picture;
}

}

ZIMServer_CST::ZIMServer_CST(QWidget *screen) : QWidget(screen)
{
    setAutoFillBackground(true);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(1, 1, 1, 1);
    row->setSpacing(1);
    const QColor ink = palette().color(QPalette::ButtonText);
    m_shift.setIcon(sign({{3, 8}, {7, 3}, {11, 8}, {9, 8}, {9, 12}, {5, 12}, {5, 8}, {3, 8}}, ink));
    m_exit.setIcon(sign({{3, 5}, {7, 10}, {11, 5}}, ink));
    for (QToolButton *button : {&m_title, &m_shift, &m_exit}) {
        button->setFocusPolicy(Qt::NoFocus);
        button->setSizePolicy(button == &m_title ? QSizePolicy::Expanding : QSizePolicy::Fixed, QSizePolicy::Ignored);
        button->setAutoRaise(button == &m_title);
        if (button != &m_title)
            button->setFixedWidth(34);
        row->addWidget(button);
    }
    m_title.setToolButtonStyle(Qt::ToolButtonTextOnly);
    connect(&m_title, &QToolButton::clicked, this, &ZIMServer_CST::titleClicked);
    connect(&m_shift, &QToolButton::clicked, this, &ZIMServer_CST::shiftClicked);
    connect(&m_exit, &QToolButton::clicked, this, &ZIMServer_CST::exitClicked);
    hide();
}

void ZIMServer_CST::setMethodName(const QString &name)
{
    m_name = name;
    showText();
}

void ZIMServer_CST::setShiftEnabled(bool enabled) { m_shift.setEnabled(enabled); }

void ZIMServer_CST::setCompletionTip(const QString &word)
{
    m_tip = word;
    showText();
}

void ZIMServer_CST::showText()
{
    const int room = width() - 2 * 40;
    QString text = fontMetrics().elidedText(m_tip.isEmpty() ? m_name : m_tip, Qt::ElideRight, std::max(room, 40));
    m_title.setText(text.replace(u'&', QStringLiteral("&&")));
}

void ZIMServer_CST::titleClicked()
{
    if (m_tip.isEmpty())
        Q_EMIT menuRequested(mapToGlobal(QPoint(0, 0)));
    else
        Q_EMIT tipClicked();
}
