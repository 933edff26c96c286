// The two keys at the bottom of a window that do what is written above them.
#pragma once

#include "platform/tyxexport.h"

#include <QWidget>
#include <memory>

class QAction;
class SoftKeyBarData;

// A bar with one action at each end, for the bottom of a window:
//
//     bar.setLeft(&options); // an action with a menu opens it above its key
//     bar.setRight(&exit);
//
// A tap triggers an action, and so do the keys F11 (left) and F12 (right) while the window of the bar is active. An
// action that is disabled cannot be triggered; one that is not visible, or null, leaves its end empty. The actions are
// not owned; one that is destroyed leaves its end empty.
class TYX_EXPORT SoftKeyBar : public QWidget {
    Q_OBJECT

public:
    // Both ends are empty. 28 pixels high, and as wide as its layout has it.
    explicit SoftKeyBar(QWidget *parent = nullptr);
    ~SoftKeyBar() override;

    // The action that a soft key triggers; null: none.
    void setLeft(QAction *action);
    void setRight(QAction *action);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    std::unique_ptr<SoftKeyBarData> d;
};
