#include "commands/CardRequest.h"

#include <cstdio>
#include <string_view>

#include "bus/PerifCard.h"
#include "bus/SerialInterface.h"
#include "commands/CaeLine.h"
#include "runtime/Pause.h"
#include "runtime/Queue.h"
#include "runtime/Shared.h"

namespace {

std::string Format(const char* format, unsigned number) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), format, number);
  return text.data();
}

// What stands for the placeholders, in their order.
using PlaceholderTexts = std::array<std::string, kPlaceholders.size()>;

PlaceholderTexts TextsOf(const std::string& line, const std::string& state, unsigned value,
                         unsigned answer) {
  const std::string address = AddressText(line);
  const std::string channel = ChannelText(line);
  return {
      address,
      Format("%X", Digit(address)),
      BankText(line),
      channel,
      Format("%d", Digit(channel)),
      state,
      Format("%.2X", value),
      Format("%.2X", answer),
  };
}

std::string Expand(std::string_view reply, const PlaceholderTexts& texts) {
  std::string expanded;
  while (!reply.empty()) {
    const std::size_t open = reply.find('{');
    expanded += reply.substr(0, open);
    if (open == std::string_view::npos) break;
    const std::size_t close = reply.find('}', open);
    const std::string_view name = reply.substr(open + 1, close - open - 1);
    for (std::size_t i = 0; i < texts.size(); ++i)
      if (kPlaceholders[i] == name) expanded += texts[i];
    reply.remove_prefix(close + 1);
  }
  return expanded;
}

// ON or OFF sets the remembered state; any other word sends what was set before.
std::string StateText(const std::string& line, unsigned char& state) {
  std::string text = ValueText(line, 2);
  if (text == "ON") state = 0xFF;
  if (text == "OF") {
    text = "OFF";
    state = 0x00;
  }
  return text;
}

unsigned char RegisterOf(const CardRequest& request, const std::string& line) {
  if (!request.has_channels) return request.reg;
  const bool is_bank_b = request.reg_bank_b != 0 && BankText(line) == "B";
  const unsigned char first = is_bank_b ? request.reg_bank_b : request.reg;
  return static_cast<unsigned char>(first + Digit(ChannelText(line)));
}

bool IsTakenBy(const RequiredCard& required, const PERIFCARD& card) {
  return required.type < 0 || LoadShared(card.CardType) == required.type;
}

}  // namespace

void RequestCard(QELM& qelm, const CardRequest& request, const std::string& line) {
  const unsigned char address = Digit(AddressText(line));
  PERIFCARD& card = qelm.Cards[address];

  const bool has_state = request.lcd_state != nullptr;
  const std::string state = has_state ? StateText(line, qelm.*request.lcd_state) : "";
  if (!IsTakenBy(request.card, card)) {
    qelm.ReplyOnCae(request.card.refusal);
    return;
  }

  QList payload = MakeQList({kFrameRequest, address, request.operation, RegisterOf(request, line)});
  const unsigned char value = has_state ? qelm.*request.lcd_state : TwoDigits(ValueText(line, 2));
  if (has_state || request.has_value) payload.push_back(static_cast<char>(value));

  card.ClearQueryReply();
  qelm.SerialInterface->CardQueues[kDriverQueue]->ToQueue(payload);
  sleepsec(1);
  if (Observe(card.QueryReply[0]) != kReplyQuery) {
    qelm.ReplyOnCae(request.failed);
    return;
  }

  const PlaceholderTexts texts =
      TextsOf(line, state, value, LoadShared(card.QueryReply[kReplyValue]));
  for (const char* reply : request.done)
    if (reply != nullptr) qelm.ReplyOnCae(Expand(reply, texts));
}
