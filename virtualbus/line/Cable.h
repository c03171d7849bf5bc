// The USB cable: while it is plugged, the device link exists and the line carries frames.
// A link that this object did not make is never overwritten and never removed.
#pragma once

#include <string>

#include "base/Problem.h"
#include "journal/Journal.h"
#include "line/Wire.h"

namespace virtualbus {

class Cable {
 public:
  Cable(Wire& wire, Journal& journal) : wire_(wire), journal_(journal) {}
  ~Cable();
  Cable(const Cable&) = delete;
  Cable& operator=(const Cable&) = delete;

  void SetLink(std::string path) { link_ = std::move(path); }
  Problem Plug();
  Problem Pull();
  Problem PullOrPlug() { return plugged_ ? Pull() : Plug(); }
  bool IsPlugged() const { return plugged_; }
  std::string Where() const;  // "/dev/ttyUSB0 -> /dev/pts/3"

 private:
  bool LinkIsOurs() const;
  void RemoveLink();

  Wire& wire_;
  Journal& journal_;
  std::string link_;
  bool plugged_ = false;
};

}  // namespace virtualbus
