#include "core/qelm.h"

#include "bus/PerifCard.h"
#include "bus/SerialInterface.h"
#include "config/ConfigFile.h"
#include "net/SocketInterface.h"
#include "runtime/Queue.h"
#include "runtime/Shared.h"
#include "runtime/Values.h"

QELM::QELM(const LOGGER& logger, int* signalFlag)
    : Logger(logger),
      IoQueue(new QEQUEUE),
      CaeQueue(new QEQUEUE),
      MonQueue(new QEQUEUE),
      SerialQueue(new QEQUEUE),
      SignalFlag(signalFlag),
      Cards(new PERIFCARD[kCardRecords]),
      WorkBuffer(new char[16]) {
  for (int i = 0; i < kCardRecords; ++i) Cards[i].clearPerifCard();
}

// The queues are deleted before the threads that use them, so the threads are halted first.
QELM::~QELM() {
  for (SOCKET_INTERFACE* interface : {CaeInterface, IoInterface, MonInterface})
    if (interface != nullptr) interface->Halt();
  if (SerialInterface != nullptr) SerialInterface->Stop();
  delete IoQueue;
  delete CaeQueue;
  delete MonQueue;
  delete SerialQueue;
  delete CaeInterface;
  delete IoInterface;
  delete MonInterface;
  delete SerialInterface;
  delete[] Cards;
  delete[] WorkBuffer;
}

CONFIG_DESCRIPTOR QELM::ReadConfig() { return ReadConfigFile("/etc/qelm/qelmconf.xml"); }

bool QELM::InitProgramData() {
  Config = ReadConfig();
  Logger.LogFile = Config.LogFile;
  Logger.LogLevel = Config.LogLevel;
  Logger.LOG("INF", "qelm is started", 1);
  if (Config.Status != "NONE") {
    Logger.LOG("ERR", Config.Status, 1);
    Logger.LOG("INF", "qelm is stopped with error", 1);
    return false;
  }
  Logger.LOG("INF", "Initparam Autodiscover: " + BTOA(Config.AutoDiscover), 1);
  Logger.LOG("INF", "Initparam Enablepoll: " + BTOA(Config.EnablePoll), 1);
  Logger.LOG("INF", "Initparam Speed (ThreadDelay): " + ITOA(Config.ThreadDelay), 1);
  return true;
}

void QELM::InitInterfaces() {
  CaeInterface = OpenInterface(Config.CaeDescriptor, CaeQueue);
  IoInterface = OpenInterface(Config.IoDescriptor, IoQueue);
  MonInterface = OpenInterface(Config.MonDescriptor, MonQueue);
  SerialInterface = OpenSerial();
  StoreShared(SerialInterface->ThreadDelay, Config.ThreadDelay);
}

// Init logs a port that cannot be opened; the daemon goes on without it.
SOCKET_INTERFACE* QELM::OpenInterface(const INTERFACE_DESCRIPTOR& descriptor, QEQUEUE* in_queue) {
  auto* interface = new SOCKET_INTERFACE(descriptor, Logger, in_queue, kTextData);
  interface->Init();
  return interface;
}

SERIAL_INTERFACE* QELM::OpenSerial() {
  auto* serial = new SERIAL_INTERFACE;
  serial->Logger = Logger;
  serial->DeviceMode = kSearchDevices;
  serial->OutQueue = SerialQueue;
  serial->Cards = Cards;
  serial->EnablePoll = Config.EnablePoll ? 1 : 0;
  serial->AutoDiscover = Config.AutoDiscover ? 1 : 0;
  for (QEQUEUE*& queue : serial->CardQueues) queue = new QEQUEUE;
  serial->SetThreadType(kIntervalDriven, 1);
  return serial;
}

void QELM::ReplyOnCae(const std::string& text) {
  CaeInterface->OutQueue->ToQueue(Convert_String2QList(text + Config.CaeDescriptor.OutSeparator));
}
