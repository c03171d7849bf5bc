// The administration language: the table of its commands and what runs a line
// against it.
#include <array>
#include <string_view>

#include "bus/Frames.h"
#include "bus/PerifCard.h"
#include "commands/CardRequest.h"
#include "commands/DriverCommands.h"
#include "core/qelm.h"

namespace {

enum class Match {
  kNothing,    // an old word that is compared and has no meaning any more
  kWholeLine,  // the word and the separator, nothing else
  kContains,   // word and separator occur, in any place and order
  kWord,       // the word occurs; a separator is not needed
};

using DriverCommand = void (*)(QELM& qelm, const std::string& line);

struct CaeCommand {
  std::string_view word;
  Match match;
  DriverCommand run = nullptr;  // null: the command is the card request below
  CardRequest request{};
};

constexpr const char* kLcdOnly = "CIE: THIS COMMAND IS VALID FOR LCD CONTROL CARD ONLY";
constexpr const char* kAnalogueOnly = "CIE: THIS COMMAND IS VALID ON ANALOG INPUT CARD ONLY";
constexpr const char* kServoOnly = "CIE: THIS COMMAND IS VALID ON SERVO CONTROLLER CARD ONLY";
constexpr const char* kServoOnlyLegal = "CIE: THIS COMMAND IS LEGAL ON SERVO CONTROLLER CARD ONLY";
constexpr const char* kMotorOnly = "CIE: THIS COMMAND IS VALID ON DC MOTOR CONTROLLER CARD ONLY";

// Every row is tested against every line, in this order, and every row that fires
// runs: one line can carry several commands.
constexpr std::array<CaeCommand, 27> kCommands{{
    {"VALAMI", Match::kNothing},
    {"SPEED=", Match::kWord, SetSpeed},
    {"DISABLEPOLL", Match::kWholeLine, DisablePoll},
    {"DRVVER", Match::kWholeLine, ShowVersion},
    {"LCDSELFTEST:",
     Match::kContains,
     nullptr,
     {.card_type = kLcd,
      .operation = kRequestWrite,
      .reg = 0x01,
      .lcd_state = &QELM::SelfTestState,
      .done = {"CIA: SELFTEST STATE IS SET TO {ss} at address {x}"},
      .failed = "CIE: STATE WRITE ERROR",
      .wrong_card = kLcdOnly}},
    {"LCDINITLIGHT:",
     Match::kContains,
     nullptr,
     {.card_type = kLcd,
      .operation = kRequestWrite,
      .reg = 0x02,
      .lcd_state = &QELM::InitLightState,
      .done = {"CIA: INITLIGHT STATE IS SET TO {ss} at address {x}"},
      .failed = "CIE: STATE WRITE ERROR",
      .wrong_card = kLcdOnly}},
    {"REBOOT:",
     Match::kContains,
     nullptr,
     {.operation = kRequestWrite,
      .reg = 0xAB,
      .done = {"CIA: Card is REBOOTED", "RBT:0x{X}:OK"},
      .failed = "CIE: BUS WRITE ERROR"}},
    {"SETANMASK:",
     Match::kContains,
     nullptr,
     {.card_type = kAnalogueInput,
      .operation = kRequestWrite,
      .reg = 0x01,
      .has_value = true,
      .done = {"CIA: Channel MASK of the card is SET", "AMS:0x{X}:0x{vv}"},
      .failed = "CIE: MASK WRITE ERROR",
      .wrong_card = kAnalogueOnly}},
    {"GETANMASK:",
     Match::kContains,
     nullptr,
     {.card_type = kAnalogueInput,
      .operation = kRequestRead,
      .reg = 0x01,
      .done = {"CIA: MASK is GOT from card", "AMV:0x{X}:0x{got}"},
      .failed = "CIE: MASK READ ERROR",
      .wrong_card = kAnalogueOnly}},
    {"STOREANMASK:",
     Match::kContains,
     nullptr,
     {.card_type = kAnalogueInput,
      .operation = kRequestWrite,
      .reg = 0x02,
      .done = {"CIA: MASK IS STORED at address {x}"},
      .failed = "CIE: MASK STORE ERROR",
      .wrong_card = kAnalogueOnly}},
    {"STORESRVPOS:",
     Match::kContains,
     nullptr,
     {.card_type = kServo,
      .operation = kRequestWrite,
      .reg = 0x74,
      .done = {"CIA: POSITIONS ARE STORED at address {x}"},
      .failed = "CIE: POSITION STORING ERROR",
      .wrong_card = kServoOnly}},
    {"MOVESTRPOS:",
     Match::kContains,
     nullptr,
     {.card_type = kServo,
      .operation = kRequestWrite,
      .reg = 0x3F,
      .done = {"CIA: SERVOS ARE MOVED TO STORED POSITIONS at address {x}"},
      .failed = "CIE: POSITIONS MOVING ERROR",
      .wrong_card = kServoOnlyLegal}},
    // The servo card keeps its registers for reading and for writing apart.
    {"SETSC",
     Match::kContains,
     nullptr,
     {.card_type = kServo,
      .operation = kRequestWrite,
      .reg = 0xC0,
      .reg_bank_b = 0xD0,
      .has_channels = true,
      .has_value = true,
      .done = {"CIA: SERVO PARAM of the card is SET", "SPS:0x{X}:SC{p}{c}:0x{vv}"},
      .failed = "CIE: PARAM WRITE ERROR",
      .wrong_card = kServoOnly}},
    {"GETSC",
     Match::kContains,
     nullptr,
     {.card_type = kServo,
      .operation = kRequestRead,
      .reg = 0x21,
      .reg_bank_b = 0x27,
      .has_channels = true,
      .done = {"CIA: SERVO PARAM is GOT from card", "SPG:0x{X}:SC{p}{c}:0x{got}"},
      .failed = "CIE: PARAM READ ERROR",
      .wrong_card = kServoOnly}},
    // So does the motor card, and its reading starts at register 1.
    {"SETMSR",
     Match::kContains,
     nullptr,
     {.card_type = kMotor,
      .operation = kRequestWrite,
      .reg = 0xC0,
      .reg_bank_b = 0xC0,
      .has_channels = true,
      .has_value = true,
      .done = {"CIA: MSR value of the card is SET", "MPS:0x{X}:MSR{c}:0x{vv}"},
      .failed = "CIE: PARAM WRITE ERROR",
      .wrong_card = kMotorOnly}},
    {"GETMSR",
     Match::kContains,
     nullptr,
     {.card_type = kMotor,
      .operation = kRequestRead,
      .reg = 0x01,
      .reg_bank_b = 0x01,
      .has_channels = true,
      .done = {"CIA: MSR value is GOT from card", "MSR{n}:0x{X}:0x{got}"},
      .failed = "CIE: PARAM READ ERROR",
      .wrong_card = kMotorOnly}},
    {"STOREMSRS",
     Match::kContains,
     nullptr,
     {.card_type = kMotor,
      .operation = kRequestWrite,
      .reg = 0xCD,
      .done = {"CIA: MSR values are STORED at address {x}"},
      .failed = "CIE: MSR STORING ERROR",
      .wrong_card = kMotorOnly}},
    {"POLLON:", Match::kContains, PollCardOn},
    {"POLLOFF:", Match::kContains, PollCardOff},
    {"ENABLEPOLL", Match::kWholeLine, EnablePoll},
    {"POLLSTATE", Match::kWholeLine, ShowPollState},
    {"DISCOVER", Match::kWholeLine, ShowCards},
    {"FORCEDISCOVER", Match::kWholeLine, DiscoverCards},
    {"EXIT", Match::kWholeLine, CloseSession},
    {"GETLASTINPST:", Match::kContains, ReportInput},
    {"HELP", Match::kWholeLine, ShowHelp},
    {"IOEXAMPLES", Match::kWholeLine, ShowIoExamples},
}};

bool Fires(const CaeCommand& command, std::string_view line, const std::string& separator) {
  const bool contains = line.find(command.word) != std::string_view::npos;
  switch (command.match) {
    case Match::kWholeLine:
      return line == std::string(command.word) + separator;
    case Match::kContains:
      return contains && line.find(separator) != std::string_view::npos;
    case Match::kWord:
      return contains;
    case Match::kNothing:
      break;
  }
  return false;
}

}  // namespace

void QELM::ParseCaeLine(const std::string& line) {
  const INTERFACE_DESCRIPTOR& cae = Config.CaeDescriptor;
  bool matched = false;
  for (const CaeCommand& command : kCommands) {
    if (!Fires(command, line, cae.InpSeparator)) continue;
    matched = true;
    if (command.run != nullptr)
      command.run(*this, line);
    else
      RequestCard(*this, command.request, line);
  }
  // Clients take the unknown-command line and its prompt as one message.
  ReplyOnCae(matched ? ">" : "CIE: UNKNOWN COMMAND " + cae.OutSeparator + ">");
}
