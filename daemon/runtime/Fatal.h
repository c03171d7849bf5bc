// The end of the process at a fixed limit.
//
// A few texts have a fixed greatest length. A longer one ends the process at once, in
// whichever thread: cut off, it would be obeyed as if it were whole.
#pragma once

// Writes "qelm: " and the limit that was passed, one line, on standard error and
// aborts. Never returns.
[[noreturn]] void EndAtLimit(const char* limit);
