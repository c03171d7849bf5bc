#include "commands/CaeCommands.h"

#include <array>

#include "bus/Frames.h"
#include "commands/CardRequest.h"
#include "commands/DriverCommands.h"

namespace {

// The requests, grouped by the card they are for. Any card:
constexpr CardRequest kReboot{
    .operation = kRequestWrite,
    .reg = kRegReboot,
    .done = {"CIA: Card is REBOOTED", "RBT:0x{X}:OK"},
    .failed = "CIE: BUS WRITE ERROR",
};

// Analogue input cards:
constexpr RequiredCard kAnalogueCard{kAnalogueInput,
                                     "CIE: THIS COMMAND IS VALID ON ANALOG INPUT CARD ONLY"};

constexpr CardRequest kSetMask{
    .card = kAnalogueCard,
    .operation = kRequestWrite,
    .reg = kRegAnalogueMask,
    .has_value = true,
    .done = {"CIA: Channel MASK of the card is SET", "AMS:0x{X}:0x{vv}"},
    .failed = "CIE: MASK WRITE ERROR",
};

constexpr CardRequest kGetMask{
    .card = kAnalogueCard,
    .operation = kRequestRead,
    .reg = kRegAnalogueMask,
    .done = {"CIA: MASK is GOT from card", "AMV:0x{X}:0x{got}"},
    .failed = "CIE: MASK READ ERROR",
};

constexpr CardRequest kStoreMask{
    .card = kAnalogueCard,
    .operation = kRequestWrite,
    .reg = kRegAnalogueStore,
    .done = {"CIA: MASK IS STORED at address {x}"},
    .failed = "CIE: MASK STORE ERROR",
};

// LCD cards:
constexpr RequiredCard kLcdCard{kLcd, "CIE: THIS COMMAND IS VALID FOR LCD CONTROL CARD ONLY"};

constexpr CardRequest kSetSelfTest{
    .card = kLcdCard,
    .operation = kRequestWrite,
    .reg = kRegLcdSelfTest,
    .lcd_state = &QELM::SelfTestState,
    .done = {"CIA: SELFTEST STATE IS SET TO {ss} at address {x}"},
    .failed = "CIE: STATE WRITE ERROR",
};

constexpr CardRequest kSetInitLight{
    .card = kLcdCard,
    .operation = kRequestWrite,
    .reg = kRegLcdInitLight,
    .lcd_state = &QELM::InitLightState,
    .done = {"CIA: INITLIGHT STATE IS SET TO {ss} at address {x}"},
    .failed = "CIE: STATE WRITE ERROR",
};

// RC servo controllers:
constexpr RequiredCard kServoCard{kServo,
                                  "CIE: THIS COMMAND IS VALID ON SERVO CONTROLLER CARD ONLY"};
// MOVESTRPOS words its refusal in its own way.
constexpr RequiredCard kLegalServoCard{kServo,
                                       "CIE: THIS COMMAND IS LEGAL ON SERVO CONTROLLER CARD ONLY"};

constexpr CardRequest kStorePositions{
    .card = kServoCard,
    .operation = kRequestWrite,
    .reg = kRegServoStore,
    .done = {"CIA: POSITIONS ARE STORED at address {x}"},
    .failed = "CIE: POSITION STORING ERROR",
};

constexpr CardRequest kMoveServos{
    .card = kLegalServoCard,
    .operation = kRequestWrite,
    .reg = kRegServoMove,
    .done = {"CIA: SERVOS ARE MOVED TO STORED POSITIONS at address {x}"},
    .failed = "CIE: POSITIONS MOVING ERROR",
};

constexpr CardRequest kSetEnd{
    .card = kServoCard,
    .operation = kRequestWrite,
    .reg = kRegServoSetEndA,
    .reg_bank_b = kRegServoSetEndB,
    .has_channels = true,
    .has_value = true,
    .done = {"CIA: SERVO PARAM of the card is SET", "SPS:0x{X}:SC{p}{c}:0x{vv}"},
    .failed = "CIE: PARAM WRITE ERROR",
};

constexpr CardRequest kGetEnd{
    .card = kServoCard,
    .operation = kRequestRead,
    .reg = kRegServoGetEndA,
    .reg_bank_b = kRegServoGetEndB,
    .has_channels = true,
    .done = {"CIA: SERVO PARAM is GOT from card", "SPG:0x{X}:SC{p}{c}:0x{got}"},
    .failed = "CIE: PARAM READ ERROR",
};

// DC motor controllers:
constexpr RequiredCard kMotorCard{kMotor,
                                  "CIE: THIS COMMAND IS VALID ON DC MOTOR CONTROLLER CARD ONLY"};

constexpr CardRequest kSetRange{
    .card = kMotorCard,
    .operation = kRequestWrite,
    .reg = kRegMotorSetRange,
    .has_channels = true,
    .has_value = true,
    .done = {"CIA: MSR value of the card is SET", "MPS:0x{X}:MSR{c}:0x{vv}"},
    .failed = "CIE: PARAM WRITE ERROR",
};

constexpr CardRequest kGetRange{
    .card = kMotorCard,
    .operation = kRequestRead,
    .reg = kRegMotorGetRange,
    .has_channels = true,
    .done = {"CIA: MSR value is GOT from card", "MSR{n}:0x{X}:0x{got}"},
    .failed = "CIE: PARAM READ ERROR",
};

constexpr CardRequest kStoreRanges{
    .card = kMotorCard,
    .operation = kRequestWrite,
    .reg = kRegMotorStore,
    .done = {"CIA: MSR values are STORED at address {x}"},
    .failed = "CIE: MSR STORING ERROR",
};

// A line is tested in this order, on which programs rely: a new row goes to the end. The
// row that never fires stays, see docs/design/contract.md.
// clang-format off
constexpr auto kCommands = std::to_array<CaeCommand>({
    // word           fires on            then
    {"VALAMI",        Match::kNothing,    nullptr},
    {"SPEED=",        Match::kWord,       SetSpeed},
    {"DISABLEPOLL",   Match::kWholeLine,  DisablePoll},
    {"DRVVER",        Match::kWholeLine,  ShowVersion},
    {"LCDSELFTEST:",  Match::kContains,   Ask<kSetSelfTest>},
    {"LCDINITLIGHT:", Match::kContains,   Ask<kSetInitLight>},
    {"REBOOT:",       Match::kContains,   Ask<kReboot>},
    {"SETANMASK:",    Match::kContains,   Ask<kSetMask>},
    {"GETANMASK:",    Match::kContains,   Ask<kGetMask>},
    {"STOREANMASK:",  Match::kContains,   Ask<kStoreMask>},
    {"STORESRVPOS:",  Match::kContains,   Ask<kStorePositions>},
    {"MOVESTRPOS:",   Match::kContains,   Ask<kMoveServos>},
    {"SETSC",         Match::kContains,   Ask<kSetEnd>},
    {"GETSC",         Match::kContains,   Ask<kGetEnd>},
    {"SETMSR",        Match::kContains,   Ask<kSetRange>},
    {"GETMSR",        Match::kContains,   Ask<kGetRange>},
    {"STOREMSRS",     Match::kContains,   Ask<kStoreRanges>},
    {"POLLON:",       Match::kContains,   PollCardOn},
    {"POLLOFF:",      Match::kContains,   PollCardOff},
    {"ENABLEPOLL",    Match::kWholeLine,  EnablePoll},
    {"POLLSTATE",     Match::kWholeLine,  ShowPollState},
    {"DISCOVER",      Match::kWholeLine,  ShowCards},
    {"FORCEDISCOVER", Match::kWholeLine,  DiscoverCards},
    {"EXIT",          Match::kWholeLine,  CloseSession},
    {"GETLASTINPST:", Match::kContains,   ReportInput},
    {"HELP",          Match::kWholeLine,  ShowHelp},
    {"IOEXAMPLES",    Match::kWholeLine,  ShowIoExamples},
});

// Client programs compare the texts: they stay as they are, misspellings included.
constexpr auto kCaeHelp = std::to_array<const char*>({
    "QELM quick HELP:",
    " ",
    "***** COMMANDS OF CAE INTERFACE *****",
    "--Driver commands--",
    " - DRVVER             shows driver version",
    " - DISCOVER           shows discover table",
    " - FORCEDISCOVER      rediscovers cards, and shows discover table",
    " - POLLSTATE          shows polling states",
    " - ENABLEPOLL         enables gblobal polling",
    " - DISABLEPOLL        disables global polling",
    " - POLLON:x           activates polling on the card at address x  (x=0..F)",
    " - POLLOFF:x          deactivates polling on the card at address x  (x=0..F)",
    " - REBOOT:x           reboots the card at address x  (x=0..F)",
    " - IOEXAMPLES         displays some IO programming examples",
    " - SPEED=ppp          sets working loop speed of qelm in percent (ppp=1..100)",
    " - EXIT               exits from CAE interface",
    " ",
    "--Digital input card commands--",
    " - GETLASTINPST:x=b   gets last input state at address x (x=0..F) in block b (b=0..1)",
    " ",
    "--Analogue input card commands--",
    " - GETANMASK:x        shows analogue channel mask at address x  (x=0..F)",
    " - SETANMASK:x=mm     sets analogue channel mask at address x  (x=0..F) (mm=00..3F) ",
    " - STOREANMASK:x      stores analogue channel mask at address x (x=0..F)",
    " - GETLASTINPST:x=b   gets last input state at address x (x=0..F) in block b (b=0..5)",
    " ",
    "--LCD driver card commands--",
    " - LCDINITLIGHT:x=ss  sets LCD backlight ON and OFF when LCD driver card boots at address x  (x=0..F) (ss=ON/OFF)",
    " - LCDSELFTEST:x=ss   sets LCD SELF TEST message displayed or hidden when card boots at address x  (x=0..F) (ss=ON/OFF)",
    " ",
    "--RC servo controller card commands--",
    " - STORESRVPOS:x      stores current servo positions at address x  (x=0..F)",
    " - MOVESTRPOS:x       moves servos to last stored positions at address x  (x=0..F)",
    " - SETSCpc:x=vv       sets end position parameters on channel c at address x  (x=0..F) (p=A/B) (c=0..5) (vv=00..FF)",
    " - GETSCpc:x          gets end position parameters on channel c at address x  (x=0..F) (p=A/B) (c=0..5)",
    " ",
    "--DC motor controller card commands--",
    " - SETMSRp:x=vv       sets silent range on channel p at address x  (x=0..F) (p=0..2) (vv=00 or 01..20)",
    " - GETMSRp:x          reads and shows silent range on channel p at address x  (x=0..F) (p=0..2)",
    " - STOREMSRS:x        stores all current silent ranges at  address x  (x=0..F)",
    "                      channel switchs to manual mode, when vv=00 (use control byte!)",
    "***** END OF CAE INTERFACE COMMAND LIST *****",
    " ",
});
// clang-format on
static_assert(kCommands.size() == 27);
static_assert(kCaeHelp.size() == 43);

}  // namespace

std::span<const CaeCommand> CaeCommands() { return kCommands; }

std::span<const char* const> CaeHelp() { return kCaeHelp; }
