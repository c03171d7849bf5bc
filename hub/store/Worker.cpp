#include "store/Worker.h"

#include <exception>
#include <utility>

#include "model/Fault.h"

namespace hub::store {

Worker::Worker() : thread_([this] { Work(); }) {}

Worker::~Worker() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  something_to_do_.notify_one();
  thread_.join();
}

bool Worker::Post(Job job) {
  {
    const std::lock_guard lock(mutex_);
    if (jobs_.size() >= kMostJobs) return false;
    jobs_.push_back(std::move(job));
  }
  something_to_do_.notify_one();
  return true;
}

void Worker::Work() {
  std::unique_lock lock(mutex_);
  while (true) {
    something_to_do_.wait(lock, [this] { return ending_ || !jobs_.empty(); });
    if (jobs_.empty()) return;
    Job job = std::move(jobs_.front());
    jobs_.pop_front();
    lock.unlock();
    try {
      job();
    } catch (const std::exception& fault) {
      model::EndAtOnce(fault);  // what the disk refuses is no fault, and told otherwise
    }
    job = nullptr;  // and with it what it holds
    lock.lock();
  }
}

}  // namespace hub::store
