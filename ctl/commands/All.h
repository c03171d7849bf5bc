// The functions behind the table of commands, by the file that has them.
#pragma once

#include "commands/Command.h"

namespace ctl {

// Look.cpp
int ShowStatus(Session& session, const Words& words);
int ShowCards(Session& session, const Words& words);
int GetChannel(Session& session, const Words& words);

// Watch.cpp
int Watch(Session& session, const Words& words);

// Switch.cpp
int SetChannel(Session& session, const Words& words);
int WriteText(Session& session, const Words& words);
int ClearGlass(Session& session, const Words& words);
int SwitchLight(Session& session, const Words& words);
int SendInfrared(Session& session, const Words& words);

// Bus.cpp
int CardSettings(Session& session, const Words& words);
int Pace(Session& session, const Words& words);
int Polling(Session& session, const Words& words);
int Discover(Session& session, const Words& words);
int Reboot(Session& session, const Words& words);

// Console.cpp
int Console(Session& session, const Words& words);

// Past.cpp
int ShowHistory(Session& session, const Words& words);
int ShowJournal(Session& session, const Words& words);

// Accounts.cpp
int AddAccount(Session& session, const Words& words);
int ListAccounts(Session& session, const Words& words);
int RemoveAccount(Session& session, const Words& words);
int ChangePassword(Session& session, const Words& words);
int ChangeRole(Session& session, const Words& words);
int AddToken(Session& session, const Words& words);
int ListTokens(Session& session, const Words& words);
int RemoveToken(Session& session, const Words& words);

// Keep.cpp
int Backup(Session& session, const Words& words);
int Restore(Session& session, const Words& words);
int Names(Session& session, const Words& words);

// Doctor.cpp
int Doctor(Session& session, const Words& words);

}  // namespace ctl
