// How fast the daemon goes: the pause of its loops by the percentage that SPEED= and its
// configuration set, and with it how often a card may be sent something. Pure functions.
#pragma once

#include <chrono>
#include <cstddef>

namespace hub::protocol {

using Microseconds = std::chrono::microseconds;

inline constexpr int kSlowestPace = 1;  // percent
inline constexpr int kFastestPace = 100;

// The pause at the start of each round: 5 ms at 1 percent, 1 us at 100.
Microseconds RoundPause(int percent);

// The percentage that gives this pause.
int PercentOf(Microseconds pause);

// A round: the pause, and the time that each frame and each poll takes on the line. The daemon
// sends one frame a card a round.
Microseconds RoundTime(Microseconds pause, size_t frames_a_round);

}  // namespace hub::protocol
