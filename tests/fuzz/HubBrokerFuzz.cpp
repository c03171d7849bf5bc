// What comes from a broker: topics and payloads of commands, and what is kept below the hub's name,
// on a bus with a card of each kind.
//
// A unit separator ends each message; a tab parts its topic, behind qelm/bench/, from the payload.
// A topic that begins with "!" was kept.
#include <algorithm>
#include <boost/asio/io_context.hpp>
#include <cstdint>
#include <string>
#include <string_view>

#include "Finding.h"
#include "HubBus.h"
#include "api/Api.h"
#include "api/Json.h"
#include "api/fakes/FakeAccess.h"
#include "api/fakes/FakeLink.h"
#include "api/fakes/FakeStore.h"
#include "api/fakes/FakeVirtualBus.h"
#include "hub/CardsOfEachKind.h"
#include "mqtt/NameCheck.h"
#include "mqtt/Obeying.h"
#include "mqtt/Payloads.h"
#include "mqtt/States.h"
#include "protocol/IoCommand.h"

namespace {

namespace api = hub::api;
namespace model = hub::model;
namespace mqtt = hub::mqtt;
namespace protocol = hub::protocol;

constexpr char kEndMark = '\x1f';
constexpr size_t kMostTopics = 400;  // a card of each kind has about 80

bool IsUtf8(const std::string& text) {
  const auto read = api::ParseJson(boost::json::serialize(boost::json::string(text)));
  return std::holds_alternative<boost::json::value>(read);
}

class Hub {
 public:
  Hub()
      : link_(context_, {}, bus_, {}),
        store_(context_, {}, clock_),
        access_(context_, clock_, std::nullopt, {}),
        house_{.context = context_,
               .bus = bus_,
               .link = link_,
               .store = store_,
               .access = access_,
               .clock = clock_} {
    bus_.SetCards(hub::CardsOfEachKind());
    bus_.SetDaemon(
        {.state = model::DaemonState::kUp, .version = "1.20", .since = {}, .waiting_for = {}});
    states_.MoveTo("bench");
    bus_.Listen([this](const model::Change& change) { states_.Take(change, {}); });
    publisher_.Open();
    bus_.Publish();
  }

  void Take(std::string_view text) {
    mqtt::Arrived arrived;
    arrived.message.is_retained = text.starts_with('!');
    if (arrived.message.is_retained) text.remove_prefix(1);
    const std::string_view topic = text.substr(0, text.find('\t'));
    text.remove_prefix(std::min(topic.size() + 1, text.size()));
    arrived.message.topic = "qelm/bench/" + std::string(topic);
    if (!IsUtf8(arrived.message.topic)) return;  // the library ends such a connection
    arrived.message.payload = text;
    arrived.size = text.size();
    check_.Take(arrived);
    Require(check_.Leftovers().size() <= mqtt::NameCheck::kMostLeftovers, "too much is left over");
    obeying_.Take(states_.Names(), arrived);
    context_.restart();
    context_.run();
    CheckSent(arrived);
    CheckTold();
  }

 private:
  void CheckSent(const mqtt::Arrived& arrived) {
    Require(!arrived.message.is_retained || fake_link_.sent.empty(), "a kept command is done");
    for (const std::string& line : fake_link_.sent) {
      const auto command = protocol::ParseIoCommand(line);
      Require(command && !protocol::Pieces(*command).empty(), "a command that cannot go out");
    }
    fake_link_.sent.clear();
    fake_link_.set.clear();
    CheckBus(bus_);
  }

  void CheckTold() {
    size_t count = 0;
    while (const auto message = publisher_.Next({})) {
      Require(message->topic.starts_with("qelm/bench/"), "a topic is not below the name");
      Require(message->topic.find_first_of("+#") == std::string::npos, "a topic is a filter");
      publisher_.Taken();
      ++count;
    }
    Require(count <= kMostTopics, "too many topics");
  }

  FakeLink fake_link_;
  FakeStore fake_store_;
  FakeVirtualBus fake_virtual_bus_;
  FakeAccess fake_access_;
  boost::asio::io_context context_;
  model::Clock clock_;
  model::Bus bus_{"3f9a21c0"};
  BusWatch watch_{bus_};
  hub::link::Link link_;
  hub::store::Store store_;
  hub::access::Access access_;
  api::House house_;
  api::Messages count_;
  mqtt::Publisher publisher_{count_};
  mqtt::States states_{bus_, publisher_, "1.20"};
  mqtt::NameCheck check_{states_.Names(), "3f9a21c0"};
  mqtt::Obeying obeying_{house_, [](const std::string& topic, const api::Problem& problem) {
                           Require(problem.status != 500, "a method breaks");
                           const auto read = api::ParseJson(mqtt::ErrorPayload(topic, problem));
                           Require(std::holds_alternative<boost::json::value>(read),
                                   "an answer is no JSON");
                         }};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Hub hub;
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  while (!rest.empty()) {
    const std::string_view message = rest.substr(0, rest.find(kEndMark));
    rest.remove_prefix(std::min(message.size() + 1, rest.size()));
    hub.Take(message);
  }
  return 0;
}
