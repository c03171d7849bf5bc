// A folder of the test's own, removed with everything in it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#include "kit/Files.h"

class TempDir {
 public:
  TempDir() : folder_(std::filesystem::temp_directory_path() / "qelm-test-XXXXXX") {
    if (mkdtemp(folder_.data()) == nullptr)
      throw std::system_error(errno, std::generic_category(), folder_);
  }
  ~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  std::string Path(const std::string& name) const { return folder_ + "/" + name; }

  // Writes a file, and gives its path.
  std::string Write(const std::string& name, const std::string& text) const {
    WriteFile(Path(name), text);
    return Path(name);
  }

 private:
  std::string folder_;
};
