// Tickets for what cannot send headers: each is good once, within 5 s, from the address that it
// was made for. Shown at the wrong one, it is used up too. Pure; one thread.
#pragma once

#include <chrono>
#include <deque>
#include <optional>
#include <string>
#include <string_view>

#include "access/Role.h"
#include "model/Clock.h"

namespace hub::access {

class Tickets {
 public:
  static constexpr std::chrono::seconds kLife{5};
  static constexpr size_t kMost = 1024;  // the oldest goes for the next

  std::string Make(const Caller& caller, model::SteadyTime now);
  std::optional<Caller> Take(std::string_view ticket, std::string_view address,
                             model::SteadyTime now);

  void Drop(std::string_view account);  // those that it has made

  size_t Count() const { return tickets_.size(); }

 private:
  struct Ticket {
    std::string hash;
    Caller caller;
    model::SteadyTime made;
  };

  void DropOld(model::SteadyTime now);

  std::deque<Ticket> tickets_;  // oldest first
};

}  // namespace hub::access
