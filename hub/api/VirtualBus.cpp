// The bus without hardware, from the page: inputs pressed and turned, cards and cable pulled,
// faults. Only where the settings name its control socket.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <boost/json/array.hpp>
#include <utility>

#include "api/Handlers.h"
#include "protocol/ConsoleReplies.h"
#include "virtualbus/Shown.h"

namespace hub::api {

namespace json = boost::json;
using virtualbus::ShownCard;
using Answers = std::vector<virtualbus::Answer>;

namespace {

constexpr int kRetrySeconds = 5;

// They would end the bus, or wait on a connection that is not kept.
constexpr std::array<std::string_view, 3> kRefused{"quit", "wait", "mark"};

boost::asio::awaitable<Answers> AskBus(House& house, std::vector<std::string> orders) {
  if (house.virtual_bus == nullptr)
    throw ProblemOf(404, "the bus is a real one; see `control` of [virtual-bus] in the settings");
  auto asking = house.virtual_bus->Ask(std::move(orders));
  std::optional<Answers> answers = co_await std::move(asking);
  if (!answers)
    throw RetryLater(503, "the virtual bus does not answer at its control socket", kRetrySeconds);
  co_return std::move(*answers);
}

// A hand on a knob sends twenty lines a second; the journal has the rest.
constexpr std::array<std::string_view, 8> kUnnoted{"set",  "ramp", "press",  "release",
                                                   "turn", "show", "status", "help"};

template <size_t Count>
bool Has(const std::array<std::string_view, Count>& words, std::string_view word) {
  return std::ranges::find(words, word) != words.end();
}

std::string_view FirstWord(std::string_view line) {
  line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
  return line.substr(0, line.find(' '));
}

json::object CardJson(unsigned address, const ShownCard& card) {
  json::value values;
  if (card.values) values = json::array(card.values->begin(), card.values->end());
  return {{"address", AddressText(address)},
          {"kind", card.kind},
          {"plugged", card.is_plugged},
          {"values", std::move(values)}};
}

// The first answer is the status, then one comes for each place.
json::object BusJson(const Answers& answers) {
  const auto status = virtualbus::ParseStatus(answers.front().lines);
  if (!status) throw RetryLater(503, "the virtual bus shows no status", kRetrySeconds);
  json::array cards;
  for (unsigned address = 0; address < protocol::kCardCount; ++address)
    if (const auto card = virtualbus::ParseCard(answers[address + 1].lines))
      cards.push_back(CardJson(address, *card));
  const bool has_device = status->cable && !status->device.empty();
  return {{"device", has_device ? json::value(status->device) : json::value()},
          {"cable", status->cable},
          {"frames", status->frames},
          {"replies", status->replies},
          {"lost", status->lost},
          {"shaped", status->shaped},
          {"faults", json::array(status->faults.begin(), status->faults.end())},
          {"cards", std::move(cards)}};
}

}  // namespace

Answer GetVirtualBus(House& house, Request) {
  std::vector<std::string> orders{"status"};
  for (unsigned address = 0; address < protocol::kCardCount; ++address)
    orders.push_back("show " + AddressText(address));
  auto asking = AskBus(house, std::move(orders));
  const Answers answers = co_await std::move(asking);
  co_return Done(BusJson(answers));
}

Answer RunVirtualLine(House& house, Request request) {
  const std::string line = TextAt(request, "line");
  const std::string_view word = FirstWord(line);
  if (word.empty()) throw DoesNotFit("line", "a line without a word; help lists what there is");
  if (Has(kRefused, word))
    throw DoesNotFit("line", fmt::format("{} is for whoever holds a connection to the bus", word));
  std::vector<std::string> orders{line};
  auto asking = AskBus(house, std::move(orders));
  const Answers answers = co_await std::move(asking);
  const virtualbus::Answer& answer = answers.front();
  if (!answer.error.empty()) throw DoesNotFit("line", answer.error);
  if (!Has(kUnnoted, word)) Note(house, request, "virtual-bus", line);
  co_return Done(json::object{{"lines", json::array(answer.lines.begin(), answer.lines.end())}});
}

}  // namespace hub::api
