#include "bus/Replayer.h"

#include <algorithm>
#include <fstream>

#include "base/Frames.h"

namespace virtualbus {

Problem Replayer::Load(const std::string& path, bool fast) {
  fast_ = fast;
  std::ifstream file(path);
  if (!file) return Problem(path + ": cannot be read");
  size_t number = 0;
  for (std::string line; std::getline(file, line);) {
    ++number;
    if (const Problem problem = TakeLine(line)) {
      return Problem(path + ":" + std::to_string(number) + ": " + problem.Text());
    }
  }
  if (file.bad()) return Problem(path + ": cannot be read");
  if (sequences_.empty()) return Problem(path + ": holds no frame");
  if (!fast) KeepChanges();
  return {};
}

Problem Replayer::TakeLine(const std::string& line) {
  const bool has_note = line.find('#') != std::string::npos;
  const std::vector<std::string> words = SplitWords(line.substr(0, line.find('#')));
  if (words.empty() || (has_note && words.size() == 1)) return {};

  const auto seconds = ParseSeconds(words[0]);
  const bool from_host = words.size() > 1 && words[1] == ">";
  const bool to_host = words.size() > 1 && words[1] == "<";
  const auto bytes = ParseBytes(std::span(words).subspan(std::min<size_t>(words.size(), 2)));
  if (!seconds || !(from_host || to_host) || !bytes || bytes->empty()) {
    return Problem("a line is a time, > or <, and bytes");
  }
  if (to_host) {
    if (asked_ == nullptr) return Problem("a reply before any frame");
    asked_->replies.back().reply = *bytes;
    return {};
  }
  if (!began_) began_ = *seconds;
  asked_ = &sequences_[Hex(*bytes)];
  asked_->replies.push_back({*seconds - *began_, std::nullopt});
  return {};
}

void Replayer::KeepChanges() {
  for (auto& [request, sequence] : sequences_) {
    std::vector<Recorded> changes;
    for (const Recorded& recorded : sequence.replies) {
      const bool same = !changes.empty() && changes.back().reply == recorded.reply;
      if (!same) changes.push_back(recorded);
    }
    sequence.replies = std::move(changes);
  }
}

std::optional<Bytes> Replayer::Answer(const Bytes& request, Time now) {
  if (!first_question_) first_question_ = now;
  const double seconds = std::chrono::duration<double>(now - *first_question_).count();
  const auto found = sequences_.find(Hex(request));
  if (found == sequences_.end()) return Bytes{kRefused};

  auto& [replies, given] = found->second;
  const bool has_next = given < replies.size();
  if (has_next && (given == 0 || fast_ || replies[given].seconds <= seconds)) ++given;
  return replies[given - 1].reply;
}

}  // namespace virtualbus
