#include "link/Outbox.h"

#include <algorithm>
#include <utility>

namespace hub::link {

using protocol::IoCommand;

namespace {

// The bus may be slower than the hub thinks. What a burst leaves of that in the daemon is little;
// what goes on longer would gather there for ever, and gets a margin. What only merges loses
// nothing by a longer round still, in which what has gathered gets out.
constexpr size_t kLongestBurst = Outbox::kMostWaiting;

std::chrono::microseconds WithMargin(std::chrono::microseconds round) { return round + round / 5; }

std::chrono::microseconds RoundOfFlood(std::chrono::microseconds round) {
  return 2 * WithMargin(round);
}

}  // namespace

std::chrono::microseconds Outbox::RoundOf(const CardQueue& queue) const {
  if (queue.is_flooded) return RoundOfFlood(round_);
  return queue.in_a_row < kLongestBurst ? round_ : WithMargin(round_);
}

// Whoever waited for this round, and got it a little late, does not wait longer for the next.
SteadyTime Outbox::BeginOfRound(const CardQueue& queue, SteadyTime now) const {
  return queue.in_a_row == 0 ? now : std::max(queue.free_at, now - round_ / 2);
}

bool Outbox::HasPlace(unsigned address, size_t count) const {
  const CardQueue& queue = queues_[address];
  return queue.levels.empty() && queue.waiting.size() + count <= kMostWaiting;
}

std::optional<Ticket> Outbox::Offer(const IoCommand& command, SteadyTime now) {
  CardQueue& queue = queues_[protocol::AddressOf(command)];
  if (queue.IsEmpty() && queue.free_at <= now) {
    queue.is_flooded = false;
    queue.in_a_row = 0;
  }
  const auto* block = std::get_if<protocol::WriteBlock>(&command);
  if (HasPlace(protocol::AddressOf(command), 1) && !(block != nullptr && queue.is_flooded)) {
    queue.waiting.push_back({command, {++last_ticket_}});
    return last_ticket_;
  }
  if (block == nullptr) return std::nullopt;
  return Merge(queue, *block);
}

Ticket Outbox::Merge(CardQueue& queue, const protocol::WriteBlock& block) {
  queue.is_flooded = true;
  auto level = std::ranges::find_if(queue.levels, [&block](const Entry& entry) {
    return std::get<protocol::WriteBlock>(entry.command).block == block.block;
  });
  if (level == queue.levels.end())
    level = queue.levels.emplace(level);
  else
    ++merged_count_;
  level->command = block;
  level->tickets.push_back(++last_ticket_);
  return last_ticket_;
}

std::deque<Outbox::Entry>& Outbox::NextIn(CardQueue& queue) {
  return queue.waiting.empty() ? queue.levels : queue.waiting;
}

size_t Outbox::SizeOfNext(const CardQueue& queue) {
  const Entry& next = queue.waiting.empty() ? queue.levels.front() : queue.waiting.front();
  return protocol::Format(next.command).size() + protocol::kLineEnd.size();
}

std::string Outbox::TakeDue(SteadyTime now) {
  std::string lines;
  for (size_t i = 0; i < queues_.size(); ++i) {
    CardQueue& queue = queues_[(first_card_ + i) % queues_.size()];
    if (queue.IsEmpty() || queue.free_at > now) continue;
    const size_t size = SizeOfNext(queue);
    if (bytes_under_way_ + size > protocol::kMostBytesUnderWay) {
      first_card_ = (first_card_ + i) % queues_.size();
      return lines;
    }
    std::deque<Entry>& next = NextIn(queue);
    under_way_.push_back({protocol::Format(next.front().command), std::move(next.front())});
    next.pop_front();
    lines += under_way_.back().line;
    lines += protocol::kLineEnd;
    bytes_under_way_ += size;
    queue.free_at = BeginOfRound(queue, now) + RoundOf(queue);
    ++queue.in_a_row;
  }
  return lines;
}

std::optional<SteadyTime> Outbox::NextDue() const {
  std::optional<SteadyTime> next;
  for (const CardQueue& queue : queues_) {
    if (queue.IsEmpty()) continue;
    if (bytes_under_way_ + SizeOfNext(queue) > protocol::kMostBytesUnderWay) continue;
    next = next ? std::min(*next, queue.free_at) : queue.free_at;
  }
  return next;
}

size_t Outbox::CardsWaiting() const {
  return static_cast<size_t>(
      std::ranges::count_if(queues_, [](const CardQueue& queue) { return !queue.IsEmpty(); }));
}

std::optional<Outbox::Entry> Outbox::TakeEcho(std::string_view line) {
  const auto found = std::ranges::find(under_way_, line, &UnderWay::line);
  if (found == under_way_.end()) return std::nullopt;
  Entry received = std::move(found->entry);
  bytes_under_way_ -= found->line.size() + protocol::kLineEnd.size();
  under_way_.erase(found);
  return received;
}

Outbox::Abandoned Outbox::Abandon() {
  Abandoned abandoned;
  for (UnderWay& sent : under_way_) abandoned.written.push_back(std::move(sent.entry));
  for (CardQueue& queue : queues_) {
    for (Entry& entry : queue.waiting) abandoned.never_written.push_back(std::move(entry));
    for (Entry& entry : queue.levels) abandoned.never_written.push_back(std::move(entry));
    queue = {};
  }
  under_way_.clear();
  bytes_under_way_ = 0;
  return abandoned;
}

}  // namespace hub::link
