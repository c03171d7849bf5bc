// watch
#include <algorithm>
#include <boost/json/array.hpp>
#include <chrono>
#include <iostream>
#include <map>
#include <optional>
#include <thread>
#include <utility>

#include "base/Failure.h"
#include "base/Json.h"
#include "base/Text.h"
#include "base/Times.h"
#include "commands/All.h"
#include "commands/Show.h"
#include "commands/Things.h"

namespace ctl {

namespace json = boost::json;

namespace {

constexpr std::chrono::seconds kShortestPause{1};
constexpr std::chrono::seconds kLongestPause{30};

// What is looked at: everything, a card ("5"), or a channel ("5.0").
class Selection {
 public:
  explicit Selection(std::string id) : id_(std::move(id)) {}

  bool HasBus() const { return id_.empty(); }
  bool HasCard(const std::string& address) const { return id_.empty() || id_ == address; }
  bool HasChannel(const std::string& channel) const {
    return id_ == channel || HasCard(channel.substr(0, channel.find('.')));
  }

 private:
  std::string id_;
};

std::string Clock(const std::string& utc) {
  const auto moment = ParseRfc3339(utc);
  return moment ? FormatClock(*moment)
                : FormatClock(std::chrono::floor<std::chrono::milliseconds>(
                      std::chrono::system_clock::now()));
}

std::string BusText(const json::value& bus) {
  return "daemon " + TextAt(At(bus, "daemon"), "state") + ", adapter " +
         TextAt(At(bus, "adapter"), "state");
}

std::string EventText(const json::value& event) {
  const json::value& code = At(event, "code");
  return TextAt(event, "card") + "  " + TextAt(event, "event_type") +
         (code.is_null() ? "" : " " + ValueText(code));
}

// What a message tells of the board that is watched: its part of the changes, or all its cards in
// place of the hub's own, as they are now. Null where it is about others.
json::value OfBoard(Hub& hub, const json::value& change) {
  const std::string& board = hub.Where().board;
  if (!At(change, "bus").is_null() && At(change, "after").is_null())
    return hub.Get("/api/cards").data;
  for (const json::value& entry : ItemsAt(change, "boards"))
    if (TextAt(entry, "board") == board) return entry;
  return nullptr;
}

class Watcher {
 public:
  Watcher(const Session& session, Selection selection)
      : session_(session), selection_(std::move(selection)) {}

  // False: nobody reads any more.
  bool Take(const Reply& message) {
    const json::value& result = At(message.data, "result");
    const json::value& change = result.is_null() ? At(message.data, "params") : result;
    if (const auto number = NumberAt(change, "seq")) told_ = static_cast<int64_t>(*number);
    lines_.clear();
    AddAll(session_.hub.Where().board.empty() ? change : OfBoard(session_.hub, change));
    if (lines_.empty()) return true;
    std::cout << (session_.json ? message.text + "\n" : lines_) << std::flush;
    return std::cout.good();
  }

  // The number of the last change that came; nothing: none came yet.
  std::optional<int64_t> Told() const { return told_; }

 private:
  void Add(const std::string& time, const std::string& text) {
    AddLine(time, Printable(text) + "\n");
  }

  // As it goes to the terminal.
  void AddLine(const std::string& time, const std::string& line) {
    lines_ += session_.paint(Colour::kFaint, time) + "  " + line;
  }

  void AddAll(const json::value& change) {
    AddBus(At(change, "bus"));
    AddRow(At(change, "row"));
    for (const json::value& card : ItemsAt(change, "cards")) AddCard(card);
    for (const json::value& channel : ItemsAt(change, "channels")) AddChannel(channel);
    for (const json::value& event : ItemsAt(change, "events"))
      if (selection_.HasCard(TextAt(event, "card")))
        Add(Clock(TextAt(event, "time")), EventText(event));
    const double lost = NumberAt(change, "lost").value_or(0);
    if (lost > 0) Add(Clock({}), "events that were lost: " + ValueText(lost));
  }

  // Of another board.
  void AddRow(const json::value& row) {
    if (row.is_null() || !selection_.HasBus()) return;
    Add(Clock({}), "board " + TextAt(row, "board") + " is " + TextAt(row, "state"));
  }

  void AddBus(const json::value& bus) {
    if (!bus.is_null() && selection_.HasBus()) Add(Clock({}), BusText(bus));
  }

  // A display's glass is told with its card; a card that only came or went has its state.
  void AddCard(const json::value& card) {
    const std::string address = TextAt(card, "address");
    if (selection_.HasCard(address)) {
      const json::value& glass = At(card, "glass");
      Add(Clock({}), address + "  " + TextAt(card, "kind") + "  " + TextAt(card, "state"));
      if (glass.is_object()) lines_ += GlassText(glass);
    }
    for (const json::value& channel : ItemsAt(card, "channels")) AddChannel(channel);
  }

  // Once: a card of another board, or one that comes back, is told with all its channels.
  void AddChannel(const json::value& channel) {
    const std::string id = TextAt(channel, "id");
    if (!selection_.HasChannel(id)) return;
    const std::string since = TextAt(channel, "since");
    const std::string text = ChannelText(channel, session_.paint);
    if (std::exchange(shown_[id], since + text) == since + text) return;
    AddLine(since.empty() ? Clock({}) : Clock(since), text);
  }

  const Session& session_;
  Selection selection_;
  std::optional<int64_t> told_;
  std::map<std::string, std::string> shown_;  // of each channel, the last one
  std::string lines_;                         // of the message at hand
};

std::string FindSelection(Hub& hub, const std::string& word) {
  if (word.empty()) return {};
  for (const std::string& id : {AsChannel(word), AsCard(word)})
    if (!id.empty()) return id;
  const Reply cards = hub.Get("/api/cards");
  std::vector<Thing> things = CardsOf(cards.data);
  for (Thing& channel : ChannelsOf(cards.data)) things.push_back(std::move(channel));
  return FindByName(things, word, "card or channel");
}

// A hub that was there comes back after a restart, or with the network. What happened meanwhile
// is told then.
void WatchAgain(Hub& hub, Watcher& watcher) {
  std::chrono::seconds pause = kShortestPause;
  while (true) {
    const auto told = watcher.Told();
    try {
      return hub.Watch(told, [&](const Reply& message) { return watcher.Take(message); });
    } catch (const Failure& failure) {
      if (failure.Status() != kUnreachable || !watcher.Told()) throw;
      if (watcher.Told() != told) {
        std::cerr << "qelmctl: " << Printable(failure.what()) << "; trying again\n";
        pause = kShortestPause;
      }
    }
    std::this_thread::sleep_for(pause);
    pause = std::min(2 * pause, kLongestPause);
  }
}

}  // namespace

int Watch(Session& session, const Words& words) {
  Watcher watcher(session, Selection(FindSelection(session.hub, words["WHAT"])));
  if (words.Has("--once"))
    session.hub.Watch({}, [&](const Reply& message) { return watcher.Take(message); });
  else
    WatchAgain(session.hub, watcher);
  return kDone;
}

}  // namespace ctl
