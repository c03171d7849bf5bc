// Cards, channels and infrared codes by what people call them.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "client/Hub.h"

namespace ctl {

struct Thing {
  std::string id;    // "5", "5.0", "434F"
  std::string name;  // empty: none
};

// In the order of GET /api/cards.
std::vector<Thing> CardsOf(const boost::json::value& cards);
std::vector<Thing> ChannelsOf(const boost::json::value& cards);
// The same for each infrared card; none of another board's.
std::vector<Thing> CodesOf(const boost::json::value& cards);

// "5" of "5", "e" is "E"; "e.0" is "E.0"; "434f" is "434F". Empty: it is none.
std::string AsCard(std::string_view word);
std::string AsChannel(std::string_view word);
std::string AsCode(std::string_view word);

// The id of the one with that name, capitals or not. Throws Failure(kUsage) where there is none,
// naming the command that lists them, or more than one: it lists them.
std::string FindByName(std::span<const Thing> things, const std::string& word,
                       const std::string& what, const std::string& command = "cards");

// The same, asking the hub for names only where the word is no address.
std::string FindCard(Hub& hub, const std::string& word);
std::string FindChannel(Hub& hub, const std::string& word);

}  // namespace ctl
