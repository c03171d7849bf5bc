#include "support/QelmTest.h"

#include <memory>

#include "kit/Helper.h"

QelmTest::QelmTest() : qelm(LOGGER(), &signal) {
  qelm.Logger = log.Logger();
  qelm.Config.ThreadDelay = 100;
  qelm.Config.IoDescriptor.InpSeparator = ";";
  qelm.Config.IoDescriptor.OutSeparator = "#";
  qelm.CaeInterface = Interface(qelm.Config.CaeDescriptor, "CAE", qelm.CaeQueue);
  qelm.IoInterface = Interface(qelm.Config.IoDescriptor, "IO", qelm.IoQueue);
  qelm.MonInterface = Interface(qelm.Config.MonDescriptor, "MON", qelm.MonQueue);
  qelm.SerialInterface = new SERIAL_INTERFACE;
  qelm.SerialInterface->Logger = qelm.Logger;
  qelm.SerialInterface->Cards = qelm.Cards;
  qelm.SerialInterface->OutQueue = qelm.SerialQueue;
  for (QEQUEUE*& queue : qelm.SerialInterface->CardQueues) queue = new QEQUEUE;
}

SOCKET_INTERFACE* QelmTest::Interface(INTERFACE_DESCRIPTOR& descriptor, const std::string& name,
                                      QEQUEUE* in_queue) const {
  descriptor.Name = name;
  auto* interface = new SOCKET_INTERFACE(descriptor, qelm.Logger, in_queue, kTextData);
  interface->Halt();
  return interface;
}

Texts CaeTest::Run(const std::string& line, const std::vector<QList>& answers) {
  requests.clear();
  const auto gate = answers.empty() ? nullptr : std::make_unique<SleepGate>();
  Helper serial_side([&] {
    for (const QList& answer : answers) Answer(answer, *gate);
  });
  qelm.ParseCaeLine(line);
  serial_side.Join();
  EXPECT_TRUE(CardQueue(16).IsEmpty());
  return CaeReplies();
}

void CaeTest::Answer(const QList& answer, SleepGate& gate) {
  EXPECT_TRUE(WaitUntil([&] { return !CardQueue(16).IsEmpty(); }));
  requests.push_back(CardQueue(16).DeQueue());
  if (!answer.empty()) {
    const std::vector<unsigned char> bytes(answer.begin(), answer.end());
    qelm.Cards[bytes.at(1)].FileQueryReply(bytes);
  }
  EXPECT_TRUE(gate.Open());
}
