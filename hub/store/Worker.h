// A thread that does one job after the other. Its queue has a bound; one thread fills it.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace hub::store {

class Worker {
 public:
  using Job = std::function<void()>;
  static constexpr size_t kMostJobs = 256;

  Worker();
  ~Worker();  // when all jobs are done
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  // False where the queue is full: the job is not done.
  bool Post(Job job);

 private:
  void Work();

  std::mutex mutex_;
  std::condition_variable something_to_do_;
  std::deque<Job> jobs_;  // guarded by mutex_
  bool ending_ = false;   // likewise
  std::thread thread_;
};

}  // namespace hub::store
