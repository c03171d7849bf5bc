// A request to one card and its answer: what the console's commands that reach into a
// card share. What distinguishes them is data, a CardRequest each in CaeCommands.cpp.
#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "core/qelm.h"

// The kind of card that a request is for.
struct RequiredCard {
  int type = -1;                  // type code; -1: any card
  const char* refusal = nullptr;  // the reply where another kind is there
};

struct CardRequest {
  RequiredCard card{};
  unsigned char operation = 0;
  unsigned char reg = 0;                     // register, of channel 0 where there are channels
  unsigned char reg_bank_b = 0;              // the same in bank B, where there are banks
  bool has_channels = false;                 // the channel is added to the register
  bool has_value = false;                    // two digits behind "="
  unsigned char QELM::*lcd_state = nullptr;  // ON or OFF behind "=", remembered here
  std::array<const char*, 2> done{};         // replies once the card answered
  const char* failed = nullptr;              // the reply where it did not
};

// What a reply in `done` may hold, in braces.
inline constexpr auto kPlaceholders = std::to_array<std::string_view>({
    "x",    // the address as typed
    "X",    // the address as a number
    "p",    // the bank as typed
    "c",    // the channel as typed
    "n",    // the channel as a number
    "ss",   // ON or OFF
    "vv",   // the value sent
    "got",  // the value that the card answered
});
static_assert(kPlaceholders.size() == 8);

// Every {placeholder} of the reply is one of them.
constexpr bool HasOnlyPlaceholders(std::string_view reply) {
  constexpr auto kNone = std::string_view::npos;
  for (auto open = reply.find('{'); open != kNone; open = reply.find('{', open + 1)) {
    const std::size_t close = reply.find('}', open);
    if (close == kNone) return false;
    const std::string_view name = reply.substr(open + 1, close - open - 1);
    if (std::find(kPlaceholders.begin(), kPlaceholders.end(), name) == kPlaceholders.end())
      return false;
  }
  return true;
}

// Asks the card that the line names, waits a second and replies on CAE. Main thread.
void RequestCard(QELM& qelm, const CardRequest& request, const std::string& line);

// The command that makes one request.
template <const CardRequest& request>
void Ask(QELM& qelm, const std::string& line) {
  static_assert(
      std::all_of(request.done.begin(), request.done.end(),
                  [](const char* reply) { return reply == nullptr || HasOnlyPlaceholders(reply); }),
      "a reply holds a {placeholder} that does not exist");
  RequestCard(qelm, request, line);
}
