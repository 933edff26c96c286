// The signals that ask a program to end: its terminal was closed, Ctrl+C, kill.
#pragma once

#include "platform/system/fd.h"

#include <chrono>
#include <csignal>

namespace platform {

// What this process ignores from its start on (nohup, a job in the background of a script) it is to go on ignoring.
// (Inline: programs over the shared library use it too.)
inline sigset_t endSignals()
{
    sigset_t set;
    sigemptyset(&set);
    for (const int number : {SIGHUP, SIGINT, SIGTERM}) {
        struct sigaction action = {};
        if (::sigaction(number, nullptr, &action) == 0 && action.sa_handler != SIG_IGN)
            sigaddset(&set, number);
    }
    return set;
}

// While it lives, these signals wait until the program looks, so that it can leave things in order. They are held in
// the thread that makes it, in those that are made later, and in programs that are started meanwhile. One that came
// counts as obeyed when it is destroyed.
class EndSignals {
public:
    EndSignals();
    ~EndSignals();
    EndSignals(const EndSignals &) = delete;
    EndSignals &operator=(const EndSignals &) = delete;

    // Readable as soon as one came; -1 where none can be made, and the signals keep their plain effect.
    [[nodiscard]] int descriptor() const { return m_arrived.get(); }

    // False, at once, when one came meanwhile or before.
    [[nodiscard]] bool pause(std::chrono::milliseconds time) const;

private:
    Fd m_arrived;
    sigset_t m_before = {};
};

}
