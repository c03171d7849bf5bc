// A request to one card and its answer: what the administration commands that
// reach into a card share.
#pragma once

#include <array>
#include <string>

#include "core/qelm.h"

// The card type of a request that any card takes.
inline constexpr int kAnyCard = -1;

// What distinguishes one request from another. The replies may hold {x} for the
// address as typed and {X} as a number, {p} and {c} for bank and channel as typed and
// {n} for the channel as a number, {ss} for ON or OFF, {vv} for the value sent and
// {got} for the value the card answered.
struct CardRequest {
  int card_type = kAnyCard;
  unsigned char operation = 0;
  unsigned char reg = 0;                     // register, of channel 0 where there are channels
  unsigned char reg_bank_b = 0;              // the same in bank B
  bool has_channels = false;                 // the channel is added to the register
  bool has_value = false;                    // two digits behind "="
  unsigned char QELM::*lcd_state = nullptr;  // ON or OFF behind "=", remembered here
  std::array<const char*, 2> done{};         // replies once the card answered
  const char* failed = nullptr;              // the reply where it did not
  const char* wrong_card = nullptr;          // the reply where another kind is there
};

// Asks the card that the line names, waits a second and replies on CAE. Main thread.
void RequestCard(QELM& qelm, const CardRequest& request, const std::string& line);
