// What must hold between the daemon's clients and its bus, in as few words as possible:
// - every write to an output card that was accepted comes to the adapter, in order;
//   one is missing for each exchange that timed out, at most;
// - every change of an input is reported once while an IO client is connected.
// The model knows what was done, and takes what was seen; it touches no daemon.
#pragma once

#include <deque>
#include <map>
#include <string>
#include <vector>

// What is wrong; empty when all is well.
using Complaint = std::string;

// One block of an input card.
class InputBlock {
 public:
  int Value() const { return value_; }
  // A report of the value must come.
  bool IsDue() const { return due_; }
  // Perhaps the daemon has seen no other value since this one: setting it again would
  // be no change.
  bool MayBeKnown(int value) const;

  // The bus changes the block while the card is surely polled or not, and while an IO
  // client is there to hear of it or not.
  void Change(int value, bool polled, bool heard);
  // Polling is sure again: what could not be seen before is due now.
  void BecomePolled(bool heard);
  // Nobody listens any more: reports on their way may be lost, or reach the next client.
  void BecomeUnheard();
  // The daemon forgets the value it knew, and takes the block for 0.
  void Forget(bool polled, bool heard);
  // A report has come.
  Complaint TakeReport(int value);

 private:
  void Expect(bool polled, bool heard);

  int value_ = 0;
  bool due_ = false;
  bool unseen_ = false;        // changed while it was not surely polled
  std::vector<int> known_{0};  // what the daemon may hold it for
  std::vector<int> may_come_;  // reports that may come or not, in order
};

// The writes to one output card.
class OutputCard {
 public:
  // One that the daemon must send, or may send: what became of the card is not sure.
  void Accept(int block, int value, bool must);
  // The data bytes of a frame that came to the adapter.
  Complaint TakeFrame(const std::vector<int>& data);
  // Everything accepted had its time to come. Gives how many that must come did not.
  int TakeMissing();

 private:
  struct Write {
    int block;
    int value;
    bool must;
  };
  std::deque<Write> accepted_;
  int missing_ = 0;
};
