// A small animation that plays over a window and lets pen and keys through to what is below.
#pragma once

#include <QMovie>
#include <QPointer>
#include <QWidget>

inline constexpr char kPressHoldAnimation[] = "General_Mouse_PressHold_Ani.gif";
inline constexpr char kWaitingAnimation[] = "General_Cursor_Waiting_Ani.gif";

// A child of the window, and dies with it; shown from the start. The pictures are part of the library.
class Animation : public QWidget {
    Q_OBJECT

public:
    Animation(QWidget &window, const char *name);

    void centreOn(QPoint inWindow); // as far inside the window as it fits

    // Nothing of it is seen any more. It is destroyed later: who takes it away may be called while the toolkit goes
    // through the children of the window, which has just been hidden or left.
    static void dismiss(QPointer<Animation> &animation);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QMovie m_movie;
};
