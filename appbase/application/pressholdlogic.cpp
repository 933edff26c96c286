#include "appbase/application/pressholdlogic.h"

#include <algorithm>
#include <cstdlib>

PressHoldLogic::Action PressHoldLogic::leave(State next)
{
    const bool wasFilling = m_state == State::Filling;
    m_state = next;
    return wasFilling ? Action::Stop : Action::None;
}

PressHoldLogic::Action PressHoldLogic::down(QPoint position, Time now)
{
    m_position = position;
    m_since = now;
    return leave(State::Down);
}

PressHoldLogic::Action PressHoldLogic::move(QPoint position)
{
    if (m_state == State::Held)
        return Action::Swallow;
    const QPoint way = position - m_position;
    const bool far = std::max(std::abs(way.x()), std::abs(way.y())) > kFar;
    return far ? leave(State::Up) : Action::None;
}

PressHoldLogic::Action PressHoldLogic::up()
{
    const bool wasHeld = m_state == State::Held;
    const Action action = leave(State::Up);
    return wasHeld ? Action::Swallow : action;
}

PressHoldLogic::Action PressHoldLogic::interrupt() { return m_state == State::Held ? Action::None : leave(State::Up); }

PressHoldLogic::Action PressHoldLogic::elapse(Time now)
{
    const auto due = deadline();
    if (!due || now < *due)
        return Action::None;
    // After a busy time both may be over: then there is nothing to animate any more.
    if (now >= m_since + kHoldAfter) {
        m_state = State::Held;
        return Action::Hold;
    }
    m_state = State::Filling;
    return Action::Animate;
}

std::optional<PressHoldLogic::Time> PressHoldLogic::deadline() const
{
    switch (m_state) {
    case State::Down:
        return m_since + kAnimateAfter;
    case State::Filling:
        return m_since + kHoldAfter;
    default:
        return std::nullopt;
    }
}
