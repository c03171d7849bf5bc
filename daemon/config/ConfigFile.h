// Reads the configuration file. Called once, by the main thread, at start.
#pragma once

#include "config/Descriptors.h"

// Never fails by exception: Status tells. What was read before an error is kept; of
// a file that cannot be read or parsed, syslog gets one message as well.
CONFIG_DESCRIPTOR ReadConfigFile(const char* path);
