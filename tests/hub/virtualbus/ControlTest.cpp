// The client of the control socket, with a bus that the test plays: a good one, a dead one, and
// ones that say what no bus says.
#include "virtualbus/Control.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <cstring>
#include <thread>

#include "kit/TempDir.h"

namespace hub::virtualbus {
namespace {

using Answers = std::optional<std::vector<Answer>>;

class ControlSocketTest : public testing::Test {
 protected:
  ~ControlSocketTest() override {
    if (bus_.joinable()) bus_.join();
    if (listener_ >= 0) close(listener_);
  }

  void Listen() {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path_.c_str(), sizeof(address.sun_path) - 1);
    listener_ = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
    ASSERT_EQ(listen(listener_, 1), 0);
  }

  // A bus that hears these orders and says that.
  void Play(const std::string& orders, const std::string& text) {
    Listen();
    bus_ = std::thread([this, orders, text] {
      const int client = accept(listener_, nullptr, nullptr);
      std::string heard(orders.size(), '\0');
      recv(client, heard.data(), heard.size(), MSG_WAITALL);
      EXPECT_EQ(heard, orders);
      send(client, text.data(), text.size(), MSG_NOSIGNAL);
      char end = 0;
      recv(client, &end, 1, 0);  // until it is closed
      close(client);
    });
  }

  Answers Ask(std::vector<std::string> orders,
              std::chrono::milliseconds patience = std::chrono::seconds(60)) {
    boost::asio::io_context context;
    Control control(context, path_, patience);
    Answers answers;
    boost::asio::co_spawn(context, control.Ask(std::move(orders)),
                          [&](const std::exception_ptr& fault, Answers given) {
                            if (fault) std::rethrow_exception(fault);
                            answers = std::move(given);
                          });
    context.run();
    return answers;
  }

  static constexpr std::chrono::milliseconds kShort{50};

 private:
  TempDir folder_;
  std::string path_ = folder_.Path("bus");
  int listener_ = -1;
  std::thread bus_;
};

TEST_F(ControlSocketTest, OrdersAreAnsweredOneByOne) {
  Play("status\npress 3 06\nshow 1\n",
       "  cable plugged\n  frames 4\nok\nok\nerror: no card at 1\n");
  EXPECT_EQ(Ask({"status", "press 3 06", "show 1"}),
            Answers({{{"  cable plugged", "  frames 4"}, ""}, {{}, ""}, {{}, "no card at 1"}}));
}

TEST_F(ControlSocketTest, WithoutABusThereIsNoAnswer) { EXPECT_EQ(Ask({"status"}), std::nullopt); }

TEST_F(ControlSocketTest, ADeadBusIsWaitedForNoLongerThanAllowed) {
  Listen();  // and nobody accepts
  EXPECT_EQ(Ask({"status"}, kShort), std::nullopt);
}

TEST_F(ControlSocketTest, ABusThatStopsInTheMiddleIsNoAnswer) {
  Play("status\nshow 3\n", "  cable plugged\nok\ncard 3 digi");
  EXPECT_EQ(Ask({"status", "show 3"}, kShort), std::nullopt);
}

TEST_F(ControlSocketTest, EndlessAnswersAreCutOff) {
  std::string lines;
  for (int i = 0; i < 1001; ++i) lines += "more\n";
  Play("help\n", lines);
  EXPECT_EQ(Ask({"help"}), std::nullopt);
}

TEST_F(ControlSocketTest, AnEndlessLineIsCutOff) {
  Play("help\n", std::string(10'000, 'x'));
  EXPECT_EQ(Ask({"help"}), std::nullopt);
}

}  // namespace
}  // namespace hub::virtualbus
