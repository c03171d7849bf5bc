// A virtual bus of the bench's own: its cards, a device for one program to open,
// and the moments at which something happened on it.
//
// The bus prints an event as a line, one datagram each, and the kernel writes beside it
// when it was sent: so nothing of the bench's own waking is in any figure.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Clock.h"
#include "Process.h"
#include "kit/Bytes.h"
#include "kit/Stream.h"

inline constexpr int kCards = 16;
inline constexpr int kOutputs = 6;  // output cards at 0 to 5, input cards behind them
inline constexpr int kInputs = kCards - kOutputs;

// A line of 460800 baud, ten bits a byte.
inline constexpr double kByteMicroseconds = 1e7 / 460800;

struct BusSetup {
  std::string device;  // the link to it
  bool wired = false;  // each byte takes its time
  int cards = kCards;
  int outputs = kOutputs;
  bool tells_events = true;
};

class Bus {
 public:
  explicit Bus(const BusSetup& setup);
  ~Bus();
  Bus(const Bus&) = delete;
  Bus& operator=(const Bus&) = delete;

  // Sends a control line; returns the answer.
  std::string Order(const std::string& line);
  long Frames();

  // When a line that holds the text was printed.
  Time AwaitEvent(const std::string& text);
  // Until there was none for so long. Where its reader is slow, the bus keeps lines back
  // and loses others: what is to be awaited must find the way free.
  void ForgetEvents(milliseconds quiet);

  // When the adapter had all of a write to a digital output: six bytes on the line.
  Time AwaitCommand(int address, int value);

  Process process;
  const bool wired;
  const int first_input;  // address of the first input card

 private:
  struct Event {
    std::string text;
    Time when;
  };
  std::optional<Event> NextEvent(milliseconds patience);

  int events_ = -1;
  std::optional<Stream> control_;
};
