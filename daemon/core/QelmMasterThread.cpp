// The master loop: moves messages between the clients and the card bus.
#include <csignal>

#include "bus/SerialInterface.h"
#include "core/qelm.h"
#include "net/SocketInterface.h"
#include "runtime/Pause.h"
#include "runtime/Queue.h"
#include "runtime/Shared.h"
#include "runtime/Values.h"

namespace {

bool HasClient(const SOCKET_INTERFACE& interface) {
  return Observe(interface.Descriptor.State) == kConnected;
}

void Append(QList& list, const std::string& text) {
  list.insert(list.end(), text.begin(), text.end());
}

}  // namespace

void QELM::MasterThread() {
  while (true) {
    do {
      SleepMicroseconds(Config.ThreadDelay);
      if (ServeSignal()) return;
      ForwardReport();
      ServeIoMessage();
      DiscardMonInput();
    } while (CaeQueue->IsEmpty());
    ParseCaeLine(Convert_QList2String(CaeQueue->DeQueue()));
  }
}

// True when the process is to end. The cell is not reset.
bool QELM::ServeSignal() {
  const int signal = LoadShared(*SignalFlag);
  if (signal == kNoSignal) return false;
  for (SOCKET_INTERFACE* interface : {CaeInterface, IoInterface, MonInterface})
    interface->mf_SIGhandler(signal);
  SerialInterface->Logger.LOG("INF", "signal " + ITOA(signal) + " on serial interface", 1);
  SerialInterface->Fd.Withdraw();
  if (signal != SIGTERM && signal != SIGINT) return false;
  Logger.LOG("INF", "qelm is stopped by SIGTERM or SIGINT", 1);
  return true;
}

// The monitor gets a report only while a client is connected on IO.
void QELM::ForwardReport() {
  if (SerialQueue->IsEmpty()) return;
  QList report = SerialQueue->DeQueue();
  if (!HasClient(*IoInterface)) return;
  Append(report, Config.IoDescriptor.OutSeparator);
  IoInterface->OutQueue->ToQueue(report);
  if (HasClient(*MonInterface)) MonInterface->OutQueue->ToQueue(report);
}

void QELM::ServeIoMessage() {
  if (IoQueue->IsEmpty()) return;
  const QList message = IoQueue->DeQueue();
  if (Convert_QList2String(message) == "EXIT" + Config.IoDescriptor.InpSeparator) {
    IoInterface->OutQueue->ToQueue(
        Convert_String2QList("QELM: Bye Bye..." + Config.IoDescriptor.OutSeparator));
    sleepsec(1);  // lets the interface write the farewell
    IoInterface->CloseByCommand();
    return;
  }
  ParseOutCommand(message);
  if (HasClient(*MonInterface)) MonInterface->OutQueue->ToQueue(message);
}

// What a client types on MON has no effect.
void QELM::DiscardMonInput() {
  while (!MonQueue->IsEmpty()) MonQueue->DeQueue();
}
