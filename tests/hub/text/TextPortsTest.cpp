// The text ports over real sockets, before a link and a store that the tests play: who may stay.
#include "text/TextPorts.h"

#include <gtest/gtest.h>

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/use_future.hpp>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "../FakeClock.h"
#include "api/fakes/FakeLink.h"
#include "api/fakes/FakeStore.h"
#include "kit/Client.h"
#include "kit/Ports.h"
#include "kit/Wait.h"

namespace hub::text {
namespace {

using std::chrono::seconds;

constexpr char kAskForToken[] = "QELM: a token is needed: TOKEN ...\r\n\r";
constexpr char kConsoleGreeting[] =
    "QELM CAE interface is ready\r\n(Type HELP for help)\r\n>\r\n\r";
constexpr char kGreeting[] = "QELM IO interface is ready\r\n\r";

class TextPortsTest : public testing::Test {
 protected:
  TextPortsTest()
      : link(context, {}, bus, {}),
        store(context, {}, clock),
        access(context, clock, std::nullopt,
               {.keep = [](const std::string&) {},
                .ended = [](const std::string&) {},
                .token_ended = [this](const std::string& name) { ports.EndToken(name); }},
               {.memory = 8192, .passes = 1}),
        house{context, bus, link, store, access, clock},
        ports(house, {"127.0.0.1", {cae, io, mon}}) {
    ports.Start();
    thread = std::jthread([this] { context.run(); });
  }

  ~TextPortsTest() override {
    Run([this] { ports.Stop(); });
    context.stop();
  }

  // On the thread of the ports; what it gives comes back.
  template <class Work>
  auto Run(Work work) -> decltype(work()) {
    std::packaged_task<decltype(work())()> task(std::move(work));
    auto result = task.get_future();
    boost::asio::post(context, [&task] { task(); });
    return result.get();
  }

  void Pass(seconds time) {
    Run([&] { clock.Pass(time); });
  }

  // An account, so that a token is asked for; the secret of one.
  std::string AddToken(access::Role role = access::Role::kUse) {
    boost::asio::co_spawn(context,
                          access.AddAccount("operator", "correct horse", access::Role::kAdmin),
                          boost::asio::use_future)
        .get();
    return Run([=, this] { return std::get<std::string>(access.AddToken("script", role)); });
  }

  std::vector<std::string> Sent() {
    return Run([this] { return fake_link.sent; });
  }

  FakeClock clock;
  FakeLink fake_link;
  FakeStore fake_store;
  boost::asio::io_context context{1};
  model::Bus bus{"3f9a21c0"};
  link::Link link;
  store::Store store;
  access::Access access;
  api::House house;
  uint16_t cae = static_cast<uint16_t>(FreePort());
  uint16_t io = static_cast<uint16_t>(FreePort());
  uint16_t mon = static_cast<uint16_t>(FreePort());
  TextPorts ports;
  std::jthread thread;
};

TEST_F(TextPortsTest, WhoGivesNoTokenIsClosedAfterThirtySeconds) {
  AddToken();
  Client client(io);
  ASSERT_TRUE(WaitUntil([this] { return Run([this] { return ports.ClientCount(); }) == 1; }));
  Pass(seconds(29));
  client.ExpectSilence();
  Pass(seconds(1));
  client.ExpectBytes(kAskForToken);
  client.ExpectClosed();
}

TEST_F(TextPortsTest, WhoDripsATokenIsClosedTheSame) {
  AddToken();
  Client client(io);
  client.Send("TOKEN ");
  ASSERT_TRUE(WaitUntil([this] { return AllIsRead(io); }));
  Pass(seconds(29));
  client.Send("abc");
  Pass(seconds(1));
  client.ExpectBytes(kAskForToken);
  client.ExpectClosed();
}

TEST_F(TextPortsTest, WhoGaveATokenStaysForEver) {
  const std::string secret = AddToken();
  Client client(io);
  client.Send("TOKEN " + secret + "\r\n");
  client.ExpectBytes(kGreeting);
  Pass(seconds(60));
  Client other(io);  // whose time is over before that of the first one is looked at again
  ASSERT_TRUE(WaitUntil([this] { return Run([this] { return ports.ClientCount(); }) == 2; }));
  Pass(seconds(30));
  other.ExpectBytes(kAskForToken);
  client.Send("nonsense\r\n");
  client.ExpectBytes("COE:Illegal command -> nonsense\r\n\r");
}

// A script that has a token works before there are accounts, too.
TEST_F(TextPortsTest, ATokenThatNobodyAsksForIsForNobodyElse) {
  for (const uint16_t port : {cae, io}) {
    Client client(port);
    client.ExpectBytes(port == cae ? kConsoleGreeting : kGreeting);
    client.Send("TOKEN s3cret\r\nEXIT\r\n");
    client.ExpectBytes("QELM: Bye Bye...\r\n\r");
    client.ExpectClosed();
  }
  EXPECT_EQ(Run([this] { return fake_link.asked; }), std::vector<std::string>{});
}

TEST_F(TextPortsTest, ASilentClientIsAskedWhetherItIsThere) {
  Client client(io);
  client.ExpectBytes(kGreeting);
  EXPECT_TRUE(WaitUntil([this] { return IsAskedWithin(io, seconds(30)); }));
}

TEST_F(TextPortsTest, ATokenThatIsTakenAwayCommandsNothingMore) {
  const std::string secret = AddToken();
  fake_link.then = [this](const std::string&) { access.RemoveToken("script"); };
  Client client(io);
  client.Send("TOKEN " + secret + "\r\n");
  client.ExpectBytes(kGreeting);
  client.Send("a5b0d01\r\na5b0d02\r\naElPAp0000tHello\r\na5b0d03\r\n");
  client.ExpectClosed();
  EXPECT_EQ(Sent(), std::vector<std::string>{"a5b0d01"});
}

TEST_F(TextPortsTest, ATokenOfALowerRoleIsRefusedByRoleAndNothingGoesOn) {
  struct Case {
    access::Role role;
    uint16_t port;
    const char* greeting;
    const char* line;
    const char* answer;
  };
  const Case cases[] = {
      {access::Role::kView, io, kGreeting, "a5b0d01",
       "COE:a caller of the role use is needed -> a5b0d01\r\n\r"},
      {access::Role::kView, io, kGreeting, "aElPAp0000tHello",
       "COE:a caller of the role use is needed -> aElPAp0000tHello\r\n\r"},
      {access::Role::kUse, cae, kConsoleGreeting, "DRVVER",
       "CIE: a caller of the role admin is needed\r\n\r>\r\n\r"},
      {access::Role::kView, mon, "QELM MON interface is ready\r\n\r", "", ""},
  };
  for (const Case& refused : cases) {
    const std::string secret = AddToken(refused.role);
    Client client(refused.port);
    client.Send("TOKEN " + secret + "\r\n" + refused.line + "\r\n");
    client.ExpectBytes(std::string(refused.greeting) + refused.answer);
    Run([this] { access.RemoveToken("script"); });
    client.ExpectClosed();
  }
  EXPECT_EQ(Sent(), std::vector<std::string>{});
  EXPECT_EQ(Run([this] { return fake_link.asked; }), std::vector<std::string>{});
}

TEST_F(TextPortsTest, TheBodyOfARequestOfABrowserIsNoCommand) {
  for (const char* const version : {"HTTP/1.0", "HTTP/1.1", "HTTP/2.0"}) {
    Client client(io);
    client.Send(std::string("POST / ") + version + "\r\nHost: 127.0.0.1\r\n\r\na5b0d00\r\n");
    client.ExpectClosed();
  }
  EXPECT_EQ(Sent(), std::vector<std::string>{});
}

TEST_F(TextPortsTest, NorIsThatOfARequestWhoseFirstLineIsTooLong) {
  Client client(io);
  client.Send("POST /" + std::string(2000, 'x') + " HTTP/1.1\r\n\r\na5b0d00\r\n");
  client.ExpectClosed();
  EXPECT_EQ(Sent(), std::vector<std::string>{});
}

// A page can have a session ticket of its own in the hello.
TEST_F(TextPortsTest, NorIsWhatStandsInAHelloOfTls) {
  Client client(io);
  client.Send(std::string("\x16\x03\x01\x02\x00\x01\x00", 7) + "ticket\r\na5b0d00\r\n");
  client.ExpectClosed();
  EXPECT_EQ(Sent(), std::vector<std::string>{});
}

TEST_F(TextPortsTest, AFirstLineMayHaveTheLettersOfADisplay) {
  Client client(io);
  client.ExpectBytes(kGreeting);
  client.Send("aElPAp0000t21 \xDF\r\n");
  EXPECT_TRUE(
      WaitUntil([this] { return Sent() == std::vector<std::string>{"aElPAp0000t21 \xDF"}; }));
}

TEST_F(TextPortsTest, ALaterLineMayLookLikeARequest) {
  Client client(io);
  client.ExpectBytes(kGreeting);
  client.Send("\r\nGET / HTTP/1.1\r\n");
  client.ExpectBytes("COE:Illegal command -> GET / HTTP/1.1\r\n\r");
}

// Nothing goes to the system between the reports.
TEST_F(TextPortsTest, AClientForWhomMoreThanSixtyFourKilobytesWaitIsClosed) {
  Client client(io);
  client.ExpectBytes(kGreeting);
  const std::string kilobyte(1024, 'x');
  EXPECT_EQ(Run([&] {
              for (int i = 0; i < 64; ++i) ports.ShowReport(kilobyte);
              return ports.ClientCount();
            }),
            0U);
}

// What the system holds for it comes on top of that.
TEST_F(TextPortsTest, AClientThatDoesNotReadIsClosedWellBeforeAMegabyte) {
  Client client(io);
  client.ExpectBytes(kGreeting);
  const std::string report(1000, 'x');
  for (int kilobyte = 0; kilobyte < 1000; ++kilobyte) Run([&] { ports.ShowReport(report); });
  EXPECT_EQ(Run([this] { return ports.ClientCount(); }), 0U);
}

TEST_F(TextPortsTest, SixtyKilobytesMayWaitForAClient) {
  Client client(io);
  client.ExpectBytes(kGreeting);
  const std::string report(1000, 'x');
  Run([&] {
    for (int kilobyte = 0; kilobyte < 60; ++kilobyte) ports.ShowReport(report);
  });
  for (int kilobyte = 0; kilobyte < 60; ++kilobyte) client.ExpectBytes(report + "\r\n\r");
}

}  // namespace
}  // namespace hub::text
