// What each output was asked to be, kept as a document: {"5.0": 254}, blocks by card. After its
// own restart the hub knows by it what the cards are to show. One thread.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "protocol/IoCommand.h"

namespace hub {

class KeptOutputs {
 public:
  // A text that is none of ours, or from a later version, counts as nothing kept.
  explicit KeptOutputs(std::string_view document);

  // False where it was so before.
  bool Keep(const protocol::WriteBlock& block);
  bool Forget(uint8_t address, uint8_t block) { return values_.erase({address, block}) > 0; }

  std::vector<protocol::WriteBlock> Blocks() const;
  std::string Document() const;

 private:
  std::map<std::pair<uint8_t, uint8_t>, uint8_t> values_;  // by address and block
};

}  // namespace hub
