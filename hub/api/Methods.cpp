#include <algorithm>
#include <array>

#include "api/Api.h"
#include "api/Examples.h"
#include "api/Handlers.h"
#include "api/ParameterLists.h"

namespace hub::api {

namespace {

using access::Role;

constexpr Role kAnybody = Role::kNone;
constexpr std::string_view kNoBody;

// A row a method: name, verb and route, role and summary, parameters and handler; examples of the
// body and of the answer, and the answer's shape.
constexpr std::array<Method, 53> kMethods{{
    // clang-format off
    {"bus.get", Verb::kGet, "/api/bus",
     Role::kView, "The daemon, the adapter, pace and polling", lists::kNone, GetBus,
     kNoBody, examples::kBus, "Bus"},
    {"bus.discover", Verb::kPost, "/api/bus/discover",
     Role::kAdmin, "Ask the bus for its cards; it stands still for two seconds", lists::kNone, Discover,
     kNoBody, examples::kCards, "Cards"},
    {"bus.pace", Verb::kPut, "/api/bus/pace",
     Role::kAdmin, "Set the daemon's speed", lists::kPace, SetPace,
     R"({"pace":50})", examples::kBus, "Bus"},
    {"bus.polling", Verb::kPut, "/api/bus/polling",
     Role::kAdmin, "Ask all input cards for their state, or none", lists::kPolling, SetPolling,
     R"({"polling":true})", examples::kBus, "Bus"},

    {"cards.list", Verb::kGet, "/api/cards",
     Role::kView, "The cards that are there, by address", lists::kNone, ListCards,
     kNoBody, examples::kCards, "Cards"},
    {"cards.get", Verb::kGet, "/api/cards/{address}",
     Role::kView, "One card and its channels", lists::kCard, GetCard,
     kNoBody, examples::kRelays, "Card"},
    {"cards.set", Verb::kPatch, "/api/cards/{address}",
     Role::kUse, "Set several outputs of a card at once", lists::kSetCard, SetCard,
     R"({"0":true, "7":false})", examples::kRelays, "Card"},
    {"card.polling", Verb::kPut, "/api/cards/{address}/polling",
     Role::kAdmin, "Ask this input card for its state, or not", lists::kCardPolling, SetCardPolling,
     R"({"polling":false})", examples::kInputs, "Card"},
    {"card.reboot", Verb::kPost, "/api/cards/{address}/reboot",
     Role::kAdmin, "Let a card begin anew; the bus stands still for a second", lists::kCard, RebootCard,
     kNoBody, examples::kServoCard, "Card"},

    {"channels.get", Verb::kGet, "/api/channels/{id}",
     Role::kView, "One channel", lists::kChannel, GetChannel,
     kNoBody, examples::kLamp, "Channel"},
    {"channels.set", Verb::kPut, "/api/channels/{id}",
     Role::kUse, "Set an output, at once, for a time or within a time", lists::kSetChannel, SetChannel,
     R"({"value":true, "pulse":500})", examples::kLamp, "Channel"},

    {"lcd.write", Verb::kPost, "/api/cards/{address}/text",
     Role::kUse, "Write on a display", lists::kWriteDisplay, WriteDisplay,
     R"({"row":1, "column":3, "text":"Tail of the cat"})", examples::kDisplay, "Card"},
    {"lcd.control", Verb::kPost, "/api/cards/{address}/control",
     Role::kUse, "Clear a display; its light, cursor and blinking", lists::kControlDisplay, ControlDisplay,
     R"({"do":"light-on"})", examples::kDisplay, "Card"},
    {"ir.send", Verb::kPost, "/api/cards/{address}/infrared",
     Role::kUse, "Send an infrared code", lists::kSendCode, SendCode,
     R"({"bytes":"434F"})", examples::kCode, "Channel"},

    {"card.settings.get", Verb::kGet, "/api/cards/{address}/settings",
     Role::kView, "What a card keeps of itself, as far as it was asked", lists::kGetCardSettings, GetCardSettings,
     kNoBody, examples::kServoSettings, "CardSettings"},
    {"card.settings.set", Verb::kPut, "/api/cards/{address}/settings",
     Role::kAdmin, "Set it, a second a value; null leaves a value as it is", lists::kSetCardSettings, SetCardSettings,
     R"({"end_a":[16, null, null, null, null, null]})", examples::kServoSettings, "CardSettings"},
    {"card.settings.store", Verb::kPost, "/api/cards/{address}/settings/store",
     Role::kAdmin, "Let the card keep it when it is switched off", lists::kCard, StoreCardSettings,
     kNoBody, examples::kServoSettings, "CardSettings"},

    {"boards.list", Verb::kGet, "/api/boards",
     Role::kView, "The other boards on the broker; 404 where they are not listened to", lists::kNone, ListBoards,
     kNoBody, examples::kBoards, "Boards"},
    {"boards.get", Verb::kGet, "/api/boards/{board}",
     Role::kView, "One of them", lists::kBoard, GetBoard,
     kNoBody, examples::kBoard, "Board"},
    {"boards.cards.list", Verb::kGet, "/api/boards/{board}/cards",
     Role::kView, "Its cards, as it last told of them", lists::kBoard, ListBoardCards,
     kNoBody, examples::kBoardCards, "Cards"},
    {"boards.cards.get", Verb::kGet, "/api/boards/{board}/cards/{address}",
     Role::kView, "One of its cards", lists::kBoardCard, GetBoardCard,
     kNoBody, examples::kBoardRelays, "Card"},
    {"boards.channels.get", Verb::kGet, "/api/boards/{board}/channels/{id}",
     Role::kView, "One of its channels", lists::kBoardChannel, GetBoardChannel,
     kNoBody, examples::kBoardLamp, "Channel"},
    {"boards.channels.set", Verb::kPut, "/api/boards/{board}/channels/{id}",
     Role::kUse, "Set one of its outputs, over the broker", lists::kSetBoardChannel, SetBoardChannel,
     R"({"value":true})", examples::kBoardLamp, "Channel"},
    {"boards.lcd.write", Verb::kPost, "/api/boards/{board}/cards/{address}/text",
     Role::kUse, "Write on one of its displays", lists::kWriteBoardDisplay, WriteBoardDisplay,
     R"({"row":0, "column":3, "text":"Tail of the cat"})", examples::kBoardDisplay, "Card"},
    {"boards.lcd.control", Verb::kPost, "/api/boards/{board}/cards/{address}/control",
     Role::kUse, "Switch the light of one of its displays", lists::kControlBoardDisplay, ControlBoardDisplay,
     R"({"do":"light-on"})", examples::kBoardDisplay, "Card"},
    {"boards.ir.send", Verb::kPost, "/api/boards/{board}/cards/{address}/infrared",
     Role::kUse, "Send an infrared code there", lists::kSendBoardCode, SendBoardCode,
     R"({"bytes":"434F"})", examples::kBoardCode, "Channel"},

    {"console.run", Verb::kPost, "/api/console",
     Role::kAdmin, "A line for the daemon's console, and its answer", lists::kConsole, RunConsole,
     R"({"line":"DRVVER"})", examples::kLines, "Lines"},

    {"history.get", Verb::kGet, "/api/history",
     Role::kView, "What a channel was; points are time in ms, mean, least, most", lists::kHistory, GetHistory,
     kNoBody, examples::kHistory, "History"},
    {"journal.get", Verb::kGet, "/api/journal",
     Role::kView, "What happened, oldest first", lists::kJournal, GetJournal,
     kNoBody, examples::kJournal, "Journal"},

    {"names.get", Verb::kGet, "/api/names",
     Role::kView, "Names of the bus, its cards and channels", lists::kNone, GetNames,
     kNoBody, examples::kNames, "Names"},
    {"names.set", Verb::kPut, "/api/names",
     Role::kAdmin, "Replace all names", lists::kSetNames, SetNames,
     examples::kNames, examples::kNames, "Names"},
    {"names.merge", Verb::kPatch, "/api/names",
     Role::kAdmin, "Change some names; null removes one", lists::kMergeNames, MergeNames,
     R"({"channels":{"5.0":"Lamp", "5.1":null}})", examples::kNames, "Names"},
    {"setup.get", Verb::kGet, "/api/setup",
     Role::kView, "Units, directions and sizes that people have settled", lists::kNone, GetSetup,
     kNoBody, examples::kSetup, "Setup"},
    {"setup.set", Verb::kPut, "/api/setup",
     Role::kAdmin, "Replace all of it", lists::kSetup, SetSetup,
     examples::kSetup, examples::kSetup, "Setup"},
    {"setup.merge", Verb::kPatch, "/api/setup",
     Role::kAdmin, "Change some of it; null removes", lists::kMergeSetup, MergeSetup,
     R"({"channels":{"F.3":{"decimals":2}, "5.1":null}})", examples::kSetup, "Setup"},
    {"page.get", Verb::kGet, "/api/page",
     Role::kView, "What the page keeps for everybody: order, hidden cards, groups", lists::kNone, GetPage,
     kNoBody, examples::kPage, "Page"},
    {"page.set", Verb::kPut, "/api/page",
     Role::kAdmin, "Replace it", lists::kPage, SetPage,
     examples::kPage, examples::kPage, "Page"},

    {"virtual.get", Verb::kGet, "/api/virtual-bus",
     Role::kAdmin, "The virtual bus: its cable, cards and faults; 404 where the bus is a real one", lists::kNone, GetVirtualBus,
     kNoBody, examples::kVirtualBus, "VirtualBus"},
    {"virtual.run", Verb::kPost, "/api/virtual-bus",
     Role::kAdmin, "What a hand would do to it: a control line of qelm-bus, and its answer", lists::kVirtualLine, RunVirtualLine,
     R"({"line":"press 3 06"})", R"({"lines":[]})", "Lines"},

    {"backup.get", Verb::kGet, "/api/backup",
     Role::kAdmin, "Names, setup and what the page keeps; no secrets", lists::kNone, GetBackup,
     kNoBody, examples::kBackup, "Backup"},
    {"backup.put", Verb::kPut, "/api/backup",
     Role::kAdmin, "Put a backup back, all of it or nothing", lists::kBackup, PutBackup,
     examples::kBackup, examples::kBackup, "Backup"},

    {"session.open", Verb::kPost, "/api/session",
     kAnybody, "Log in; the answer brings a cookie", lists::kOpenSession, OpenSession,
     R"({"account":"operator", "password":"correct horse"})", examples::kWho, "Who"},
    {"session.who", Verb::kGet, "/api/session",
     kAnybody, "Who is logged in; null: nobody", lists::kNone, WhoIsIt,
     kNoBody, examples::kWho, "Who"},
    {"session.close", Verb::kDelete, "/api/session",
     kAnybody, "Log out", lists::kNone, CloseSession,
     kNoBody, examples::kNobody, "Who"},
    {"session.ticket", Verb::kPost, "/api/session/ticket",
     Role::kView, "A ticket for /api/live?ticket=, good once, within 5 s, from this address", lists::kNone, MakeTicket,
     kNoBody, examples::kTicket, "Ticket"},

    {"accounts.list", Verb::kGet, "/api/accounts",
     Role::kAdmin, "All accounts", lists::kNone, ListAccounts,
     kNoBody, examples::kAccounts, "Accounts"},
    {"accounts.add", Verb::kPost, "/api/accounts",
     Role::kAdmin, "Add an account; the first one is an admin", lists::kAddAccount, AddAccount,
     R"({"account":"operator", "password":"correct horse", "role":"use"})", examples::kAccounts, "Accounts"},
    {"accounts.change", Verb::kPut, "/api/accounts/{account}",
     Role::kAdmin, "Another password, another role", lists::kChangeAccount, ChangeAccount,
     R"({"role":"view"})", examples::kAccounts, "Accounts"},
    {"accounts.remove", Verb::kDelete, "/api/accounts/{account}",
     Role::kAdmin, "Remove an account; its sessions end", lists::kAccount, RemoveAccount,
     kNoBody, examples::kAccounts, "Accounts"},
    {"tokens.list", Verb::kGet, "/api/tokens",
     Role::kAdmin, "All tokens, without their secrets", lists::kNone, ListTokens,
     kNoBody, examples::kTokens, "Tokens"},
    {"tokens.add", Verb::kPost, "/api/tokens",
     Role::kAdmin, "Make a token; its secret is shown this once", lists::kAddToken, AddToken,
     R"({"name":"script", "role":"view"})", examples::kToken, "Token"},
    {"tokens.remove", Verb::kDelete, "/api/tokens/{name}",
     Role::kAdmin, "Remove a token", lists::kToken, RemoveToken,
     kNoBody, examples::kTokens, "Tokens"},

    // By name only: over HTTP nothing could follow the answer.
    {"live.subscribe", Verb::kGet, "",
     Role::kView, "The whole state; changes follow", lists::kSubscribe, Subscribe,
     kNoBody, examples::kSnapshot, "Snapshot"},
    // clang-format on
}};

}  // namespace

std::span<const Method> Methods() { return kMethods; }

const Method* FindMethod(std::string_view name) {
  const auto* const found = std::ranges::find(kMethods, name, &Method::name);
  return found == kMethods.end() ? nullptr : found;
}

}  // namespace hub::api
