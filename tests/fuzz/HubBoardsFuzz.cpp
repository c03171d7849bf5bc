// What comes from other boards on a broker: topics and payloads, and commands to them under way.
//
// A unit separator ends each message; a tab parts its topic, behind qelm/, from the payload. A
// message that begins with "!" is a loss of the broker.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "Finding.h"
#include "api/BoardShapes.h"
#include "api/Json.h"
#include "boards/Boards.h"

namespace {

namespace boards = hub::boards;
namespace model = hub::model;

constexpr char kEndMark = '\x1f';

class Listener {
 public:
  Listener() {
    boards_.Use(true);
    boards_.Enter(order_, "ON");
  }

  void Take(std::string_view text) {
    now_ += std::chrono::seconds(1);
    if (text.starts_with('!')) {
      boards_.LoseAll(now_);
    } else {
      const std::string topic = "qelm/" + std::string(text.substr(0, text.find('\t')));
      text.remove_prefix(std::min(topic.size() - 4, text.size()));
      boards_.Take(topic, text, text.size(), now_);
    }
    CheckShapes();
  }

 private:
  void CheckShapes() {
    Require(ended_ <= 1, "a command ends twice");
    for (const boards::Board* const board : boards_.All()) {
      Require(!board->name.empty() && board->name.size() <= 32, "a name that no board has");
      for (const boards::Card& card : board->cards)
        Require(card.channels.size() <= boards::Card::kMostChannels, "too many channels");
      RequireJson(hub::api::ToText(hub::api::BoardCardsJson(*board)));
    }
    RequireJson(hub::api::ToText(hub::api::BoardsJson(boards_)));
    auto changes = boards_.TakeChanges();
    std::ranges::sort(changes);
    RequireJson(hub::api::ToText(hub::api::BoardChangesJson(boards_, changes)));
  }

  static void RequireJson(const std::string& text) {
    Require(std::holds_alternative<boost::json::value>(hub::api::ParseJson(text)),
            "an answer is no JSON");
  }

  boards::Boards boards_;
  model::Time now_{};
  int ended_ = 0;
  boards::Order order_{.board = "shed",
                       .topic = "qelm/shed/5/0/set",
                       .is_shown =
                           [](const boards::Board& board) {
                             const auto& channels = board.cards[5].channels;
                             return !channels.empty() && channels[0].value == model::Value(true);
                           },
                       .ended = [this] { ++ended_; }};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Listener listener;
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  while (!rest.empty()) {
    const std::string_view message = rest.substr(0, rest.find(kEndMark));
    rest.remove_prefix(std::min(message.size() + 1, rest.size()));
    listener.Take(message);
  }
  return 0;
}
