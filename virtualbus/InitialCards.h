// Which cards are there when the program starts.
#pragma once

#include "Options.h"
#include "base/Problem.h"
#include "bus/BusAdapter.h"

namespace virtualbus {

// The cards of the bus file, then those named on the command line; one of each kind if neither
// says.
Problem PlugInitialCards(BusAdapter& adapter, const Options& options);

}  // namespace virtualbus
