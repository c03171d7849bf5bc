// What /proc, and it itself, say about a process.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

// The folder of the process there, with this name behind it.
std::string ProcPath(pid_t pid, const std::string& name = "");

// The number behind a word of a status file: "VmRSS:".
long StatusNumber(const std::string& path, const std::string& word);

int ThreadsOf(pid_t pid);
long ResidentKilobytesOf(pid_t pid);
std::vector<pid_t> ChildrenOf(pid_t pid);
std::vector<std::string> DescriptorsOf(pid_t pid);  // what each open one points at

// A sanitizer's report is in what a program wrote on its standard error.
bool HasSanitizerReport(const std::string& errors);
