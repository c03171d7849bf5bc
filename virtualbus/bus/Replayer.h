// Plays the card side of a recording. The host need not ask in the recorded order or as often: each
// frame has its own sequence of recorded replies.
//   at the recorded pace  a reply is given until a different one is due; none is skipped
//   fast                  each asking takes the next recorded reply, and the last one stays
// A frame that was recorded without a reply gets none; one that was never recorded is refused.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "base/Loop.h"
#include "base/Problem.h"
#include "base/Text.h"

namespace virtualbus {

class Replayer {
 public:
  Problem Load(const std::string& path, bool fast);
  std::optional<Bytes> Answer(const Bytes& request, Time now);

 private:
  struct Recorded {
    double seconds;
    std::optional<Bytes> reply;
  };
  struct Sequence {
    std::vector<Recorded> replies;
    size_t given = 0;  // how many of them were used
  };

  Problem TakeLine(const std::string& line);
  void KeepChanges();

  bool fast_ = false;
  std::map<std::string, Sequence> sequences_;  // by the frame, in hexadecimal
  Sequence* asked_ = nullptr;           // while loading: the frame that the next reply answers
  std::optional<double> began_;         // time of the first recorded frame
  std::optional<Time> first_question_;  // of the host that is answered now
};

}  // namespace virtualbus
