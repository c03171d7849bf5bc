#include "mqtt/Neighbours.h"

#include <chrono>
#include <utility>

namespace hub::mqtt {

namespace {

using boards::Boards;

// What changes within this time is told together, however many messages it took.
constexpr std::chrono::milliseconds kTogether{20};
constexpr int kMostEntries = 6;  // of a board in the journal, a minute

}  // namespace

Neighbours::Neighbours(api::House& house, Send send) : house_(house), told_(house.context) {
  house_.boards.SendBy([send = std::move(send)](std::string topic, std::string payload) {
    send({std::move(topic), std::move(payload)});
  });
}

void Neighbours::Use(bool is_on) {
  house_.boards.Use(is_on);
  TellSoon();
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
  if (turn == Boards::Turn::kCame) Journal(board, "is there");
  if (turn == Boards::Turn::kWent) Journal(board, "is gone");
  TellSoon();
}

void Neighbours::LoseAll() {
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
