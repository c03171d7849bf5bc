// Cards and channels by what people call them.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "client/Hub.h"

namespace ctl {

struct Thing {
  std::string id;    // "5", "5.0"
  std::string name;  // empty: none
};

// In the order of GET /api/cards.
std::vector<Thing> CardsOf(const boost::json::value& cards);
std::vector<Thing> ChannelsOf(const boost::json::value& cards);

// "5" of "5", "e" is "E"; "5.0" and "e.0" likewise. Empty: it is no address.
std::string AsCard(std::string_view word);
std::string AsChannel(std::string_view word);

// The id of the one with that name, capitals or not. Throws Failure(kUsage) where there is none,
// or more than one: it lists them.
std::string FindByName(std::span<const Thing> things, const std::string& word,
                       const std::string& what);

// The same, asking the hub for names only where the word is no address.
std::string FindCard(Hub& hub, const std::string& word);
std::string FindChannel(Hub& hub, const std::string& word);

}  // namespace ctl
