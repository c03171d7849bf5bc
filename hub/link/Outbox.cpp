#include "link/Outbox.h"

#include <algorithm>
#include <utility>

namespace hub::link {

using protocol::IoCommand;

namespace {

size_t SizeOnLine(const IoCommand& command) {
  return protocol::Format(command).size() + protocol::kLineEnd.size();
}

}  // namespace

std::optional<Ticket> Outbox::Offer(const IoCommand& command) {
  CardQueue& queue = queues_[protocol::AddressOf(command)];
  if (queue.levels.empty() && queue.waiting.size() < kMostWaiting) {
    queue.waiting.push_back({command, {++last_ticket_}});
    return last_ticket_;
  }
  const auto* block = std::get_if<protocol::WriteBlock>(&command);
  if (block == nullptr) return std::nullopt;
  const auto [level, is_new] = queue.levels.try_emplace(block->block);
  if (!is_new) ++merged_count_;
  level->second.command = command;
  level->second.tickets.push_back(++last_ticket_);
  return last_ticket_;
}

const Outbox::Entry& Outbox::Next(const CardQueue& queue) {
  return queue.waiting.empty() ? queue.levels.begin()->second : queue.waiting.front();
}

Outbox::Entry Outbox::TakeNext(CardQueue& queue) {
  if (queue.waiting.empty()) return std::move(queue.levels.extract(queue.levels.begin()).mapped());
  Entry entry = std::move(queue.waiting.front());
  queue.waiting.pop_front();
  return entry;
}

std::string Outbox::TakeDue(SteadyTime now) {
  std::string lines;
  for (size_t i = 0; i < queues_.size(); ++i) {
    CardQueue& queue = queues_[(first_card_ + i) % queues_.size()];
    if (queue.IsEmpty() || queue.free_at > now) continue;
    const size_t size = SizeOnLine(Next(queue).command);
    if (bytes_under_way_ + size > protocol::kMostBytesUnderWay) {
      first_card_ = (first_card_ + i) % queues_.size();
      return lines;
    }
    UnderWay sent{protocol::Format(Next(queue).command), TakeNext(queue)};
    lines += sent.line;
    lines += protocol::kLineEnd;
    under_way_.push_back(std::move(sent));
    bytes_under_way_ += size;
    queue.free_at = now + round_;
  }
  return lines;
}

std::optional<SteadyTime> Outbox::NextDue() const {
  std::optional<SteadyTime> next;
  for (const CardQueue& queue : queues_) {
    if (queue.IsEmpty()) continue;
    if (bytes_under_way_ + SizeOnLine(Next(queue).command) > protocol::kMostBytesUnderWay) continue;
    next = next ? std::min(*next, queue.free_at) : queue.free_at;
  }
  return next;
}

size_t Outbox::CardsWaiting() const {
  return static_cast<size_t>(
      std::ranges::count_if(queues_, [](const CardQueue& queue) { return !queue.IsEmpty(); }));
}

std::optional<Outbox::Received> Outbox::TakeEcho(std::string_view line) {
  const auto found = std::ranges::find(under_way_, line, &UnderWay::line);
  if (found == under_way_.end()) return std::nullopt;
  Received received{std::move(found->entry.command), std::move(found->entry.tickets)};
  bytes_under_way_ -= found->line.size() + protocol::kLineEnd.size();
  under_way_.erase(found);
  return received;
}

std::vector<Ticket> Outbox::Abandon() {
  std::vector<Ticket> tickets;
  const auto add = [&tickets](const Entry& entry) {
    tickets.insert(tickets.end(), entry.tickets.begin(), entry.tickets.end());
  };
  for (const UnderWay& sent : under_way_) add(sent.entry);
  for (CardQueue& queue : queues_) {
    for (const Entry& entry : queue.waiting) add(entry);
    for (const auto& [block, entry] : queue.levels) add(entry);
    queue = {};
  }
  std::ranges::sort(tickets);
  under_way_.clear();
  bytes_under_way_ = 0;
  return tickets;
}

}  // namespace hub::link
