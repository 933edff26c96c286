// The bar along the top of the screen: what is in front, and the time.
#pragma once

#include <QBasicTimer>
#include <QWidget>

class StatusBar : public QWidget {
    Q_OBJECT

public:
    static constexpr int kHeight = 20; // pixels; the work area begins below

    // A child of the window server's screen. Follows the window that has the focus.
    explicit StatusBar(QWidget *screen);

protected:
    void mousePressEvent(QMouseEvent *event) override; // on to the next application
    void paintEvent(QPaintEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    void followActiveWindow();
    void waitForNextMinute();

    QString m_title;
    QBasicTimer m_minute;
};
