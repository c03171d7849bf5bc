#include "access/Tickets.h"

#include <algorithm>

#include "access/Secrets.h"

namespace hub::access {

std::string Tickets::Make(const Caller& caller, model::SteadyTime now) {
  DropOld(now);
  if (tickets_.size() >= kMost) tickets_.pop_front();
  std::string ticket = RandomSecret();
  tickets_.push_back({HashOf(ticket), caller, now});
  return ticket;
}

std::optional<Caller> Tickets::Take(std::string_view ticket, std::string_view address,
                                    model::SteadyTime now) {
  DropOld(now);
  const std::string hash = HashOf(ticket);
  const auto found = std::ranges::find_if(
      tickets_, [&hash](const Ticket& made) { return IsSame(made.hash, hash); });
  if (found == tickets_.end()) return std::nullopt;
  Caller caller = std::move(found->caller);
  tickets_.erase(found);
  if (caller.address != address) return std::nullopt;
  return caller;
}

void Tickets::Drop(std::string_view account) {
  std::erase_if(tickets_, [&](const Ticket& made) { return made.caller.account == account; });
}

void Tickets::DropOld(model::SteadyTime now) {
  while (!tickets_.empty() && now - tickets_.front().made > kLife) tickets_.pop_front();
}

}  // namespace hub::access
