// What cards have said of their own settings. Asking stops the bus for a second a value, so what
// was asked once, or set, is kept here. Owned by the House; one thread.
#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <optional>
#include <string_view>

#include "model/Kinds.h"

namespace hub::api {

class CardMemory {
 public:
  struct Place {
    unsigned address = 0;
    model::Kind kind = model::Kind::kUnknown;  // a card of another kind has said nothing
    std::string_view field;                    // of a literal: "end_a"
    unsigned index = 0;
    auto operator<=>(const Place&) const = default;
  };

  void Note(const Place& place, uint8_t value) { values_[place] = value; }

  std::optional<uint8_t> Recall(const Place& place) const {
    const auto found = values_.find(place);
    if (found == values_.end()) return std::nullopt;
    return found->second;
  }

  // The card began anew: what it had not stored is gone.
  void Forget(unsigned address) {
    std::erase_if(values_, [address](const auto& each) { return each.first.address == address; });
  }

 private:
  std::map<Place, uint8_t> values_;
};

}  // namespace hub::api
