// A TCP interface whose passes the test runs itself, one at a time.
#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <memory>
#include <string>
#include <vector>

#include "kit/Client.h"
#include "kit/Ports.h"
#include "kit/SleepControl.h"
#include "net/SocketInterface.h"
#include "runtime/Shared.h"
#include "support/Lists.h"
#include "support/TempLog.h"

using Texts = std::vector<std::string>;

// Of the interface that is called IO.
inline constexpr char kGreeting[] = "QELM IO interface is ready\r\n\r";

// While it lives, nobody gets a new descriptor, and poll() refuses to wait for any.
class NoDescriptors {
 public:
  NoDescriptors() {
    getrlimit(RLIMIT_NOFILE, &before_);
    const rlimit none{0, before_.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
  }
  ~NoDescriptors() { setrlimit(RLIMIT_NOFILE, &before_); }
  NoDescriptors(const NoDescriptors&) = delete;
  NoDescriptors& operator=(const NoDescriptors&) = delete;

 private:
  rlimit before_{};
};

class SocketTest : public testing::Test {
 protected:
  // With a thread of its own that runs.
  SOCKET_INTERFACE& BuildRunning(const std::string& name, int data_mode = kTextData) {
    INTERFACE_DESCRIPTOR descriptor;
    descriptor.Name = name;
    descriptor.Port = FreePort();
    descriptor.ThreadDelay = 100;
    interface = std::make_unique<SOCKET_INTERFACE>(descriptor, log.Logger(), &received, data_mode);
    return *interface;
  }

  // With a thread that has ended.
  SOCKET_INTERFACE& Build(const std::string& name, int data_mode = kTextData) {
    BuildRunning(name, data_mode).Halt();
    return *interface;
  }

  void Pass() { EXPECT_TRUE(interface->OnTask()); }
  int State() const { return Observe(interface->Descriptor.State); }
  int Port() const { return interface->Descriptor.Port; }
  std::string PortText() const { return std::to_string(Port()); }

  // A client that has been accepted and has read its greeting.
  Client ServedClient() {
    Client client(Port());
    Pass();
    EXPECT_EQ(State(), 3);
    client.ExpectBytes(kGreeting);
    return client;
  }

  SleepRecord sleeps;
  TempLog log;
  QEQUEUE received;
  std::unique_ptr<SOCKET_INTERFACE> interface;
};
