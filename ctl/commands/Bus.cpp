// settings, pace, polling, discover, reboot
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>

#include "base/Failure.h"
#include "base/Json.h"
#include "base/Text.h"
#include "base/Values.h"
#include "commands/All.h"
#include "commands/Show.h"
#include "commands/Things.h"

namespace ctl {

namespace json = boost::json;

namespace {

constexpr int64_t kMostPace = 100;

// As it may be given again: "16,16,16".
std::string SettingText(const json::value& value) {
  if (!value.is_array()) return ValueText(value);
  std::string text;
  for (const json::value& item : value.get_array())
    text += (text.empty() ? "" : ",") + (item.is_null() ? "?" : ValueText(item));
  return text;
}

std::string SettingsText(const json::value& settings) {
  std::string text;
  if (!settings.is_object()) return text;
  for (const auto& [key, value] : settings.get_object())
    text += Printable(key) + "=" + SettingText(value) + "\n";
  return text;
}

}  // namespace

int CardSettings(Session& session, const Words& words) {
  json::object changes;
  for (const std::string& text : words.All("SETTING")) {
    auto [key, value] = ParseSetting(text);
    changes[key] = std::move(value);
  }
  const std::string path = "/api/cards/" + FindCard(session.hub, words["CARD"]) + "/settings";
  const bool store = words.Has("--store");
  Reply reply;
  if (!changes.empty()) reply = session.hub.Ask("PUT", path, json::serialize(changes));
  if (store) reply = session.hub.Ask("POST", path + "/store");
  if (changes.empty() && !store)
    reply = session.hub.Get(path + (words.Has("--ask") ? "?ask=1" : ""));
  if (!session.PrintedJson(reply)) session.Print(SettingsText(reply.data));
  return kDone;
}

int Pace(Session& session, const Words& words) {
  Reply reply;
  if (words.Has("PERCENT")) {
    const json::object body{{"pace", ParseNumber(words["PERCENT"], "pace", 1, kMostPace)}};
    reply = session.hub.Ask("PUT", "/api/bus/pace", json::serialize(body));
  } else {
    reply = session.hub.Get("/api/bus");
  }
  if (!session.PrintedJson(reply) && !words.Has("PERCENT"))
    session.Print(ValueText(At(reply.data, "pace")) + "\n");
  return kDone;
}

int Polling(Session& session, const Words& words) {
  const std::vector<std::string> given = words.All("STATE");
  if (given.empty() || given.size() > 2)
    throw Failure(kUsage, "write: qelmctl polling [CARD] on|off");
  const json::object body{{"polling", ParseOnOff(given.back())}};
  const std::string path = given.size() == 1
                               ? "/api/bus/polling"
                               : "/api/cards/" + FindCard(session.hub, given[0]) + "/polling";
  session.PrintedJson(session.hub.Ask("PUT", path, json::serialize(body)));
  return kDone;
}

int Discover(Session& session, const Words& /*words*/) {
  const Reply reply = session.hub.Ask("POST", "/api/bus/discover");
  if (!session.PrintedJson(reply)) session.Print(CardsText(reply.data, session.paint));
  return kDone;
}

int Reboot(Session& session, const Words& words) {
  const std::string card = FindCard(session.hub, words["CARD"]);
  const Reply reply = session.hub.Ask("POST", "/api/cards/" + card + "/reboot");
  if (!session.PrintedJson(reply)) session.Print(CardText(reply.data, session.paint));
  return kDone;
}

}  // namespace ctl
