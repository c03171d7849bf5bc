#include "api/KeptSettings.h"

#include <fmt/format.h>

#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "api/Json.h"
#include "api/MergePatch.h"
#include "api/SettingsJson.h"

namespace hub::api {

namespace json = boost::json;

namespace {

// The documents in the store.
constexpr std::string_view kNames = "names";
constexpr std::string_view kSetup = "setup";
constexpr std::string_view kPage = "page";

constexpr size_t kLongestPage = 32 * 1024;  // bytes

json::object Kept(const House& house, std::string_view name) {
  const auto text = house.store.Document(name);
  if (!text) return {};
  auto parsed = ParseJson(*text);
  const auto* const value = std::get_if<json::value>(&parsed);
  if (value == nullptr || !value->is_object()) throw ProblemOf(500, "it is no object");
  return value->get_object();
}

using Read = void (*)(const json::object& document, model::Settings& settings);
using Write = json::object (*)(const model::Settings& settings);

// One document on top of the settings.
void Apply(House& house, std::string_view name, Read read, Write write, model::Settings& settings) {
  try {
    read(Merge(write(settings), Kept(house, name)), settings);
  } catch (const Problem& problem) {
    house.store.AddJournal({.sequence = 0,
                            .time = house.clock.Now(),
                            .kind = "hub",
                            .text = fmt::format("the kept {} cannot be read and are passed over: "
                                                "{}",
                                                name, problem.detail),
                            .by = ""});
  }
}

}  // namespace

void ApplySettings(House& house) {
  model::Settings settings = house.file;
  Apply(house, kNames, ReadNames, NamesJson, settings);
  Apply(house, kSetup, ReadSetup, SetupJson, settings);
  house.bus.Apply(std::move(settings));
  house.bus.Publish();
}

json::object NamesNow(const House& house) { return NamesJson(house.bus.Names()); }

json::object SetupNow(const House& house) { return SetupJson(house.bus.Names()); }

json::object PageNow(const House& house) {
  try {
    return Kept(house, kPage);
  } catch (const Problem&) {
    return {};  // the page begins with its own order again
  }
}

void CheckNames(const House& house, const json::object& names) {
  model::Settings settings = house.file;
  ReadNames(names, settings);
}

void CheckSetup(const House& house, const json::object& setup) {
  model::Settings settings = house.file;
  ReadSetup(setup, settings);
}

void CheckPage(const json::object& page) {
  if (ToText(page).size() > kLongestPage)
    throw DoesNotFit("page", fmt::format("the page keeps at most {} bytes", kLongestPage));
}

void KeepNames(House& house, const json::object& names) {
  model::Settings settings = house.file;
  ReadNames(names, settings);
  const json::object difference = Difference(NamesJson(house.file), NamesJson(settings));
  house.store.PutDocument(kNames, ToText(difference));
  ApplySettings(house);
}

void KeepSetup(House& house, const json::object& setup) {
  model::Settings settings = house.file;
  ReadSetup(setup, settings);
  const json::object difference = Difference(SetupJson(house.file), SetupJson(settings));
  house.store.PutDocument(kSetup, ToText(difference));
  ApplySettings(house);
}

void KeepPage(House& house, const json::object& page) {
  CheckPage(page);
  house.store.PutDocument(kPage, ToText(page));
}

}  // namespace hub::api
