// set, text, clear, light, ir
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>

#include "base/Failure.h"
#include "base/Text.h"
#include "base/Times.h"
#include "base/Values.h"
#include "commands/All.h"
#include "commands/Show.h"
#include "commands/Things.h"

namespace ctl {

namespace json = boost::json;

namespace {

constexpr long kMostPlaces = 255;  // rows and columns; the hub knows how many there are

int64_t Milliseconds(const std::string& text, const std::string& option) {
  const auto duration = ParseDuration(text);
  if (!duration)
    throw Failure(kUsage, option + ": \"" + text + "\" is no time: write 500ms, 2s or 1m");
  return duration->count();
}

// Its bytes, or those of the code that is called so.
std::string FindCode(Hub& hub, const std::vector<std::string>& words) {
  if (auto bytes = ParseHex(words)) return *std::move(bytes);
  return FindByName(CodesOf(hub.Get("/api/cards").data), Joined(words), "code", "names");
}

int Control(Session& session, const Words& words, const std::string& what) {
  const std::string card = FindCard(session.hub, words["CARD"]);
  const std::string body = json::serialize(json::object{{"do", what}});
  const Reply reply = session.hub.Ask("POST", "/api/cards/" + card + "/control", body);
  if (!session.PrintedJson(reply)) session.Print(CardText(reply.data, session.paint));
  return kDone;
}

}  // namespace

int SetChannel(Session& session, const Words& words) {
  json::object body{{"value", ParseValue(words["VALUE"])}};
  for (const std::string option : {"pulse", "ramp"})
    if (words.Has("--" + option)) body[option] = Milliseconds(words["--" + option], "--" + option);
  const std::string id = FindChannel(session.hub, words["CHANNEL"]);
  const Reply reply = session.hub.Ask("PUT", "/api/channels/" + id, json::serialize(body));
  if (!session.PrintedJson(reply)) session.Print(ChannelText(reply.data, session.paint));
  return kDone;
}

int WriteText(Session& session, const Words& words) {
  const json::object body{{"row", ParseNumber(words["ROW"], "row", 0, kMostPlaces)},
                          {"column", ParseNumber(words["COLUMN"], "column", 0, kMostPlaces)},
                          {"text", words["TEXT"]}};
  const std::string card = FindCard(session.hub, words["CARD"]);
  const Reply reply =
      session.hub.Ask("POST", "/api/cards/" + card + "/text", json::serialize(body));
  if (!session.PrintedJson(reply)) session.Print(CardText(reply.data, session.paint));
  return kDone;
}

int ClearGlass(Session& session, const Words& words) { return Control(session, words, "clear"); }

int SwitchLight(Session& session, const Words& words) {
  return Control(session, words, ParseOnOff(words["STATE"]) ? "light-on" : "light-off");
}

int SendInfrared(Session& session, const Words& words) {
  const std::string bytes = FindCode(session.hub, words.All("CODE"));
  if (bytes.empty()) throw Failure(kUsage, "no bytes to send: write them as 434F");
  const std::string card = FindCard(session.hub, words["CARD"]);
  const Reply reply = session.hub.Ask("POST", "/api/cards/" + card + "/infrared",
                                      json::serialize(json::object{{"bytes", bytes}}));
  if (!session.PrintedJson(reply)) session.Print(ChannelText(reply.data, session.paint));
  return kDone;
}

}  // namespace ctl
