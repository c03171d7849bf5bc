#include "settings/Rules.h"

#include <algorithm>

#include "access/Network.h"
#include "model/DeviceClasses.h"
#include "model/Text.h"

namespace hub::settings {

namespace {

constexpr size_t kLongestHost = 253;
constexpr size_t kLongestBoardName = 32;
constexpr size_t kLongestLabel = 64;  // bytes
constexpr size_t kLongestUnit = 16;

bool IsLetterOrDigit(char letter) {
  return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
         (letter >= '0' && letter <= '9');
}

bool IsPrintable(std::string_view text) { return !model::HasControls(text); }

bool IsHostName(std::string_view text) {
  const auto fits = [](char letter) {
    return IsLetterOrDigit(letter) || letter == '-' || letter == '.' || letter == '_';
  };
  return !text.empty() && text.size() <= kLongestHost && std::ranges::all_of(text, fits) &&
         !text.starts_with('.') && !text.ends_with('.');
}

bool IsAddress(std::string_view text) { return access::ParseAddress(text).has_value(); }
bool IsHost(std::string_view text) { return IsHostName(text) || IsAddress(text); }
bool IsPath(std::string_view text) { return text.starts_with('/') && IsPrintable(text); }
bool IsLabel(std::string_view text) {
  return !text.empty() && text.size() <= kLongestLabel && IsPrintable(text);
}
bool IsBoardName(std::string_view text) {
  return text.size() <= kLongestBoardName && std::ranges::all_of(text, [](char letter) {
           return IsLetterOrDigit(letter) || letter == '-' || letter == '_';
         });
}

template <bool (*fits)(std::string_view)>
bool OrEmpty(std::string_view text) {
  return text.empty() || fits(text);
}

}  // namespace

const Rule kAnyText{IsPrintable, "a text without control characters"};
const Rule kPath{IsPath, "a path from the root"};
const Rule kPathOrNone{OrEmpty<IsPath>, "a path from the root, or \"\" for none"};
const Rule kSecretPathOrNone{kPathOrNone.fits, kPathOrNone.takes, true};
const Rule kHost{IsHost, "a host's name or address, without a port"};
const Rule kHostOrNone{OrEmpty<IsHost>,
                       "a host's name or address, without a port, or \"\" for none"};
const Rule kHostName{IsHostName,
                     "a host's name, without scheme and port; other alphabets as \"xn--...\""};
const Rule kAddress{IsAddress, "an address such as \"192.168.1.2\", no name"};
const Rule kTextListen{OrEmpty<access::IsLoopback>,
                       R"("127.0.0.1", "::1", or "" for no text ports: these know no log-in)"};
const Rule kBoardName{IsBoardName, R"(up to 32 letters, digits, "-", "_"; "" for the host's)"};
const Rule kLabel{IsLabel, "1 to 64 bytes of text without control characters"};
const Rule kUnit{[](std::string_view text) {
                   return !text.empty() && text.size() <= kLongestUnit && IsPrintable(text);
                 },
                 "1 to 16 bytes of text without control characters"};
const Rule kOutputForm{model::IsOutputForm, R"("switch", "light" or "fan")"};
const Rule kDeviceClass{model::IsDeviceClass,
                        R"(a device class of Home Assistant, such as "door" or "temperature")"};

}  // namespace hub::settings
