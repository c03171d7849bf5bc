// backup, restore, names
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>
#include <utility>

#include "base/Failure.h"
#include "base/Json.h"
#include "commands/All.h"
#include "commands/Things.h"

namespace ctl {

namespace json = boost::json;

namespace {

// Whole or not at all: an older backup stays until the new one is there.
void WriteWhole(const std::string& file, const std::string& text) {
  const std::string beside = file + ".new";
  std::ofstream stream(beside, std::ios::trunc);
  stream << text << '\n' << std::flush;
  if (stream && std::rename(beside.c_str(), file.c_str()) == 0) return;
  const std::string why = std::strerror(errno);
  std::remove(beside.c_str());
  throw Failure(kUsage, file + " cannot be written: " + why);
}

std::string ReadWhole(const std::string& file) {
  std::ostringstream text;
  if (file == "-") {
    text << std::cin.rdbuf();
    return text.str();
  }
  std::ifstream stream(file);
  if (!stream) throw Failure(kUsage, file + " cannot be read: " + std::strerror(errno));
  text << stream.rdbuf();
  return text.str();
}

// Where a name stands in the hub's names: {"channels", "5.0"}.
std::pair<const char*, std::string> PlaceOf(const std::string& id) {
  if (std::string channel = AsChannel(id); !channel.empty()) return {"channels", channel};
  if (std::string card = AsCard(id); !card.empty()) return {"cards", card};
  if (std::string code = AsCode(id); !code.empty()) return {"infrared", code};
  throw Failure(kUsage, "\"" + id + "\" is no card, no channel, no infrared code and not " +
                            "\"bus\": write 5, 5.0 or 434F");
}

// "5.0=Lamp" into {"channels":{"5.0":"Lamp"}}; "5.0=" takes the name away.
void AddName(json::object& names, const std::string& text) {
  const size_t sign = text.find('=');
  const std::string id = text.substr(0, sign);
  if (sign == std::string::npos)
    throw Failure(
        kUsage,
        "\"" + text + "\" gives no name: write 5.0=Lamp, 5=Relays, 434F=Mute or " + "bus=bench");
  json::value name = nullptr;
  if (sign + 1 < text.size()) name = text.substr(sign + 1);
  if (id == "bus") {
    names["bus"] = std::move(name);
    return;
  }
  const auto [section, key] = PlaceOf(id);
  json::value& group = names[section];
  if (!group.is_object()) group.emplace_object();
  group.get_object()[key] = std::move(name);
}

std::string NamesText(const json::value& names, const Paint& paint) {
  Table table;
  table.Add({{"bus", Colour::kBold}, {TextAt(names, "bus")}});
  for (const char* group : {"cards", "channels", "infrared"}) {
    const json::value& of_group = At(names, group);
    if (!of_group.is_object()) continue;
    for (const auto& [id, name] : of_group.get_object())
      table.Add({{std::string(id), Colour::kBold}, {name.is_string() ? ValueText(name) : ""}});
  }
  return table.Text(paint);
}

}  // namespace

int Backup(Session& session, const Words& words) {
  const Reply reply = session.hub.Get("/api/backup");
  if (!words.Has("FILE")) {
    if (!session.PrintedJson(reply)) session.Print(reply.text + "\n");
    return kDone;
  }
  WriteWhole(words["FILE"], reply.text);
  session.PrintedJson(reply);
  return kDone;
}

int Restore(Session& session, const Words& words) {
  const std::string text = ReadWhole(words["FILE"]);
  if (text.empty()) throw Failure(kUsage, words["FILE"] + " is empty; nothing was restored");
  session.PrintedJson(session.hub.Ask("PUT", "/api/backup", text));
  return kDone;
}

int Names(Session& session, const Words& words) {
  json::object changes;
  for (const std::string& text : words.All("NAME")) AddName(changes, text);
  const Reply reply = changes.empty()
                          ? session.hub.Get("/api/names")
                          : session.hub.Ask("PATCH", "/api/names", json::serialize(changes));
  if (!session.PrintedJson(reply)) session.Print(NamesText(reply.data, session.paint));
  return kDone;
}

}  // namespace ctl
