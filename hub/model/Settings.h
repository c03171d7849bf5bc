// What people have settled about a bus, its cards and its channels: names, units, directions.
// Plain data, filled from the file and from what the page has changed.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>

namespace hub::model {

struct ChannelSettings {
  std::string name;
  std::string unit;                 // empty: none
  double min = 0;                   // the unit's value of byte 0 ...
  double max = 255;                 // ... and of byte 255; may be the lower one
  int decimals = 0;                 // places behind the point, 0..6
  double hysteresis = 0;            // a level that has moved no further than this is not published
  std::optional<bool> active_high;  // a line: which level is "on"; nothing: as the kind has it
  std::string shown_as = {};        // an output line: what Home Assistant makes of it, as below
  std::string device_class = {};    // an input: what it tells of, in Home Assistant's word
  bool operator==(const ChannelSettings&) const = default;
};

// The glass of a display; nothing tells its real size.
inline constexpr int kMostRows = 8;
inline constexpr int kMostColumns = 80;

struct CardSettings {
  std::string name;
  std::optional<bool> keep;  // outputs are restored; nothing: all but motors
  bool is_signed = false;    // a motor: channels 0..2 are -100..100
  int rows = 4;              // of a display
  int columns = 20;
  bool operator==(const CardSettings&) const = default;
};

struct Settings {
  static constexpr size_t kMostCodes = 100;

  std::string bus_name;
  bool is_virtual = false;                                            // the bus is qelm-bus's
  std::map<unsigned, CardSettings> cards;                             // by address
  std::map<std::pair<unsigned, unsigned>, ChannelSettings> channels;  // by address and number
  std::map<std::string, std::string> codes;  // names of infrared codes, by their bytes: "434F"

  CardSettings Card(unsigned address) const {
    const auto found = cards.find(address);
    return found == cards.end() ? CardSettings{} : found->second;
  }
  ChannelSettings Channel(unsigned address, unsigned number) const {
    const auto found = channels.find({address, number});
    return found == channels.end() ? ChannelSettings{} : found->second;
  }
  bool operator==(const Settings&) const = default;
};

}  // namespace hub::model
