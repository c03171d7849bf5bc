#include "mqtt/Neighbours.h"

#include <array>
#include <chrono>
#include <utility>
#include <vector>

namespace hub::mqtt {

namespace {

using boards::Boards;

// What changes within this time is told together, however many messages it took.
constexpr std::chrono::milliseconds kTogether{20};
constexpr int kMostEntries = 6;  // of a board in the journal, a minute

// Of a board, and of its cards.
constexpr std::array<std::string_view, 2> kLevels{"/+", "/+/+"};

std::string BelowName(const std::string& board, std::string_view levels) {
  return "qelm/" + board + std::string(levels);
}

}  // namespace

Neighbours::Neighbours(api::House& house, Ways ways)
    : house_(house), ways_(std::move(ways)), told_(house.context) {
  house_.boards.SendBy([this](std::string topic, std::string payload) {
    ways_.send({std::move(topic), std::move(payload)});
  });
}

void Neighbours::Use(bool is_on) {
  house_.boards.Use(is_on);
  TellSoon();
}

void Neighbours::Begin() {
  if (house_.boards.IsOn()) ways_.subscribe("qelm/+/status");
}

// What makes room for a board that has come lately is not listened to any more.
void Neighbours::Listen(const std::string& board) {
  if (house_.boards.Find(board) == nullptr || heard_.contains(board)) return;
  if (heard_.size() >= Boards::kMostBoards)
    for (const std::string& name : std::vector(heard_.begin(), heard_.end()))
      if (house_.boards.Find(name) == nullptr) StopListening(name);
  heard_.insert(board);
  next_.push_back(board);
  if (!asked_) ListenToNext();
}

void Neighbours::ListenToNext() {
  asked_.reset();
  if (next_.empty()) return;
  for (const std::string_view levels : kLevels)
    asked_ = ways_.subscribe(BelowName(next_.front(), levels));
  next_.pop_front();
}

void Neighbours::StopListening(const std::string& board) {
  heard_.erase(board);
  if (std::erase(next_, board) > 0) return;
  for (const std::string_view levels : kLevels) ways_.unsubscribe(BelowName(board, levels));
}

void Neighbours::Subscribed(int id) {
  if (asked_ == id) ListenToNext();
}

// A hub that has our id is ourselves, under a name that we have left.
void Neighbours::Hear(const Arrived& arrived) {
  if (!house_.boards.IsOn()) return;
  const Message& message = arrived.message;
  const std::string board(boards::BoardIn(message.topic).value_or(""));
  const Boards::Turn turn =
      house_.boards.Take(message.topic, message.payload, arrived.size, house_.clock.Now());
  const boards::Board* const now = house_.boards.Find(board);
  if (now != nullptr && now->identity.id == house_.bus.Id()) house_.boards.Forget(board);
  if (message.topic.ends_with("/status")) Listen(board);
  if (turn == Boards::Turn::kCame) Journal(board, "is there");
  if (turn == Boards::Turn::kWent) Journal(board, "is gone");
  TellSoon();
}

void Neighbours::LoseAll() {
  heard_.clear();
  next_.clear();
  asked_.reset();
  house_.boards.LoseAll(house_.clock.Now());
  TellSoon();
}

void Neighbours::TellSoon() {
  if (is_telling_ || !house_.boards.HasChanges()) return;
  is_telling_ = true;
  told_.expires_after(kTogether);
  told_.async_wait([this](boost::system::error_code error) {
    is_telling_ = false;
    if (!error) Tell();
  });
}

void Neighbours::Tell() {
  house_.bus.NoteBoards(house_.boards.TakeChanges());
  house_.bus.Publish();
}

void Neighbours::Journal(const std::string& board, std::string_view what) {
  if (house_.clock.Steady() - minute_ >= std::chrono::minutes(1)) {
    minute_ = house_.clock.Steady();
    told_of_.clear();
  }
  const bool has_room = told_of_.size() < Boards::kMostBoards || told_of_.contains(board);
  if (!has_room || ++told_of_[board] > kMostEntries) return;
  model::JournalEntry entry;
  entry.time = house_.clock.Now();
  entry.kind = "board";
  entry.text = "the board " + board + ' ';
  entry.text += what;
  house_.store.AddJournal(std::move(entry));
}

}  // namespace hub::mqtt
