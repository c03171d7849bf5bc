#include "protocol/InputReport.h"

#include "protocol/Hex.h"

namespace hub::protocol {

std::optional<InputReport> ParseInputReport(std::string_view line) {
  if (line.size() != 7 || line[0] != 'a' || line[2] != 'b' || line[4] != 'd') return std::nullopt;
  const auto address = ParseHexDigit(line[1]);
  const auto block = ParseHexDigit(line[3]);
  const auto value = ParseHexByte(line.substr(5));
  if (!address || !block || !value) return std::nullopt;
  return InputReport{*address, *block, *value};
}

}  // namespace hub::protocol
