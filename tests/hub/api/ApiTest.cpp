#include "api/ApiTest.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/json/parse.hpp>
#include <stdexcept>
#include <utility>

#include "api/Api.h"
#include "api/Json.h"
#include "api/JsonRpc.h"
#include "api/KeptSettings.h"
#include "hub/CardsOfEachKind.h"

namespace hub::api {

namespace {

// Shows the time of the test.
class TestClock : public model::Clock {
 public:
  explicit TestClock(const model::Time& now) : now_(now) {}
  model::Time Now() const override { return now_; }

 private:
  const model::Time& now_;
};

std::string Joined(std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : std::exchange(lines, {})) {
    if (!text.empty()) text += '\n';
    text += line;
  }
  return text;
}

}  // namespace

struct ApiTest::Parts {
  explicit Parts(ApiTest& test)
      : clock(test.now),
        link(context, {}, test.bus, {}),
        store(context, {}, clock),
        access(context, clock, std::nullopt, {}),
        control(context, ""),
        house{context, test.bus, link, store, access, clock} {
    house.virtual_bus = &control;
  }

  template <class Result>
  Result Run(boost::asio::awaitable<Result> work) {
    std::optional<Result> result;
    boost::asio::co_spawn(context, std::move(work),
                          [&result](const std::exception_ptr& fault, Result value) {
                            if (fault) std::rethrow_exception(fault);
                            result = std::move(value);
                          });
    context.restart();
    context.run();
    if (!result) throw std::runtime_error("the call did not come to its end");
    return std::move(*result);
  }

  boost::asio::io_context context;
  TestClock clock;
  link::Link link;
  store::Store store;
  access::Access access;
  virtualbus::Control control;
  std::vector<std::string> told;  // other boards
  House house;
};

std::string Compact(std::string_view json) {
  std::string text;
  bool in_string = false;
  for (size_t at = 0; at < json.size(); ++at) {
    if (json[at] == '"') in_string = !in_string;
    if (in_string && json[at] == '\\') text += json[at++];
    if (in_string || (json[at] != ' ' && json[at] != '\n')) text += json[at];
  }
  return text;
}

ApiTest::ApiTest() : parts_(std::make_unique<Parts>(*this)) {
  names = CardsOfEachKind();
  bus.SetCards(names);
  DaemonIs(model::DaemonState::kUp);
}

ApiTest::~ApiTest() = default;

ApiTest::Outcome ApiTest::Call(std::string_view name, std::string_view parameters) {
  const Method* const method = FindMethod(name);
  if (method == nullptr) throw std::runtime_error("no method " + std::string(name));
  Request request{boost::json::parse(parameters).get_object(), caller};
  Reply reply = parts_->Run(api::Call(parts_->house, *method, std::move(request)));
  Outcome outcome{"", std::nullopt, reply.cookie, reply.live_after};
  if (auto* problem = std::get_if<Problem>(&reply.result))
    outcome.problem = std::move(*problem);
  else
    outcome.text = ToText(std::get<boost::json::value>(reply.result));
  return outcome;
}

std::string ApiTest::Result(std::string_view method, std::string_view parameters) {
  Outcome outcome = Call(method, parameters);
  EXPECT_FALSE(outcome.problem) << method << ": " << outcome.problem->detail;
  return outcome.text;
}

void ApiTest::ExpectResult(std::string_view method, std::string_view parameters,
                           std::string_view result) {
  EXPECT_EQ(Result(method, parameters), Compact(result)) << method << ' ' << parameters;
}

void ApiTest::ExpectProblem(std::string_view method, std::string_view parameters, int status,
                            std::string_view where, std::string_view detail) {
  const Outcome outcome = Call(method, parameters);
  ASSERT_TRUE(outcome.problem) << method << ' ' << parameters << " gave " << outcome.text;
  EXPECT_EQ(outcome.problem->status, status) << method << ' ' << parameters;
  EXPECT_EQ(outcome.problem->where, where) << method << ' ' << parameters;
  EXPECT_EQ(outcome.problem->detail, detail) << method << ' ' << parameters;
}

std::string ApiTest::Rpc(std::string text) {
  RpcAnswer answer = parts_->Run(AnswerRpc(parts_->house, caller, std::move(text)));
  rpc_live_after = answer.live_after;
  return answer.text;
}

std::string ApiTest::TakeSet() { return Joined(link.set); }
std::string ApiTest::TakeSent() { return Joined(link.sent); }
std::string ApiTest::TakeTold() { return Joined(parts_->told); }
std::string ApiTest::TakeAsked() { return Joined(link.asked); }

void ApiTest::DaemonIs(model::DaemonState state) {
  model::Daemon daemon;
  daemon.state = state;
  if (state == model::DaemonState::kUp) {
    daemon.version = "1.20";
    daemon.since = now;
  }
  if (state == model::DaemonState::kWaiting) daemon.waiting_for = "io";
  bus.SetDaemon(daemon);
  bus.Publish();
}

void ApiTest::Report(unsigned address, unsigned block, unsigned value) {
  bus.TakeInput(
      {static_cast<uint8_t>(address), static_cast<uint8_t>(block), static_cast<uint8_t>(value)},
      now);
  bus.Publish();
}

void ApiTest::Pull(unsigned address) {
  names[address] = "EMPTY";
  bus.SetCards(names);
  bus.Publish();
}

void ApiTest::ShedSays(const std::string& topic, std::string_view payload) {
  boards::Boards& boards = parts_->house.boards;
  if (!boards.IsOn()) {
    boards.Use(true);
    boards.SendBy([this](std::string to, std::string what) {
      parts_->told.push_back(std::move(to) + ' ' + std::move(what));
      if (shed_then) shed_then();
    });
  }
  boards.Take("qelm/shed/" + topic, payload, payload.size(), now);
}

void ApiTest::FileHas(const model::Settings& settings) {
  parts_->house.file = settings;
  ApplyAgain();
}

void ApiTest::BusIsReal() { parts_->house.virtual_bus = nullptr; }

void ApiTest::ApplyAgain() { ApplySettings(parts_->house); }

}  // namespace hub::api
