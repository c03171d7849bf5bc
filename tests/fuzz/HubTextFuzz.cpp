// What the daemon writes to the hub, and text clients too: whole sessions of all ports.
//
// A unit separator begins each piece of the input, and its first letter says whose it is; the
// pieces of one port are the reads of one stream.
//   C console, I IO port, M monitor, L log: what the daemon writes
//   A a line that the hub asks the console
//   T a text client's bytes for the IO port
//   E the daemon repeats the oldest commands on the monitor, as many as the number says
//   W so many milliseconds pass
//   X the daemon is gone
#include <algorithm>
#include <cstdint>
#include <deque>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "Finding.h"
#include "HubBus.h"
#include "hub/CardsOfEachKind.h"
#include "link/CardNews.h"
#include "link/LogState.h"
#include "link/Outbox.h"
#include "link/OutputKeeper.h"
#include "protocol/Console.h"
#include "protocol/ConsoleReplies.h"
#include "protocol/DaemonLog.h"
#include "protocol/InputReport.h"
#include "protocol/LineReader.h"
#include "protocol/Pace.h"

namespace {

using namespace hub::protocol;
namespace link = hub::link;
namespace model = hub::model;

constexpr char kPieceMark = '\x1f';
constexpr size_t kLongestLine = 1024;
constexpr size_t kMostLines = 1000;  // of an answer
constexpr uint8_t kMotors = 4;

model::Settings Settled() {
  model::Settings settings;
  settings.cards[kMotors].is_signed = true;
  settings.cards[0xE] = {.name = "Glass", .keep = {}, .is_signed = false, .rows = 2, .columns = 16};
  settings.channels[{0xF, 0}] = {.name = "",
                                 .unit = "V",
                                 .min = 0.04,
                                 .max = 3.37,
                                 .decimals = 1,
                                 .hysteresis = 0.1,
                                 .active_high = {}};
  settings.channels[{0, 0}] = {.name = "",
                               .unit = "%",
                               .min = 100,
                               .max = -1,
                               .decimals = 0,
                               .hysteresis = 0,
                               .active_high = {}};
  settings.channels[{5, 1}].active_high = true;
  return settings;
}

unsigned Number(std::string_view text) {
  unsigned number = 0;
  for (const char c : text.substr(0, 3))
    if (c >= '0' && c <= '9') number = number * 10 + static_cast<unsigned>(c - '0');
  return number;
}

// Nothing that ends the daemon, or that it cuts.
void CheckCommand(const IoCommand& command) {
  const std::string line = Format(command);
  Require(line.size() + kLineEnd.size() <= kMostBytesUnderWay, "a command is cut by the daemon");
  Require(line.find_first_of(std::string_view("\r\n\0", 3)) == std::string::npos, "two lines");
  Require(AddressOf(command) < kCardCount, "a command is for no card");
  Require(ParseIoCommand(line) == command, "a command does not read back");
  if (const auto* text = std::get_if<WriteText>(&command))
    Require(text->text.size() <= kMostTextCharacters, "a text ends the daemon");
  if (const auto* code = std::get_if<SendInfrared>(&command))
    Require(code->bytes.size() <= kMostInfraredBytes, "a code ends the daemon");
}

void CheckPieces(const IoCommand& command, const std::vector<IoCommand>& pieces) {
  const auto* whole = std::get_if<WriteText>(&command);
  if (whole == nullptr || pieces.empty()) return;
  std::string text;
  for (const IoCommand& piece : pieces) {
    const auto& part = std::get<WriteText>(piece);
    Require(part.column == whole->column + text.size(), "a piece of a text stands elsewhere");
    text += part.text;
  }
  Require(whole->text.starts_with(text), "pieces are not the text");
}

class Session {
 public:
  Session() {
    bus_.Apply(Settled());
    Introduce();
  }

  void Take(std::string_view piece) {
    const std::string_view bytes = piece.substr(1);
    switch (piece[0]) {
      case 'C':
        return Read(cae_, bytes, [this](std::string line) {
          if (!line.empty()) console_->Take(std::move(line));
        });
      case 'I':
        return Read(io_, bytes, [this](const std::string& line) {
          if (const auto report = ParseInputReport(line)) bus_.TakeInput(*report, {});
        });
      case 'M':
        return Read(mon_, bytes, [this](const std::string& line) { TakeEcho(line); });
      case 'L':
        return Read(log_, bytes, [this](const std::string& line) { TakeLogLine(line); });
      case 'T':
        return Read(client_, bytes, [this](const std::string& line) { TakeClient(line); });
      case 'A':
        if (console_->IsReady() && IsConsoleLine(bytes)) console_->Ask();
        return;
      case 'E':
        return Repeat(Number(bytes));
      case 'W':
        now_ += std::chrono::milliseconds(Number(bytes));
        return Write();
      case 'X':
        return Lose();
      default:
        return;
    }
  }

  void Check() {
    bus_.Publish();
    CheckBus(bus_);
    for (unsigned address = 0; address < kCardCount; ++address)
      for (const WriteBlock& block : keeper_.Restore(address)) {
        CheckCommand(block);
        Require(keeper_.Asked(address, block.block) == block.value, "nobody has asked for that");
      }
  }

 private:
  template <class Sink>
  void Read(LineReader& reader, std::string_view bytes, Sink sink) {
    reader.Take(bytes, [&sink](std::string line) {
      Require(line.size() <= kLongestLine + 1, "a line is kept that is too long");
      Require(line.find_first_of("\r\n", 1) == std::string::npos, "a line has two");
      sink(std::move(line));
    });
    Require(reader.Unfinished().size() <= kLongestLine, "the reader keeps too much");
  }

  void Introduce() {
    TakeTable(hub::CardsOfEachKind());
    console_.emplace(Console::Sinks{
        .ready = [this] { Require(console_->IsReady(), "ready, and not ready"); },
        .answer = [this](const Answer& answer) { TakeAnswer(answer); },
        .illegal = [](const std::string&) {},
        .unexpected =
            [](const std::string& line) { Require(line != ">", "a prompt is unexpected"); },
    });
  }

  void TakeAnswer(const Answer& answer) {
    Require(answer.lines.size() <= kMostLines, "an answer is too long");
    Require(answer.wire.ends_with(">\r\n\r"), "an answer has no prompt");
    if (const auto percent = ParsePace(answer.lines)) {
      outbox_.SetRound(RoundTime(RoundPause(*percent), outbox_.CardsWaiting()));
      bus_.SetPace(*percent);
    }
    if (const auto names = ParseCardTable(answer.lines)) TakeTable(*names);
    if (const auto polling = ParsePolling(answer.lines)) bus_.SetPolling(*polling);
    for (const uint8_t address : ParseReboots(answer.lines))
      for (const WriteBlock& block : keeper_.AfterReboot(address)) CheckCommand(block);
    if (SaysForcedDiscovery(answer.lines)) keeper_.NoteDiscovery();
    model::Daemon daemon = bus_.DaemonNow();
    daemon.version = ParseVersion(answer.lines);
    bus_.SetDaemon(daemon);
    ParseError(answer.lines);
    ParseCardValue(answer.lines);
  }

  void TakeTable(const CardNames& names) {
    const link::CardNews news(bus_);
    bus_.SetCards(names);
    Require(news.Since(bus_).size() <= kCardCount, "more news than cards");
    for (unsigned address = 0; address < kCardCount; ++address)
      if (const model::Card* card = bus_.At(address)) keeper_.SetKind(address, card->kind);
  }

  void TakeLogLine(const std::string& line) {
    const LogLine parsed = ParseLogLine(line);
    Require(line.ends_with(parsed.text), "a log says what is not in it");
    is_introduced_ ? log_state_.Take(parsed) : log_state_.TakeOld(parsed);
    bus_.SetAdapter(log_state_.AdapterNow());
    if (parsed.event == LogEvent::kAdapterFound) keeper_.NoteDiscovery();
    if (const auto pause = log_state_.Pause()) bus_.SetPace(PercentOf(*pause));
  }

  void TakeClient(const std::string& line) {
    if (!IsConsoleLine(line)) return;
    const auto command = ParseIoCommand(line);
    if (!command) return;
    const auto pieces = Pieces(*command);
    CheckPieces(*command, pieces);
    for (const IoCommand& piece : pieces) {
      CheckCommand(piece);
      outbox_.Offer(piece, now_);
    }
    Write();
  }

  void Write() {
    std::string lines = outbox_.TakeDue(now_);
    Require(outbox_.BytesUnderWay() <= kMostBytesUnderWay, "too much is under way");
    while (!lines.empty()) {
      const size_t end = lines.find(kLineEnd);
      Require(end != std::string::npos, "half a command is written");
      written_.push_back(lines.substr(0, end));
      lines.erase(0, end + kLineEnd.size());
      Require(ParseIoCommand(written_.back()).has_value(), "no command is written");
    }
  }

  void TakeEcho(const std::string& line) {
    const auto received = outbox_.TakeEcho(line);
    if (!received) return;
    const auto written = std::ranges::find(written_, line);
    Require(written != written_.end(), "a command is received that was not written");
    written_.erase(written);
    Require(!received->tickets.empty(), "a command is nobody's");
    bus_.TakeOutput(received->command, {});
    if (const auto* block = std::get_if<WriteBlock>(&received->command)) keeper_.NoteAsked(*block);
    Write();
  }

  void Repeat(unsigned count) {
    for (; count > 0 && !written_.empty(); --count) TakeEcho(std::string(written_.front()));
  }

  void Lose() {
    const link::Outbox::Abandoned abandoned = outbox_.Abandon();
    std::set<link::Ticket> tickets;
    for (const auto* entries : {&abandoned.written, &abandoned.never_written})
      for (const link::Outbox::Entry& entry : *entries)
        for (const link::Ticket ticket : entry.tickets)
          Require(tickets.insert(ticket).second, "a ticket is there twice");
    Require(outbox_.BytesUnderWay() == 0 && !outbox_.NextDue(), "something is under way for ever");
    written_.clear();
    bus_.SetAdapter({});
    bus_.AssumeOutputs();
    keeper_.ForgetRecord();
    is_introduced_ = true;
    cae_ = LineReader(kLongestLine, LineReader::ItemMarks::kKeep);
    io_ = mon_ = LineReader(kLongestLine);
    Introduce();
  }

  model::Bus bus_{"3f9a21c0"};
  BusWatch watch_{bus_};
  std::optional<Console> console_;
  link::Outbox outbox_;
  link::OutputKeeper keeper_;
  link::LogState log_state_;
  LineReader cae_{kLongestLine, LineReader::ItemMarks::kKeep};
  LineReader io_{kLongestLine};
  LineReader mon_{kLongestLine};
  LineReader log_{kLongestLine};
  LineReader client_{kLongestLine};
  std::deque<std::string> written_;  // not repeated yet
  model::SteadyTime now_{};
  bool is_introduced_ = false;  // the first session is behind it
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  Session session;
  while (!rest.empty()) {
    const std::string_view piece = rest.substr(0, rest.find(kPieceMark));
    rest.remove_prefix(std::min(piece.size() + 1, rest.size()));
    if (piece.empty()) continue;
    session.Take(piece);
    session.Check();
  }
  return 0;
}
