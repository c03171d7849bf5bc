// The records that the configuration file is read into.
//
// QELM owns the configuration; each SOCKET_INTERFACE works on a copy of its own
// INTERFACE_DESCRIPTOR.
#pragma once

#include <string>

// The loop delay where no speed was configured, in microseconds.
inline constexpr int kDefaultDelay = 5000;

// One TCP interface.
struct INTERFACE_DESCRIPTOR {
  // Set once at start.
  std::string Name;  // "IO", "CAE" or "MON"
  int Port = 0;      // TCP port; 0 where none was configured

  // Shared between the interface's thread and the master loop.
  int State = 0;  // session state, never set from the file

  // Set once at start.
  std::string OutSeparator = "\r\n";  // ends each line sent to the client
  std::string InpSeparator = "\r\n";  // ends each line received from the client

  // Shared between the interface's thread and the master loop.
  int ThreadDelay = kDefaultDelay;  // pause of the interface's thread, microseconds
};

// The whole file.
struct CONFIG_DESCRIPTOR {
  INTERFACE_DESCRIPTOR IoDescriptor;
  INTERFACE_DESCRIPTOR CaeDescriptor;
  INTERFACE_DESCRIPTOR MonDescriptor;
  INTERFACE_DESCRIPTOR SpareDescriptor;  // never filled: docs/design/contract.md
  std::string LogFile;
  int LogLevel = 0;
  std::string Status = "NONE";      // "NONE", or the first error found
  int ThreadDelay = kDefaultDelay;  // pause of the master loop, microseconds
  bool EnablePoll = false;          // poll the input cards from the start
  bool AutoDiscover = false;        // discover the cards whenever the link comes up
};
