// What a command is: its words, its arguments, its options, and the function that does it. The
// command line, its help and the completion are made of the table in Commands.cpp.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "base/Failure.h"
#include "base/Output.h"
#include "client/Hub.h"
#include "client/Refusal.h"

namespace ctl {

// What stands in an argument; completion offers it.
enum class Meaning { kText, kCard, kChannel, kCardOrChannel, kCardOrState, kCode, kOnOff, kRole };

enum class Count { kOne, kOptional, kAny };

struct Argument {
  std::string name;  // as the help shows it: "CHANNEL"
  std::string help;
  Meaning meaning = Meaning::kText;
  Count count = Count::kOne;
};

struct Option {
  std::string name;   // "--pulse", "-f,--follow"
  std::string value;  // "TIME"; empty: a flag
  std::string help;
};

// What was given on the command line, by the names above.
class Words {
 public:
  void Set(const std::string& name, std::vector<std::string> values) {
    values_[name] = std::move(values);
  }

  bool Has(const std::string& name) const { return values_.contains(name); }
  // The first; empty where none was given.
  std::string operator[](const std::string& name) const;
  std::vector<std::string> All(const std::string& name) const;

 private:
  std::map<std::string, std::vector<std::string>> values_;
};

// What every command works with.
struct Session {
  Hub& hub;
  bool json;
  Paint paint;

  // Prints what came where JSON is asked for, and says whether it was.
  bool PrintedJson(const Reply& reply) const;
  // Says why on standard error, and prints the hub's own words where JSON is asked for; gives the
  // status.
  int Tell(const Refusal& refusal) const;
  // Writes a text for people.
  void Print(const std::string& text) const;
};

// Returns the exit status; throws Failure.
using Run = int (*)(Session& session, const Words& words);

struct Command {
  std::string name;  // "set", "account add"
  std::string help;
  std::vector<Argument> arguments;
  std::vector<Option> options;
  Run run;
  bool has_boards = false;  // may be for another board, by --board
};

const std::vector<Command>& Commands();

}  // namespace ctl
