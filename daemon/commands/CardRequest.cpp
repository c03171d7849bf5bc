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

// A reply text's {name} and what stands for it.
struct Field {
  std::string_view name;
  std::string text;
};

using Fields = std::array<Field, 8>;

std::string Expand(std::string_view reply, const Fields& fields) {
  std::string text;
  while (!reply.empty()) {
    const std::size_t open = reply.find('{');
    text += reply.substr(0, open);
    if (open == std::string_view::npos) break;
    const std::size_t close = reply.find('}', open);
    const std::string_view name = reply.substr(open + 1, close - open - 1);
    for (const Field& field : fields)
      if (field.name == name) text += field.text;
    reply.remove_prefix(close + 1);
  }
  return text;
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
  const unsigned char first = BankText(line) == "B" ? request.reg_bank_b : request.reg;
  return static_cast<unsigned char>(first + Digit(ChannelText(line)));
}

}  // namespace

void RequestCard(QELM& qelm, const CardRequest& request, const std::string& line) {
  const std::string address_text = AddressText(line);
  const unsigned char address = Digit(address_text);
  PERIFCARD& card = qelm.Cards[address];

  const bool has_state = request.lcd_state != nullptr;
  const std::string state = has_state ? StateText(line, qelm.*request.lcd_state) : "";
  if (request.card_type != kAnyCard && LoadShared(card.CardType) != request.card_type) {
    qelm.ReplyOnCae(request.wrong_card);
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

  const std::string channel = ChannelText(line);
  const Fields fields{{
      {"x", address_text},
      {"X", Format("%X", address)},
      {"p", BankText(line)},
      {"c", channel},
      {"n", Format("%d", Digit(channel))},
      {"ss", state},
      {"vv", Format("%.2X", value)},
      {"got", Format("%.2X", LoadShared(card.QueryReply[kReplyValue]))},
  }};
  for (const char* reply : request.done)
    if (reply != nullptr) qelm.ReplyOnCae(Expand(reply, fields));
}
