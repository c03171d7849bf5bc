#include "doctor/Configuration.h"

#include <algorithm>
#include <cstdlib>
#include <pugixml.hpp>
#include <set>

#include "base/Text.h"

namespace ctl::doctor {

namespace {

constexpr char kRoot[] = "QELMConfig";
constexpr char kPortNames[][4] = {"CAE", "IO", "MON"};
constexpr int kLeastPort = 1025;
constexpr int kMostPort = 65535;
constexpr int kMostPercent = 100;
constexpr int kMostInterfaces = 4;

struct Element {
  std::string name;
  std::vector<std::string> attributes;
};

const std::vector<Element>& Elements() {
  static const std::vector<Element>& elements = *new std::vector<Element>{
      {"Debuglog", {"File", "Loglevel"}}, {"Speed", {"Percent"}}, {"InitPollState", {"Action"}},
      {"AutoDiscover", {"Action"}},       {"Interfaces", {}},
  };
  return elements;
}

const std::vector<std::string>& PortAttributes() {
  static const std::vector<std::string>& names =
      *new std::vector<std::string>{"Name", "Port", "InpSeparator", "OutSeparator"};
  return names;
}

// A number as the daemon reads it: what stands behind the digits is ignored.
int WholeNumber(const char* text) { return static_cast<int>(std::strtol(text, nullptr, 10)); }

bool IsWholeNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

bool IsTrue(std::string_view text) { return text == "True" || text == "true" || text == "TRUE"; }

class Reader {
 public:
  explicit Reader(const std::string& text) : text_(text) {}

  Configuration Read() {
    pugi::xml_document document;
    const pugi::xml_parse_result result = document.load_buffer(text_.data(), text_.size());
    if (!result) {
      Wrong(result.offset, std::string("is no well-formed XML: ") + result.description(),
            "mend it, and start the daemon again; it has ended without a line in its log");
      return configuration_;
    }
    const pugi::xml_node root = document.document_element();
    if (std::string_view(root.name()) != kRoot) {
      Wrong(root.offset_debug(),
            "the outermost element is \"" + std::string(root.name()) +
                "\": the daemon takes the file for an empty one",
            "call it QELMConfig");
      return configuration_;
    }
    CheckAttributes(root, {});
    for (const pugi::xml_node node : root.children())
      if (node.type() == pugi::node_element) ReadElement(node);
    CheckPorts();
    if (configuration_.log_file.empty())
      configuration_.findings.push_back(
          {Verdict::kNote, "no log: faults of the adapter leave no trace",
           "add <Debuglog File=\"/var/log/qelm/qelm.log\" Loglevel=\"1\"/>"});
    return configuration_;
  }

 private:
  std::string Line(ptrdiff_t offset) const {
    const auto end = text_.begin() + std::clamp<ptrdiff_t>(offset, 0, std::ssize(text_));
    return "line " + std::to_string(1 + std::count(text_.begin(), end, '\n')) + ": ";
  }

  void Add(Verdict verdict, ptrdiff_t offset, const std::string& found, const std::string& advice) {
    configuration_.findings.push_back({verdict, Line(offset) + found, advice});
  }
  void Wrong(ptrdiff_t offset, const std::string& found, const std::string& advice) {
    Add(Verdict::kWrong, offset, found, advice);
  }

  void CheckAttributes(const pugi::xml_node& node, const std::vector<std::string>& known) {
    for (const pugi::xml_attribute attribute : node.attributes()) {
      if (std::find(known.begin(), known.end(), attribute.name()) != known.end()) continue;
      const auto meant = Nearest(attribute.name(), known);
      Wrong(node.offset_debug(),
            "the daemon passes over the unknown attribute \"" + std::string(attribute.name()) +
                "\" of " + node.name(),
            meant ? "write \"" + *meant + "\"" : "remove it");
    }
  }

  void ReadElement(const pugi::xml_node& node) {
    const auto& elements = Elements();
    const auto known = std::find_if(elements.begin(), elements.end(), [&](const Element& element) {
      return element.name == node.name();
    });
    if (known == elements.end()) return UnknownElement(node);
    CheckAttributes(node, known->attributes);
    if (known->name == "Debuglog") ReadLog(node);
    if (known->name == "Speed") ReadSpeed(node);
    if (known->name == "InitPollState") configuration_.polls = ReadSwitch(node);
    if (known->name == "AutoDiscover") configuration_.discovers = ReadSwitch(node);
    if (known->name == "Interfaces") ReadInterfaces(node);
  }

  void UnknownElement(const pugi::xml_node& node) {
    std::vector<std::string> names;
    for (const Element& element : Elements()) names.push_back(element.name);
    const auto meant = Nearest(node.name(), names);
    Wrong(node.offset_debug(),
          "the daemon passes over the unknown element \"" + std::string(node.name()) + "\"",
          meant ? "write \"" + *meant + "\"" : "remove it");
  }

  void ReadLog(const pugi::xml_node& node) {
    if (const pugi::xml_attribute file = node.attribute("File"))
      configuration_.log_file = file.value();
    const std::string& log_file = configuration_.log_file;
    if (!log_file.empty() && !log_file.starts_with('/'))
      Add(Verdict::kNote, node.offset_debug(),
          "the log's path \"" + log_file +
              "\" counts from the folder in which the daemon was started",
          "begin it with a slash");
    if (WholeNumber(node.attribute("Loglevel").value()) > 1)
      Wrong(node.offset_debug(),
            "a Loglevel above 1 writes nothing, and costs a file descriptor an event",
            "write Loglevel=\"1\"");
    if (has_interfaces_)
      Add(Verdict::kNote, node.offset_debug(),
          "Debuglog stands behind Interfaces: of a wrong port the log says nothing",
          "let it stand before Interfaces");
  }

  void ReadSpeed(const pugi::xml_node& node) {
    const std::string text = node.attribute("Percent").value();
    if (!IsWholeNumber(text) || WholeNumber(text.c_str()) < 1 ||
        WholeNumber(text.c_str()) > kMostPercent)
      Wrong(node.offset_debug(), "the speed \"" + text + "\" is not from 1 to 100",
            "write Percent=\"50\"");
    if (has_interfaces_)
      Add(Verdict::kNote, node.offset_debug(),
          "Speed stands behind Interfaces: the ports keep a pause of 5000 microseconds",
          "let it stand before Interfaces");
  }

  bool ReadSwitch(const pugi::xml_node& node) {
    const std::string text = node.attribute("Action").value();
    if (IsTrue(text)) return true;
    if (Lower(text) != "false")
      Wrong(node.offset_debug(), std::string(node.name()) + " \"" + text + "\" counts as False",
            "write True or False");
    return false;
  }

  void ReadInterfaces(const pugi::xml_node& node) {
    has_interfaces_ = true;
    int count = 0;
    for (const pugi::xml_node port : node.children()) {
      if (port.type() != pugi::node_element) continue;
      if (++count == kMostInterfaces + 1)
        Wrong(port.offset_debug(), "more than four ports: the daemon passes over the others",
              "list CAE, IO and MON, once each");
      if (count <= kMostInterfaces) ReadPort(port);
    }
  }

  void ReadPort(const pugi::xml_node& node) {
    CheckAttributes(node, PortAttributes());
    const std::string name = node.attribute("Name").value();
    const std::string text = node.attribute("Port").value();
    const int number = WholeNumber(text.c_str());
    if (std::find(std::begin(kPortNames), std::end(kPortNames), name) == std::end(kPortNames))
      Wrong(node.offset_debug(), "the daemon drops a port called \"" + name + "\"",
            "call it CAE, IO or MON");
    // One without a number is open at a port that the system chooses.
    if (node.attribute("Port").empty()) {
      Wrong(node.offset_debug(), "the port " + name + " has no number",
            "give it one: Port=\"5010\"");
    } else if (!IsWholeNumber(text) || number > kMostPort) {
      Wrong(node.offset_debug(), "the port \"" + text + "\" is no number up to 65535",
            "give one from 1025 to 65535");
    } else if (number < kLeastPort) {
      Wrong(node.offset_debug(), "the port " + text + " is below 1025: the daemon does not start",
            "give one from 1025 to 65535");
    }
    SetPort(node, name, number);
  }

  void SetPort(const pugi::xml_node& node, const std::string& name, int number) {
    auto& ports = configuration_.ports;
    const auto same = std::find_if(ports.begin(), ports.end(),
                                   [&](const PortSetting& port) { return port.name == name; });
    if (same == ports.end()) {
      ports.push_back({name, number});
      return;
    }
    Wrong(node.offset_debug(), "a second port " + name + " takes the place of the first",
          "remove one of them");
    same->number = number;
  }

  // Those that are left over when all is read, in the table's order.
  void CheckPorts() {
    std::vector<PortSetting> ports;
    std::set<int> numbers;
    for (const std::string name : kPortNames) {
      const auto given = std::find_if(configuration_.ports.begin(), configuration_.ports.end(),
                                      [&](const PortSetting& port) { return port.name == name; });
      if (given == configuration_.ports.end()) {
        configuration_.findings.push_back({Verdict::kWrong,
                                           "there is no port " + name + ": it greets nobody",
                                           "list CAE, IO and MON in Interfaces"});
        continue;
      }
      if (given->number != 0 && !numbers.insert(given->number).second)
        configuration_.findings.push_back({Verdict::kWrong,
                                           "the port " + name + " has the number of another, " +
                                               std::to_string(given->number) +
                                               ": it listens somewhere else",
                                           "give each port a number of its own"});
      ports.push_back(*given);
    }
    configuration_.ports = std::move(ports);
  }

  const std::string& text_;
  Configuration configuration_;
  bool has_interfaces_ = false;
};

}  // namespace

Configuration ReadConfiguration(const std::string& text) { return Reader(text).Read(); }

}  // namespace ctl::doctor
