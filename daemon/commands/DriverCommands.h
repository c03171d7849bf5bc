// The administration commands that act on the daemon and on the bus as a whole.
// Each gets the whole line of the client and replies on CAE. Main thread.
#pragma once

#include <string>

#include "core/qelm.h"

void SetSpeed(QELM& qelm, const std::string& line);
void ShowVersion(QELM& qelm, const std::string& line);
void DisablePoll(QELM& qelm, const std::string& line);
void EnablePoll(QELM& qelm, const std::string& line);
void PollCardOn(QELM& qelm, const std::string& line);
void PollCardOff(QELM& qelm, const std::string& line);
void ShowPollState(QELM& qelm, const std::string& line);
void ShowCards(QELM& qelm, const std::string& line);
void DiscoverCards(QELM& qelm, const std::string& line);
void CloseSession(QELM& qelm, const std::string& line);
void ReportInput(QELM& qelm, const std::string& line);
void ShowHelp(QELM& qelm, const std::string& line);
void ShowIoExamples(QELM& qelm, const std::string& line);
