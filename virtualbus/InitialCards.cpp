#include "InitialCards.h"

#include "bus/BusFile.h"

namespace virtualbus {

namespace {

Problem PlugNamed(BusAdapter& adapter, const std::string& text) {
  const size_t equals = text.find('=');
  if (equals == std::string::npos) return "--card " + text + ": ADDR=KIND is meant";
  const auto address = ParseAddress(text.substr(0, equals));
  if (!address) return "--card " + text + ": the address is one digit, 0 to F";
  const CardKind* const kind = FindKind(text.substr(equals + 1));
  if (kind == nullptr) return "--card " + text + ": the kinds are " + KindWords();
  const Problem problem = adapter.Insert(*address, *kind);
  return problem.empty() ? problem : "--card " + text + ": " + problem;
}

}  // namespace

Problem PlugInitialCards(BusAdapter& adapter, const Options& options) {
  Problem problem;
  if (!options.bus_file.empty()) problem = ReadBusFile(options.bus_file, adapter);
  for (const std::string& card : options.cards) {
    if (problem.empty()) problem = PlugNamed(adapter, card);
  }
  const bool unsaid = options.bus_file.empty() && options.cards.empty() && options.replay.empty();
  if (!unsaid) return problem;
  for (const CardKind& kind : kCardKinds) adapter.Insert(kind.default_address, kind);
  return {};
}

}  // namespace virtualbus
