#include <csignal>
#include <iostream>
#include <string_view>

#include "CommandLine.h"
#include "base/Text.h"
#include "client/Refusal.h"
#include "commands/Complete.h"

using namespace ctl;

namespace {

int RunCommand(const Invocation& invocation) {
  Hub hub(invocation.target);
  Session session{.hub = hub, .json = invocation.json, .paint = Paint(WantsColours())};
  try {
    return invocation.command->run(session, invocation.words);
  } catch (const Refusal& refusal) {
    return session.Tell(refusal);
  } catch (const Failure& failure) {
    if (*failure.what() != '\0') std::cerr << "qelmctl: " << Printable(failure.what()) << '\n';
    return failure.Status();
  }
}

}  // namespace

int main(int argc, char** argv) {
  // A reader that has gone is noticed where something is written.
  std::signal(SIGPIPE, SIG_IGN);
  if (argc > 1 && std::string_view(argv[1]) == kCompleteWord) {
    PrintCompletions({argv + 2, argv + argc});
    return 0;
  }
  int status = 0;
  const auto invocation = ReadCommandLine(argc, argv, status);
  return invocation ? RunCommand(*invocation) : status;
}
