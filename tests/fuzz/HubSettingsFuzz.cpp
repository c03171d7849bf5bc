// qelm-hub.toml. What the file settles of cards and channels goes to a bus, and through the
// documents in which the API keeps the same.
#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "Finding.h"
#include "HubBus.h"
#include "api/Json.h"
#include "api/Problem.h"
#include "api/SettingsJson.h"
#include "hub/CardsOfEachKind.h"
#include "settings/Settings.h"

namespace {

using hub::settings::Settings;
using hub::settings::SettingsErrors;
namespace api = hub::api;
namespace model = hub::model;

void CheckErrors(const SettingsErrors& errors) {
  Require(!errors.empty(), "a file is refused without a word");
  for (const auto& error : errors) {
    Require(!error.text.empty() && error.line > 0 && error.column > 0, "an error is nowhere");
    Require(error.text.find('\n') == std::string::npos, "an error is more than a line");
  }
}

bool AreThree(std::array<uint16_t, 3> ports) {
  std::ranges::sort(ports);
  return ports[0] > 0 && ports[0] != ports[1] && ports[1] != ports[2];
}

void CheckOptions(const Settings& settings) {
  Require(AreThree(settings.daemon.ports) && AreThree(settings.text.ports), "not three ports");
  Require(!settings.daemon.host.empty() && !settings.store.folder.empty(), "something is nowhere");
  Require(settings.http.certificate.empty() == settings.http.key.empty(), "half a certificate");
  Require(settings.http.max_connections >= 1 && settings.broker.port > 0, "nobody can connect");
  Require(settings.store.keep_days >= 1 && settings.store.max_mb >= 1, "nothing can be kept");
}

void MoveAll(model::Bus& bus, uint8_t value) {
  for (uint8_t address = 0; address < hub::protocol::kCardCount; ++address)
    for (uint8_t block = 0; block < 6; ++block) {
      bus.TakeInput({address, block, value}, {});
      bus.TakeOutput(hub::protocol::WriteBlock{address, block, value}, {});
    }
}

boost::json::object ThroughText(const boost::json::object& document) {
  auto value = api::ParseJson(api::ToText(document));
  Require(std::holds_alternative<boost::json::value>(value), "a document is no JSON");
  return std::get<boost::json::value>(value).as_object();
}

// Boost.JSON may read the last bit of a long number in another way.
model::Settings WithoutLastBits(model::Settings settings) {
  for (auto& [id, channel] : settings.channels)
    for (double* number : {&channel.min, &channel.max, &channel.hysteresis})
      *number = static_cast<float>(*number);
  return settings;
}

void CheckDocuments(const model::Settings& names) {
  model::Settings read = names;
  try {
    api::ReadNames(ThroughText(api::NamesJson(names)), read);
    api::ReadSetup(ThroughText(api::SetupJson(names)), read);
  } catch (const api::Problem& problem) {
    Require(false, ("the API refuses what the file has: " + problem.detail).c_str());
  }
  Require(WithoutLastBits(read) == WithoutLastBits(names),
          "the API has something else than the file");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto parsed = hub::settings::Parse(text);
  if (const auto* errors = std::get_if<SettingsErrors>(&parsed)) {
    CheckErrors(*errors);
    return 0;
  }
  const auto& settings = std::get<Settings>(parsed);
  CheckOptions(settings);
  CheckDocuments(settings.names);
  model::Bus bus("3f9a21c0");
  const BusWatch watch(bus);
  bus.SetCards(hub::CardsOfEachKind());
  bus.Apply(settings.names);
  for (const unsigned value : {0U, 1U, 127U, 128U, 254U, 255U}) {
    MoveAll(bus, static_cast<uint8_t>(value));
    CheckBus(bus);
  }
  bus.Publish();
  return 0;
}
