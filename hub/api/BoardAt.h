// The other boards by the parameters of a request. Throws a Problem where one is not there.
#pragma once

#include "api/Handling.h"

namespace hub::api {

const boards::Board& RequireBoard(const House& house, const Request& request);

// By the parameter "address".
struct BoardCardAt {
  const boards::Board& board;
  const boards::Card& card;
  unsigned address;
};
BoardCardAt RequireBoardCard(const House& house, const Request& request);

// By the parameter "id".
struct BoardChannelAt {
  const boards::Board& board;
  const boards::Card& card;
  model::ChannelId id;
};
BoardChannelAt RequireBoardChannel(const House& house, const Request& request);

}  // namespace hub::api
