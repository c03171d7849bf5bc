// What has become of the cards between two tables, as people read it. Pure.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "model/Bus.h"

namespace hub::link {

class CardNews {
 public:
  explicit CardNews(const model::Bus& before);

  // A sentence for each card that has come, gone or fallen silent.
  std::vector<std::string> Since(const model::Bus& now) const;

 private:
  struct Seen {
    model::CardState state = model::CardState::kAbsent;
    model::Kind kind = model::Kind::kUnknown;
    bool operator==(const Seen&) const = default;
  };

  static Seen Look(const model::Bus& bus, unsigned address);

  std::array<Seen, protocol::kCardCount> before_{};
};

}  // namespace hub::link
