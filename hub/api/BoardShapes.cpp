#include "api/BoardShapes.h"

#include <algorithm>
#include <boost/json/value.hpp>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "api/Plain.h"
#include "api/Shapes.h"

namespace hub::api {

namespace json = boost::json;

namespace {

json::value StaleJson(const boards::Board& board) {
  return board.IsOnline() ? json::value() : json::value(TimeText(board.since));
}

json::value GlassJson(const std::optional<boards::Glass>& glass) {
  if (!glass) return nullptr;
  json::array rows;
  for (const std::string& row : glass->rows) rows.emplace_back(row);
  return {{"rows", std::move(rows)},
          {"known", true},
          {"at", nullptr},
          {"light", OrNull(glass->light)},
          {"cursor", OrNull(glass->cursor)},
          {"blink", OrNull(glass->blink)}};
}

bool IsThere(const boards::Card& card) { return card.kind != nullptr; }

// Lines have no range; numbers without one of their own are bytes.
std::optional<model::Range> RangeOf(const boards::Card& card, const boards::Channel& channel) {
  if (model::HasLines(*card.kind) || card.kind->kind == model::Kind::kInfrared) return std::nullopt;
  return channel.settled.range.value_or(model::Range{0, 255});
}

std::string_view StateOf(const boards::Board& board) {
  if (board.is_gone) return "gone";
  return board.IsOnline() ? "online" : "stale";
}

// Of one board, in their order: the row comes first, and each card before its channels.
json::object EntryOf(const boards::Board& board, std::span<const model::BoardPlace> changed) {
  json::value row;
  json::array cards;
  json::array channels;
  for (const auto& [place, signed_address, number] : changed) {
    const auto address = static_cast<unsigned>(signed_address);
    if (signed_address < 0) {
      row = BoardJson(board);
    } else if (number < 0) {
      cards.push_back(BoardCardJson(board, address));
    } else {
      const boards::Card& card = board.cards.at(address);
      const auto channel = static_cast<unsigned>(number);
      if (IsThere(card) && channel < card.channels.size())
        channels.push_back(BoardChannelJson(board, {address, channel}));
    }
  }
  return {{"board", board.name},
          {"row", std::move(row)},
          {"cards", std::move(cards)},
          {"channels", std::move(channels)}};
}

}  // namespace

json::object BoardJson(const boards::Board& board) {
  const boards::Identity& identity = board.identity;
  return {
      {"board", board.name},
      {"state", StateOf(board)},
      {"since", TimeText(board.since)},
      {"id", OrNull(identity.id)},
      {"name", OrNull(identity.name)},
      {"version", OrNull(identity.version)},
      {"daemon", {{"state", identity.daemon_state}, {"version", OrNull(identity.daemon_version)}}},
      {"adapter",
       {{"state", identity.adapter_state},
        {"device", OrNull(identity.adapter_device)},
        {"version", OrNull(identity.adapter_version)}}},
      {"virtual", identity.is_virtual},
      {"ignored", board.ignored},
      {"ignored_why", OrNull(board.ignored_why)}};
}

json::object BoardChannelJson(const boards::Board& board, model::ChannelId id) {
  const boards::Card& card = board.cards.at(id.address);
  const boards::Channel& channel = card.channels.at(id.number);
  const auto range = RangeOf(card, channel);
  return {{"id", ChannelText(id)},
          {"name", OrNull(channel.settled.name)},
          {"type", card.kind->channel_type},
          {"value", ValueJson(channel.value)},
          {"raw", nullptr},
          {"known", channel.value.index() != 0},
          {"assumed", false},
          {"pending", false},
          {"since", OrNull(channel.since)},
          {"unit", OrNull(channel.settled.unit)},
          {"min", range ? NumberJson(range->min) : json::value()},
          {"max", range ? NumberJson(range->max) : json::value()},
          {"decimals", nullptr},
          {"stale_since", StaleJson(board)}};
}

json::object BoardCardJson(const boards::Board& board, unsigned address) {
  const boards::Card& card = board.cards.at(address);
  if (!IsThere(card))
    return {{"address", AddressText(address)},
            {"kind", "unknown"},
            {"name", nullptr},
            {"state", "absent"},
            {"keep", nullptr},
            {"polling", nullptr},
            {"channels", json::array()},
            {"glass", nullptr},
            {"codes", nullptr},
            {"stale_since", StaleJson(board)}};
  json::array channels;
  for (unsigned number = 0; number < card.channels.size(); ++number)
    channels.push_back(BoardChannelJson(board, {address, number}));
  const bool answers = card.answers.value_or(card.is_present);
  return {{"address", AddressText(address)},
          {"kind", card.kind->word},
          {"name", OrNull(card.name)},
          {"state", answers ? "present" : "silent"},
          {"keep", nullptr},
          {"polling", nullptr},
          {"channels", std::move(channels)},
          {"glass", GlassJson(card.glass)},
          {"codes", nullptr},
          {"stale_since", StaleJson(board)}};
}

json::object BoardCardsJson(const boards::Board& board) {
  json::array cards;
  for (unsigned address = 0; address < board.cards.size(); ++address)
    if (IsThere(board.cards[address])) cards.push_back(BoardCardJson(board, address));
  return {{"cards", std::move(cards)}};
}

json::array BoardsJson(const boards::Boards& boards) {
  json::array rows;
  for (const boards::Board* const board : boards.All()) rows.push_back(BoardJson(*board));
  return rows;
}

json::array BoardChangesJson(const boards::Boards& boards,
                             const std::vector<model::BoardPlace>& changed) {
  json::array entries;
  for (auto next = changed.begin(); next != changed.end();) {
    const auto is_other = [next](const model::BoardPlace& place) {
      return place.board != next->board;
    };
    const auto end = std::find_if(next, changed.end(), is_other);
    if (const boards::Board* const board = boards.At(next->board))
      entries.push_back(EntryOf(*board, {next, end}));
    next = end;
  }
  return entries;
}

}  // namespace hub::api
