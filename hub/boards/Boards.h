// The other hubs on the broker, by name. It is told what arrives there, and says what has changed.
//
// Bounded: so many boards, each of a fixed size; whatever else a board says is counted in its own
// row, with the reason. Pure: no I/O, no clock; one thread.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "boards/Board.h"
#include "boards/Order.h"
#include "boards/Said.h"
#include "model/Change.h"

namespace hub::boards {

class Boards {
 public:
  static constexpr size_t kMostBoards = 1000;
  static constexpr size_t kMostOrders = 64;  // to one board that are under way

  // What becomes of the connection to a board, for the journal.
  enum class Turn { kNone, kCame, kWent };

  using Send = std::function<void(std::string topic, std::string payload)>;

  Boards() = default;
  Boards(const Boards&) = delete;
  Boards& operator=(const Boards&) = delete;

  // Whether others are listened to at all. Off forgets them.
  void Use(bool is_on);
  bool IsOn() const { return is_on_; }
  void SendBy(Send send) { send_ = std::move(send); }

  // A message below qelm/. `size` is its payload's; a longer one than was kept says nothing.
  Turn Take(std::string_view topic, std::string_view payload, size_t size, model::Time now);
  void LoseAll(model::Time now);        // the broker is gone: what is known stays, and is stale
  void Forget(std::string_view board);  // it has another name now, or is no other one

  const Board* Find(std::string_view name) const;
  const Board* At(uint32_t place) const;  // also one that is gone; null where none was
  std::vector<const Board*> All() const;  // by name

  // What has changed since the last time; a thing may come twice.
  bool HasChanges() const { return !changes_.empty(); }
  std::vector<model::BoardPlace> TakeChanges() { return std::exchange(changes_, {}); }

  // A command: enters the order and sends. False: too many wait. The order must be taken out again
  // by Leave.
  bool Enter(Order& order, std::string payload);
  void Leave(Order& order) { std::erase(orders_, &order); }

 private:
  Board* FindOrAdd(const Place& place, std::string_view payload, model::Time now);
  Board* FreePlace();
  Turn TakeStatus(Board& board, std::string_view payload, model::Time now);
  void TakeBus(Board& board, std::string_view payload);
  void TakeCard(Board& board, const Place& place, std::string_view payload);
  void TakeValue(Board& board, const Place& place, std::string_view payload, model::Time now);
  void TakeComplaint(Board& board, std::string_view payload);
  void Ignore(Board& board, std::string why);
  void SetOnline(Board& board, std::optional<bool> says_online, model::Time now);
  void Note(const Board& board, int address = -1, int number = -1);
  void Settle(const Board& board);  // orders whose outcome is there now
  static void End(Order& order, Order::Outcome outcome);

  bool is_on_ = false;
  Send send_;
  std::vector<std::unique_ptr<Board>> places_;  // none moves; free ones are used again
  std::map<std::string, uint32_t, std::less<>> by_name_;
  std::vector<model::BoardPlace> changes_;
  std::vector<Order*> orders_;  // oldest first
};

}  // namespace hub::boards
