// The configuration file.
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <string>

#include "Finding.h"
#include "config/ConfigFile.h"

namespace {

constexpr std::string_view kUnreadable = "Unable to load config, or unable to parse XML file!";
constexpr std::string_view kPortError = " interface port number is less than 1025";

bool operator==(const INTERFACE_DESCRIPTOR& a, const INTERFACE_DESCRIPTOR& b) {
  return a.Name == b.Name && a.Port == b.Port && a.State == b.State &&
         a.OutSeparator == b.OutSeparator && a.InpSeparator == b.InpSeparator &&
         a.ThreadDelay == b.ThreadDelay;
}

bool operator==(const CONFIG_DESCRIPTOR& a, const CONFIG_DESCRIPTOR& b) {
  return a.IoDescriptor == b.IoDescriptor && a.CaeDescriptor == b.CaeDescriptor &&
         a.MonDescriptor == b.MonDescriptor && a.SpareDescriptor == b.SpareDescriptor &&
         a.LogFile == b.LogFile && a.LogLevel == b.LogLevel && a.Status == b.Status &&
         a.ThreadDelay == b.ThreadDelay && a.EnablePoll == b.EnablePoll &&
         a.AutoDiscover == b.AutoDiscover;
}

bool IsDecoded(const std::string& separator) {
  return separator.find("\\r") == std::string::npos && separator.find("\\n") == std::string::npos;
}

void CheckEntry(const INTERFACE_DESCRIPTOR& entry, const char* name) {
  Require(entry.Name == name || entry == INTERFACE_DESCRIPTOR(), "an entry has another's name");
  Require(entry.Port == 0 || entry.Port >= 1025, "a port is too low");
  Require(entry.State == 0, "a session is open");
  Require(IsDecoded(entry.InpSeparator) && IsDecoded(entry.OutSeparator), "an escape is left");
}

void Check(const CONFIG_DESCRIPTOR& config) {
  CheckEntry(config.IoDescriptor, "IO");
  CheckEntry(config.CaeDescriptor, "CAE");
  CheckEntry(config.MonDescriptor, "MON");
  Require(config.SpareDescriptor == INTERFACE_DESCRIPTOR(), "the spare entry is filled");
  if (config.Status == "NONE") return;
  if (config.Status == kUnreadable) {
    CONFIG_DESCRIPTOR defaults;
    defaults.Status = config.Status;
    Require(config == defaults, "an unreadable file sets something");
    return;
  }
  Require(config.Status.size() < 100 && config.Status.ends_with(kPortError), "an unknown status");
}

std::string NewFile() {
  return "/proc/self/fd/" + std::to_string(memfd_create("qelmconf.xml", MFD_CLOEXEC));
}

void Rewrite(const std::string& path, const std::uint8_t* data, std::size_t size) {
  FILE* file = std::fopen(path.c_str(), "we");
  Require(file != nullptr && std::fwrite(data, 1, size, file) == size, "no file to read from");
  std::fclose(file);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string path = NewFile();
  Rewrite(path, data, size);
  const CONFIG_DESCRIPTOR config = ReadConfigFile(path.c_str());
  Check(config);
  Require(config == ReadConfigFile(path.c_str()), "a second reading differs");
  return 0;
}
