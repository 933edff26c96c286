// The find bar: a line over the title strip that takes what is typed while an application looks something up.
#pragma once

#include "appbase/messaging/keyeventex.h"

#include <QLabel>
#include <QLineEdit>

class FindBar : public QWidget {
    Q_OBJECT

public:
    static constexpr int kHeight = 26; // pixels

    explicit FindBar(QWidget *screen); // hidden at first

    void type(const IM_KeyEventEx &event); // text at its end; Backspace takes the last character away
    void clear(); // without a signal

Q_SIGNALS:
    void textChanged(const QString &text);

protected:
    void showEvent(QShowEvent *event) override; // the language may have changed

private:
    QLabel m_label;
    QLineEdit m_line;
};
