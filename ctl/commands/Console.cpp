// console
#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <cstdlib>

#include "base/Json.h"
#include "base/Text.h"
#include "client/Refusal.h"
#include "commands/All.h"
#include "commands/Prompt.h"

namespace ctl {

namespace json = boost::json;

namespace {

constexpr char kPrompt[] = "> ";
constexpr char kLeave[] = "EXIT";

void RunLine(Session& session, const std::string& line) {
  const Reply reply =
      session.hub.Ask("POST", "/api/console", json::serialize(json::object{{"line", line}}));
  if (session.PrintedJson(reply)) return;
  std::string text;
  for (const json::value& answer : ItemsAt(reply.data, "lines"))
    if (answer.is_string()) text += Printable(answer.get_string()) + "\n";
  session.Print(text);
}

std::string HistoryFile() {
  const char* home = std::getenv("HOME");
  return home == nullptr ? std::string() : std::string(home) + "/.qelmctl_history";
}

// A line that is refused does not end the session; its status is that of the whole.
int RunLines(Session& session) {
  LineEditor editor(HistoryFile());
  int status = kDone;
  while (const auto line = editor.Read(kPrompt)) {
    if (line->empty()) continue;
    if (Lower(*line) == Lower(kLeave)) break;
    try {
      RunLine(session, *line);
    } catch (const Refusal& refusal) {
      status = session.Tell(refusal);
    }
  }
  return status;
}

}  // namespace

int Console(Session& session, const Words& words) {
  const std::string line = Joined(words.All("LINE"));
  if (line.empty()) return RunLines(session);
  RunLine(session, line);
  return kDone;
}

}  // namespace ctl
