#include "mqtt/Publisher.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace hub::mqtt {

void Publisher::Keep(const std::string& topic, std::string payload) {
  const auto found = levels_.find(topic);
  if (found != levels_.end() && found->second.payload == payload) return;
  if (found == levels_.end() && levels_.size() >= kMostTopics) return;
  Replace(topic, std::move(payload));
}

void Publisher::TakeBack(const std::string& topic) { Keep(topic, ""); }

template <class Action>
void Publisher::ForEachBelow(std::string_view root, Action action) {
  for (auto level = levels_.lower_bound(root);
       level != levels_.end() && level->first.starts_with(root);)
    action(level++);
}

void Publisher::TakeBackBelow(std::string_view root) {
  ForEachBelow(root, [this](Levels::iterator level) {
    if (level->second.was_told)
      Keep(level->first, "");
    else
      Forget(level);
  });
}

void Publisher::Disown(std::string_view root) {
  ForEachBelow(root, [this](Levels::iterator level) {
    level->second.was_told = false;
    if (level->second.payload.empty()) Forget(level);
  });
}

void Publisher::TellAgainBelow(std::string_view root) {
  ForEachBelow(root, [this](Levels::iterator level) {
    if (!level->second.is_waiting) Replace(level->first, level->second.payload);
  });
}

void Publisher::Forget(Levels::iterator level) {
  std::erase(waiting_, level->first);
  levels_.erase(level);
}

bool Publisher::Keeps(const std::string& topic) const {
  const auto found = levels_.find(topic);
  return found != levels_.end() && !found->second.payload.empty();
}

bool Publisher::IsWaiting(const std::string& topic) const {
  const auto found = levels_.find(topic);
  return found != levels_.end() && found->second.is_waiting;
}

void Publisher::Replace(const std::string& topic, std::string payload) {
  const auto [place, is_new] = levels_.try_emplace(topic);
  Level& level = place->second;
  level.payload = std::move(payload);
  if (is_new) {
    level.order = next_order_++;
  } else if (level.is_waiting) {
    ++count_.merged;
    return;
  }
  level.is_waiting = true;
  if (is_open_) waiting_.push_back(topic);
}

void Publisher::Tell(Message event, model::SteadyTime now) {
  DropLate(now);
  if (!is_open_ || events_.size() >= kMostEvents) {
    ++count_.dropped;
    return;
  }
  events_.push_back({std::move(event), now});
}

void Publisher::Open() {
  Close();
  is_open_ = true;
  std::vector<std::pair<uint64_t, std::string_view>> order;
  for (const auto& [topic, level] : levels_) order.emplace_back(level.order, topic);
  std::ranges::sort(order);
  for (const auto& [place, topic] : order) waiting_.emplace_back(topic);
}

void Publisher::Close() {
  is_open_ = false;
  waiting_.clear();
  under_way_.clear();
  count_.dropped += events_.size();
  events_.clear();
  for (auto& [topic, level] : levels_) level.is_waiting = true;
}

std::optional<Message> Publisher::Next(model::SteadyTime now) {
  DropLate(now);
  if (!is_open_ || under_way_.size() >= kMostUnderWay) return std::nullopt;
  if (events_.empty() && waiting_.empty()) return std::nullopt;
  Message message = events_.empty() ? TakeLevel() : TakeEvent();
  under_way_.push_back({message.topic, now});
  ++count_.sent;
  return message;
}

// Those behind a receipt that is overdue would come as late as that.
void Publisher::DropLate(model::SteadyTime now) {
  const bool is_slow = !under_way_.empty() && now - under_way_.front().since > kLate;
  while (!events_.empty() && (is_slow || now - events_.front().since > kLate)) {
    events_.pop_front();
    ++count_.dropped;
  }
}

Message Publisher::TakeEvent() {
  Message message = std::move(events_.front().message);
  events_.pop_front();
  return message;
}

Message Publisher::TakeLevel() {
  const std::string topic = std::move(waiting_.front());
  waiting_.pop_front();
  Level& level = levels_.at(topic);
  level.is_waiting = false;
  level.was_told = true;
  return {topic, level.payload, true};
}

void Publisher::Taken() {
  if (under_way_.empty()) return;
  const std::string topic = std::move(under_way_.front().topic);
  under_way_.pop_front();
  const auto level = levels_.find(topic);
  if (level != levels_.end() && level->second.payload.empty() && !level->second.is_waiting)
    levels_.erase(level);
}

bool Publisher::IsIdle() const { return under_way_.empty() && waiting_.empty() && events_.empty(); }

}  // namespace hub::mqtt
