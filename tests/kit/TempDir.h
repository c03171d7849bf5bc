// A folder of the test's own, removed with everything in it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

class TempDir {
 public:
  TempDir() {
    std::string name = std::filesystem::temp_directory_path() / "qelm-test-XXXXXX";
    Folder = mkdtemp(name.data());
  }
  ~TempDir() { std::filesystem::remove_all(Folder); }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  std::string Path(const std::string& name) const { return Folder + "/" + name; }

 private:
  std::string Folder;
};
