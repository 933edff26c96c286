#include "textinput/server/plainkeypad.h"

#include <QGridLayout>
#include <QToolButton>

namespace {

constexpr int kColumns = 10;

}

PlainKeypad::PlainKeypad(QWidget *screen) : QWidget(screen)
{
    setAutoFillBackground(true);
    setFocusPolicy(Qt::NoFocus);
    arrange();
    hide();
}

void PlainKeypad::addKey(QGridLayout &grid, int row, int column, const QString &text, int key)
{
    auto *button = new QToolButton(this);
    button->setFocusPolicy(Qt::NoFocus); // the keys of the phone stay the application's
    button->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    button->setText(text);
    const int span = key == Qt::Key_Space ? 4 : key != 0 || text.size() > 1 ? 2 : 1;
    grid.addWidget(button, row, column, 1, span);
    connect(button, &QToolButton::clicked, this, [this, text, key] {
        if (key == 0)
            Q_EMIT typed(text.front().unicode(), text.front().toUpper().unicode());
        else
            Q_EMIT typed(key == Qt::Key_Space ? ' ' : 0, key);
    });
}

void PlainKeypad::arrange()
{
    qDeleteAll(findChildren<QToolButton *>(QString(), Qt::FindDirectChildrenOnly));
    delete layout();
    auto *grid = new QGridLayout(this);
    grid->setContentsMargins(1, 1, 1, 1);
    grid->setSpacing(1);
    const QString rows[] = {
        m_digits ? QStringLiteral("1234567890") : QStringLiteral("qwertyuiop"),
        m_digits ? QStringLiteral("@#%&-+()/=") : QStringLiteral("asdfghjkl'"),
        m_digits ? QStringLiteral("*\"':;!?_<>") : QStringLiteral("zxcvbnm,.?"),
    };
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < kColumns; ++column)
            addKey(*grid, row, column, rows[row].mid(column, 1));
    }
    auto *other = new QToolButton(this);
    other->setFocusPolicy(Qt::NoFocus);
    other->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    other->setText(m_digits ? QStringLiteral("abc") : QStringLiteral("123"));
    grid->addWidget(other, 3, 0, 1, 2);
    // Queued: the button must not be destroyed while it is clicked.
    connect(
        other, &QToolButton::clicked, this,
        [this] {
            m_digits = !m_digits;
            arrange();
        },
        Qt::QueuedConnection);
    addKey(*grid, 3, 2, QStringLiteral("space"), Qt::Key_Space);
    addKey(*grid, 3, 6, QStringLiteral("del"), Qt::Key_Backspace);
    addKey(*grid, 3, 8, QStringLiteral("enter"), Qt::Key_Return);
}
