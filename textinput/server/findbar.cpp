#include "textinput/server/findbar.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QSignalBlocker>

namespace {

constexpr int kLongest = 128; // characters: no name that is looked for is longer

}

FindBar::FindBar(QWidget *screen) : QWidget(screen)
{
    setAutoFillBackground(true);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(4, 1, 2, 1);
    row->setSpacing(4);
    row->addWidget(&m_label);
    row->addWidget(&m_line, 1);
    m_line.setFocusPolicy(Qt::NoFocus); // the keys of the phone come through the server
    m_line.setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
    m_line.setMaxLength(kLongest);
    connect(&m_line, &QLineEdit::textChanged, this, &FindBar::textChanged);
    hide();
}

void FindBar::showEvent(QShowEvent *event)
{
    m_label.setText(QCoreApplication::translate("99.99;FORM_CONTEXT_TRANS2_WITH_SCROLL", "Find:"));
    QWidget::showEvent(event);
}

void FindBar::type(const IM_KeyEventEx &event)
{
    m_line.end(false);
    if (event.qtKey() == Qt::Key_Backspace)
        m_line.backspace();
    else
        m_line.insert(event.typed());
}

void FindBar::clear()
{
    const QSignalBlocker quiet(m_line);
    m_line.clear();
}
