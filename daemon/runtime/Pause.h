// The three ways in which a thread of the daemon waits for time to pass.
#pragma once

// Sleeps for `units` of 100 nanoseconds; Sleep(50000) is 5 milliseconds.
void Sleep(unsigned int units);

// The loop delay: sleeps for that many microseconds; 0 or less does not sleep.
void SleepMicroseconds(int microseconds);

// Sleeps whole seconds by running the shell's "sleep". Blocks the caller only.
void sleepsec(int seconds);
