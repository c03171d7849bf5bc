#include "InitialCards.h"

#include "bus/BusFile.h"

namespace virtualbus {

namespace {

Problem PlugNamed(BusAdapter& adapter, const std::string& text) {
  const size_t equals = text.find('=');
  if (equals == std::string::npos) return Problem("--card " + text + ": ADDR=KIND is meant");
  const auto address = ParseAddress(text.substr(0, equals));
  if (!address) return Problem("--card " + text + ": the address is one digit, 0 to F");
  const CardKind* const kind = FindKind(text.substr(equals + 1));
  if (kind == nullptr) return Problem("--card " + text + ": the kinds are " + KindWords());
  if (Problem problem = adapter.Insert(*address, *kind)) {
    return Problem("--card " + text + ": " + problem.Text());
  }
  return {};
}

}  // namespace

Problem PlugInitialCards(BusAdapter& adapter, const Options& options) {
  if (!options.bus_file.empty()) {
    if (Problem problem = ReadBusFile(options.bus_file, adapter)) return problem;
  }
  for (const std::string& card : options.cards) {
    if (Problem problem = PlugNamed(adapter, card)) return problem;
  }
  if (!options.bus_file.empty() || !options.cards.empty() || !options.replay.empty()) return {};
  for (const CardKind& kind : kCardKinds) {
    if (Problem problem = adapter.Insert(kind.default_address, kind)) return problem;
  }
  return {};
}

}  // namespace virtualbus
