// The working speed, as the configuration file and the administrator give it.
#pragma once

// The loop delay in microseconds for a speed in percent: 5000 at 1, 2525 at 50 and
// 1 at 100. Percentages outside 1..100 continue the line, below 0 above 100.
int SpeedDelay(long percent);
