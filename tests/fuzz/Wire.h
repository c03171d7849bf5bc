// The bus adapter's end of the serial link, made of wrapped reads and writes of one
// descriptor number. It needs no device and no second thread, and a wait of 150,000
// empty reads takes a millisecond.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <string>

class Wire {
 public:
  // What comes back for a frame: first the empty reads, then one piece a read.
  struct Answer {
    long empty_reads = 0;
    std::deque<std::string> pieces{};
  };
  using Adapter = std::function<Answer(const std::string& written)>;

  explicit Wire(Adapter adapter);
  ~Wire();
  Wire(const Wire&) = delete;
  Wire& operator=(const Wire&) = delete;

  // Stands for the open device.
  static constexpr int kDescriptor = 1'000'000;

  long Reads() const { return ReadCount; }  // since the last frame
  const std::deque<std::string>& Waiting() const { return Line.pieces; }

  // Called by the wrapped functions.
  std::size_t Read(char* buffer, std::size_t size);
  void Write(const std::string& bytes);

 private:
  Adapter OnFrame;
  Answer Line;  // what is still to be read
  long ReadCount = 0;
};
