// A TCP interface whose passes the test runs itself, one at a time.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "net/SocketInterface.h"
#include "runtime/Shared.h"
#include "support/Bytes.h"
#include "support/Client.h"
#include "kit/SleepControl.h"
#include "support/TempLog.h"

using Texts = std::vector<std::string>;

class SocketTest : public testing::Test {
 protected:
  // With a thread of its own that runs.
  SOCKET_INTERFACE& BuildRunning(const std::string& name, int data_mode = kTextData) {
    INTERFACE_DESCRIPTOR descriptor;
    descriptor.Name = name;
    descriptor.Port = FreePort();
    descriptor.ThreadDelay = 100;
    Interface = std::make_unique<SOCKET_INTERFACE>(descriptor, Log.Logger(), &Received, data_mode);
    return *Interface;
  }

  // With a thread that has ended.
  SOCKET_INTERFACE& Build(const std::string& name, int data_mode = kTextData) {
    BuildRunning(name, data_mode).Halt();
    return *Interface;
  }

  void Pass() { EXPECT_TRUE(Interface->OnTask()); }
  int State() const { return Observe(Interface->Descriptor.State); }
  int Port() const { return Interface->Descriptor.Port; }
  std::string PortText() const { return std::to_string(Port()); }

  // A client that has been accepted and has read its greeting.
  std::unique_ptr<Client> ServedClient() {
    auto client = std::make_unique<Client>(Port());
    EXPECT_TRUE(client->IsConnected());
    Pass();
    EXPECT_EQ(State(), 3);
    EXPECT_EQ(client->Receive(29), "QELM IO interface is ready\r\n\r");
    return client;
  }

  SleepRecord Sleeps;
  TempLog Log;
  QEQUEUE Received;
  std::unique_ptr<SOCKET_INTERFACE> Interface;
};
