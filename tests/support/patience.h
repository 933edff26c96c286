// How long tests wait for what must come: TYX_PATIENCE times as long where the processor is emulated.
#pragma once

// What a program under test does by itself.
constexpr int kSoonMs = 10'000 * TYX_PATIENCE;
// What another program says or ends with.
constexpr int kPatienceMs = 20'000 * TYX_PATIENCE;
