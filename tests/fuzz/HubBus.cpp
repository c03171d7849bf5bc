#include "HubBus.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string_view>
#include <vector>

#include "Finding.h"

namespace {

using namespace hub::model;
using hub::protocol::kCardCount;

bool IsPrintable(char c) { return c >= ' ' && c <= '~'; }

template <class Item>
bool HasEachOnce(std::vector<Item> items) {
  std::ranges::sort(items);
  return std::ranges::adjacent_find(items) == items.end();
}

// What is shown can be asked for: in its range, and on the bus the same again.
void CheckNumber(const ChannelForm& form, const Channel& channel) {
  const double* number = std::get_if<double>(&channel.value);
  Require(number != nullptr && std::isfinite(*number), "a level is no number");
  const auto raw = ToRaw(form, channel.value);
  Require(raw.has_value(), "a value that is shown cannot be set");
  const bool is_plain = !form.is_signed && form.settings.min == 0 && form.settings.max == UINT8_MAX;
  Require(!is_plain || raw == channel.raw, "a byte does not read back");
}

void CheckChannel(const ChannelForm& form, const Channel& channel) {
  if (!channel.IsKnown()) return;
  if (form.kind.kind == Kind::kInfrared) {
    const auto* code = std::get_if<std::string>(&channel.value);
    Require(code != nullptr && hub::protocol::ParseHexBytes(*code), "a code is no code");
  } else if (HasLines(form.kind)) {
    Require(std::holds_alternative<bool>(channel.value), "a line is neither on nor off");
    Require(channel.raw <= 1 && ToRaw(form, channel.value) == channel.raw, "a line is turned");
  } else {
    CheckNumber(form, channel);
  }
}

void CheckGlass(const Glass& glass) {
  const auto rows = glass.Rows();
  Require(!rows.empty() && rows.size() == glass.RowCount(), "rows of a glass are lost");
  for (const std::string& row : rows) {
    Require(row.size() == glass.ColumnCount(), "a row of a glass has another size");
    Require(std::ranges::all_of(row, IsPrintable), "a glass shows what cannot be printed");
  }
  const auto at = glass.At();
  Require(!at || glass.Room(at->column, at->row) > 0, "a glass writes beside itself");
}

}  // namespace

void CheckBus(const Bus& bus) {
  for (unsigned address = 0; address < kCardCount; ++address) {
    const Card* const card = bus.At(address);
    if (card == nullptr) continue;
    Require(card->address == address, "a card stands at another place");
    Require(card->channels.size() == card->Row().channels, "a card has not its channels");
    Require(card->glass.has_value() == (card->kind == Kind::kLcd), "a glass is at another card");
    if (card->glass) CheckGlass(*card->glass);
    const bool is_signed = bus.Names().Card(address).is_signed;
    for (unsigned number = 0; number < card->channels.size(); ++number) {
      const ChannelSettings settings = bus.Names().Channel(address, number);
      CheckChannel({card->Row(), number, settings, is_signed}, card->channels[number]);
    }
  }
  const auto events = bus.Events().After(0).events;
  Require(events.size() <= EventRing::kMost, "more events are kept than there may be");
  Require(events.empty() || events.back().sequence <= bus.Sequence(), "an event is ahead");
  Require(!bus.Pace() || (*bus.Pace() >= 1 && *bus.Pace() <= 100), "a pace is out of range");
}

BusWatch::BusWatch(Bus& bus) : bus_(bus) {
  bus.Listen([this](const Change& change) { Take(change); });
}

void BusWatch::Take(const Change& change) {
  Require(change.after == told_, "a change does not follow the last one");
  Require(change.sequence > told_ && change.sequence == bus_.Sequence(), "the bus goes back");
  Require(HasEachOnce(change.cards), "a card has changed twice");
  Require(HasEachOnce(change.channels), "a channel has changed twice");
  uint64_t last = told_;
  for (const Event& event : change.events) {
    Require(event.sequence > last && event.sequence <= change.sequence, "an event is out of order");
    last = event.sequence;
  }
  told_ = change.sequence;
}
