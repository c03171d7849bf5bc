// Reads the configuration file. Called once, by the main thread, at start.
#pragma once

#include "config/Descriptors.h"

// Does not throw: Status names the first error, and what was read before it is kept. A
// file that cannot be read or parsed is also reported to syslog, in one message.
CONFIG_DESCRIPTOR ReadConfigFile(const char* path);
