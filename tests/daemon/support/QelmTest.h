// The central object with interfaces whose threads do not run: whatever it queues
// stays where it was put.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bus/PerifCard.h"
#include "bus/SerialInterface.h"
#include "core/qelm.h"
#include "kit/SleepControl.h"
#include "net/SocketInterface.h"
#include "runtime/Shared.h"
#include "support/Lists.h"
#include "support/TempLog.h"

using Texts = std::vector<std::string>;

class QelmTest : public testing::Test {
 protected:
  // CAE has CR LF both ways; IO reads ";" and writes "#".
  QelmTest();

  void PlugCard(int address, int type) const {
    qelm.Cards[address].setCardData(static_cast<unsigned char>(type),
                                    static_cast<unsigned char>(address));
  }

  Texts CaeReplies() const { return TakeTexts(*qelm.CaeInterface->OutQueue); }
  Texts IoOutput() const { return TakeTexts(*qelm.IoInterface->OutQueue); }
  Texts MonOutput() const { return TakeTexts(*qelm.MonInterface->OutQueue); }
  QEQUEUE& CardQueue(std::size_t index) const { return *qelm.SerialInterface->CardQueues[index]; }

  int signal = kNoSignal;
  TempLog log;
  QELM qelm;

 private:
  SOCKET_INTERFACE* Interface(INTERFACE_DESCRIPTOR& descriptor, const std::string& name,
                              QEQUEUE* in_queue) const;
};

// The serial side of card requests: takes what comes to the driver queue and answers
// during the pause in which the interpreter waits.
class CaeTest : public QelmTest {
 protected:
  // Runs a line in which each request gets the next of the answers; an empty one is
  // silence.
  Texts Run(const std::string& line, const std::vector<QList>& answers = {});

  // The payloads of the requests that the last line made.
  std::vector<QList> requests;

 private:
  void Answer(const QList& answer, SleepGate& gate);
};
