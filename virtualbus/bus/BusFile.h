// The bus file: an XML file with a Card element for each card.
#pragma once

#include <string>

#include "base/Problem.h"
#include "bus/BusAdapter.h"

namespace virtualbus {

// Plugs the cards of the file. A problem names the file and the line.
Problem ReadBusFile(const std::string& path, BusAdapter& adapter);

}  // namespace virtualbus
