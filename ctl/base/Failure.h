// How a command ends that could not be done: a sentence for people, and the exit status.
#pragma once

#include <stdexcept>
#include <string>

namespace ctl {

enum ExitStatus {
  kDone = 0,
  kRefused = 1,  // by the hub; of doctor: something is wrong
  kUsage = 2,
  kUnreachable = 3,
};

class Failure : public std::runtime_error {
 public:
  Failure(ExitStatus status, const std::string& text) : std::runtime_error(text), status_(status) {}

  ExitStatus Status() const { return status_; }

 private:
  ExitStatus status_;
};

}  // namespace ctl
