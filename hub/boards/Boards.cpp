#include "boards/Boards.h"

#include <algorithm>
#include <tuple>

namespace hub::boards {

namespace {

// What makes a board known. Whatever is emptied is on its way out.
bool IsOfBoard(What what) {
  return what == What::kStatus || what == What::kBus || what == What::kCardStatus ||
         what == What::kGlass || what == What::kValue;
}

// Nothing is known of it, but its place and its name.
void Empty(Board& board, std::string name) {
  const uint32_t place = board.place;
  board = {};
  board.place = place;
  board.name = std::move(name);
}

void Settle(Card& card, const CardEntry& entry) {
  if (entry.kind != card.kind) card.glass = entry.kind == nullptr ? std::nullopt : card.glass;
  card.kind = entry.kind;
  card.name = entry.name;
  card.is_present = entry.is_present;
  card.channels.resize(entry.kind == nullptr ? 0 : entry.kind->channels);
  for (size_t number = 0; number < card.channels.size(); ++number) {
    Channel& channel = card.channels[number];
    channel.settled = entry.settled[number];
    if (!Fits(channel.value, *entry.kind)) channel.value = {};
  }
}

}  // namespace

void Boards::Use(bool is_on) {
  is_on_ = is_on;
  if (is_on) return;
  while (!by_name_.empty()) Forget(std::string(by_name_.begin()->first));
}

const Board* Boards::Find(std::string_view name) const {
  const auto found = by_name_.find(name);
  return found == by_name_.end() ? nullptr : places_[found->second].get();
}

const Board* Boards::At(uint32_t place) const {
  return place < places_.size() ? places_[place].get() : nullptr;
}

std::vector<const Board*> Boards::All() const {
  std::vector<const Board*> all;
  for (const auto& [name, place] : by_name_) all.push_back(places_[place].get());
  return all;
}

// A new place; else that of the board which has said least: one that has never told its bus, or
// that is stale for longest. One that is there and has told it keeps its place.
Board* Boards::FreePlace() {
  if (places_.size() < kMostBoards) {
    places_.push_back(std::make_unique<Board>());
    places_.back()->place = static_cast<uint32_t>(places_.size() - 1);
    return places_.back().get();
  }
  const auto worth = [](const Board& board) {
    return std::tuple(!board.is_gone, !board.identity.id.empty(), board.IsOnline(), board.since);
  };
  const auto least = std::ranges::min_element(
      places_, {}, [&worth](const std::unique_ptr<Board>& board) { return worth(*board); });
  Board* const board = least->get();
  if (board->is_gone) return board;
  if (board->IsOnline() && !board->identity.id.empty()) return nullptr;
  Forget(std::string(board->name));
  return board;
}

Board* Boards::FindOrAdd(const Place& place, std::string_view payload, model::Time now) {
  if (const auto found = by_name_.find(place.board); found != by_name_.end())
    return places_[found->second].get();
  if (payload.empty() || !IsOfBoard(place.what)) return nullptr;
  Board* const board = FreePlace();
  if (board == nullptr) return nullptr;
  Empty(*board, std::string(place.board));
  board->since = now;
  by_name_[board->name] = board->place;
  Note(*board);
  return board;
}

void Boards::Forget(std::string_view name) {
  const auto found = by_name_.find(name);
  if (found == by_name_.end()) return;
  Board& board = *places_[found->second];
  by_name_.erase(found);
  for (Order* const order : std::vector(orders_))
    if (order->board == board.name) End(*order, Order::Outcome::kLost);
  Empty(board, std::string(name));
  board.is_gone = true;
  Note(board);
}

Boards::Turn Boards::Take(std::string_view topic, std::string_view payload, size_t size,
                          model::Time now) {
  const auto read = ReadTopic(topic);
  if (const auto* why = std::get_if<std::string>(&read)) {
    const auto found = by_name_.find(BoardIn(topic).value_or(""));
    if (found != by_name_.end()) Ignore(*places_[found->second], *why);
    return Turn::kNone;
  }
  const Place& place = std::get<Place>(read);
  Board* const board = FindOrAdd(place, payload, now);
  if (board == nullptr) return Turn::kNone;
  if (size > place.most) {
    Ignore(*board, "a payload of " + std::to_string(size) + " bytes");
    return Turn::kNone;
  }
  switch (place.what) {
    case What::kStatus:
      return TakeStatus(*board, payload, now);
    case What::kBus:
      TakeBus(*board, payload);
      break;
    case What::kError:
      TakeComplaint(*board, payload);
      break;
    case What::kCardStatus:
    case What::kGlass:
      TakeCard(*board, place, payload);
      break;
    case What::kValue:
      TakeValue(*board, place, payload, now);
      break;
    case What::kRates:
    case What::kEvent:
      break;
  }
  return Turn::kNone;
}

// A status that is emptied is of a board that has moved to another name.
Boards::Turn Boards::TakeStatus(Board& board, std::string_view payload, model::Time now) {
  if (payload.empty()) {
    const bool was_told = board.is_told;
    Forget(std::string(board.name));
    return was_told ? Turn::kWent : Turn::kNone;
  }
  const auto is_online = ReadStatus(payload);
  if (!is_online) {
    Ignore(board, "a status that is not known");
    return Turn::kNone;
  }
  SetOnline(board, is_online, now);
  if (*is_online == board.is_told) return Turn::kNone;
  board.is_told = *is_online;
  return *is_online ? Turn::kCame : Turn::kWent;
}

void Boards::SetOnline(Board& board, std::optional<bool> says_online, model::Time now) {
  const bool was_online = board.IsOnline();
  board.says_online = says_online;
  if (board.IsOnline() == was_online) return;
  board.since = now;
  Note(board);
  if (board.IsOnline()) return;
  for (Order* const order : std::vector(orders_))
    if (order->board == board.name) End(*order, Order::Outcome::kLost);
}

void Boards::LoseAll(model::Time now) {
  for (const auto& [name, place] : by_name_) SetOnline(*places_[place], std::nullopt, now);
}

void Boards::TakeBus(Board& board, std::string_view payload) {
  if (payload.empty()) return;
  auto said = ReadBus(payload);
  if (!said) return Ignore(board, "a bus that is no such JSON");
  board.identity = std::move(said->identity);
  for (size_t address = 0; address < board.cards.size(); ++address) {
    boards::Settle(board.cards[address], said->cards[address]);
    Note(board, static_cast<int>(address));
  }
  Note(board);
}

void Boards::TakeCard(Board& board, const Place& place, std::string_view payload) {
  Card& card = board.cards.at(place.address);
  if (place.what == What::kCardStatus) {
    const auto answers = ReadStatus(payload);
    if (!answers && !payload.empty()) return Ignore(board, "a card's status that is not known");
    if (card.answers == answers) return;
    card.answers = answers;
  } else {
    auto glass = ReadGlass(payload);
    if (!glass && !payload.empty()) return Ignore(board, "a glass that is no such JSON");
    if (card.glass == glass) return;
    card.glass = std::move(glass);
  }
  Note(board, static_cast<int>(place.address));
  Settle(board);
}

// The channels of a card that the board has not named yet are kept all the same: topics may come
// in any order.
void Boards::TakeValue(Board& board, const Place& place, std::string_view payload,
                       model::Time now) {
  Card& card = board.cards.at(place.address);
  auto value = payload.empty() ? model::Value{} : ReadValue(payload);
  if (!value) return Ignore(board, "a value that is none");
  if (card.kind != nullptr && place.number >= card.channels.size()) {
    if (!payload.empty()) Ignore(board, "a channel that the card has not");
    return;
  }
  if (card.kind != nullptr && !Fits(*value, *card.kind))
    return Ignore(board, "a value that the channel cannot have");
  if (place.number >= card.channels.size()) card.channels.resize(place.number + 1);
  Channel& channel = card.channels[place.number];
  if (channel.value != *value) {
    channel.value = std::move(*value);
    channel.since = now;
    Note(board, static_cast<int>(place.address), static_cast<int>(place.number));
  }
  Settle(board);
}

// The oldest that waits for this topic: they are answered in the order in which they went out.
void Boards::TakeComplaint(Board& board, std::string_view payload) {
  auto complaint = ReadComplaint(payload);
  if (!complaint) return Ignore(board, "an error that is no such JSON");
  const auto found = std::ranges::find_if(orders_, [&](const Order* order) {
    return order->outcome == Order::Outcome::kUnderWay && order->topic == complaint->topic;
  });
  if (found == orders_.end()) return;
  (*found)->complaint = std::move(*complaint);
  End(**found, Order::Outcome::kRefused);
}

void Boards::Ignore(Board& board, std::string why) {
  ++board.ignored;
  board.ignored_why = std::move(why);
  Note(board);
}

void Boards::Note(const Board& board, int address, int number) {
  const model::BoardPlace place{board.place, static_cast<int8_t>(address),
                                static_cast<int8_t>(number)};
  if (changes_.empty() || changes_.back() != place) changes_.push_back(place);
}

bool Boards::Enter(Order& order, std::string payload) {
  const auto waiting = std::ranges::count(orders_, order.board, &Order::board);
  if (static_cast<size_t>(waiting) >= kMostOrders) return false;
  orders_.push_back(&order);
  if (send_) send_(order.topic, std::move(payload));
  return true;
}

void Boards::Settle(const Board& board) {
  for (Order* const order : std::vector(orders_))
    if (order->board == board.name && order->is_shown && order->is_shown(board))
      End(*order, Order::Outcome::kShown);
}

void Boards::End(Order& order, Order::Outcome outcome) {
  if (order.outcome != Order::Outcome::kUnderWay) return;
  order.outcome = outcome;
  order.ended();
}

}  // namespace hub::boards
