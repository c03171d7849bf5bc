// Reads a configuration that the test writes down.
#pragma once

#include <string>

#include "config/ConfigFile.h"
#include "kit/TempDir.h"

// The whole text of the file.
inline CONFIG_DESCRIPTOR ReadText(const std::string& text) {
  const TempDir dir;
  return ReadConfigFile(dir.Write("conf.xml", text).c_str());
}

// The elements inside the document element.
inline CONFIG_DESCRIPTOR ReadElements(const std::string& elements) {
  return ReadText("<?xml version=\"1.0\"?>\n<QELMConfig>\n" + elements + "\n</QELMConfig>\n");
}

inline CONFIG_DESCRIPTOR ReadInterfaces(const std::string& entries) {
  return ReadElements("<Interfaces>" + entries + "</Interfaces>");
}
