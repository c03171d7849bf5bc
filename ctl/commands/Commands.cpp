#include "commands/All.h"
#include "commands/Command.h"

namespace ctl {

namespace {

const Argument kCard{"CARD", "a card: its address, 0 to F, or its name", Meaning::kCard};
const Argument kChannel{"CHANNEL", "a channel: A.n, or its name", Meaning::kChannel};
const Argument kAccount{"NAME", "the account's name"};
const Argument kToken{"NAME", "the token's name"};
const Argument kRole{"ROLE", "view, use or admin", Meaning::kRole};
const Argument kOnOff{"STATE", "on or off", Meaning::kOnOff};

Argument Optional(Argument argument) {
  argument.count = Count::kOptional;
  return argument;
}

std::vector<Command> MakeCommands() {
  return {
      {"status", "What the hub, the daemon and the adapter do", {}, {}, &ShowStatus},
      {"cards", "The cards, their channels and values", {}, {}, &ShowCards, true},
      {"watch",
       "Print what changes, as it changes, until Ctrl-C",
       {{"WHAT", "a card or a channel; all without it", Meaning::kCardOrChannel, Count::kOptional}},
       {{"--once", "", "end with status 3 when the hub goes, in place of waiting for it"}},
       &Watch,
       true},
      {"get", "Print the value of a channel", {kChannel}, {}, &GetChannel, true},
      {"set",
       "Switch an output, or move it",
       {kChannel, {"VALUE", "on, off or a number", Meaning::kOnOff}},
       {{"--pulse", "TIME", "switch on, and back after this time: 500ms, 2s"},
        {"--ramp", "TIME", "move there evenly in this time"}},
       &SetChannel,
       true},
      {"text",
       "Write on a display",
       {kCard, {"ROW", "from 0"}, {"COLUMN", "from 0"}, {"TEXT", "what to write"}},
       {},
       &WriteText,
       true},
      {"clear", "Clear a display", {kCard}, {}, &ClearGlass},
      {"light", "Switch the light of a display", {kCard, kOnOff}, {}, &SwitchLight, true},
      {"ir",
       "Send an infrared code",
       {kCard, {"CODE", "its bytes: 434F, or 43 4F; or its name", Meaning::kCode, Count::kAny}},
       {},
       &SendInfrared,
       true},
      {"settings",
       "Show or change the settings of a card",
       {kCard,
        {"SETTING", "KEY=VALUE: mask=32, end_a=16,16,16,16,16,16", Meaning::kText, Count::kAny}},
       {{"--ask", "", "ask the card itself, which takes a second a value"},
        {"--store", "", "let the card keep them when it is switched off"}},
       &CardSettings},
      {"pace",
       "Show or change how fast the daemon works",
       {{"PERCENT", "1 to 100", Meaning::kText, Count::kOptional}},
       {},
       &Pace},
      {"polling",
       "Switch the polling of all inputs, or of one card",
       {{"STATE", "on or off; a card in front of it for that card alone", Meaning::kCardOrState,
         Count::kAny}},
       {},
       &Polling},
      {"discover", "Search the bus for cards", {}, {}, &Discover},
      {"reboot", "Reboot a card", {kCard}, {}, &Reboot},
      {"console",
       "The daemon's console: one line, or a session",
       {{"LINE", "such as HELP; without it lines are asked for", Meaning::kText, Count::kAny}},
       {},
       &Console},
      {"history",
       "Values of a channel over time",
       {kChannel},
       {{"--since", "TIME", "2h, 7d, \"2026-11-21 12:00\" (default: 1h)"},
        {"--until", "TIME", "the same (default: now)"},
        {"--points", "NUMBER", "how many at most"},
        {"--csv", "", "comma-separated, times in UTC"}},
       &ShowHistory},
      {"journal",
       "What happened",
       {},
       {{"-f,--follow", "", "go on until Ctrl-C"}, {"-n,--limit", "NUMBER", "how many entries"}},
       &ShowJournal},
      {"account add",
       "Add an account; its password is asked for",
       {kAccount, Optional(kRole)},
       {},
       &AddAccount},
      {"account list", "List the accounts", {}, {}, &ListAccounts},
      {"account remove", "Remove an account; its sessions end", {kAccount}, {}, &RemoveAccount},
      {"account password", "Give an account a new password", {kAccount}, {}, &ChangePassword},
      {"account role", "Give an account another role", {kAccount, kRole}, {}, &ChangeRole},
      {"token add",
       "Make a token for a program; it is shown once",
       {kToken, Optional(kRole)},
       {},
       &AddToken},
      {"token list", "List the tokens", {}, {}, &ListTokens},
      {"token remove", "Remove a token; its connections end", {kToken}, {}, &RemoveToken},
      {"backup",
       "Save names, units and groups",
       {{"FILE", "where to; standard output without it", Meaning::kText, Count::kOptional}},
       {},
       &Backup},
      {"restore", "Bring back what was saved", {{"FILE", "- is standard input"}}, {}, &Restore},
      {"names",
       "Show names, or give them",
       {{"NAME", "5.0=Lamp, 5=Relays, 434F=Mute, bus=bench; 5.0= takes one away", Meaning::kText,
         Count::kAny}},
       {},
       &Names},
      {"doctor",
       "Look at all between you and a lit lamp, and say what is wrong",
       {},
       {{"--config-file", "FILE", "the daemon's (default: /etc/qelm/qelmconf.xml)"},
        {"--pid-file", "FILE", "the daemon's (default: /var/run/qelm/qelm.pid)"},
        {"--wait", "TIME", "how long a port may take to greet (default: 12s)"}},
       &Doctor},
  };
}

}  // namespace

const std::vector<Command>& Commands() {
  static const std::vector<Command>& commands = *new std::vector<Command>(MakeCommands());
  return commands;
}

}  // namespace ctl
