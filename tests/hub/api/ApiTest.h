// A house with a bus of one card of each kind, and a way to call a method as a door does.
//
//   0 servo, 3 digital input, 4 motor, 5 digital output, 8 keys, 9 infrared, E display, F analogue
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "access/Role.h"
#include "api/Problem.h"
#include "api/fakes/FakeAccess.h"
#include "api/fakes/FakeLink.h"
#include "api/fakes/FakeStore.h"
#include "api/fakes/FakeVirtualBus.h"
#include "model/Bus.h"

namespace hub::api {

// JSON that a test has written with blanks and line ends, without them.
std::string Compact(std::string_view json);

class ApiTest : public testing::Test {
 protected:
  ApiTest();
  ~ApiTest() override;

  struct Outcome {
    std::string text;  // of the result; empty where there is a problem
    std::optional<Problem> problem;
    std::optional<std::string> cookie;
    std::optional<uint64_t> live_after;
  };

  // By name, with parameters as JSON.
  Outcome Call(std::string_view method, std::string_view parameters = "{}");

  // The text of the result, where all went well.
  std::string Result(std::string_view method, std::string_view parameters = "{}");
  void ExpectResult(std::string_view method, std::string_view parameters, std::string_view result);
  void ExpectProblem(std::string_view method, std::string_view parameters, int status,
                     std::string_view where, std::string_view detail);

  // One message of the WebSocket and its answer.
  std::string Rpc(std::string text);
  std::optional<uint64_t> rpc_live_after;

  // What was sent to the daemon since the last time, one a line.
  std::string TakeSet();
  std::string TakeSent();
  std::string TakeAsked();
  std::string LastNote() const { return store.journal.empty() ? "" : store.journal.back(); }

  void DaemonIs(model::DaemonState state);
  void Report(unsigned address, unsigned block, unsigned value);
  void Pull(unsigned address);  // the next discovery does not find the card

  // Another board says this, below its name; from the first time on, others are listened to.
  void ShedSays(const std::string& topic, std::string_view payload);
  std::string TakeTold();           // what it was told since the last time: topic, blank, payload
  std::function<void()> shed_then;  // done when it is told something

  // Settings of the file, in effect.
  void FileHas(const model::Settings& settings);
  void ApplyAgain();  // as at the start
  void BusIsReal();   // not a virtual one, as it is otherwise

  access::Caller caller{"operator", access::Role::kAdmin, "session-7", "10.0.0.2"};
  model::Time now{std::chrono::milliseconds(1'795'262'400'000)};  // 2026-11-21 12:00
  protocol::CardNames names;
  model::Bus bus{"3f9a21c0", "2.5"};
  FakeLink link;
  FakeStore store;
  FakeVirtualBus virtual_bus;
  FakeAccess access;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace hub::api
