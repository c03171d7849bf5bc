// What comes back from the bus adapter, as frames or as noise, whole or in pieces, in
// time or late. The input is a list of steps and answers: each frame that a step sends
// takes the next answer.
//
//   step, address        what is put on which queue, then a round
//   manner, n, n bytes   one answer; as noise without its length byte
#include <algorithm>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "CardModel.h"
#include "Finding.h"
#include "Site.h"
#include "bus/ReplyError.h"
#include "runtime/ByteList.h"

namespace {

// The manner of an answer: by its upper half how late it is, by its lower how it is cut.
constexpr int kJustInTime = 13;
constexpr int kTooLate = 14;
constexpr int kNoise = 15;

QList List(std::string_view bytes) { return {bytes.begin(), bytes.end()}; }

class AdapterRun {
 public:
  AdapterRun(const std::uint8_t* data, std::size_t size)
      : Input(data, data + size), Bus([this](const std::string& frame) { return Serve(frame); }) {
    Bus.Qelm.SerialInterface->ThreadDelay = 0;
    for (int a = 0; a < kCardCount; ++a) Bus.Qelm.Cards[a].clearPerifCard();
  }

  void Run() {
    constexpr int kMostSteps = 24;
    for (int i = 0; i < kMostSteps && Timeouts < 2 && !Input.empty(); ++i) {
      const unsigned char step = Next();
      const unsigned char address = Next();
      Step(step, address);
    }
  }

 private:
  SERIAL_INTERFACE& Serial() { return *Bus.Qelm.SerialInterface; }

  unsigned char Next() {
    if (Input.empty()) return 0;
    const unsigned char byte = Input.front();
    Input.pop_front();
    return byte;
  }

  void Step(unsigned char step, unsigned char address) {
    const char to = static_cast<char>(address % kCardCount);
    QEQUEUE& queue = *Serial().CardQueues[address % kQueueCount];
    switch (step % 8) {
      case 0:
        queue.ToQueue({'\x20', to, '\x02'});
        return Round();
      case 1:
        queue.ToQueue({'\x30'});
        return Round();
      case 2:
        queue.ToQueue({'\x50', to, '\x40', '\x01'});
        return Round();
      case 3:
        queue.ToQueue(QList(address * 2U, '\x10'));  // none at all, and more than a frame holds
        return Round();
      case 4:
        Serial().EnablePoll ^= 1;
        return Round();
      case 5:
        Model.Clear();
        for (int a = 0; a < kCardCount; ++a) Bus.Qelm.Cards[a].clearPerifCard();
        return;
      case 6:
        return CheckHardware();
      default:
        return Exchange(QList(1, static_cast<char>(address)));
    }
  }

  // The next answer of the input, and the reply that the daemon must make of it.
  Wire::Answer Serve(const std::string& frame) {
    Require(frame.size() >= 2 && frame.size() == 1U + static_cast<unsigned char>(frame[0]),
            "a frame miscounts");
    Budget = frame[1] == 0x30 || frame[1] == 0x40 ? 300'000 : 150'000;
    const int manner = Next();
    Wire::Answer answer;
    answer.empty_reads = EmptyReads(manner / 16);
    const std::string bytes = NextAnswer(manner % 16 == kNoise);
    constexpr std::size_t kOneRead = 255;
    const auto cut = static_cast<std::size_t>(manner % 16);
    const std::size_t piece = cut >= 1 && cut <= 3 ? cut : kOneRead;
    for (std::size_t at = 0; at < bytes.size(); at += piece)
      answer.pieces.push_back(bytes.substr(at, piece));

    Reply = ExpectReply(answer);
    if (Reply == "TME") ++Timeouts;
    Judge();
    return answer;
  }

  // A wait to the end of the budget takes longer than everything else: one in a run will do.
  long EmptyReads(int manner) {
    if (manner < kJustInTime) return manner;
    if (WasLate) return 0;
    WasLate = true;
    return manner == kJustInTime ? Budget - 2 : manner == kTooLate ? Budget - 1 : Budget;
  }

  // An acknowledgement once the input is used up.
  std::string NextAnswer(bool is_noise) {
    if (Input.empty()) return "\1A";
    const std::size_t size = std::min<std::size_t>(Next(), Input.size());
    std::string bytes;
    if (!is_noise) bytes += static_cast<char>(size);
    for (std::size_t i = 0; i < size; ++i) bytes += static_cast<char>(Next());
    return bytes;
  }

  // The reply has as many bytes as its first byte says, if the last of them comes before
  // the last read of the budget.
  std::string ExpectReply(const Wire::Answer& answer) {
    std::deque<std::string> line = Bus.Link.Waiting();
    line.insert(line.end(), answer.pieces.begin(), answer.pieces.end());
    std::string received;
    long reads = answer.empty_reads;
    for (const std::string& piece : line) {
      received += piece;
      ++reads;
      const auto length = static_cast<unsigned char>(received[0]);
      if (received.size() <= length) continue;
      return reads < Budget ? received.substr(1, std::min<std::size_t>(length, 135)) : "TME";
    }
    return "TME";
  }

  void Judge() {
    static constexpr std::string_view kRefusals{"T\x12#$NBC"};
    if (Reply.empty() || !IsRound) return;
    if (Reply[0] == 'T') IsDown = true;
    if (kRefusals.find(Reply[0]) == std::string_view::npos) Model.Take(Reply);
  }

  void Round() {
    IsRound = true;
    IsDown = false;
    Serial().OnTask();
    Require((Serial().LinkState == kLinkClosed) == IsDown, "the link is in another state");
    Require(TakeTexts(*Serial().OutQueue) == Model.TakeReports(), "other reports than the input");
    Model.Compare(Bus.Qelm.Cards);
    for (const QEQUEUE* queue : Serial().CardQueues)
      Require(queue->Items.size() <= 64 + 24, "a queue grows");
    Serial().LinkState = kLinkUp;
    Serial().Fd.Adopt(Wire::kDescriptor);
  }

  void Exchange(const QList& frame) {
    IsRound = false;
    const QList reply = Serial().Comm2HW(frame);
    Require(reply == List(Reply), "another reply than the wire's");
    Require(Bus.Link.Reads() <= Budget, "more reads than the budget");
  }

  void CheckHardware() {
    IsRound = false;
    const bool found = Serial().HardwareCheck("wire");
    Require(found == (GetQListError(List(Reply)) == kReplyGood), "another answer to the check");
  }

  std::deque<unsigned char> Input;
  Site Bus;
  CardModel Model;
  std::string Reply;  // expected for the frame under way
  long Budget = 0;
  int Timeouts = 0;
  bool WasLate = false;
  bool IsRound = false;
  bool IsDown = false;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  AdapterRun(data, size).Run();
  return 0;
}
