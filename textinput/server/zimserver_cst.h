// The title strip over the input widget: which input method it is, and what can be done with it.
#pragma once

#include <QToolButton>
#include <QWidget>

class ZIMServer_CST : public QWidget { // name fixed
    Q_OBJECT

public:
    static constexpr int kHeight = 22; // pixels

    explicit ZIMServer_CST(QWidget *screen); // hidden at first

    void setMethodName(const QString &name);
    void setShiftEnabled(bool enabled); // the plain keypad has none
    void setCompletionTip(const QString &word); // in place of the name; empty: none
    [[nodiscard]] QString completionTip() const { return m_tip; }

Q_SIGNALS:
    void menuRequested(const QPoint &above); // where on the screen
    void shiftClicked();
    void exitClicked();
    void tipClicked();

private:
    void showText();
    void titleClicked();

    // Left to right.
    QToolButton m_title; // the name, which opens the menu, or the tip
    QToolButton m_shift;
    QToolButton m_exit;
    QString m_name;
    QString m_tip;
};
