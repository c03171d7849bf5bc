#include "commands/Things.h"

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>

#include "base/Failure.h"
#include "base/Json.h"
#include "base/Text.h"

namespace ctl {

namespace {

Thing ThingOf(const boost::json::value& item, const char* id) {
  return {.id = TextAt(item, id), .name = TextAt(item, "name")};
}

char AsAddress(char letter) {
  if ((letter >= '0' && letter <= '9') || (letter >= 'A' && letter <= 'F')) return letter;
  return letter >= 'a' && letter <= 'f' ? static_cast<char>(letter - 'a' + 'A') : '\0';
}

std::vector<std::string> NamesOf(std::span<const Thing> things) {
  std::vector<std::string> names;
  for (const Thing& thing : things)
    if (!thing.name.empty()) names.push_back(thing.name);
  return names;
}

}  // namespace

std::vector<Thing> CardsOf(const boost::json::value& cards) {
  std::vector<Thing> things;
  for (const auto& card : ItemsAt(cards, "cards")) things.push_back(ThingOf(card, "address"));
  return things;
}

std::vector<Thing> ChannelsOf(const boost::json::value& cards) {
  std::vector<Thing> things;
  for (const auto& card : ItemsAt(cards, "cards"))
    for (const auto& channel : ItemsAt(card, "channels")) things.push_back(ThingOf(channel, "id"));
  return things;
}

std::vector<Thing> CodesOf(const boost::json::value& cards) {
  std::vector<Thing> things;
  for (const auto& card : ItemsAt(cards, "cards")) {
    const boost::json::value& codes = At(card, "codes");
    if (!codes.is_object()) continue;
    for (const auto& [bytes, name] : codes.get_object())
      things.push_back({.id = std::string(bytes), .name = TextAt(codes, bytes)});
    break;
  }
  return things;
}

std::string AsCard(std::string_view word) {
  if (word.size() != 1 || AsAddress(word[0]) == '\0') return {};
  return {AsAddress(word[0])};
}

std::string AsChannel(std::string_view word) {
  const size_t dot = word.find('.');
  if (dot == std::string_view::npos) return {};
  const std::string card = AsCard(word.substr(0, dot));
  const std::string_view number = word.substr(dot + 1);
  const bool is_number =
      !number.empty() && number.find_first_not_of("0123456789") == std::string_view::npos;
  return card.empty() || !is_number ? std::string() : card + "." + std::string(number);
}

std::string AsCode(std::string_view word) {
  std::string digits;
  for (const char letter : word) digits += AsAddress(letter);
  const bool is_code = digits.size() % 2 == 0 && digits.find('\0') == std::string::npos;
  return is_code ? digits : std::string();
}

std::string FindByName(std::span<const Thing> things, const std::string& word,
                       const std::string& what, const std::string& command) {
  std::vector<const Thing*> found;
  for (const Thing& thing : things)
    if (!thing.name.empty() && Lower(thing.name) == Lower(word)) found.push_back(&thing);
  if (found.size() == 1) return found[0]->id;
  if (found.empty()) {
    const auto nearest = Nearest(word, NamesOf(things));
    throw Failure(kUsage, "no " + what + " is called \"" + word + "\"" +
                              (nearest ? "; is it \"" + *nearest + "\"?"
                                       : "; \"qelmctl " + command + "\" lists them"));
  }
  std::vector<std::string> candidates;
  for (const Thing* thing : found) candidates.push_back(thing->id + " (" + thing->name + ")");
  throw Failure(kUsage,
                "more than one " + what + " is called \"" + word + "\": say " + Listed(candidates));
}

std::string FindCard(Hub& hub, const std::string& word) {
  const std::string card = AsCard(word);
  return card.empty() ? FindByName(CardsOf(hub.Get("/api/cards").data), word, "card") : card;
}

std::string FindChannel(Hub& hub, const std::string& word) {
  const std::string channel = AsChannel(word);
  return channel.empty() ? FindByName(ChannelsOf(hub.Get("/api/cards").data), word, "channel")
                         : channel;
}

}  // namespace ctl
