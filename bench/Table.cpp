#include "Table.h"

#include <cstdio>

Table::Table(const std::string& path, const std::string& head) : file_(path) {
  std::printf("\n%s\n", head.c_str());
  file_ << "# " << head << '\n';
}

void Table::Add(const std::vector<double>& numbers) {
  std::string line;
  for (const double number : numbers) {
    char text[32];
    std::snprintf(text, sizeof text, "%12.1f", number);
    line += text;
  }
  std::printf("%s\n", line.c_str());
  file_ << line << std::endl;
}
