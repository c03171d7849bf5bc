// stateful_tests [--seed N] [--actions N] [--script FILE] [--shrink SECONDS]
// Runs random actions, or those of a file. A run that fails is cut down to a short
// script, which is printed and can be given back.
#include <algorithm>
#include <fstream>
#include <iostream>
#include <sstream>

#include "Stateful.h"

namespace {

std::string Option(const std::string& name, const std::string& otherwise) {
  std::ifstream file("/proc/self/cmdline", std::ios::binary);
  std::string word, value;
  while (std::getline(file, word, '\0'))
    if (word == name && std::getline(file, value, '\0')) return value;
  return otherwise;
}

Script ReadScript(const std::string& path) {
  std::ifstream file(path);
  EXPECT_TRUE(file) << path;
  Script script;
  for (std::string line; std::getline(file, line);)
    if (!line.empty() && line[0] != '#') script.push_back(line);
  return script;
}

std::string LastLines(const std::string& text, std::size_t count) {
  std::size_t at = text.size();
  for (std::size_t line = 0; line <= count && at != std::string::npos && at > 0; ++line)
    at = text.rfind('\n', at - 1);
  return at == std::string::npos ? text : text.substr(at + 1);
}

}  // namespace

std::string Stateful::FirstProblem() const {
  std::ostringstream text;
  text << problems_->GetTestPartResult(0);
  text << "--- log\n" << LastLines(ReadFile(kLogFile), 30);
  if (bus) text << "--- bus\n" << LastLines(bus->Output(), 40);
  return text.str();
}

std::optional<Stateful::Failure> Stateful::Play(const Script& script) {
  problems_ = std::make_unique<testing::TestPartResultArray>();
  const testing::ScopedFakeTestPartResultReporter intercept(
      testing::ScopedFakeTestPartResultReporter::INTERCEPT_ALL_THREADS, problems_.get());
  std::size_t done = 0;
  try {
    Begin();
    while (done < script.size() && !HasFailed()) Do(script[done++]);
    if (!HasFailed()) CheckAll("");
  } catch (const std::exception& error) {
    ADD_FAILURE() << error.what();
  }
  std::optional<Failure> failure;
  if (HasFailed()) failure = {done, FirstProblem()};
  counts_["(exchanges timed out)"] = ExchangeTimeouts();
  counts_["(writes missing)"] = missing_writes_;
  counts_["(growth in KiB)"] = daemon.Running() ? daemon.ResidentKilobytes() - memory_ : 0;
  End();
  if (HasFailed() && !failure) failure = {done, FirstProblem()};
  return failure;
}

Script Stateful::Shrink(Script script, std::chrono::seconds bound) {
  const auto deadline = std::chrono::steady_clock::now() + bound;
  for (std::size_t part = script.size() / 2; part > 0; part /= 2) {
    for (std::size_t at = 0; at + part <= script.size();) {
      if (std::chrono::steady_clock::now() > deadline) return script;
      Script shorter = script;
      shorter.erase(shorter.begin() + static_cast<long>(at),
                    shorter.begin() + static_cast<long>(at + part));
      const auto failure = Play(shorter);
      if (failure) {
        shorter.resize(failure->actions);
        script = shorter;
      } else {
        at += part;
      }
    }
  }
  return script;
}

void Stateful::PrintCounts() const {
  for (const auto& [name, count] : counts_) std::cout << "  " << name << ": " << count << "\n";
}

class StatefulRun : public Stateful {};

TEST_F(StatefulRun, HoldsWhateverIsDone) {
  const std::string file = Option("--script", "");
  const auto seed = static_cast<unsigned>(std::stoul(Option("--seed", "1")));
  Script script =
      file.empty() ? Draw(seed, std::stoi(Option("--actions", "2000"))) : ReadScript(file);
  const auto failure = Play(script);
  PrintCounts();
  if (!failure) return;
  std::cout << "after " << failure->actions << " actions:\n" << failure->text << std::flush;
  script.resize(failure->actions);
  script = Shrink(script, std::chrono::seconds(std::stoi(Option("--shrink", "120"))));
  std::ostringstream lines;
  for (const std::string& line : script) lines << line << "\n";
  ADD_FAILURE() << failure->text << "--- script\n" << lines.str();
}
