// A line of numbers, on the screen and in the file that is drawn.
#pragma once

#include <fstream>
#include <string>
#include <vector>

class Table {
 public:
  Table(const std::string& path, const std::string& head);
  void Add(const std::vector<double>& numbers);

 private:
  std::ofstream file_;
};
