// Work that waits, a lane for each address, served in turn: who asks much waits behind himself.
// Each lane is bounded, and so is their number. However many wait, an empty lane has room for one,
// and the lane without a name, which is no network's, for as many as ever. Pure; one thread.
#pragma once

#include <algorithm>
#include <cstddef>
#include <deque>
#include <list>
#include <optional>
#include <string>
#include <utility>

namespace hub::access {

template <typename Job>
class FairQueue {
 public:
  static constexpr size_t kMostOfALane = 4;
  static constexpr size_t kMostLanes = 256;
  static constexpr size_t kBusy = 32;  // from there on a lane has room for one

  bool HasRoom(const std::string& lane) const {
    const auto found = std::ranges::find(lanes_, lane, &Lane::name);
    const size_t waiting = found == lanes_.end() ? 0 : found->jobs.size();
    if (lane.empty()) return waiting < kMostOfALane;
    if (waiting == 0) return lanes_.size() < kMostLanes;
    return size_ < kBusy && waiting < kMostOfALane;
  }

  void Push(const std::string& lane, Job job) {
    auto found = std::ranges::find(lanes_, lane, &Lane::name);
    if (found == lanes_.end()) found = lanes_.insert(lanes_.end(), Lane{lane, {}});
    found->jobs.push_back(std::move(job));
    ++size_;
  }

  std::optional<Job> Pop() {
    if (lanes_.empty()) return std::nullopt;
    Lane& first = lanes_.front();
    Job job = std::move(first.jobs.front());
    first.jobs.pop_front();
    --size_;
    if (first.jobs.empty())
      lanes_.pop_front();
    else
      lanes_.splice(lanes_.end(), lanes_, lanes_.begin());
    return job;
  }

 private:
  struct Lane {
    std::string name;
    std::deque<Job> jobs;  // never empty
  };

  std::list<Lane> lanes_;
  size_t size_ = 0;
};

}  // namespace hub::access
