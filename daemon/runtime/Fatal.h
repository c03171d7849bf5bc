// The end of the process at a fixed limit.
//
// A few buffers of the text formats have a fixed size. Text that would pass one
// ends the process at once, by any thread: a cut message would be acted upon as
// if it were whole.
#pragma once

// Writes "qelm: " and the limit that was passed, one line, on standard error and
// aborts. Never returns.
[[noreturn]] void EndAtLimit(const char* limit);
