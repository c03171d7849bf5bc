// The handlers of the table, by the file that has them.
#pragma once

#include "api/Handling.h"

namespace hub::api {

// BusMethods.cpp
Answer GetBus(House& house, Request request);
Answer Discover(House& house, Request request);
Answer SetPace(House& house, Request request);
Answer SetPolling(House& house, Request request);
Answer Subscribe(House& house, Request request);

// Cards.cpp
Answer ListCards(House& house, Request request);
Answer GetCard(House& house, Request request);
Answer SetCard(House& house, Request request);
Answer SetCardPolling(House& house, Request request);
Answer RebootCard(House& house, Request request);

// Channels.cpp
Answer GetChannel(House& house, Request request);
Answer SetChannel(House& house, Request request);

// Display.cpp
Answer WriteDisplay(House& house, Request request);
Answer ControlDisplay(House& house, Request request);

// Infrared.cpp
Answer SendCode(House& house, Request request);

// Boards.cpp
Answer ListBoards(House& house, Request request);
Answer GetBoard(House& house, Request request);
Answer ListBoardCards(House& house, Request request);
Answer GetBoardCard(House& house, Request request);
Answer GetBoardChannel(House& house, Request request);

// BoardCommands.cpp
Answer SetBoardChannel(House& house, Request request);
Answer WriteBoardDisplay(House& house, Request request);
Answer ControlBoardDisplay(House& house, Request request);
Answer SendBoardCode(House& house, Request request);

// CardSettings.cpp
Answer GetCardSettings(House& house, Request request);
Answer SetCardSettings(House& house, Request request);
Answer StoreCardSettings(House& house, Request request);

// Console.cpp
Answer RunConsole(House& house, Request request);

// Records.cpp
Answer GetHistory(House& house, Request request);
Answer GetJournal(House& house, Request request);

// Names.cpp
Answer GetNames(House& house, Request request);
Answer SetNames(House& house, Request request);
Answer MergeNames(House& house, Request request);
Answer GetSetup(House& house, Request request);
Answer SetSetup(House& house, Request request);
Answer MergeSetup(House& house, Request request);
Answer GetPage(House& house, Request request);
Answer SetPage(House& house, Request request);

// VirtualBus.cpp
Answer GetVirtualBus(House& house, Request request);
Answer RunVirtualLine(House& house, Request request);

// Backup.cpp
Answer GetBackup(House& house, Request request);
Answer PutBackup(House& house, Request request);

// Sessions.cpp
Answer OpenSession(House& house, Request request);
Answer CloseSession(House& house, Request request);
Answer WhoIsIt(House& house, Request request);
Answer MakeTicket(House& house, Request request);

// Accounts.cpp
Answer ListAccounts(House& house, Request request);
Answer AddAccount(House& house, Request request);
Answer ChangeAccount(House& house, Request request);
Answer RemoveAccount(House& house, Request request);

// Tokens.cpp
Answer ListTokens(House& house, Request request);
Answer AddToken(House& house, Request request);
Answer RemoveToken(House& house, Request request);

}  // namespace hub::api
