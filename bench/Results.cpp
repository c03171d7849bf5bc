#include "Results.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>

namespace {

constexpr char kOurs[] = "qelm";
constexpr std::size_t kManyValues = 20;  // fewer have no 95th percentile

std::vector<double> Together(const Rounds& rounds) {
  std::vector<double> all;
  for (const auto& round : rounds) all.insert(all.end(), round.begin(), round.end());
  return all;
}

// A ratio that makes no sense stays empty, and JSON has no word for it.
std::string Number(double value, const char* format, const char* nothing) {
  char text[32];
  std::snprintf(text, sizeof text, format, value);
  return std::isfinite(value) ? text : nothing;
}

std::string Text(double value) {
  return Number(value, std::abs(value) < 100 ? "%.1f" : "%.0f", "-");
}

// What a system does is compared; what it uses meanwhile is only listed.
bool IsCompared(const Measure& m) { return m.unit == "us" || m.unit == "/s"; }

std::string Json(double value) { return Number(value, "%.3f", "null"); }

}  // namespace

double PercentileOf(std::vector<double> values, double percent) {
  if (values.empty()) return NAN;
  std::sort(values.begin(), values.end());
  return values[static_cast<std::size_t>(static_cast<double>(values.size() - 1) * percent / 100)];
}

void Results::Add(const std::string& measure, const std::string& unit, const std::string& system,
                  std::vector<double> round) {
  auto found = std::find_if(measures_.begin(), measures_.end(),
                            [&](const Measure& m) { return m.name == measure; });
  if (found == measures_.end()) found = measures_.insert(found, {measure, unit});
  found->systems[system].push_back(std::move(round));
}

const Rounds* Results::Find(const std::string& measure, const std::string& system) const {
  for (const Measure& m : measures_)
    if (m.name == measure && m.systems.contains(system)) return &m.systems.at(system);
  return nullptr;
}

double Results::Percentile(const std::string& measure, const std::string& system,
                           double percent) const {
  const Rounds* rounds = Find(measure, system);
  return rounds == nullptr ? NAN : PercentileOf(Together(*rounds), percent);
}

double Results::Ratio(const std::string& measure, const std::string& system,
                      const std::string& other) const {
  const Rounds* ours = Find(measure, system);
  const Rounds* theirs = Find(measure, other);
  if (ours == nullptr || theirs == nullptr) return NAN;
  std::vector<double> ratios;
  for (std::size_t i = 0; i < std::min(ours->size(), theirs->size()); ++i)
    ratios.push_back(PercentileOf((*ours)[i], 50) / PercentileOf((*theirs)[i], 50));
  return PercentileOf(ratios, 50);
}

void Results::PrintTable() const {
  for (const Measure& m : measures_) {
    std::printf("\n%-42s %9s %9s %9s", (m.name + " [" + m.unit + "]").c_str(), "median", "p95",
                "p99");
    if (IsCompared(m)) std::printf(" %9s %9s", ("to " + base_).c_str(), "qelm to");
    for (const auto& [system, rounds] : m.systems) {
      std::printf("\n  %-40s %9s", system.c_str(), Text(Percentile(m.name, system, 50)).c_str());
      if (Together(rounds).size() >= kManyValues)
        std::printf(" %9s %9s", Text(Percentile(m.name, system, 95)).c_str(),
                    Text(Percentile(m.name, system, 99)).c_str());
      else
        std::printf(" %9s %9s", "", "");
      if (IsCompared(m))
        std::printf(" %9s %9s", Number(Ratio(m.name, system, base_), "%.2f", "").c_str(),
                    Number(Ratio(m.name, kOurs, system), "%.2f", "").c_str());
    }
    std::printf("\n");
  }
}

void Results::WriteJson(const std::string& path, const std::vector<Bar>& bars) const {
  std::ofstream file(path);
  file << "{\"measures\": [";
  const char* comma = "\n";
  for (const Measure& m : measures_) {
    for (const auto& [system, rounds] : m.systems) {
      file << comma << "  {\"measure\": \"" << m.name << "\", \"unit\": \"" << m.unit
           << "\", \"system\": \"" << system << '"';
      for (const int percent : {50, 95, 99})
        file << ", \"p" << percent << "\": " << Json(Percentile(m.name, system, percent));
      file << ", \"to_" << base_ << "\": " << Json(Ratio(m.name, system, base_))
           << ", \"qelm_to\": " << Json(Ratio(m.name, kOurs, system)) << '}';
      comma = ",\n";
    }
  }
  file << "\n], \"bars\": [";
  comma = "\n";
  for (const Bar& bar : bars) {
    file << comma << "  {\"bar\": \"" << bar.text << "\", \"value\": " << Json(bar.value)
         << ", \"limit\": " << Json(bar.limit) << ", \"met\": " << (bar.IsMet() ? "true" : "false")
         << '}';
    comma = ",\n";
  }
  file << "\n]}\n";
}

void PrintBars(const std::vector<Bar>& bars) {
  std::printf("\n%-62s %9s  %15s\n", "bar", "measured", "limit");
  for (const Bar& bar : bars)
    std::printf("%-62s %9.2f  %s %6.2f  %s\n", bar.text.c_str(), bar.value,
                bar.at_least ? "at least" : "at most ", bar.limit, bar.IsMet() ? "met" : "missed");
}
