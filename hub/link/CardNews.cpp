#include "link/CardNews.h"

#include "protocol/Hex.h"

namespace hub::link {

using model::CardState;

CardNews::CardNews(const model::Bus& before) {
  for (unsigned address = 0; address < before_.size(); ++address)
    before_[address] = Look(before, address);
}

CardNews::Seen CardNews::Look(const model::Bus& bus, unsigned address) {
  const model::Card* card = bus.At(address);
  return card == nullptr ? Seen{} : Seen{card->state, card->kind};
}

std::vector<std::string> CardNews::Since(const model::Bus& now) const {
  std::vector<std::string> news;
  for (unsigned address = 0; address < before_.size(); ++address) {
    const Seen is = Look(now, address);
    if (is == before_[address]) continue;
    std::string text = "card ";
    text += protocol::HexDigit(address);
    text += " (" + std::string(model::RowOf(is.kind).word) + ") ";
    if (is.state == CardState::kPresent) text += "has come";
    if (is.state == CardState::kSilent) text += "does not answer";
    if (is.state == CardState::kAbsent) text += "is gone";
    news.push_back(std::move(text));
  }
  return news;
}

}  // namespace hub::link
