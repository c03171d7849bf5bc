// history, journal
#include <boost/json/array.hpp>
#include <chrono>
#include <iostream>
#include <optional>
#include <thread>

#include "base/Failure.h"
#include "base/Json.h"
#include "base/Text.h"
#include "base/Times.h"
#include "base/Values.h"
#include "commands/All.h"
#include "commands/Things.h"

namespace ctl {

namespace json = boost::json;

namespace {

constexpr int64_t kMostPoints = 5000;
constexpr int64_t kMostEntries = 1000;
constexpr char kDefaultSince[] = "1h";
constexpr std::chrono::seconds kJournalPause{1};

Moment Now() {
  return std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
}

std::string MillisecondsOf(const std::string& text, const std::string& option) {
  const auto moment = ParseMoment(text, Now());
  if (!moment)
    throw Failure(kUsage, option + ": \"" + text +
                              "\" is no time: write 2h, 7d, \"2026-11-21 12:00\" or RFC 3339");
  return std::to_string(moment->time_since_epoch().count());
}

// A point is its time and its mean, least and most value.
std::vector<std::string> PointTexts(const json::value& point) {
  std::vector<std::string> texts;
  if (!point.is_array()) return texts;
  for (const json::value& value : point.get_array())
    texts.push_back(value.is_null() ? "" : ValueText(value));
  return texts;
}

std::optional<Moment> TimeOf(const json::value& point) {
  if (!point.is_array() || point.get_array().empty()) return std::nullopt;
  const json::value& time = point.get_array()[0];
  if (!time.is_number()) return std::nullopt;
  return Moment(std::chrono::milliseconds(static_cast<int64_t>(time.to_number<double>())));
}

std::string HistoryText(const json::value& history, const Paint& paint) {
  Table table;
  const std::string unit = TextAt(history, "unit");
  table.Add({{"time", Colour::kFaint},
             {unit.empty() ? "mean" : "mean/" + unit, Colour::kFaint},
             {"least", Colour::kFaint},
             {"most", Colour::kFaint}});
  for (const json::value& point : ItemsAt(history, "points")) {
    const auto time = TimeOf(point);
    if (!time) continue;
    std::vector<Cell> row{{FormatLocal(*time)}};
    const std::vector<std::string> texts = PointTexts(point);
    for (size_t i = 1; i < texts.size(); ++i) row.push_back({texts[i]});
    table.Add(std::move(row));
  }
  return table.Text(paint);
}

std::string HistoryCsv(const json::value& history) {
  std::string text = "time,mean,min,max\n";
  for (const json::value& point : ItemsAt(history, "points")) {
    const auto time = TimeOf(point);
    if (!time) continue;
    text += FormatUtc(*time);
    const std::vector<std::string> texts = PointTexts(point);
    for (size_t i = 1; i < texts.size(); ++i) text += "," + texts[i];
    text += "\n";
  }
  return text;
}

std::string EntryText(const json::value& entry, const Paint& paint) {
  const auto time = ParseRfc3339(TextAt(entry, "time"));
  std::string by = TextAt(entry, "by");
  if (!by.empty()) by = " (" + by + ")";
  return paint(Colour::kFaint, time ? FormatLocal(*time) : Printable(TextAt(entry, "time"))) +
         "  " + Printable(TextAt(entry, "kind")) + "  " + Printable(TextAt(entry, "text") + by) +
         "\n";
}

// Prints a page of the journal, the entries behind `after`; gives the number of its last one, or
// `after` where it has none. What is older than the first page is not missed.
int64_t PrintPage(const Session& session, const Reply& page, int64_t after) {
  const double lost = NumberAt(page.data, "lost").value_or(0);
  if (lost > 0 && after > 0 && !session.json)
    session.Print("entries that are gone: " + ValueText(lost) + "\n");
  for (const json::value& entry : ItemsAt(page.data, "entries")) {
    after = std::max(after, static_cast<int64_t>(NumberAt(entry, "seq").value_or(0)));
    if (!session.json) session.Print(EntryText(entry, session.paint));
  }
  return after;
}

// Nothing where the hub is not there at the moment; that it went is said once.
std::optional<Reply> NextPage(Session& session, int64_t after, bool& is_gone) {
  try {
    Reply page = session.hub.Get("/api/journal?after=" + std::to_string(after));
    is_gone = false;
    return page;
  } catch (const Failure& failure) {
    if (failure.Status() != kUnreachable) throw;
    if (!is_gone) std::cerr << "qelmctl: " << Printable(failure.what()) << "; trying again\n";
    is_gone = true;
    return std::nullopt;
  }
}

[[noreturn]] void Follow(Session& session, int64_t after) {
  bool is_gone = false;
  while (true) {
    std::this_thread::sleep_for(kJournalPause);
    const auto page = NextPage(session, after, is_gone);
    if (!page) continue;
    if (!ItemsAt(page->data, "entries").empty()) session.PrintedJson(*page);
    after = PrintPage(session, *page, after);
    if (!std::cout) throw Failure(kDone, "");
  }
}

}  // namespace

int ShowHistory(Session& session, const Words& words) {
  const std::string since = words.Has("--since") ? words["--since"] : kDefaultSince;
  std::string query = "&from=" + MillisecondsOf(since, "--since");
  if (words.Has("--until")) query += "&to=" + MillisecondsOf(words["--until"], "--until");
  if (words.Has("--points"))
    query += "&points=" +
             std::to_string(ParseNumber(words["--points"], "number of points", 1, kMostPoints));
  const std::string id = FindChannel(session.hub, words["CHANNEL"]);
  const Reply reply = session.hub.Get("/api/history?channel=" + id + query);
  if (session.PrintedJson(reply)) return kDone;
  session.Print(words.Has("--csv") ? HistoryCsv(reply.data)
                                   : HistoryText(reply.data, session.paint));
  return kDone;
}

int ShowJournal(Session& session, const Words& words) {
  std::string query;
  if (words.Has("--limit"))
    query = "?limit=" +
            std::to_string(ParseNumber(words["--limit"], "number of entries", 1, kMostEntries));
  const Reply page = session.hub.Get("/api/journal" + query);
  session.PrintedJson(page);
  const int64_t last = PrintPage(session, page, 0);
  if (words.Has("--follow")) Follow(session, last);
  return kDone;
}

}  // namespace ctl
