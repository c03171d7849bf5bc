// status, cards, get
#include <boost/json/array.hpp>

#include "base/Json.h"
#include "base/Text.h"
#include "base/Times.h"
#include "commands/All.h"
#include "commands/Show.h"
#include "commands/Things.h"

namespace ctl {

namespace json = boost::json;

namespace {

std::string LocalTime(const std::string& utc) {
  const auto moment = ParseRfc3339(utc);
  return moment ? FormatLocal(*moment) : utc;
}

Cell DaemonCell(const json::value& daemon) {
  const std::string state = TextAt(daemon, "state");
  if (state == "up")
    return {"up, version " + TextAt(daemon, "version") + ", since " +
                LocalTime(TextAt(daemon, "since")),
            Colour::kGreen};
  if (state != "waiting") return {state, Colour::kRed};
  return {"waiting: another client holds the port " + TextAt(daemon, "waiting_for"), Colour::kRed};
}

Cell AdapterCell(const json::value& bus) {
  const json::value& adapter = At(bus, "adapter");
  const std::string state = TextAt(adapter, "state");
  const Colour colour = state == "up"     ? Colour::kGreen
                        : state == "down" ? Colour::kRed
                                          : Colour::kFaint;
  std::string text = state;
  if (state == "up") text += ", " + TextAt(adapter, "version") + " on " + TextAt(adapter, "device");
  if (state == "unknown" && TextAt(At(bus, "daemon"), "state") == "up")
    text += ": the daemon's log does not say, or the hub may not read it";
  return {text, colour};
}

std::string PaceText(const json::value& bus) {
  const json::value& pace = At(bus, "pace");
  return pace.is_null() ? "unknown" : ValueText(pace) + " %";
}

}  // namespace

int ShowStatus(Session& session, const Words& /*words*/) {
  const Reply reply = session.hub.Get("/api/bus");
  if (session.PrintedJson(reply)) return kDone;
  const json::value& bus = reply.data;
  Table table;
  table.Add({{"bus"}, {TextAt(bus, "name"), Colour::kBold}});
  if (BoolAt(bus, "virtual")) table.Add({{""}, {"a virtual bus: no hardware moves"}});
  table.Add({{"daemon"}, DaemonCell(At(bus, "daemon"))});
  table.Add({{"adapter"}, AdapterCell(bus)});
  table.Add({{"pace"}, {PaceText(bus)}});
  table.Add({{"polling"}, {ValueText(At(bus, "polling"))}});
  session.Print(table.Text(session.paint));
  return kDone;
}

int ShowCards(Session& session, const Words& /*words*/) {
  const Reply reply = session.hub.Get("/api/cards");
  if (session.PrintedJson(reply)) return kDone;
  const std::string text = CardsText(reply.data, session.paint);
  session.Print(text.empty() ? "no cards; \"qelmctl discover\" searches the bus\n" : text);
  return kDone;
}

int GetChannel(Session& session, const Words& words) {
  const std::string id = FindChannel(session.hub, words["CHANNEL"]);
  const Reply reply = session.hub.Get("/api/channels/" + id);
  if (session.PrintedJson(reply)) return kDone;
  const Cell cell = ValueCell(reply.data);
  session.Print(session.paint(cell.colour, Printable(cell.text)) + "\n");
  return kDone;
}

}  // namespace ctl
