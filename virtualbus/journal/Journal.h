// Publishes everything that happens to all who listen: the recorder, the printer, the panel and the
// scripts that wait for a frame.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "base/Frames.h"
#include "base/Loop.h"
#include "base/Text.h"

namespace virtualbus {

struct Entry {
  enum class What { kFromHost, kToHost, kNote };
  double seconds;  // since the journal began
  What what;
  Bytes frame;       // empty in a note
  std::string note;  // in a frame: what a fault did to it, mostly empty
};

class Journal {
 public:
  using Listener = std::function<void(const Entry&)>;

  void Listen(Listener listener) { listeners_.push_back(std::move(listener)); }

  void FromHost(const Bytes& frame) { Publish(Entry::What::kFromHost, frame, {}); }
  void ToHost(const Bytes& frame, std::string note) {
    Publish(Entry::What::kToHost, frame, std::move(note));
  }
  void Note(std::string note) { Publish(Entry::What::kNote, {}, std::move(note)); }

 private:
  void Publish(Entry::What what, const Bytes& frame, std::string note);

  const Time began_ = Clock::now();
  std::vector<Listener> listeners_;
};

// "    1.234567 > 10 05 02 FF FB" and, for people, what it means behind it.
std::string FormatEntry(const Entry& entry);
std::string FormatEntryWithMeaning(const Entry& entry);

}  // namespace virtualbus
