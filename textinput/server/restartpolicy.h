// How long to wait before a process that keeps dying is started again. Pure.
#pragma once

constexpr int kMostRestartDeaths = 10; // in a row; then it waits until a keyboard is asked for

// After fewer deaths than that: the first time at once, then a tenth of a second and twice as long each time, 12.8 s in
// the end. A phone whose keyboard cannot run must not spend its battery on trying.
constexpr int restartDelayMs(int deathsInARow) { return deathsInARow <= 1 ? 0 : 100 << (deathsInARow - 2); }
