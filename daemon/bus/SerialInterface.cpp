#include "bus/SerialInterface.h"

#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <span>

#include "bus/ReplyError.h"
#include "runtime/Pause.h"
#include "runtime/Shared.h"

namespace {

// How often a reply is looked for. The reads do not block, so that a round never
// hangs on the device; the adapter takes longer over a check or a discovery.
constexpr int kReadBudget = 150'000;
constexpr int kLongReadBudget = 300'000;

// A board with one core gets nothing else done while a reply is awaited, so the
// processor is offered after this many empty reads, then at four times as many, while
// a prompt reply may come. Few times: beside busy programs each offer can cost 8 ms.
constexpr int kFirstOffer = 16;
constexpr int kLastOffer = 1024;

// A thread that reads without end keeps the kernel from carrying the reply on a busy
// machine. So it reads for this long at the most, then sleeps as long as it has read.
// Shorter: it gets less of a busy processor than its share. Longer: it is still asleep
// when its turn comes.
constexpr std::chrono::microseconds kStretch{1000};
constexpr int kReadsPerLook = 64;  // between two looks at the clock

constexpr std::size_t kReadSize = 255;

// While the link is down, polls pile up on the queues; more than this would be of no use
// once it is up.
constexpr std::size_t kMaxWaitingPolls = 64;

// What the calling thread has had of the processor. On a busy machine the time on the
// wall would count the others' turns too.
std::chrono::microseconds ProcessorTime() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return std::chrono::duration_cast<std::chrono::microseconds>(
      std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
}

// Leaves the processor to others now and then while a reply is awaited.
class GiveWay {
 public:
  void AfterEmptyRead() {
    ++EmptyReads;
    if (EmptyReads == NextOffer && NextOffer <= kLastOffer) {
      sched_yield();
      NextOffer *= 4;
    }
    if (EmptyReads % kReadsPerLook == 0) SleepAfterStretch();
  }

 private:
  void SleepAfterStretch() {
    const auto now = ProcessorTime();
    if (now - StretchBegin < kStretch) return;
    SleepMicroseconds(static_cast<int>((now - StretchBegin).count()));
    StretchBegin = now;
  }

  int EmptyReads = 0;
  int NextOffer = kFirstOffer;
  std::chrono::microseconds StretchBegin = ProcessorTime();
};

}  // namespace

// The payload of a reply by position; what the reply does not hold reads as 0.
class SERIAL_INTERFACE::Reply {
 public:
  explicit Reply(const QList& bytes) : Size(std::min(bytes.size(), Bytes.size())) {
    std::copy_n(bytes.begin(), Size, Bytes.begin());
  }
  unsigned char operator[](std::size_t at) const { return at < Size ? Bytes[at] : 0; }
  bool NamesCard() const { return Size > kReplyAddress && Bytes[kReplyAddress] < kCardCount; }
  int Address() const { return Bytes[kReplyAddress]; }
  std::span<const unsigned char> From(std::size_t at) const {
    return std::span(Bytes).first(Size).subspan(std::min(at, Size));
  }

 private:
  std::array<unsigned char, kMaxPayload> Bytes{};
  std::size_t Size;
};

SERIAL_INTERFACE::~SERIAL_INTERFACE() {
  Stop();  // before the queues that a round uses are deleted
  for (QEQUEUE* queue : CardQueues) delete queue;
  Fd.Close();
}

bool SERIAL_INTERFACE::OnTask() {
  SleepMicroseconds(LoadShared(ThreadDelay));
  if (LinkState == kLinkClosed) OpenLink();
  if (LinkState == kLinkUp) ServeQueues();
  if (LoadShared(EnablePoll) != 0) QueuePolls();
  return true;
}

void SERIAL_INTERFACE::OpenLink() {
  if (!Init()) {
    CloseLink();
    sleepsec(2);
    return;
  }
  if (AutoDiscover == 0) return;
  CardQueues[kDriverQueue]->ToQueue(MakeQList({kFrameDiscovery}));
  sleepsec(1);
}

void SERIAL_INTERFACE::CloseLink() {
  Fd.Close();
  LinkState = kLinkClosed;
}

QList SERIAL_INTERFACE::Comm2HW(QList frame) {
  DiscardStaleInput();
  if (frame.empty()) return {'L', 'C', 'E'};
  SendFrame(frame);
  const auto command = static_cast<unsigned char>(frame.front());
  const bool is_slow = command == kFrameHardwareCheck || command == kFrameDiscovery;
  if (!AwaitReply(is_slow ? kLongReadBudget : kReadBudget)) return {'T', 'M', 'E'};
  const std::size_t length = std::min<std::size_t>(RxBuffer[0], RxBuffer.size() - 1);
  return {RxBuffer.begin() + 1, RxBuffer.begin() + 1 + static_cast<long>(length)};
}

void SERIAL_INTERFACE::DiscardStaleInput() {
  std::array<unsigned char, kReadSize> stale{};
  [[maybe_unused]] const ssize_t count = read(Fd.Number(), stale.data(), stale.size());
}

// Sends the frame in one write. Bytes beyond what a length byte can count are cut off.
void SERIAL_INTERFACE::SendFrame(const QList& frame) {
  std::array<unsigned char, 1 + kMaxPayload> buffer{};
  const std::size_t length = std::min(frame.size(), kMaxPayload);
  buffer[0] = static_cast<unsigned char>(length);
  std::copy_n(frame.begin(), length, buffer.begin() + 1);
  AwaitingReply = 1;
  RxCount = 0;
  if (write(Fd.Number(), buffer.data(), length + 1) == -1)
    LogLine("ERR", "unable to  write to " + DeviceName);
}

// True when a whole reply came before the last read of the budget.
bool SERIAL_INTERFACE::AwaitReply(int budget) {
  std::array<unsigned char, kReadSize> chunk{};
  GiveWay give_way;
  int attempts = 0;
  do {
    const ssize_t count = read(Fd.Number(), chunk.data(), chunk.size());
    if (count > 0)
      StoreReceived(chunk.data(), static_cast<std::size_t>(count));
    else
      give_way.AfterEmptyRead();
    ++attempts;
  } while (attempts < budget && AwaitingReply != 0);
  return AwaitingReply == 0 && attempts < budget;
}

// A reply longer than the buffer is read to its end; what does not fit is dropped.
void SERIAL_INTERFACE::StoreReceived(const unsigned char* bytes, std::size_t count) {
  const auto at = std::min(static_cast<std::size_t>(RxCount), RxBuffer.size());
  std::copy_n(bytes, std::min(count, RxBuffer.size() - at), RxBuffer.begin() + at);
  RxCount += static_cast<int>(count);
  if (RxCount > RxBuffer[0]) AwaitingReply = 0;
}

// Sends one frame of each queue a round, so that no card can starve the others.
void SERIAL_INTERFACE::ServeQueues() {
  for (QEQUEUE* queue : CardQueues) {
    if (queue->IsEmpty()) continue;
    if (!HandleReply(Comm2HW(queue->DeQueue()))) return;
  }
}

// False ends the round: the adapter did not answer and the link is closed.
bool SERIAL_INTERFACE::HandleReply(const QList& bytes) {
  const int error = GetQListError(bytes);
  if (error == kReplyTimeout) {
    LogLine("INF", "comm timeout " + DeviceName);
    CloseLink();
    return false;
  }
  if (error != kReplyGood) return true;

  const Reply reply(bytes);
  if (reply[0] == kReplyDiscovery) HandleDiscovery(reply);
  if (reply[0] == kReplyQuery && reply.NamesCard()) HandleQuery(reply);
  if (reply[0] == kReplyPoll && reply.NamesCard()) HandlePoll(reply);
  return true;
}

void SERIAL_INTERFACE::HandleDiscovery(const Reply& reply) {
  for (int address = 0; address < kCardCount; ++address)
    Cards[address].setCardData(reply[static_cast<std::size_t>(address) + 1],
                               static_cast<unsigned char>(address));
}

// Blocks that the card's last poll marked as changed are reported again.
void SERIAL_INTERFACE::HandleQuery(const Reply& reply) {
  Cards[reply.Address()].FileQueryReply(reply.From(0));
  WriteInputReports(reply.Address());
}

void SERIAL_INTERFACE::HandlePoll(const Reply& reply) {
  if (Cards[reply.Address()].TakeInput(reply.From(kReplyBlocks)))
    WriteInputReports(reply.Address());
}

void SERIAL_INTERFACE::WriteInputReports(int address) {
  const PERIFCARD& card = Cards[address];
  for (unsigned b = 0; b < kBlockCount; ++b)
    if (LoadShared(card.BlockChanged[b]) != 0)
      OutQueue->ToQueue(card.Report(static_cast<unsigned>(address), b));
}

void SERIAL_INTERFACE::QueuePolls() {
  for (int address = 0; address < kCardCount; ++address) {
    PERIFCARD& card = Cards[address];
    if (LoadShared(card.IoKind) != kInputCard || LoadShared(card.PollEnabled) == 0) continue;
    QEQUEUE* queue = CardQueues[static_cast<std::size_t>(address)];
    if (queue->Size() < kMaxWaitingPolls) queue->ToQueue(card.CopyPollFrame());
  }
}
