#include "protocol/LineReader.h"

#include <utility>

namespace hub::protocol {

void LineReader::Take(std::string_view bytes, const Sink& sink) {
  for (const char byte : bytes) TakeByte(byte, sink);
}

void LineReader::TakeByte(char byte, const Sink& sink) {
  if (byte == '\r') return;
  if (byte == '\n') {
    if (!std::exchange(too_long_, false)) sink(std::exchange(line_, {}));
    return;
  }
  if (too_long_) return;
  if (line_.size() < longest_line_) {
    line_ += byte;
    return;
  }
  too_long_ = true;
  line_.clear();
  ++lost_lines_;
}

}  // namespace hub::protocol
