// The keypad that the server shows while no input method can: letters, digits, and nothing that could go wrong.
#pragma once

#include <QWidget>

class QGridLayout;

class PlainKeypad : public QWidget {
    Q_OBJECT

public:
    static constexpr int kHeight = 134; // pixels

    explicit PlainKeypad(QWidget *screen); // hidden at first

Q_SIGNALS:
    void typed(int unicode, int key); // unicode is 0 for a key without a character

private:
    void arrange();
    void addKey(QGridLayout &grid, int row, int column, const QString &text, int key = 0);

    bool m_digits = false;
};
