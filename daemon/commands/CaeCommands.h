// The commands of the console as data: the table that the interpreter tests a line
// against, and what HELP says of them.
#pragma once

#include <span>
#include <string>
#include <string_view>

class QELM;

enum class Match {
  kNothing,    // never fires; see docs/design/contract.md
  kWholeLine,  // the line is the word and the separator, nothing else
  kContains,   // word and separator occur, in any place and order
  kWord,       // the word occurs; a separator is not needed
};

struct CaeCommand {
  std::string_view word;
  Match match;
  void (*run)(QELM& qelm, const std::string& line);
};

// Every row is tested against every line, in this order, and every row that fires
// runs: one line can carry several commands.
std::span<const CaeCommand> CaeCommands();

// The lines of HELP about these commands. Those about the IO language follow them.
std::span<const char* const> CaeHelp();
