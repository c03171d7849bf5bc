#include "api/Shapes.h"

#include <array>
#include <charconv>
#include <string_view>
#include <utility>
#include <variant>

#include "api/BoardShapes.h"
#include "api/Json.h"
#include "api/Plain.h"
#include "api/SettingsJson.h"
#include "api/Times.h"
#include "protocol/Hex.h"

namespace hub::api {

namespace json = boost::json;

namespace {

// Each by its enumeration.
constexpr std::array<std::string_view, 3> kDaemonStates{"absent", "waiting", "up"};
constexpr std::array<std::string_view, 3> kAdapterStates{"unknown", "down", "up"};
constexpr std::array<std::string_view, 3> kBrokerStates{"connecting", "up", "refused"};
constexpr std::array<std::string_view, 3> kCardStates{"present", "silent", "absent"};
constexpr std::array<std::string_view, 4> kEventTypes{"press", "release", "left", "right"};

template <size_t Size, class Enumeration>
std::string_view WordOf(const std::array<std::string_view, Size>& words, Enumeration value) {
  return words[static_cast<size_t>(value)];
}

json::value PlaceJson(const std::optional<model::Glass::Place>& place) {
  if (!place) return nullptr;
  return {{"row", place->row}, {"column", place->column}};
}

// Whether its outputs are restored; null for a card that has none.
json::value KeepJson(const model::Card& card, const model::CardSettings& settings) {
  if (card.Row().direction != model::Direction::kOutput) return nullptr;
  return settings.keep.value_or(card.kind != model::Kind::kMotor);
}

json::value BrokerJson(const std::optional<model::Broker>& broker) {
  if (!broker) return nullptr;
  return {{"state", WordOf(kBrokerStates, broker->state)},
          {"host", broker->host},
          {"detail", OrNull(broker->detail)}};
}

bool IsThere(const model::Card& card) { return card.state != model::CardState::kAbsent; }

json::array EventsJson(const std::vector<model::Event>& events) {
  json::array list;
  for (const model::Event& event : events) list.push_back(EventJson(event));
  return list;
}

}  // namespace

std::string AddressText(unsigned address) { return {protocol::HexDigit(address)}; }

std::string ChannelText(model::ChannelId id) {
  return AddressText(id.address) + '.' + std::to_string(id.number);
}

std::optional<unsigned> ParseAddress(std::string_view text) {
  if (text.size() != 1) return std::nullopt;
  return protocol::ParseHexDigit(text.front());
}

std::optional<model::ChannelId> ParseChannel(std::string_view text) {
  constexpr unsigned kMostChannels = 16;
  if (text.size() < 3 || text[1] != '.') return std::nullopt;
  const auto address = ParseAddress(text.substr(0, 1));
  const std::string_view digits = text.substr(2);
  unsigned number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  const bool is_number = error == std::errc() && end == digits.data() + digits.size();
  if (!address || !is_number || number >= kMostChannels || digits != std::to_string(number))
    return std::nullopt;
  return model::ChannelId{*address, number};
}

json::object BusJson(const model::Bus& bus) {
  const model::Daemon& daemon = bus.DaemonNow();
  const model::Adapter& adapter = bus.AdapterNow();
  return {{"id", bus.Id()},
          {"name", OrNull(bus.Names().bus_name)},
          {"seq", bus.Sequence()},
          {"daemon",
           {{"state", WordOf(kDaemonStates, daemon.state)},
            {"version", OrNull(daemon.version)},
            {"since", OrNull(daemon.since)},
            {"waiting_for", OrNull(daemon.waiting_for)}}},
          {"adapter",
           {{"state", WordOf(kAdapterStates, adapter.state)},
            {"device", OrNull(adapter.device)},
            {"version", OrNull(adapter.version)}}},
          {"broker", BrokerJson(bus.BrokerNow())},
          {"pace", OrNull(bus.Pace())},
          {"polling", OrNull(bus.Polling())},
          {"virtual", bus.Names().is_virtual},
          {"hub", {{"version", OrNull(bus.HubVersion())}}}};
}

json::object CardJson(const model::Bus& bus, const model::Card& card) {
  const model::CardSettings settings = bus.Names().Card(card.address);
  json::array channels;
  for (unsigned number = 0; number < card.channels.size(); ++number)
    channels.push_back(ChannelJson(bus, card, number));
  return {{"address", AddressText(card.address)},
          {"kind", card.Row().word},
          {"name", OrNull(settings.name)},
          {"state", WordOf(kCardStates, card.state)},
          {"keep", KeepJson(card, settings)},
          {"polling", OrNull(card.polling)},
          {"channels", std::move(channels)},
          {"glass", card.glass ? json::value(GlassJson(*card.glass)) : json::value()},
          {"codes", card.kind == model::Kind::kInfrared ? json::value(CodesJson(bus.Names()))
                                                        : json::value()}};
}

json::object ChannelJson(const model::Bus& bus, const model::Card& card, unsigned number) {
  const model::Channel& channel = card.channels[number];
  const model::ChannelSettings settings = bus.Names().Channel(card.address, number);
  const bool is_signed = bus.Names().Card(card.address).is_signed;
  const auto range = model::RangeOf({card.Row(), number, settings, is_signed});
  const bool has_unit = !settings.unit.empty();
  const bool has_raw = channel.IsKnown() && card.kind != model::Kind::kInfrared;
  return {{"id", ChannelText({card.address, number})},
          {"name", OrNull(settings.name)},
          {"type", card.Row().channel_type},
          {"value", ValueJson(channel.value)},
          {"raw", has_raw ? json::value(channel.raw) : json::value()},
          {"known", channel.IsKnown()},
          {"assumed", channel.assumed},
          {"pending", channel.pending},
          {"since", OrNull(channel.since)},
          {"unit", OrNull(settings.unit)},
          {"min", range ? NumberJson(range->min) : json::value()},
          {"max", range ? NumberJson(range->max) : json::value()},
          {"decimals", has_unit ? json::value(settings.decimals) : json::value()}};
}

json::object GlassJson(const model::Glass& glass) {
  json::array rows;
  for (const std::string& row : glass.Rows()) rows.emplace_back(row);
  return {{"rows", std::move(rows)},          {"known", glass.IsKnown()},
          {"at", PlaceJson(glass.At())},      {"light", OrNull(glass.Light())},
          {"cursor", OrNull(glass.Cursor())}, {"blink", OrNull(glass.Blink())}};
}

json::object EventJson(const model::Event& event) {
  const bool has_code = event.key.type == model::KeyEventType::kPress ||
                        event.key.type == model::KeyEventType::kRelease;
  return {{"seq", event.sequence},
          {"time", TimeText(event.time)},
          {"card", AddressText(event.address)},
          {"event_type", WordOf(kEventTypes, event.key.type)},
          {"code", has_code ? json::value(event.key.code) : json::value()}};
}

json::object CardsJson(const model::Bus& bus) {
  json::array cards;
  for (unsigned address = 0; address < protocol::kCardCount; ++address) {
    const model::Card* const card = bus.At(address);
    if (card != nullptr && IsThere(*card)) cards.push_back(CardJson(bus, *card));
  }
  return {{"cards", std::move(cards)}};
}

json::object JournalEntryJson(const model::JournalEntry& entry) {
  return {{"seq", entry.sequence},
          {"time", TimeText(entry.time)},
          {"kind", entry.kind},
          {"text", entry.text},
          {"by", OrNull(entry.by)}};
}

json::object JournalJson(const store::JournalPage& page) {
  json::array entries;
  for (const model::JournalEntry& entry : page.entries) entries.push_back(JournalEntryJson(entry));
  return {{"entries", std::move(entries)}, {"lost", page.lost}};
}

json::object HistoryJson(const model::Bus& bus, model::ChannelId id,
                         const store::History& history) {
  json::array points;
  for (const store::Point& point : history.points)
    points.push_back(json::array{Milliseconds(point.time), NumberJson(point.mean),
                                 NumberJson(point.min), NumberJson(point.max)});
  return {{"channel", ChannelText(id)},
          {"unit", OrNull(bus.Names().Channel(id.address, id.number).unit)},
          {"step_ms", history.step_ms},
          {"points", std::move(points)}};
}

json::object SnapshotJson(const model::Bus& bus, const json::object& page,
                          std::optional<uint64_t> after, const boards::Boards* boards) {
  if (after && *after > bus.Sequence()) after = 0;
  const auto since = after ? bus.Events().After(*after) : model::EventRing::Since{};
  json::object snapshot{{"seq", bus.Sequence()}, {"bus", BusJson(bus)}};
  snapshot["cards"] = std::move(CardsJson(bus)["cards"]);
  snapshot["page"] = page;
  snapshot["events"] = EventsJson(since.events);
  snapshot["lost"] = since.lost;
  if (boards != nullptr) snapshot["boards"] = BoardsJson(*boards);
  return snapshot;
}

json::object ChangesJson(const model::Bus& bus, const json::object& page,
                         const model::Change& change, uint64_t lost, const boards::Boards* boards) {
  json::array cards;
  for (const unsigned address : change.cards)
    if (const model::Card* card = bus.At(address)) cards.push_back(CardJson(bus, *card));
  json::array channels;
  for (const model::ChannelId& id : change.channels) {
    const model::Card* const card = bus.At(id.address);
    if (card != nullptr && id.number < card->channels.size())
      channels.push_back(ChannelJson(bus, *card, id.number));
  }
  json::object changes{{"after", change.after},
                       {"seq", change.sequence},
                       {"bus", change.bus ? json::value(BusJson(bus)) : json::value()},
                       {"page", change.page ? json::value(page) : json::value()},
                       {"cards", std::move(cards)},
                       {"channels", std::move(channels)},
                       {"events", EventsJson(change.events)},
                       {"lost", lost}};
  if (boards != nullptr) changes["boards"] = BoardChangesJson(*boards, change.boards);
  return changes;
}

std::string ChangesText(const model::Bus& bus, const json::object& page,
                        const model::Change& change, uint64_t lost, const boards::Boards* boards) {
  const json::object message{{"jsonrpc", "2.0"},
                             {"method", "changes"},
                             {"params", ChangesJson(bus, page, change, lost, boards)}};
  return ToText(message);
}

}  // namespace hub::api
