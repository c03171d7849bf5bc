#include "commands/Complete.h"

#include <algorithm>
#include <iostream>
#include <span>

#include "base/Failure.h"
#include "base/Json.h"
#include "base/Text.h"
#include "commands/Command.h"
#include "commands/Things.h"

namespace ctl {

namespace {

constexpr std::chrono::seconds kPatience{1};  // a person waits for it

const std::vector<Option>& CommonOptions() {
  static const std::vector<Option>& options = *new std::vector<Option>{
      {"--socket", "PATH", ""}, {"--url", "URL", ""},    {"--token-file", "FILE", ""},
      {"--ca", "FILE", ""},     {"--board", "NAME", ""}, {"--json", "", ""},
      {"--help", "", ""}};
  return options;
}

// The words before the one under way, sorted out.
struct Line {
  std::vector<std::string> plain;
  Target target;
  std::string wants_value_of;  // the option whose value the word under way is; empty: none
};

bool HasName(const Option& option, const std::string& name) {
  const std::vector<std::string> names = Split(option.name, ',');
  return std::find(names.begin(), names.end(), name) != names.end();
}

bool TakesValue(const std::string& word) {
  const auto matches = [&](const Option& option) {
    return HasName(option, word) && !option.value.empty();
  };
  if (std::ranges::any_of(CommonOptions(), matches)) return true;
  return std::ranges::any_of(Commands(), [&](const Command& command) {
    return std::ranges::any_of(command.options, matches);
  });
}

void SetTarget(Target& target, const std::string& option, const std::string& value) {
  if (option == "--socket") target.socket = value;
  if (option == "--url") SetUrl(target, value);
  if (option == "--token-file") target.token = ReadToken(value);
  if (option == "--ca") target.ca_file = value;
  if (option == "--board") target.board = value;
}

Line Sort(std::span<const std::string> words) {
  Line line;
  line.target.patience = kPatience;
  for (size_t i = 0; i < words.size(); ++i) {
    if (!words[i].starts_with("-")) {
      line.plain.push_back(words[i]);
    } else if (TakesValue(words[i])) {
      if (i + 1 == words.size())
        line.wants_value_of = words[i];
      else
        SetTarget(line.target, words[i], words[i + 1]);
      ++i;
    }
  }
  return line;
}

std::vector<std::string> NamesOf(const std::vector<Thing>& things) {
  std::vector<std::string> names;
  for (const Thing& thing : things) {
    names.push_back(thing.id);
    if (!thing.name.empty()) names.push_back(thing.name);
  }
  return names;
}

std::vector<std::string> BoardNames(const Target& target) {
  Hub hub(target);
  const Reply boards = hub.Get("/api/boards");
  std::vector<std::string> names;
  for (const auto& board : ItemsAt(boards.data, "boards")) names.push_back(TextAt(board, "board"));
  return names;
}

std::vector<std::string> Things(const Target& target, bool with_cards, bool with_channels) {
  Hub hub(target);
  const Reply cards = hub.Get("/api/cards");
  std::vector<Thing> things;
  if (with_cards) things = CardsOf(cards.data);
  if (with_channels)
    for (Thing& channel : ChannelsOf(cards.data)) things.push_back(std::move(channel));
  return NamesOf(things);
}

std::vector<std::string> Codes(const Target& target) {
  Hub hub(target);
  return NamesOf(CodesOf(hub.Get("/api/cards").data));
}

std::vector<std::string> Meant(Meaning meaning, const Target& target) {
  switch (meaning) {
    case Meaning::kCard:
      return Things(target, true, false);
    case Meaning::kChannel:
      return Things(target, false, true);
    case Meaning::kCardOrChannel:
      return Things(target, true, true);
    case Meaning::kCode:
      return Codes(target);
    case Meaning::kOnOff:
      return {"on", "off"};
    case Meaning::kCardOrState: {
      std::vector<std::string> words = Things(target, true, false);
      words.insert(words.end(), {"on", "off"});
      return words;
    }
    case Meaning::kRole:
      return {"view", "use", "admin"};
    case Meaning::kText:
      break;
  }
  return {};
}

const Command* FindCommand(std::span<const std::string> plain, size_t& used) {
  for (const Command& command : Commands()) {
    const std::vector<std::string> names = Split(command.name, ' ');
    if (names.size() > plain.size() || !std::equal(names.begin(), names.end(), plain.begin()))
      continue;
    used = names.size();
    return &command;
  }
  return nullptr;
}

std::vector<std::string> NextNames(std::span<const std::string> plain) {
  std::vector<std::string> next;
  for (const Command& command : Commands()) {
    const std::vector<std::string> names = Split(command.name, ' ');
    if (names.size() <= plain.size() || !std::equal(plain.begin(), plain.end(), names.begin()))
      continue;
    if (next.empty() || next.back() != names[plain.size()]) next.push_back(names[plain.size()]);
  }
  return next;
}

void AddOptions(const std::vector<Option>& options, std::vector<std::string>& candidates) {
  for (const Option& option : options) candidates.push_back(Split(option.name, ',').back());
}

std::vector<std::string> Candidates(const Line& line, bool is_option) {
  if (line.wants_value_of == "--board") return BoardNames(line.target);
  if (!line.wants_value_of.empty()) return {};
  size_t used = 0;
  const Command* command = FindCommand(line.plain, used);
  if (is_option) {
    std::vector<std::string> options;
    AddOptions(CommonOptions(), options);
    if (command != nullptr) AddOptions(command->options, options);
    return options;
  }
  if (command == nullptr) return NextNames(line.plain);
  const std::vector<Argument>& arguments = command->arguments;
  if (arguments.empty()) return {};
  const size_t place = std::min(line.plain.size() - used, arguments.size() - 1);
  const Argument& argument = arguments[place];
  const bool is_behind = place < line.plain.size() - used && argument.count != Count::kAny;
  return is_behind ? std::vector<std::string>() : Meant(argument.meaning, line.target);
}

}  // namespace

void PrintCompletions(const std::vector<std::string>& words) {
  if (words.empty()) return;
  const std::string& start = words.back();
  try {
    const Line line = Sort(std::span(words).first(words.size() - 1));
    for (const std::string& candidate : Candidates(line, start.starts_with("-")))
      if (Lower(candidate).starts_with(Lower(start))) std::cout << Printable(candidate) << '\n';
  } catch (const Failure&) {
    // Nothing is offered; the command itself will say why.
  }
}

}  // namespace ctl
