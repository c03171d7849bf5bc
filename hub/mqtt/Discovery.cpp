#include "mqtt/Discovery.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <utility>

#include "api/Shapes.h"
#include "model/DeviceClasses.h"
#include "mqtt/Entities.h"

namespace hub::mqtt {

namespace json = boost::json;
using model::Kind;

namespace {

constexpr unsigned kMotorControl = 3;    // a motor card's last channel is its control byte
constexpr unsigned kLastKey = 63;        // a key is six bits, and 0 is none
constexpr double kSmallestStep = 0.001;  // that a number may have
constexpr size_t kMostDigits = 2 * protocol::kMostInfraredBytes;

// One card on its way to be a device.
struct Making {
  const Board& board;
  const model::Card& card;
  Entities& entities;

  std::string Topic(std::string_view what) const {
    return fmt::format("{}{}/{}", board.topics.Root(), api::AddressText(card.address), what);
  }
  model::ChannelSettings Settings(unsigned number) const {
    return board.bus.Names().Channel(card.address, number);
  }
};

std::string NameOr(std::string name, std::string otherwise) {
  return name.empty() ? std::move(otherwise) : std::move(name);
}

// A component of a channel: its names, and where its value is.
json::object& AddChannel(const Making& making, std::string_view platform, std::string_view id,
                         std::string_view word, unsigned number) {
  const std::string place = std::to_string(number);
  json::object& component = making.entities.Add(
      platform, {fmt::format("{}{}", id, number), place,
                 NameOr(making.Settings(number).name, fmt::format("{} {}", word, number))});
  component["state_topic"] = making.Topic(place);
  return component;
}

void AddCommand(json::object& component, const std::string& topic) {
  component["command_topic"] = topic + "/set";
}

// ---- a function a kind -------------------------------------------------------------------------

// Another form is another component, so that the earlier one is removed.
void AddOutputs(const Making& making) {
  for (unsigned number = 0; number < making.card.channels.size(); ++number) {
    const std::string form = making.Settings(number).shown_as;
    const bool is_switch = form.empty() || form == model::OutputForms().front();
    json::object& component = is_switch ? AddChannel(making, "switch", "out", "Line", number)
                                        : AddChannel(making, form, form, "Line", number);
    AddCommand(component, making.Topic(std::to_string(number)));
  }
}

void AddInputs(const Making& making) {
  for (unsigned number = 0; number < making.card.channels.size(); ++number) {
    json::object& component = AddChannel(making, "binary_sensor", "in", "Line", number);
    const std::string device_class = making.Settings(number).device_class;
    if (model::IsContactClass(device_class)) component["device_class"] = device_class;
  }
}

// Home Assistant refuses a device class in a unit that is none of its units.
void AddLevels(const Making& making) {
  for (unsigned number = 0; number < making.card.channels.size(); ++number) {
    const model::ChannelSettings settings = making.Settings(number);
    json::object& component = AddChannel(making, "sensor", "level", "Input", number);
    component["state_class"] = "measurement";
    component["suggested_display_precision"] = settings.unit.empty() ? 0 : settings.decimals;
    if (!settings.unit.empty()) component["unit_of_measurement"] = settings.unit;
    if (model::LevelClassTakes(settings.device_class, settings.unit))
      component["device_class"] = settings.device_class;
  }
}

void AddNumber(const Making& making, std::string_view id, std::string_view word, unsigned number) {
  const model::ChannelSettings settings = making.Settings(number);
  const bool is_signed = making.board.bus.Names().Card(making.card.address).is_signed;
  const model::Range range = *model::RangeOf({making.card.Row(), number, settings, is_signed});
  const bool is_drive = is_signed && number != kMotorControl;
  const bool has_unit = !settings.unit.empty() && !is_drive;
  json::object& component = AddChannel(making, "number", id, word, number);
  AddCommand(component, making.Topic(std::to_string(number)));
  component["min"] = range.min;
  component["max"] = range.max;
  component["step"] = has_unit ? std::max(std::pow(10.0, -settings.decimals), kSmallestStep) : 1.0;
  component["mode"] = "slider";
  if (has_unit) component["unit_of_measurement"] = settings.unit;
}

void AddServos(const Making& making) {
  for (unsigned number = 0; number < making.card.channels.size(); ++number)
    AddNumber(making, "servo", "Servo", number);
}

void AddMotors(const Making& making) {
  for (unsigned number = 0; number < making.card.channels.size(); ++number)
    AddNumber(making, number == kMotorControl ? "control" : "drive",
              number == kMotorControl ? "Control byte" : "Drive", number);
}

void AddDisplay(const Making& making) {
  const model::Glass& glass = *making.card.glass;
  for (unsigned row = 0; row < glass.RowCount(); ++row) {
    const std::string id = fmt::format("row{}", row);
    json::object& text = making.entities.Add("text", {id, id, fmt::format("Row {}", row)});
    text["state_topic"] = making.Topic("glass");
    text["value_template"] = fmt::format("{{{{ value_json.rows[{}] }}}}", row);
    AddCommand(text, making.Topic(fmt::format("row/{}", row)));
    text["pattern"] = "^[ -~]*$";
    text["max"] = glass.ColumnCount();
  }
  AddCommand(making.entities.Add("notify", {"text", "text", "Glass"}), making.Topic("text"));
  json::object& light = making.entities.Add("switch", {"light", "light", "Light"});
  light["state_topic"] = making.Topic("glass");
  light["value_template"] =
      "{{ 'None' if value_json.light is none else 'ON' if value_json.light else 'OFF' }}";
  AddCommand(light, making.Topic("light"));
}

void AddKeys(const Making& making) {
  const std::string topic = making.Topic("event");
  json::object& keys =
      making.entities.Add("event", {"keys", "0", NameOr(making.Settings(0).name, "Keys")});
  keys["state_topic"] = topic;
  keys["event_types"] = {"press", "release", "left", "right"};
  for (unsigned code = 1; code <= kLastKey; ++code)
    making.entities.AddTrigger(fmt::format("press{}", code), topic, "button_short_press",
                               fmt::format("key_{}", code), "press", code);
  for (const std::string_view turn : {"left", "right"})
    making.entities.AddTrigger(fmt::format("turn_{}", turn), topic, turn, "encoder", turn, 0);
}

// A code is no state: nothing tells the last one, and what is sent is not kept.
void AddInfrared(const Making& making) {
  const std::string topic = making.Topic("infrared");
  json::object& text =
      making.entities.Add("text", {"code", "0", NameOr(making.Settings(0).name, "Code")});
  AddCommand(text, topic);
  text["pattern"] = fmt::format("^([0-9A-Fa-f]{{2}}){{1,{}}}$", protocol::kMostInfraredBytes);
  text["min"] = 2;
  text["max"] = kMostDigits;
  for (const auto& [bytes, name] : making.board.bus.Names().codes) {
    json::object& button = making.entities.Add("button", {"code_" + bytes, bytes, name});
    AddCommand(button, topic);
    button["payload_press"] = bytes;
  }
}

struct KindRow {
  Kind kind;
  std::string_view model;
  void (*add)(const Making& making);
};

constexpr std::array<KindRow, 8> kCardKinds{{
    {Kind::kDigitalOutput, "Digital output card", AddOutputs},
    {Kind::kDigitalInput, "Digital input card", AddInputs},
    {Kind::kServo, "Servo card", AddServos},
    {Kind::kMotor, "Motor card", AddMotors},
    {Kind::kAnalogueInput, "Analogue input card", AddLevels},
    {Kind::kKeys, "Key card", AddKeys},
    {Kind::kLcd, "Display card", AddDisplay},
    {Kind::kInfrared, "Infrared card", AddInfrared},
}};

// ---- what all devices have ---------------------------------------------------------------------

json::object Availability(const std::string& topic) { return {{"topic", topic}}; }

json::object HeadOf(const Board& board, json::object device, json::array availability) {
  return {{"device", std::move(device)},
          {"origin", {{"name", "qelm-hub"}, {"sw_version", board.version}}},
          {"availability", std::move(availability)},
          {"availability_mode", "all"},
          {"qos", 1}};
}

std::string BusId(const Board& board) { return "qelm_" + board.bus.Id(); }

// "qelm/bench/" gives "bench".
std::string_view NameOf(const Topics& topics) {
  std::string_view name = topics.Root();
  name.remove_prefix(name.find('/') + 1);
  name.remove_suffix(1);
  return name;
}

std::string BusName(const Board& board) {
  return NameOr(board.bus.Names().bus_name, std::string(NameOf(board.topics)));
}

void AddRate(Entities& entities, const Board& board, std::string_view what, std::string name) {
  const std::string id = fmt::format("{}_rate", what);
  json::object& sensor = entities.Add("sensor", {id, id, std::move(name)});
  sensor["entity_category"] = "diagnostic";
  sensor["state_topic"] = board.topics.Rates();
  sensor["value_template"] = fmt::format("{{{{ value_json.{} }}}}", what);
  sensor["state_class"] = "measurement";
  sensor["unit_of_measurement"] = "1/s";
  sensor["suggested_display_precision"] = 1;
}

}  // namespace

Device BusDevice(const Board& board) {
  Device device{BusId(board), {}, {}};
  device.head = HeadOf(board,
                       {{"identifiers", {device.id}},
                        {"name", BusName(board)},
                        {"model", "Card bus"},
                        {"manufacturer", "qelm"}},
                       {Availability(board.topics.Status())});
  Entities entities(device, Slug(NameOf(board.topics)));
  json::object& adapter = entities.Add("binary_sensor", {"adapter", "adapter", "Adapter"});
  adapter["entity_category"] = "diagnostic";
  adapter["device_class"] = "connectivity";
  adapter["state_topic"] = board.topics.Bus();
  adapter["value_template"] =
      "{{ {'up': 'ON', 'down': 'OFF'}.get(value_json.adapter.state, 'None') }}";
  AddRate(entities, board, "commands", "Commands");
  AddRate(entities, board, "reports", "Reports");
  AddCommand(entities.Add("button", {"discover", "discover", "Discover cards"}),
             board.topics.Root() + "bus/discover");
  json::object& pace = entities.Add("number", {"pace", "pace", "Pace"});
  pace["entity_category"] = "config";
  pace["state_topic"] = board.topics.Bus();
  pace["value_template"] = "{{ value_json.pace }}";
  AddCommand(pace, board.topics.Root() + "bus/pace");
  pace["min"] = 1;
  pace["max"] = 100;
  pace["step"] = 1;
  pace["mode"] = "slider";
  pace["unit_of_measurement"] = "%";
  return device;
}

std::optional<Device> CardDevice(const Board& board, unsigned address) {
  const model::Card* const card = board.bus.At(address);
  if (card == nullptr) return std::nullopt;
  const auto* const row = std::ranges::find(kCardKinds, card->kind, &KindRow::kind);
  if (row == kCardKinds.end()) return std::nullopt;
  const std::string letter = api::AddressText(address);
  const std::string name = board.bus.Names().Card(address).name;
  Device device{BusId(board) + "_" + letter, {}, {}};
  device.head =
      HeadOf(board,
             {{"identifiers", {device.id}},
              {"name", name.empty() ? fmt::format("{} {}", BusName(board), letter) : name},
              {"model", row->model},
              {"manufacturer", "qelm"},
              {"via_device", BusId(board)}},
             {Availability(board.topics.Status()), Availability(board.topics.CardStatus(address))});
  Entities entities(device, Slug(fmt::format("{}_{}", NameOf(board.topics), letter)));
  row->add({board, *card, entities});
  return device;
}

}  // namespace hub::mqtt
