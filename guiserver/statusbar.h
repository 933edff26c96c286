// The bar along the top of the screen: the phone's state, what is in front, and the time.
#pragma once

#include "guiserver/clockwatch.h"
#include "guiserver/statuscontent.h"
#include "settings/status/systemstatuswatcher.h"

#include <QBasicTimer>
#include <QWidget>

class QPainter;

class StatusBar : public QWidget {
    Q_OBJECT

public:
    static constexpr int kHeight = 20; // pixels; the work area begins below

    // A child of the window server's screen. Follows the status table and the window that has the focus; is painted
    // anew only when something that it shows is different.
    explicit StatusBar(QWidget *screen);

protected:
    void mousePressEvent(QMouseEvent *event) override; // on to the next application
    void dragEnterEvent(QDragEnterEvent *event) override; // the same, for what is held over it
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    void refresh();
    void showTheTime();
    void waitForNextMinute();
    int drawSigns(QPainter &painter, int right) const; // their left edge

    StatusContent m_content;
    SystemStatusWatcher m_watcher;
    ClockWatch m_clock;
    QBasicTimer m_minute;
    QBasicTimer m_held; // while something is dragged over it
};
