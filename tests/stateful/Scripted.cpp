#include "Scripted.h"

#include <fstream>

std::vector<std::string> Words(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

std::string LastLines(const std::string& text, std::size_t count) {
  std::size_t at = text.size();
  for (std::size_t line = 0; line <= count && at != std::string::npos && at > 0; ++line)
    at = text.rfind('\n', at - 1);
  return at == std::string::npos ? text : text.substr(at + 1);
}

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
