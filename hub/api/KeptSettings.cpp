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

// Documents in the store. Two of them are settings, kept as what differs from the file's.
struct SettingsRow {
  std::string_view name;
  void (*read)(const json::object& document, model::Settings& settings);
  json::object (*write)(const model::Settings& settings);
};

constexpr SettingsRow kNames{"names", ReadNames, NamesJson};
constexpr SettingsRow kSetup{"setup", ReadSetup, SetupJson};
constexpr std::string_view kPage = "page";

json::object Kept(const House& house, std::string_view name) {
  const auto text = house.store.Document(name);
  if (!text) return {};
  auto parsed = ParseJson(*text);
  const auto* const value = std::get_if<json::value>(&parsed);
  if (value == nullptr || !value->is_object()) throw ProblemOf(500, "it is no object");
  return value->get_object();
}

void PassOver(House& house, std::string_view what, const Problem& problem) {
  house.store.AddJournal({.sequence = 0,
                          .time = house.clock.Now(),
                          .kind = "hub",
                          .text = fmt::format("the kept {} cannot be read and are passed over: {}",
                                              what, problem.detail),
                          .by = ""});
}

// One document on top of the settings.
void Apply(House& house, const SettingsRow& row, model::Settings& settings) {
  try {
    row.read(Merge(row.write(settings), Kept(house, row.name)), settings);
  } catch (const Problem& problem) {
    PassOver(house, row.name, problem);
  }
}

void ApplyPage(House& house) {
  try {
    json::object page = ReadPage(Kept(house, kPage));
    if (page == house.page) return;
    house.page = std::move(page);
    house.bus.NotePage();
  } catch (const Problem& problem) {
    PassOver(house, "order and groups of the page", problem);
  }
}

// The file's settings with the document's in place of them.
model::Settings OnFile(const House& house, const SettingsRow& row, const json::object& document) {
  model::Settings settings = house.file;
  row.read(document, settings);
  return settings;
}

void Keep(House& house, const SettingsRow& row, const json::object& document) {
  const model::Settings settings = OnFile(house, row, document);
  const json::object difference = Difference(row.write(house.file), row.write(settings));
  house.store.PutDocument(row.name, ToText(difference));
  ApplySettings(house);
}

}  // namespace

void ApplySettings(House& house) {
  model::Settings settings = house.file;
  Apply(house, kNames, settings);
  Apply(house, kSetup, settings);
  house.bus.Apply(std::move(settings));
  ApplyPage(house);
  house.bus.Publish();
}

json::object NamesNow(const House& house) { return NamesJson(house.bus.Names()); }

json::object SetupNow(const House& house) { return SetupJson(house.bus.Names()); }

void CheckNames(const House& house, const json::object& names) { OnFile(house, kNames, names); }

void CheckSetup(const House& house, const json::object& setup) { OnFile(house, kSetup, setup); }

void KeepNames(House& house, const json::object& names) { Keep(house, kNames, names); }

void KeepSetup(House& house, const json::object& setup) { Keep(house, kSetup, setup); }

void KeepPage(House& house, const json::object& page) {
  house.page = ReadPage(page);
  house.store.PutDocument(kPage, ToText(house.page));
  house.bus.NotePage();
  house.bus.Publish();
}

}  // namespace hub::api
