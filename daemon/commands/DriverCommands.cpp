#include "commands/DriverCommands.h"

#include <array>
#include <cstdio>
#include <span>

#include "bus/PerifCard.h"
#include "bus/SerialInterface.h"
#include "commands/CaeCommands.h"
#include "commands/CaeLine.h"
#include "commands/IoHelp.h"
#include "config/Speed.h"
#include "net/SocketInterface.h"
#include "runtime/Pause.h"
#include "runtime/Queue.h"
#include "runtime/Shared.h"
#include "runtime/Values.h"

namespace {

void SetGlobalPolling(QELM& qelm, unsigned char enabled) {
  StoreShared(qelm.SerialInterface->EnablePoll, enabled);
}

void ShowGlobalPolling(QELM& qelm) {
  const bool enabled = LoadShared(qelm.SerialInterface->EnablePoll) != 0;
  qelm.ReplyOnCae(enabled ? "CIA: GLOBAL POLLING IS ENABLED" : "CIA: GLOBAL POLLING IS DISABLED");
}

void PollCard(QELM& qelm, const std::string& line, unsigned char enabled) {
  const std::string address = AddressText(line);
  PERIFCARD& card = qelm.Cards[Digit(address)];
  if (LoadShared(card.IoKind) != kInputCard) {
    qelm.ReplyOnCae("CIE: THIS COMMAND IS VALID ON INPUT CARDS");
    return;
  }
  StoreShared(card.PollEnabled, enabled);
  const char* reply =
      enabled != 0 ? "CIA: POLLON is OK at address " : "CIA: POLLOFF is OK at address ";
  qelm.ReplyOnCae(reply + address);
}

// "PTI:0x3:ON", "DTI:0xA:EMPTY"
void ShowRecord(QELM& qelm, const char* kind, int address, const std::string& text) {
  std::array<char, 80> record{};
  std::snprintf(record.data(), record.size(), "%s:0x%X:%s", kind, static_cast<unsigned>(address),
                text.c_str());
  qelm.ReplyOnCae(record.data());
}

void ShowTable(QELM& qelm, const char* title) {
  qelm.ReplyOnCae(title);
  for (int address = 0; address < kCardCount; ++address)
    ShowRecord(qelm, "DTI", address, qelm.Cards[address].Name());
}

void ShowTexts(QELM& qelm, std::span<const char* const> texts) {
  for (const char* text : texts) qelm.ReplyOnCae(text);
}

// Input cards whose last state can be reported, and their highest block.
struct InputCard {
  unsigned char type;
  unsigned char last_block;
};

constexpr auto kReportable = std::to_array<InputCard>({
    {kDigitalInput, 1},
    {kAnalogueInput, 5},
});
static_assert(kReportable.size() == 2);

const InputCard* FindReportable(unsigned char type) {
  for (const InputCard& row : kReportable)
    if (row.type == type) return &row;
  return nullptr;
}

}  // namespace

void SetSpeed(QELM& qelm, const std::string& line) {
  const std::string text = SpeedText(line, qelm.Config.CaeDescriptor.InpSeparator);
  const long percent = ATOL(text);
  if (percent <= 0 || percent > 100) {
    qelm.ReplyOnCae("CIE: Parameter is out of range (1..100)");
    return;
  }
  const int delay = SpeedDelay(percent);
  qelm.Config.ThreadDelay = delay;
  StoreShared(qelm.SerialInterface->ThreadDelay, delay);
  for (SOCKET_INTERFACE* interface : {qelm.CaeInterface, qelm.IoInterface, qelm.MonInterface})
    StoreShared(interface->Descriptor.ThreadDelay, delay);
  qelm.ReplyOnCae("CIA: SPEED IS SET to " + text + "%");
}

void ShowVersion(QELM& qelm, const std::string& /*line*/) {
  qelm.ReplyOnCae("CIA: DRIVER VERSION 1.20");
}

void DisablePoll(QELM& qelm, const std::string& /*line*/) {
  SetGlobalPolling(qelm, 0);
  ShowGlobalPolling(qelm);
}

void EnablePoll(QELM& qelm, const std::string& /*line*/) {
  SetGlobalPolling(qelm, 1);
  ShowGlobalPolling(qelm);
}

void PollCardOn(QELM& qelm, const std::string& line) { PollCard(qelm, line, 1); }

void PollCardOff(QELM& qelm, const std::string& line) { PollCard(qelm, line, 0); }

void ShowPollState(QELM& qelm, const std::string& /*line*/) {
  ShowGlobalPolling(qelm);
  for (int address = 0; address < kCardCount; ++address) {
    const PERIFCARD& card = qelm.Cards[address];
    if (LoadShared(card.IoKind) == kInputCard)
      ShowRecord(qelm, "PTI", address, LoadShared(card.PollEnabled) != 0 ? "ON" : "OFF");
  }
}

void ShowCards(QELM& qelm, const std::string& /*line*/) { ShowTable(qelm, "DISCOVER LIST:"); }

void DiscoverCards(QELM& qelm, const std::string& /*line*/) {
  const unsigned char was_polling = LoadShared(qelm.SerialInterface->EnablePoll);
  SetGlobalPolling(qelm, 0);
  sleepsec(1);  // lets a poll under way finish
  for (int address = 0; address < kCardCount; ++address) qelm.Cards[address].clearPerifCard();
  qelm.SerialInterface->CardQueues[kDriverQueue]->ToQueue(MakeQList({kFrameDiscovery}));
  sleepsec(1);  // lets the serial thread fill the table
  ShowTable(qelm, "FORCED DISCOVER LIST:");
  SetGlobalPolling(qelm, was_polling);
}

void CloseSession(QELM& qelm, const std::string& /*line*/) {
  qelm.ReplyOnCae("QELM: Bye Bye...");
  sleepsec(1);  // lets the interface write the farewell
  qelm.CaeInterface->CloseByCommand();
}

// The report takes the way of an input change, by SerialQueue to the IO client and MON.
void ReportInput(QELM& qelm, const std::string& line) {
  const unsigned address = Digit(AddressText(line));
  const unsigned block = Digit(ValueText(line, 1));
  const PERIFCARD& card = qelm.Cards[address];
  const InputCard* input = FindReportable(LoadShared(card.CardType));
  if (input == nullptr) {
    qelm.ReplyOnCae("CIE: THIS COMMAND IS VALID ON ANALOG OR DIGITAL INPUT CARD ONLY");
    return;
  }
  if (block > input->last_block) {
    qelm.ReplyOnCae("CIE: INVALID BLOCK NUMBER");
    return;
  }
  qelm.SerialQueue->ToQueue(card.Report(address, block));
  qelm.ReplyOnCae("CIA: LAST INPUT STATE SENT ON IO INTERFACE");
}

void ShowHelp(QELM& qelm, const std::string& /*line*/) {
  ShowTexts(qelm, CaeHelp());
  ShowTexts(qelm, kIoHelp);
}

void ShowIoExamples(QELM& qelm, const std::string& /*line*/) { ShowTexts(qelm, kIoExamples); }
