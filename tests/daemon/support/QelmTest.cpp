#include "support/QelmTest.h"

#include <memory>

#include "kit/Helper.h"

QelmTest::QelmTest() : Qelm(LOGGER(), &Signal) {
  Qelm.Logger = Log.Logger();
  Qelm.Config.ThreadDelay = 100;
  Qelm.Config.IoDescriptor.InpSeparator = ";";
  Qelm.Config.IoDescriptor.OutSeparator = "#";
  Qelm.CaeInterface = Interface(Qelm.Config.CaeDescriptor, "CAE", Qelm.CaeQueue);
  Qelm.IoInterface = Interface(Qelm.Config.IoDescriptor, "IO", Qelm.IoQueue);
  Qelm.MonInterface = Interface(Qelm.Config.MonDescriptor, "MON", Qelm.MonQueue);
  Qelm.SerialInterface = new SERIAL_INTERFACE;
  Qelm.SerialInterface->Logger = Qelm.Logger;
  Qelm.SerialInterface->Cards = Qelm.Cards;
  Qelm.SerialInterface->OutQueue = Qelm.SerialQueue;
  for (QEQUEUE*& queue : Qelm.SerialInterface->CardQueues) queue = new QEQUEUE;
}

SOCKET_INTERFACE* QelmTest::Interface(INTERFACE_DESCRIPTOR& descriptor, const std::string& name,
                                      QEQUEUE* in_queue) const {
  descriptor.Name = name;
  auto* interface = new SOCKET_INTERFACE(descriptor, Qelm.Logger, in_queue, kTextData);
  interface->Halt();
  return interface;
}

Texts CaeTest::Run(const std::string& line, const std::vector<QList>& answers) {
  Requests.clear();
  const auto gate = answers.empty() ? nullptr : std::make_unique<SleepGate>();
  Helper serial_side([&] {
    for (const QList& answer : answers) Answer(answer, *gate);
  });
  Qelm.ParseCaeLine(line);
  serial_side.Join();
  EXPECT_TRUE(CardQueue(16).IsEmpty());
  return CaeReplies();
}

void CaeTest::Answer(const QList& answer, SleepGate& gate) {
  EXPECT_TRUE(WaitUntil([&] { return !CardQueue(16).IsEmpty(); }));
  Requests.push_back(CardQueue(16).DeQueue());
  if (!answer.empty()) {
    const std::vector<unsigned char> bytes(answer.begin(), answer.end());
    Qelm.Cards[bytes.at(1)].FileQueryReply(bytes);
  }
  EXPECT_TRUE(gate.Open());
}
