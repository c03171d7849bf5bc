// Whole files, read and written.
#pragma once

#include <fstream>
#include <sstream>
#include <string>

// Empty where there is no such file, or no longer: those of /proc go with their process.
inline std::string ReadFile(const std::string& path) {
  std::ostringstream content;
  content << std::ifstream(path, std::ios::binary).rdbuf();
  return content.str();
}

inline void WriteFile(const std::string& path, const std::string& content) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
}
