#include <fmt/format.h>

#include <boost/json/object.hpp>

#include "api/BoardAt.h"
#include "api/BoardShapes.h"
#include "api/Handlers.h"

namespace hub::api {

namespace {

const boards::Boards& RequireBoards(const House& house) {
  if (!house.boards.IsOn())
    throw ProblemOf(404,
                    "this hub does not listen to other boards: boards = true in the section "
                    "broker of its settings makes it do so");
  return house.boards;
}

}  // namespace

const boards::Board& RequireBoard(const House& house, const Request& request) {
  const std::string name = TextAt(request, "board");
  const boards::Board* const board = RequireBoards(house).Find(name);
  if (board == nullptr) throw ProblemOf(404, fmt::format("no board {}", name), "board");
  return *board;
}

BoardCardAt RequireBoardCard(const House& house, const Request& request) {
  const boards::Board& board = RequireBoard(house, request);
  const std::string text = TextAt(request, "address");
  const auto address = ParseAddress(text);
  if (!address)
    throw ProblemOf(404, fmt::format("no place {}; they are 0 to 9 and A to F", text), "address");
  const boards::Card& card = board.cards.at(*address);
  if (card.kind == nullptr)
    throw ProblemOf(404, fmt::format("{} has no card at {}", board.name, text), "address");
  return {board, card, *address};
}

BoardChannelAt RequireBoardChannel(const House& house, const Request& request) {
  const boards::Board& board = RequireBoard(house, request);
  const std::string text = TextAt(request, "id");
  const auto id = ParseChannel(text);
  if (!id) throw ProblemOf(404, fmt::format("no channel {}; they are as 5.0", text), "id");
  const boards::Card& card = board.cards.at(id->address);
  if (card.kind == nullptr)
    throw ProblemOf(404, fmt::format("{} has no card at {}", board.name, AddressText(id->address)),
                    "id");
  if (id->number >= card.channels.size())
    throw ProblemOf(
        404,
        fmt::format("card {} of {} is of the kind {}, which has {} channels",
                    AddressText(id->address), board.name, card.kind->word, card.channels.size()),
        "id");
  return {board, card, *id};
}

Answer ListBoards(House& house, Request) {
  co_return Done(boost::json::object{{"boards", BoardsJson(RequireBoards(house))}});
}

Answer GetBoard(House& house, Request request) {
  co_return Done(BoardJson(RequireBoard(house, request)));
}

Answer ListBoardCards(House& house, Request request) {
  co_return Done(BoardCardsJson(RequireBoard(house, request)));
}

Answer GetBoardCard(House& house, Request request) {
  const BoardCardAt at = RequireBoardCard(house, request);
  co_return Done(BoardCardJson(at.board, at.address));
}

Answer GetBoardChannel(House& house, Request request) {
  const BoardChannelAt at = RequireBoardChannel(house, request);
  co_return Done(BoardChannelJson(at.board, at.id));
}

}  // namespace hub::api
