// Commands to other boards. They go over the broker; what has become of one is read off the board's
// own topics: its state shows what was asked for, or its error says why not.
#include <fmt/format.h>

#include <algorithm>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <chrono>
#include <cmath>
#include <functional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "api/BoardAt.h"
#include "api/BoardShapes.h"
#include "api/Handlers.h"
#include "api/Json.h"
#include "api/Targets.h"
#include "api/Times.h"

namespace hub::api {

namespace {

namespace asio = boost::asio;
namespace json = boost::json;
using boards::Order;
using boost::system::error_code;

constexpr std::chrono::seconds kPatience{5};
// Where the topics have nothing to show, a board that does not object in this time has taken it.
constexpr std::chrono::milliseconds kObjection{500};
constexpr int kRetryBoardSeconds = 5;

// What goes to a board, and how the answer is known.
struct Errand {
  std::string board;
  std::string topic;  // behind the board's name: "5/0/set"
  std::string payload;
  std::string note = {};                                          // for the journal, once done
  std::function<bool(const boards::Board& board)> is_shown = {};  // empty: cannot be
};

void RequireOnline(const House& house, const boards::Board& board) {
  if (board.IsOnline()) return;
  const auto& broker = house.bus.BrokerNow();
  const bool is_broker_there = broker && broker->state == model::BrokerState::kUp;
  throw RetryLater(
      503,
      fmt::format("{} since {}; nothing was sent",
                  is_broker_there ? board.name + " is offline" : std::string("the broker is gone"),
                  TimeText(board.since)),
      kRetryBoardSeconds);
}

void RequireDone(const Order& order, bool may_be_silent) {
  switch (order.outcome) {
    case Order::Outcome::kShown:
      return;
    case Order::Outcome::kRefused:
      throw ProblemOf(order.complaint.status, order.complaint.detail, order.complaint.where);
    case Order::Outcome::kLost:
      throw RetryLater(
          503, fmt::format("{} went away before it had answered; it may have done it", order.board),
          kRetryBoardSeconds);
    case Order::Outcome::kUnderWay:
      if (!may_be_silent)
        throw ProblemOf(504, fmt::format("{} has not answered within {} s; it may still do it",
                                         order.board, kPatience.count()));
  }
}

asio::awaitable<void> Run(House& house, const Request& request, Errand errand) {
  const boards::Board& board = *house.boards.Find(errand.board);
  RequireOnline(house, board);
  const bool may_be_silent = !errand.is_shown || errand.is_shown(board);
  asio::steady_timer answer(house.context);
  if (may_be_silent)
    answer.expires_after(kObjection);
  else
    answer.expires_after(kPatience);
  Order order{.board = errand.board,
              .topic = "qelm/" + errand.board + '/' + errand.topic,
              .is_shown = may_be_silent ? nullptr : std::move(errand.is_shown),
              .ended = [&answer] { answer.cancel(); }};
  if (!house.boards.Enter(order, std::move(errand.payload)))
    throw RetryLater(429, fmt::format("{} has too many commands waiting", errand.board), 1);
  error_code cancelled;
  auto token = asio::redirect_error(asio::use_awaitable, cancelled);
  if (order.outcome == Order::Outcome::kUnderWay) co_await answer.async_wait(token);
  house.boards.Leave(order);
  RequireDone(order, may_be_silent);
  Note(house, request, "command", std::move(errand.note));
}

BoardCardAt RequireBoardKind(const House& house, const Request& request, model::Kind kind) {
  const BoardCardAt at = RequireBoardCard(house, request);
  if (at.card.kind->kind != kind)
    throw ProblemOf(
        409,
        fmt::format("card {} of {} is of the kind {}; this is for {}", AddressText(at.address),
                    at.board.name, at.card.kind->word, RowOf(kind).word),
        "address");
  return at;
}

// The nearest byte's value, or any other than before: what is shown is rounded as the board likes.
bool Shows(const boards::Channel& channel, const json::value& wanted, const model::Value& before) {
  if (wanted.is_bool()) return channel.value == model::Value(wanted.get_bool());
  const double* const number = std::get_if<double>(&channel.value);
  if (number == nullptr) return false;
  const model::Range range = channel.settled.range.value_or(model::Range{0, 255});
  const double half_a_step = std::abs(range.max - range.min) / 255 / 2;
  return channel.value != before || std::abs(*number - wanted.to_number<double>()) <= half_a_step;
}

void RequireOutput(const BoardChannelAt& at, const json::value& value) {
  if (at.card.kind->direction != model::Direction::kOutput)
    throw ProblemOf(409,
                    fmt::format("card {} of {} is of the kind {}; it has no outputs to be set",
                                AddressText(at.id.address), at.board.name, at.card.kind->word),
                    "id");
  const bool has_lines = model::HasLines(*at.card.kind);
  if (has_lines ? !value.is_bool() : !value.is_number())
    throw DoesNotFit("value", has_lines ? "this takes true or false" : "this takes a number");
}

std::string SetPayload(const Request& request) {
  const json::value& value = request.parameters.at("value");
  json::object payload{{"value", value}};
  for (const char* key : {"pulse", "ramp"})
    if (const auto time = MaybeInteger(request, key)) payload[key] = *time;
  if (payload.size() > 1) return ToText(payload);
  if (value.is_bool()) return value.get_bool() ? "ON" : "OFF";
  return ToText(value);
}

// The row as it will be, with the text in it.
std::string RowWith(const boards::Glass& glass, size_t row, size_t column,
                    const std::string& text) {
  const size_t columns = row < glass.rows.size() ? glass.rows[row].size() : 0;
  RequireRoom({glass.rows.size(), columns}, row, column, text);
  return std::string(glass.rows[row]).replace(column, text.size(), text);
}

const boards::Glass& RequireGlass(const BoardCardAt& at) {
  if (!at.card.glass || at.card.glass->rows.empty())
    throw RetryLater(503, at.board.name + " has not said yet what its glass shows",
                     kRetryBoardSeconds);
  return *at.card.glass;
}

std::string AddressOf(const BoardCardAt& at) { return AddressText(at.address); }

}  // namespace

Answer SetBoardChannel(House& house, Request request) {
  const BoardChannelAt at = RequireBoardChannel(house, request);
  const json::value wanted = request.parameters.at("value");
  RequireOutput(at, wanted);
  const model::ChannelId id = at.id;
  Errand errand{.board = at.board.name,
                .topic = fmt::format("{}/{}/set", AddressText(id.address), id.number),
                .payload = SetPayload(request)};
  const model::Value before = at.card.channels[id.number].value;
  errand.is_shown = [id, wanted, before](const boards::Board& board) {
    const std::vector<boards::Channel>& channels = board.cards.at(id.address).channels;
    return id.number < channels.size() && Shows(channels[id.number], wanted, before);
  };
  errand.note = fmt::format("{} of {}: {}", ChannelText(id), errand.board, errand.payload);
  auto running = Run(house, request, std::move(errand));
  co_await std::move(running);
  const BoardChannelAt now = RequireBoardChannel(house, request);
  co_return Done(BoardChannelJson(now.board, now.id));
}

Answer WriteBoardDisplay(House& house, Request request) {
  const BoardCardAt at = RequireBoardKind(house, request, model::Kind::kLcd);
  const auto row = static_cast<size_t>(IntegerAt(request, "row"));
  const auto column = static_cast<size_t>(IntegerAt(request, "column"));
  const std::string text = TextAt(request, "text");
  const std::string whole = RowWith(RequireGlass(at), row, column, text);
  const unsigned address = at.address;
  Errand errand{.board = at.board.name,
                .topic = fmt::format("{}/row/{}/set", AddressOf(at), row),
                .payload = whole};
  errand.is_shown = [address, row, whole](const boards::Board& board) {
    const auto& glass = board.cards.at(address).glass;
    return glass && row < glass->rows.size() && glass->rows[row] == whole;
  };
  errand.note = fmt::format("{} of {}: text at row {}, column {}: {}", AddressOf(at), errand.board,
                            row, column, text);
  auto running = Run(house, request, std::move(errand));
  co_await std::move(running);
  const BoardCardAt now = RequireBoardCard(house, request);
  co_return Done(BoardCardJson(now.board, now.address));
}

Answer ControlBoardDisplay(House& house, Request request) {
  const BoardCardAt at = RequireBoardKind(house, request, model::Kind::kLcd);
  const std::string word = TextAt(request, "do");
  const bool is_on = word == "light-on";
  const unsigned address = at.address;
  Errand errand{.board = at.board.name,
                .topic = AddressOf(at) + "/light/set",
                .payload = is_on ? "ON" : "OFF"};
  errand.is_shown = [address, is_on](const boards::Board& board) {
    const auto& glass = board.cards.at(address).glass;
    return glass && glass->light == is_on;
  };
  errand.note = fmt::format("{} of {}: {}", AddressOf(at), errand.board, word);
  auto running = Run(house, request, std::move(errand));
  co_await std::move(running);
  const BoardCardAt now = RequireBoardCard(house, request);
  co_return Done(BoardCardJson(now.board, now.address));
}

Answer SendBoardCode(House& house, Request request) {
  const BoardCardAt at = RequireBoardKind(house, request, model::Kind::kInfrared);
  const model::ChannelId id{at.address, 0};
  Errand errand{.board = at.board.name,
                .topic = AddressOf(at) + "/infrared/set",
                .payload = TextAt(request, "bytes")};
  errand.note = fmt::format("{} of {}: code {}", AddressOf(at), errand.board, errand.payload);
  auto running = Run(house, request, std::move(errand));
  co_await std::move(running);
  const BoardCardAt now = RequireBoardKind(house, request, model::Kind::kInfrared);
  co_return Done(BoardChannelJson(now.board, id));
}

}  // namespace hub::api
