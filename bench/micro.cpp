// The daemon's own work, without threads, sleeps and devices: the queue, the
// conversions, the two command languages.
#include <benchmark/benchmark.h>

#include <memory>

#include "bus/PerifCard.h"
#include "bus/SerialInterface.h"
#include "core/qelm.h"
#include "net/SocketInterface.h"
#include "runtime/Queue.h"
#include "runtime/Values.h"

namespace {

const char* const kLine = "a5b1dFB\r\n";

// The central object with interfaces whose threads have ended: what it queues stays.
class Languages : public benchmark::Fixture {
 public:
  void SetUp(benchmark::State&) override {
    qelm_ = std::make_unique<QELM>(LOGGER(), &signal_);
    qelm_->CaeInterface = Halted(qelm_->CaeQueue);
    qelm_->SerialInterface = new SERIAL_INTERFACE;
    for (QEQUEUE*& queue : qelm_->SerialInterface->CardQueues) queue = new QEQUEUE;
    qelm_->Cards[5].setCardData(kDigitalOutput, 5);
    qelm_->Cards[14].setCardData(kLcd, 14);
  }
  void TearDown(benchmark::State&) override { qelm_.reset(); }

 protected:
  SOCKET_INTERFACE* Halted(QEQUEUE* in_queue) const {
    auto* interface = new SOCKET_INTERFACE({}, LOGGER(), in_queue, kTextData);
    interface->Halt();
    return interface;
  }
  void ParseIo(benchmark::State& state, const std::string& command, std::size_t card) {
    const QList message = Convert_String2QList(command + "\r\n");
    for (auto _ : state) {
      qelm_->ParseOutCommand(message);
      qelm_->SerialInterface->CardQueues[card]->DeQueue();
    }
  }
  void ParseCae(benchmark::State& state, const std::string& command) {
    QEQUEUE& replies = *qelm_->CaeInterface->OutQueue;
    for (auto _ : state) {
      qelm_->ParseCaeLine(command + "\r\n");
      while (!replies.IsEmpty()) replies.DeQueue();
    }
  }

 private:
  int signal_ = kNoSignal;
  std::unique_ptr<QELM> qelm_;
};

BENCHMARK_F(Languages, IoBlockCommand)(benchmark::State& state) { ParseIo(state, "a5b1dFB", 5); }
BENCHMARK_F(Languages, IoLcdText)(benchmark::State& state) {
  ParseIo(state, "aElPAp0301tTail of the cat", 14);
}
BENCHMARK_F(Languages, CaeVersion)(benchmark::State& state) { ParseCae(state, "DRVVER"); }
BENCHMARK_F(Languages, CaeDiscover)(benchmark::State& state) { ParseCae(state, "DISCOVER"); }
BENCHMARK_F(Languages, CaeHelp)(benchmark::State& state) { ParseCae(state, "HELP"); }
BENCHMARK_F(Languages, CaeUnknown)(benchmark::State& state) { ParseCae(state, "help"); }

// One message in and one out, with so many others waiting.
void QueuePassage(benchmark::State& state) {
  QEQUEUE queue;
  const QList message = Convert_CharBuff2QList(kLine);
  for (int64_t i = 0; i < state.range(0); ++i) queue.ToQueue(message);
  for (auto _ : state) {
    queue.ToQueue(message);
    benchmark::DoNotOptimize(queue.DeQueue());
  }
}
BENCHMARK(QueuePassage)->Arg(0)->RangeMultiplier(10)->Range(1, 10'000);

void QueueIsEmpty(benchmark::State& state) {
  QEQUEUE queue;
  for (auto _ : state) benchmark::DoNotOptimize(queue.IsEmpty());
}
BENCHMARK(QueueIsEmpty);

void TextToList(benchmark::State& state) {
  const std::string text(static_cast<std::size_t>(state.range(0)), 'x');
  for (auto _ : state) benchmark::DoNotOptimize(Convert_String2QList(text));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(TextToList)->RangeMultiplier(4)->Range(4, 999)->Complexity();

void ListToText(benchmark::State& state) {
  const QList list(static_cast<std::size_t>(state.range(0)), 'x');
  for (auto _ : state) benchmark::DoNotOptimize(Convert_QList2String(list));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(ListToText)->RangeMultiplier(4)->Range(4, 999)->Complexity();

void HexToByte(benchmark::State& state) {
  const std::string text = "7A";
  for (auto _ : state) benchmark::DoNotOptimize(Convert_HexStr2Byte(text));
}
BENCHMARK(HexToByte);

void InputReport(benchmark::State& state) {
  const PERIFCARD card;
  for (auto _ : state) benchmark::DoNotOptimize(card.Report(3, 0));
}
BENCHMARK(InputReport);

}  // namespace
