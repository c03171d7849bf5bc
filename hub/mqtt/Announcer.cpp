#include "mqtt/Announcer.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

namespace hub::mqtt {

namespace {

// Components that Home Assistant may have, and shall not.
Platforms Superfluous(const Platforms& held, const Platforms& told,
                      const std::map<std::string, boost::json::object>& wanted) {
  Platforms removed = held;
  removed.insert(told.begin(), told.end());
  std::erase_if(removed,
                [&wanted](const auto& component) { return wanted.contains(component.first); });
  return removed;
}

}  // namespace

std::chrono::milliseconds Announcer::Pause() const {
  const std::chrono::duration<double, std::milli> span = kLongestPause - kShortestPause;
  return kShortestPause + std::chrono::duration_cast<std::chrono::milliseconds>(span * chance_());
}

void Announcer::ActAt(model::SteadyTime time) { due_ = due_ ? std::min(*due_, time) : time; }

void Announcer::Begin(model::SteadyTime now) {
  topics_.clear();
  Touch(now);
}

void Announcer::Hear(const std::string& name, std::string_view payload, model::SteadyTime now) {
  if (!topics_.contains(name) && (payload.empty() || topics_.size() >= kMostTopics)) return;
  Topic& topic = topics_[name];
  const bool is_ours = topic.told == payload;
  if (is_ours && payload.empty()) {
    topics_.erase(name);
    return;
  }
  topic.held = is_ours ? topic.told_components : ComponentsOf(name, payload);
  if (is_ours && topic.removes) return ActAt(now + kRest);
  // Emptied: somebody has deleted an entity in Home Assistant. But where another message has come
  // in place of ours nothing is done until something changes: two hubs would never end.
  if (payload.empty()) topic.again = true;
  if (payload.empty() || !topic.told) Touch(now);
}

void Announcer::Greet(model::SteadyTime now) {
  for (auto& [name, topic] : topics_) topic.again = true;
  is_greeted_ = true;
  Touch(now);
}

std::vector<Announcer::Deed> Announcer::Act(const Wanted& wanted, model::SteadyTime now) {
  due_.reset();
  std::vector<Deed> deeds = TakeBack(wanted, now);
  // An entity that moves to another topic has to be gone first.
  if (!deeds.empty()) {
    ActAt(now + kRest);
    return deeds;
  }
  for (const Announcement& announcement : wanted.announcements)
    if (auto deed = Tell(announcement, now)) deeds.push_back(std::move(*deed));
  if (std::exchange(is_greeted_, false)) states_at_ = now + kStatesLater;
  if (states_at_ && *states_at_ <= now) {
    states_at_.reset();
    deeds.push_back({Deed::kTellStates});
  }
  if (states_at_) ActAt(*states_at_);
  return deeds;
}

std::vector<Announcer::Deed> Announcer::TakeBack(const Wanted& wanted, model::SteadyTime now) {
  std::set<std::string_view> kept;
  for (const Announcement& announcement : wanted.announcements) kept.insert(announcement.topic);
  std::vector<Deed> deeds;
  for (auto& [name, topic] : topics_) {
    if (topic.told == "" || kept.contains(name)) continue;
    if (const auto card = CardOf(name, bus_id_); card && wanted.open[*card]) continue;
    topic.told = "";
    topic.told_components.clear();
    topic.removes = topic.again = false;
    topic.told_at = now;
    deeds.push_back({Deed::kTakeBack, name});
  }
  return deeds;
}

std::optional<Announcer::Deed> Announcer::Tell(const Announcement& announcement,
                                               model::SteadyTime now) {
  Topic& topic = topics_[announcement.topic];
  const Platforms removed = Superfluous(topic.held, topic.told_components, announcement.components);
  std::string payload = ToPayload(announcement, removed);
  const bool is_same = topic.told == payload;
  if (is_same && !topic.again) return std::nullopt;
  // A greeting is answered at once: what is told then is nothing new.
  const bool is_answer = is_same && is_greeted_;
  if (topic.told && !is_answer && now < topic.told_at + kRest) {
    ActAt(topic.told_at + kRest);
    return std::nullopt;
  }
  topic.told_at = now;
  topic.again = false;
  if (is_same) return Deed{Deed::kTellAgain, announcement.topic};
  topic.told_components = PlatformsOf(announcement.components);
  topic.removes = !removed.empty();
  topic.told = payload;
  return Deed{Deed::kKeep, announcement.topic, std::move(payload)};
}

}  // namespace hub::mqtt
