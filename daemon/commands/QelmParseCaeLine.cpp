// The interpreter of the console: a line against the table of its commands.
#include <string_view>

#include "commands/CaeCommands.h"
#include "core/qelm.h"

namespace {

bool Fires(const CaeCommand& command, std::string_view line, const std::string& separator) {
  const bool contains = line.find(command.word) != std::string_view::npos;
  switch (command.match) {
    case Match::kWholeLine:
      return line == std::string(command.word) + separator;
    case Match::kContains:
      return contains && line.find(separator) != std::string_view::npos;
    case Match::kWord:
      return contains;
    case Match::kNothing:
      break;
  }
  return false;
}

}  // namespace

void QELM::ParseCaeLine(const std::string& line) {
  const INTERFACE_DESCRIPTOR& cae = Config.CaeDescriptor;
  bool matched = false;
  for (const CaeCommand& command : CaeCommands()) {
    if (!Fires(command, line, cae.InpSeparator)) continue;
    matched = true;
    command.run(*this, line);
  }
  // After an unknown command, clients expect the error and the prompt in one message.
  ReplyOnCae(matched ? ">" : "CIE: UNKNOWN COMMAND " + cae.OutSeparator + ">");
}
