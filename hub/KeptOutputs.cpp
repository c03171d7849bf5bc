#include "KeptOutputs.h"

#include <boost/json.hpp>
#include <optional>

#include "protocol/Hex.h"

namespace hub {

namespace json = boost::json;

namespace {

// "E.5": a card's digit and a block's.
std::string Key(const std::pair<uint8_t, uint8_t>& place) {
  return {protocol::HexDigit(place.first), '.', protocol::HexDigit(place.second)};
}

std::optional<protocol::WriteBlock> Read(std::string_view key, const json::value& value) {
  if (key.size() != 3 || key[1] != '.') return std::nullopt;
  const auto address = protocol::ParseHexDigit(key[0]);
  const auto block = protocol::ParseHexDigit(key[2]);
  boost::system::error_code error;
  const auto byte = value.to_number<uint8_t>(error);
  if (!address || !block || error) return std::nullopt;
  return protocol::WriteBlock{*address, *block, byte};
}

}  // namespace

KeptOutputs::KeptOutputs(std::string_view document) {
  boost::system::error_code error;
  const json::value kept = json::parse({document.data(), document.size()}, error);
  const json::object* const members = error ? nullptr : kept.if_object();
  if (members == nullptr) return;
  for (const auto& member : *members)
    if (const auto block = Read({member.key().data(), member.key().size()}, member.value()))
      Keep(*block);
}

bool KeptOutputs::Keep(const protocol::WriteBlock& block) {
  const auto [place, is_new] = values_.try_emplace({block.address, block.block}, block.value);
  if (!is_new && place->second == block.value) return false;
  place->second = block.value;
  return true;
}

std::vector<protocol::WriteBlock> KeptOutputs::Blocks() const {
  std::vector<protocol::WriteBlock> blocks;
  for (const auto& [place, value] : values_) blocks.push_back({place.first, place.second, value});
  return blocks;
}

std::string KeptOutputs::Document() const {
  json::object document;
  for (const auto& [place, value] : values_) document[Key(place)] = value;
  return json::serialize(document);
}

}  // namespace hub
