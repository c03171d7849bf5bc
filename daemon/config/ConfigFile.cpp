#include "config/ConfigFile.h"

#include <syslog.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <pugixml.hpp>
#include <string_view>

#include "config/Speed.h"
#include "runtime/Values.h"

namespace {

constexpr const char* kUnreadable = "Unable to load config, or unable to parse XML file!";
constexpr int kLowestPort = 1025;
constexpr std::size_t kMaxInterfaces = 4;

// A second list of interfaces starts from what the first one left in these.
using Entries = std::array<INTERFACE_DESCRIPTOR, kMaxInterfaces>;

// One attribute of one kind of element: where its value goes.
struct ConfigAttribute {
  std::string_view element;
  std::string_view name;
  void (*store)(CONFIG_DESCRIPTOR& config, const char* value);
};

constexpr auto kAttributes = std::to_array<ConfigAttribute>({
    {"Debuglog", "File", [](CONFIG_DESCRIPTOR& c, const char* v) { c.LogFile = v; }},
    {"Debuglog", "Loglevel", [](CONFIG_DESCRIPTOR& c, const char* v) { c.LogLevel = ATOI(v); }},
    {"Speed", "Percent",
     [](CONFIG_DESCRIPTOR& c, const char* v) { c.ThreadDelay = SpeedDelay(ATOL(v)); }},
    {"InitPollState", "Action",
     [](CONFIG_DESCRIPTOR& c, const char* v) { c.EnablePoll = ATOB(v); }},
    {"AutoDiscover", "Action",
     [](CONFIG_DESCRIPTOR& c, const char* v) { c.AutoDiscover = ATOB(v); }},
});
static_assert(kAttributes.size() == 5);

void ReportUnreadable() {
  setlogmask(LOG_UPTO(LOG_NOTICE));
  syslog(LOG_NOTICE,
         "Unable to start by user %d, because unable to load config, or unable to parse XML file!",
         static_cast<int>(getuid()));
  closelog();
}

// 100 bytes hold the message: 59 characters of the name and the zero at the end.
std::string PortError(const std::string& name) {
  std::array<char, 100> text{};
  std::snprintf(text.data(), text.size(), "%.59s interface port number is less than 1025",
                name.c_str());
  return text.data();
}

std::string ReplaceAll(std::string text, std::string_view from, char to) {
  for (auto at = text.find(from); at != std::string::npos; at = text.find(from))
    text.replace(at, from.size(), 1, to);
  return text;
}

// The file writes CR and LF as \r and \n.
std::string DecodeSeparator(const char* value) {
  return ReplaceAll(ReplaceAll(value, "\\r", '\r'), "\\n", '\n');
}

// False for a port that only a privileged program may listen on.
bool ReadEntry(const pugi::xml_node& node, INTERFACE_DESCRIPTOR& entry) {
  for (const pugi::xml_attribute& attribute : node.attributes()) {
    const std::string_view name = attribute.name();
    if (name == "Name") entry.Name = attribute.value();
    if (name == "InpSeparator") entry.InpSeparator = DecodeSeparator(attribute.value());
    if (name == "OutSeparator") entry.OutSeparator = DecodeSeparator(attribute.value());
    if (name == "Port") {
      entry.Port = ATOI(attribute.value());
      if (entry.Port < kLowestPort) return false;
    }
  }
  return true;
}

void StoreEntry(const INTERFACE_DESCRIPTOR& entry, CONFIG_DESCRIPTOR& config) {
  if (entry.Name == "IO") config.IoDescriptor = entry;
  if (entry.Name == "CAE") config.CaeDescriptor = entry;
  if (entry.Name == "MON") config.MonDescriptor = entry;
}

// False at the first entry with an unusable port, which is not stored.
bool ReadInterfaces(const pugi::xml_node& node, Entries& entries, CONFIG_DESCRIPTOR& config) {
  auto* entry = entries.begin();
  for (const pugi::xml_node& child : node.children()) {
    if (child.type() != pugi::node_element) continue;
    if (entry == entries.end()) break;
    entry->ThreadDelay = config.ThreadDelay;
    if (!ReadEntry(child, *entry)) {
      config.Status = PortError(entry->Name);
      return false;
    }
    StoreEntry(*entry++, config);
  }
  return true;
}

void ReadAttributes(const pugi::xml_node& node, CONFIG_DESCRIPTOR& config) {
  for (const pugi::xml_attribute& attribute : node.attributes())
    for (const ConfigAttribute& row : kAttributes)
      if (row.element == node.name() && row.name == attribute.name())
        row.store(config, attribute.value());
}

}  // namespace

CONFIG_DESCRIPTOR ReadConfigFile(const char* path) {
  CONFIG_DESCRIPTOR config;
  Entries entries;
  pugi::xml_document document;
  if (!document.load_file(path)) {
    config.Status = kUnreadable;
    ReportUnreadable();
    return config;
  }
  for (const pugi::xml_node& node : document.child("QELMConfig").children()) {
    ReadAttributes(node, config);
    if (std::string_view(node.name()) != "Interfaces") continue;
    if (!ReadInterfaces(node, entries, config)) break;
  }
  return config;
}
