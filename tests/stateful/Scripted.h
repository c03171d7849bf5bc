// Random actions on a site, one after the other, and after each what must hold. An action is
// a line of text, so that what failed can be cut down to a short script and given back to the
// program:
//   PROGRAM [--seed N] [--actions N] [--script FILE] [--shrink SECONDS]
#pragma once

#include <gtest/gtest-spi.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <iostream>
#include <map>
#include <memory>
#include <numeric>
#include <optional>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "SiteTest.h"

using Script = std::vector<std::string>;
using Random = std::mt19937;

std::vector<std::string> Words(const std::string& text);
std::string LastLines(const std::string& text, std::size_t count);

// What the command line says behind the name of the option.
std::string Option(const std::string& name, const std::string& otherwise);
Script ReadScript(const std::string& path);

inline std::size_t Below(Random& random, std::size_t bound) { return random() % bound; }

template <std::size_t N>
std::string OneOf(Random& random, const std::array<const char*, N>& choices) {
  return choices[Below(random, N)];
}

inline std::string Nothing(Random&) { return ""; }

// The test is `Self`, on a site of the kind `Site`. It has
//   static const std::vector<Action>& Actions();
//   void Begin();      a new site
//   void ExpectWell(); after each action
//   void CheckAll(const std::string&);
//   void End();        of the site; says what is wrong then
//   void NoteCounts(); of the run, before its end
//   std::string Told(); of what happened, where something is wrong
template <class Self, class Site>
class Scripted : public Site {
 protected:
  // A row of the table of actions; those of greater weight are drawn more often.
  struct Action {
    const char* words;
    int weight;
    std::string (*draw)(Random& random);  // its arguments
    void (Self::*run)(const std::string& arguments);
  };

  // As the command line says. A run that fails is cut down to a short script, which is printed.
  void RunScript(const std::string& actions) {
    const std::string file = Option("--script", "");
    const auto seed = static_cast<unsigned>(std::stoul(Option("--seed", "1")));
    Script script =
        file.empty() ? Draw(seed, std::stoi(Option("--actions", actions))) : ReadScript(file);
    const auto failure = Play(script);
    for (const auto& [name, count] : counts_) std::cout << "  " << name << ": " << count << "\n";
    if (!failure) return;
    std::cout << "after " << failure->actions << " actions:\n" << failure->text << std::flush;
    script.resize(failure->actions);
    script = Shrink(script, std::chrono::seconds(std::stoi(Option("--shrink", "120"))));
    std::ostringstream lines;
    for (const std::string& line : script) lines << line << "\n";
    ADD_FAILURE() << failure->text << "--- script\n" << lines.str();
  }

  // Stands in the report of a run that fails.
  void Note(const std::string& what) {
    const auto now =
        std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
    done_ << now.time_since_epoch().count() << " " << what << "\n";
  }

  bool HasFailed() const { return problems_->size() > 0; }

  std::map<std::string, long> counts_;  // of the run under way

 private:
  struct Failure {
    std::size_t actions;  // done until it was seen
    std::string text;
  };

  Self& self() { return static_cast<Self&>(*this); }

  static Script Draw(unsigned seed, int actions) {
    Random random(seed);
    const auto& table = Self::Actions();
    const int all = std::accumulate(table.begin(), table.end(), 0,
                                    [](int sum, const Action& row) { return sum + row.weight; });
    Script script;
    for (int i = 0; i < actions; ++i) {
      auto place = static_cast<int>(Below(random, static_cast<std::size_t>(all)));
      auto row = table.begin();
      for (; place >= row->weight; ++row) place -= row->weight;
      const std::string arguments = row->draw(random);
      script.push_back(row->words + (arguments.empty() ? "" : " " + arguments));
    }
    return script;
  }

  void Do(const std::string& line) {
    for (const Action& action : Self::Actions()) {
      const std::string words = action.words;
      if (line != words && !line.starts_with(words + " ")) continue;
      ++counts_[words];
      Note(line);
      (self().*action.run)(line.substr(std::min(line.size(), words.size() + 1)));
      self().ExpectWell();
      return;
    }
    ADD_FAILURE() << "no such action: " << line;
  }

  // Runs the actions on a new site.
  std::optional<Failure> Play(const Script& script) {
    problems_ = std::make_unique<testing::TestPartResultArray>();
    const testing::ScopedFakeTestPartResultReporter intercept(
        testing::ScopedFakeTestPartResultReporter::INTERCEPT_ALL_THREADS, problems_.get());
    std::size_t done = 0;
    done_.str("");
    try {
      self().Begin();
      while (done < script.size() && !HasFailed()) Do(script[done++]);
      if (!HasFailed()) self().CheckAll("");
    } catch (const std::exception& error) {
      ADD_FAILURE() << error.what();
    }
    std::optional<Failure> failure;
    if (HasFailed()) failure = {done, FirstProblem()};
    self().NoteCounts();
    self().End();
    if (HasFailed() && !failure) failure = {done, FirstProblem()};
    return failure;
  }

  // A shorter script that fails too, found by leaving out parts.
  Script Shrink(Script script, std::chrono::seconds bound) {
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

  std::string FirstProblem() {
    std::ostringstream text;
    text << problems_->GetTestPartResult(0);
    text << "--- log\n" << LastLines(ReadFile(kLogFile), 30);
    if (this->bus) text << "--- bus\n" << LastLines(this->bus->Output(), 200);
    text << "--- done\n" << LastLines(done_.str(), 200) << self().Told();
    return text.str();
  }

  std::unique_ptr<testing::TestPartResultArray> problems_;
  std::ostringstream done_;
};
