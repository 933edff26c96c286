// How long to wait before a process that keeps dying is started again. Pure.
#pragma once

#include <algorithm>

constexpr int kMostRestartDeaths = 10; // in a row; then it waits until a keyboard is asked for

// The first time at once, then a tenth of a second and twice as long each time, up to half a minute: a phone whose
// keyboard cannot run must not spend its battery on trying.
constexpr int restartDelayMs(int deathsInARow)
{
    constexpr int kLongest = 30'000;
    if (deathsInARow <= 1)
        return 0;
    return deathsInARow > 10 ? kLongest : std::min(kLongest, 100 << (deathsInARow - 2));
}
