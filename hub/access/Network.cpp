#include "access/Network.h"

#include <algorithm>
#include <boost/asio/ip/address.hpp>

namespace hub::access {

namespace {

namespace ip = boost::asio::ip;

constexpr std::string_view kLetters = "0123456789abcdefABCDEF:.";
constexpr size_t kNetworkBytes = 8;  // a /64

std::optional<ip::address> Parse(std::string_view text) {
  // A NUL would end the text for the system's own function.
  if (text.find_first_not_of(kLetters) != std::string_view::npos) return std::nullopt;
  boost::system::error_code error;
  const ip::address address = ip::make_address(text, error);
  if (error) return std::nullopt;
  if (address.is_v6() && address.to_v6().is_v4_mapped())
    return ip::make_address_v4(ip::v4_mapped, address.to_v6());
  return address;
}

}  // namespace

std::optional<std::string> ParseAddress(std::string_view text) {
  const auto address = Parse(text);
  if (!address) return std::nullopt;
  return address->to_string();
}

bool IsLoopback(std::string_view address) {
  const auto parsed = Parse(address);
  return parsed && parsed->is_loopback();
}

std::string NetworkOf(std::string_view address) {
  const auto parsed = Parse(address.substr(0, address.find('%')));
  if (!parsed) return std::string(address);
  if (parsed->is_v4()) return parsed->to_string();
  auto bytes = parsed->to_v6().to_bytes();
  std::fill(bytes.begin() + kNetworkBytes, bytes.end(), static_cast<unsigned char>(0));
  return ip::make_address_v6(bytes).to_string() + "/64";
}

}  // namespace hub::access
