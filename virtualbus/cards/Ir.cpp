#include "cards/Ir.h"

namespace virtualbus {

void Ir::PowerUp() { sent_.clear(); }

// The first byte says how many follow.
bool Ir::Write(std::span<const uint8_t> data) {
  if (data.empty() || data[0] != data.size() - 1) return false;
  sent_.emplace_back(data.begin() + 1, data.end());
  if (sent_.size() > kKept) sent_.pop_front();
  return true;
}

std::vector<std::string> Ir::Show() const {
  std::vector<std::string> lines;
  for (const Bytes& bytes : sent_) lines.push_back("sent " + Hex(bytes));
  return lines;
}

}  // namespace virtualbus
