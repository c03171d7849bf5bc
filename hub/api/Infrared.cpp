#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <utility>

#include "api/Handlers.h"

namespace hub::api {

namespace {

protocol::Bytes BytesAt(const Request& request) {
  std::string digits = TextAt(request, "bytes");
  std::ranges::transform(digits, digits.begin(),
                         [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  auto bytes = protocol::ParseHexBytes(digits);
  if (!bytes)
    throw DoesNotFit("bytes", "bytes takes hexadecimal digits, two for each byte, as 434F");
  if (bytes->size() > protocol::kMostInfraredBytes)
    throw DoesNotFit("bytes", fmt::format("a code of {} bytes; the daemon takes {}", bytes->size(),
                                          protocol::kMostInfraredBytes));
  return std::move(*bytes);
}

}  // namespace

Answer SendCode(House& house, Request request) {
  const unsigned address = RequireKind(house, request, model::Kind::kInfrared).address;
  protocol::Bytes bytes = BytesAt(request);
  std::string note = fmt::format("{}: code {}", AddressText(address), protocol::HexBytes(bytes));
  protocol::IoCommand command =
      protocol::SendInfrared{static_cast<uint8_t>(address), std::move(bytes)};
  auto sending = house.link.Send(std::move(command));
  const link::Outcome outcome = co_await std::move(sending);
  RequireAccepted(outcome, address);
  Note(house, request, "command", std::move(note));
  const ChannelAt at = RequireChannel(house, AddressText(address) + ".0");
  co_return Done(ChannelJson(house.bus, at.card, at.number));
}

}  // namespace hub::api
