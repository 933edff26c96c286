#include "appbase/application/waitingcursor.h"

#include "appbase/application/animation.h"

#include <QApplication>

void WaitingCursor::show()
{
    ++m_depth;
    follow();
    if (m_animation)
        m_animation->repaint(); // who shows it may not return to the event loop for long
}

void WaitingCursor::hide()
{
    if (m_depth == 0)
        return;
    --m_depth;
    if (m_depth == 0)
        clear();
}

void WaitingCursor::clear()
{
    m_depth = 0;
    Animation::dismiss(m_animation);
}

void WaitingCursor::follow()
{
    QWidget *window = m_depth > 0 ? QApplication::activeWindow() : nullptr;
    if (!window)
        return;
    if (!m_animation || m_animation->parentWidget() != window) {
        Animation::dismiss(m_animation);
        m_animation = new Animation(*window, kWaitingAnimation);
    }
    m_animation->centreOn(window->rect().center());
    m_animation->raise();
}
