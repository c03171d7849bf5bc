#include "protocol/LineReader.h"

#include <utility>

namespace hub::protocol {

void LineReader::Take(std::string_view bytes, const Sink& sink) {
  for (const char byte : bytes) TakeByte(byte, sink);
}

void LineReader::TakeByte(char byte, const Sink& sink) {
  if (byte == '\r') {
    if (line_.empty()) ++leading_returns_;
    return;
  }
  if (byte == '\n') return EndLine(sink);
  if (too_long_) return;
  if (line_.size() < longest_line_) {
    line_ += byte;
    return;
  }
  too_long_ = true;
  line_.clear();
  ++lost_lines_;
}

void LineReader::EndLine(const Sink& sink) {
  // The one CR of an empty line is that of its own end.
  const int own = line_.empty() ? 1 : 0;
  const bool begins_item = std::exchange(leading_returns_, 0) > own;
  if (std::exchange(too_long_, false)) return;
  std::string line = std::exchange(line_, {});
  if (begins_item && marks_ == ItemMarks::kKeep) line.insert(line.begin(), '\r');
  sink(std::move(line));
}

}  // namespace hub::protocol
