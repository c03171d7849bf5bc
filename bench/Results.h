// What was measured, by measure and system, a row of values for each round.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

using Rounds = std::vector<std::vector<double>>;

struct Measure {
  std::string name;
  std::string unit;
  std::map<std::string, Rounds> systems{};
};

// A promise: the value of a measure, or its ratio to another system, has a limit.
struct Bar {
  std::string text;
  double value;
  double limit;
  bool at_least = false;

  bool IsMet() const { return at_least ? value >= limit : value <= limit; }
};

double PercentileOf(std::vector<double> values, double percent);  // 50 is the median

class Results {
 public:
  // The system beside which the others are seen.
  explicit Results(std::string base) : base_(std::move(base)) {}

  void Add(const std::string& measure, const std::string& unit, const std::string& system,
           std::vector<double> round);

  // Of all rounds together.
  double Percentile(const std::string& measure, const std::string& system, double percent) const;
  // The median, over the rounds, of the ratios of the two medians.
  double Ratio(const std::string& measure, const std::string& system,
               const std::string& other) const;

  void PrintTable() const;
  void WriteJson(const std::string& path, const std::vector<Bar>& bars) const;

 private:
  const Rounds* Find(const std::string& measure, const std::string& system) const;

  std::string base_;
  std::vector<Measure> measures_;  // in the order in which they came
};

void PrintBars(const std::vector<Bar>& bars);
