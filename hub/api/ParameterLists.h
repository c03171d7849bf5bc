// The parameters of the methods, a list a method, in the order of the table.
#pragma once

#include <array>

#include "api/Api.h"
#include "api/Words.h"

namespace hub::api::lists {

template <size_t Count>
using List = std::array<Parameter, Count>;

// Bounds of a time in milliseconds that a pulse or a ramp takes.
inline constexpr double kLongestMotion = 600'000;
inline constexpr double kLongestLine = 253;  // of the console: with its end what the daemon reads
inline constexpr double kLargestCount = 1e15;
inline constexpr double kLongestText = 80;

inline constexpr List<0> kNone{};

inline constexpr List<1> kPace{{
    {"pace", Type::kInteger, Place::kBody, true, "percent of the full speed", 1, 100},
}};
inline constexpr List<1> kPolling{{
    {"polling", Type::kBoolean, Place::kBody, true, "whether inputs are asked for their state"},
}};
inline constexpr List<1> kSubscribe{{
    {"after", Type::kInteger, Place::kBody, false,
     "a sequence number; the events behind it come too", 0, kLargestCount},
}};

inline constexpr Parameter kAddress{
    "address", Type::kText, Place::kPath, true, "of the card, 0 to 9 or A to F", 1, 32};
inline constexpr Parameter kId{"id",
                               Type::kText,
                               Place::kPath,
                               true,
                               "of the channel: the card's address, a point, the number",
                               1,
                               32};

inline constexpr List<1> kCard{{kAddress}};
inline constexpr List<2> kSetCard{{
    kAddress,
    {"values", Type::kObject, Place::kWholeBody, true,
     "values by the numbers of their channels: {\"0\":true,\"7\":false}"},
}};
inline constexpr List<2> kCardPolling{{kAddress, kPolling[0]}};

inline constexpr List<1> kChannel{{kId}};
inline constexpr List<4> kSetChannel{{
    kId,
    {"value", Type::kValue, Place::kBody, true, "true or false, or a number in the channel's unit"},
    {"pulse", Type::kInteger, Place::kBody, false, "a line: on for so many ms, then back", 1,
     kLongestMotion},
    {"ramp", Type::kInteger, Place::kBody, false, "a position or drive: evenly within so many ms",
     1, kLongestMotion},
}};

inline constexpr List<4> kWriteDisplay{{
    kAddress,
    {"row", Type::kInteger, Place::kBody, true, "from 0", 0, 255},
    {"column", Type::kInteger, Place::kBody, true, "from 0", 0, 255},
    {"text", Type::kText, Place::kBody, true, "printable ASCII, no longer than the row has room", 1,
     kLongestText},
}};
inline constexpr List<2> kControlDisplay{{
    kAddress,
    {"do", Type::kText, Place::kBody, true, "what the display does", 0, 0, kControlWords},
}};
inline constexpr List<2> kSendCode{{
    kAddress,
    {"bytes", Type::kText, Place::kBody, true, "hexadecimal, two digits a byte, 1 to 35 bytes", 2,
     255},
}};

inline constexpr Parameter kBoardName{
    "board", Type::kText, Place::kPath, true, "its name on the broker", 1, 32};
inline constexpr List<1> kBoard{{kBoardName}};
inline constexpr List<2> kBoardCard{{kBoardName, kAddress}};
inline constexpr List<2> kBoardChannel{{kBoardName, kId}};
inline constexpr List<5> kSetBoardChannel{
    {kBoardName, kId, kSetChannel[1], kSetChannel[2], kSetChannel[3]}};
inline constexpr List<5> kWriteBoardDisplay{
    {kBoardName, kAddress, kWriteDisplay[1], kWriteDisplay[2], kWriteDisplay[3]}};
inline constexpr List<3> kControlBoardDisplay{{
    kBoardName,
    kAddress,
    {"do", Type::kText, Place::kBody, true, "what its light does", 0, 0, kLightWords},
}};
inline constexpr List<3> kSendBoardCode{{kBoardName, kAddress, kSendCode[1]}};

inline constexpr List<2> kGetCardSettings{{
    kAddress,
    {"ask", Type::kBoolean, Place::kQuery, false,
     "ask the card, which needs the role use: the bus stands still for a second a value"},
}};
inline constexpr List<7> kSetCardSettings{{
    kAddress,
    {"end_a", Type::kList, Place::kBody, false, "servo: six end positions, 0 to 255"},
    {"end_b", Type::kList, Place::kBody, false, "servo: the six others"},
    {"silent_range", Type::kList, Place::kBody, false,
     "motor: three, 1 to 32; 0 is the manual mode"},
    {"mask", Type::kInteger, Place::kBody, false, "analogue input: a bit a channel", 0, 63},
    {"self_test", Type::kBoolean, Place::kBody, false, "lcd: shows its test message as it boots"},
    {"init_light", Type::kBoolean, Place::kBody, false, "lcd: its light is on as it boots"},
}};

inline constexpr List<1> kConsole{{
    {"line", Type::kText, Place::kBody, true, "a command of the daemon's console", 1, kLongestLine},
}};

inline constexpr List<4> kHistory{{
    {"channel", Type::kText, Place::kQuery, true, "its id", 1, 32},
    {"from", Type::kTime, Place::kQuery, false, "a day before the end where it is not given"},
    {"to", Type::kTime, Place::kQuery, false, "now where it is not given"},
    {"points", Type::kInteger, Place::kQuery, false, "at most; 500 where it is not given", 1, 5000},
}};
inline constexpr List<3> kJournal{{
    {"after", Type::kInteger, Place::kQuery, false, "the oldest entries behind this number", 0,
     kLargestCount},
    {"before", Type::kInteger, Place::kQuery, false, "the newest entries ahead of this number", 1,
     kLargestCount},
    {"limit", Type::kInteger, Place::kQuery, false, "at most; 100 where it is not given", 1, 1000},
}};

inline constexpr Parameter kCardsPart{"cards", Type::kObject, Place::kBody, false,
                                      "by the cards' addresses"};
inline constexpr Parameter kChannelsPart{"channels", Type::kObject, Place::kBody, false,
                                         "by the channels' ids"};
inline constexpr Parameter kInfraredPart{"infrared", Type::kObject, Place::kBody, false,
                                         "names of codes, by their bytes"};
inline constexpr List<4> kSetNames{{
    {"bus", Type::kText, Place::kBody, false, "the name of the bus", 1, 64},
    kCardsPart,
    kChannelsPart,
    kInfraredPart,
}};
// In a patch null removes: of all of them, too.
inline constexpr Parameter kCardsPatch{"cards", Type::kValue, Place::kBody, false,
                                       "by the cards' addresses; null removes"};
inline constexpr Parameter kChannelsPatch{"channels", Type::kValue, Place::kBody, false,
                                          "by the channels' ids; null removes"};
inline constexpr Parameter kInfraredPatch{"infrared", Type::kValue, Place::kBody, false,
                                          "names of codes, by their bytes; null removes"};
inline constexpr List<4> kMergeNames{{
    {"bus", Type::kValue, Place::kBody, false, "the name of the bus; null: the file's again"},
    kCardsPatch,
    kChannelsPatch,
    kInfraredPatch,
}};
inline constexpr List<2> kSetup{{kCardsPart, kChannelsPart}};
inline constexpr List<2> kMergeSetup{{kCardsPatch, kChannelsPatch}};
inline constexpr List<1> kPage{{
    {"page", Type::kObject, Place::kWholeBody, true,
     "order and hidden: addresses of cards; groups: up to 16, each with a name and cards"},
}};

inline constexpr List<1> kVirtualLine{{
    {"line", Type::kText, Place::kBody, true, "a control line of qelm-bus", 1, kLongestLine},
}};

inline constexpr List<4> kBackup{{
    {"version", Type::kInteger, Place::kBody, true, "of this form of a backup", 1, 1},
    {"names", Type::kObject, Place::kBody, true, "as names.get gives them"},
    {"setup", Type::kObject, Place::kBody, true, "as setup.get gives it"},
    {"page", Type::kObject, Place::kBody, true, "as page.get gives it"},
}};

inline constexpr Parameter kRole{
    "role", Type::kText, Place::kBody, true, "each may do what the one before it may",
    0,      0,           kRoleWords};
inline constexpr Parameter kPassword{
    "password", Type::kText, Place::kBody, true, "8 characters or more", 1, 1024};
inline constexpr List<2> kOpenSession{{
    {"account", Type::kText, Place::kBody, true, "its name", 1, 64},
    kPassword,
}};
inline constexpr List<3> kAddAccount{{
    {"account", Type::kText, Place::kBody, true, "its name", 1, 64},
    kPassword,
    kRole,
}};
inline constexpr List<1> kAccount{
    {{"account", Type::kText, Place::kPath, true, "its name", 1, 64}}};
inline constexpr List<3> kChangeAccount{{
    kAccount[0],
    {"password", Type::kText, Place::kBody, false, "a new one; its sessions end", 1, 1024},
    {"role", Type::kText, Place::kBody, false, "a new one", 0, 0, kRoleWords},
}};
inline constexpr List<2> kAddToken{{
    {"name", Type::kText, Place::kBody, true, "of the token", 1, 64},
    kRole,
}};
inline constexpr List<1> kToken{{{"name", Type::kText, Place::kPath, true, "of the token", 1, 64}}};

}  // namespace hub::api::lists
