// What clients read of the other boards: rows of their own, and cards and channels in the shapes of
// the bus's own, with `stale_since`. Pure functions.
#pragma once

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <vector>

#include "boards/Boards.h"
#include "model/Change.h"

namespace hub::api {

boost::json::object BoardJson(const boards::Board& board);
boost::json::object BoardCardsJson(const boards::Board& board);  // {"cards":[...]}
boost::json::object BoardCardJson(const boards::Board& board, unsigned address);
boost::json::object BoardChannelJson(const boards::Board& board, model::ChannelId id);

boost::json::array BoardsJson(const boards::Boards& boards);  // all rows, by name

// What has changed, an entry a board: {"board":"shed", "row":{...}, "cards":[...],
// "channels":[...]}.
boost::json::array BoardChangesJson(const boards::Boards& boards,
                                    const std::vector<model::BoardPlace>& changed);

}  // namespace hub::api
