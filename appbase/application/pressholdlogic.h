// Decides when a press of the pen is one that is held. Knows no widgets and no clock: events and times come in, what is
// to be done comes out.
//
// state     | pen goes down | moves far | pen goes up   | interrupted | first delay over | hold time over
// ----------+---------------+-----------+---------------+-------------+------------------+---------------
// Up        | Down          |           |               |             |                  |
// Down      | Down, anew    | Up        | Up            | Up          | Filling, Animate |
// Filling   | Down, Stop    | Up, Stop  | Up, Stop      | Up, Stop    |                  | Held, Hold
// Held      | Down          | Swallow   | Up, Swallow   |             |                  |
//
// An empty field means: no change, nothing to be done. Moving less than far does nothing, except that a pen that is
// Held has every move swallowed. A pen that is Held stays so when it is interrupted: its way up must still not click.
#pragma once

#include <QPoint>
#include <chrono>
#include <optional>

class PressHoldLogic {
public:
    using Time = std::chrono::milliseconds; // of any clock that does not go back
    enum class State { Up, Down, Filling, Held };
    enum class Action {
        None,
        Animate, // the animation begins at the pen
        Stop, // the animation goes
        Hold, // the animation goes, and the press counts as held
        Swallow // the event must not reach a widget
    };

    static constexpr Time kAnimateAfter{300}; // longer than a tap
    static constexpr Time kHoldAfter{1000}; // 700 more: as long as the animation lasts
    static constexpr int kFar = 6; // pixels, in x or y; a finger's tremble is less

    Action down(QPoint position, Time now);
    Action move(QPoint position);
    Action up();
    Action interrupt(); // another button, a widget that hides or dies, a window that is no longer in front
    Action elapse(Time now);

    // When elapse() has something to do; nothing while no time counts.
    [[nodiscard]] std::optional<Time> deadline() const;
    [[nodiscard]] State state() const { return m_state; }
    [[nodiscard]] QPoint position() const { return m_position; } // where the pen went down

private:
    Action leave(State next);

    State m_state = State::Up;
    QPoint m_position;
    Time m_since{};
};
