// Cuts what comes from the daemon, or from a client of a text port, into lines.
//
// A line ends at LF; every CR is dropped, since the daemon writes one more behind each item.
// Whoever sends without an end must not fill the memory: of a line that grows past the limit
// nothing is kept, up to and with its LF, and it counts as lost.
//
// That CR of the daemon's says where an item begins, which can be several lines. Who wants to know
// it keeps the mark: then such a line begins with a CR.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace hub::protocol {

class LineReader {
 public:
  using Sink = std::function<void(std::string line)>;

  enum class ItemMarks { kDrop, kKeep };

  // Bytes of a line without its end.
  explicit LineReader(size_t longest_line, ItemMarks marks = ItemMarks::kDrop)
      : longest_line_(longest_line), marks_(marks) {}

  void Take(std::string_view bytes, const Sink& sink);

  const std::string& Unfinished() const { return line_; }  // the line that has no end yet
  uint64_t LostLines() const { return lost_lines_; }

 private:
  void TakeByte(char byte, const Sink& sink);
  void EndLine(const Sink& sink);

  size_t longest_line_;
  ItemMarks marks_;
  std::string line_;
  int leading_returns_ = 0;  // before the first other byte of the line under way
  bool too_long_ = false;    // it has passed the limit
  uint64_t lost_lines_ = 0;
};

}  // namespace hub::protocol
