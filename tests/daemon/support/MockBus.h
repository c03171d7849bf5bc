// The bus adapter's end of a pseudo terminal.
//
// It has its turn at every read of the code under test, before the read happens, in
// the same thread: replies arrive with exactly the read a test names, and no test
// depends on which of two threads is faster.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "runtime/ByteList.h"
#include "support/ReadHook.h"

class MockBus {
 public:
  // One frame and what comes back for it: nothing unless Reply or Pieces say more.
  class Exchange {
   public:
    explicit Exchange(QList payload) : payload_(std::move(payload)) {}

    // The payload of the reply; its length goes in front.
    Exchange& Reply(const QList& payload);
    // The reply as it is on the wire, a piece a read.
    Exchange& Pieces(std::vector<QList> pieces);
    // The read of the wait with which the first piece comes; the first read is 1.
    Exchange& AtRead(long read);

   private:
    friend class MockBus;
    QList payload_;
    std::vector<QList> replies_;
    long first_read_ = 1;
  };

  MockBus();
  ~MockBus();  // every expected frame has come
  MockBus(const MockBus&) = delete;
  MockBus& operator=(const MockBus&) = delete;

  // The next frame carries this payload, in one write.
  Exchange& ExpectFrame(QList payload);

  // Bytes that nobody asked for.
  void Send(const QList& wire);

  // Reads since the last frame.
  long Reads() const { return read_count_; }

  // The device, and the same as a search lists it: eight characters behind "/dev/".
  const std::string& Device() const { return name_; }
  std::string ListedName() const;
  int Line() const { return slave_; }  // a descriptor of the device that stays open

  // A link as it is after the search.
  int Open() const;

 private:
  void TakeTurn();
  void TakeFrame(const QList& wire);

  std::string name_;
  int master_ = -1;
  int slave_ = -1;
  std::deque<Exchange> script_;
  std::deque<QList> pieces_;  // of the reply under way
  long first_read_ = 1;
  long read_count_ = 0;
  ReadHook hook_;
};
