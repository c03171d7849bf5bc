#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "api/Handlers.h"
#include "api/Targets.h"
#include "api/Words.h"

namespace hub::api {

namespace {

Answer Send(House& house, Request request, protocol::IoCommand command, std::string note) {
  const unsigned address = RequireCard(house, request).address;
  auto sending = house.link.Send(std::move(command));
  const link::Outcome outcome = co_await std::move(sending);
  RequireAccepted(outcome, address);
  Note(house, request, "command", std::move(note));
  co_return Done(CardJson(house.bus, RequireCard(house, request)));
}

}  // namespace

Answer WriteDisplay(House& house, Request request) {
  const model::Card& card = RequireKind(house, request, model::Kind::kLcd);
  const auto row = static_cast<unsigned>(IntegerAt(request, "row"));
  const auto column = static_cast<unsigned>(IntegerAt(request, "column"));
  std::string text = TextAt(request, "text");
  RequireRoom({card.glass->RowCount(), card.glass->ColumnCount()}, row, column, text);
  std::string note = fmt::format("{}: text at row {}, column {}: {}", AddressText(card.address),
                                 row, column, text);
  protocol::IoCommand command =
      protocol::WriteText{static_cast<uint8_t>(card.address), static_cast<uint8_t>(column),
                          static_cast<uint8_t>(row), std::move(text)};
  return Send(house, std::move(request), std::move(command), std::move(note));
}

Answer ControlDisplay(House& house, Request request) {
  const model::Card& card = RequireKind(house, request, model::Kind::kLcd);
  const std::string word = TextAt(request, "do");
  const auto* const found = std::ranges::find(kControlWords, word);
  const auto control = static_cast<protocol::LcdControl>(found - kControlWords.begin());
  std::string note = fmt::format("{}: {}", AddressText(card.address), word);
  protocol::IoCommand command = protocol::ControlLcd{static_cast<uint8_t>(card.address), control};
  return Send(house, std::move(request), std::move(command), std::move(note));
}

}  // namespace hub::api
