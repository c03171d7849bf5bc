#include "access/Passwords.h"

#include <gtest/gtest.h>

#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/post.hpp>

namespace hub::access {
namespace {

namespace asio = boost::asio;

class PasswordsTest : public testing::Test {
 protected:
  asio::io_context context;
  Passwords passwords{context, PasswordCost{8192, 1}};
};

TEST_F(PasswordsTest, AHashFitsItsPassword) {
  std::string hash;
  asio::co_spawn(context, passwords.Hash("correct horse", ""),
                 [&hash](std::exception_ptr, std::string made) { hash = std::move(made); });
  context.run();
  int fits = 0;
  for (const char* password : {"correct horse", "wrong"})
    asio::co_spawn(context, passwords.Check(hash, password, ""),
                   [&fits](std::exception_ptr, bool is_password) { fits += is_password ? 1 : 0; });
  context.restart();
  context.run();
  EXPECT_EQ(fits, 1);
  EXPECT_EQ(passwords.Computed(), 3U);
}

TEST_F(PasswordsTest, NothingElseWaitsForAHash) {
  std::vector<std::string> order;
  asio::co_spawn(context, passwords.Hash("correct horse", ""),
                 [&order](std::exception_ptr, const std::string&) { order.push_back("hash"); });
  asio::post(context, [&order] { order.push_back("other"); });
  context.run();
  EXPECT_EQ(order, (std::vector<std::string>{"other", "hash"}));
}

TEST_F(PasswordsTest, WhoeverWaitsMayGo) {
  asio::cancellation_signal gone;
  bool has_failed = false;
  bool is_done = false;
  asio::co_spawn(
      context, passwords.Hash("correct horse", ""),
      [&is_done](std::exception_ptr failure, const std::string&) { is_done = !failure; });
  asio::co_spawn(
      context, passwords.Check("", "correct horse", ""),
      asio::bind_cancellation_slot(gone.slot(), [&has_failed](std::exception_ptr failure, bool) {
        has_failed = failure != nullptr;
      }));
  asio::post(context, [&gone] { gone.emit(asio::cancellation_type::terminal); });
  context.run();
  EXPECT_TRUE(has_failed);
  EXPECT_TRUE(is_done);
}

TEST_F(PasswordsTest, AFailureIsTheCallers) {
  Passwords greedy(context, PasswordCost{size_t{1} << 50U, 1});
  bool is_out_of_memory = false;
  asio::co_spawn(context, greedy.Hash("correct horse", ""),
                 [&is_out_of_memory](std::exception_ptr failure, const std::string&) {
                   try {
                     if (failure) std::rethrow_exception(failure);
                   } catch (const std::bad_alloc&) {
                     is_out_of_memory = true;
                   }
                 });
  context.run();
  EXPECT_TRUE(is_out_of_memory);
}

TEST(Passwords, GoWhileSomebodyWaits) {
  asio::io_context context;
  {
    Passwords passwords(context, PasswordCost{8192, 1});
    for (int i = 0; i < 3; ++i)
      asio::co_spawn(context, passwords.Hash("correct horse", ""),
                     [](std::exception_ptr, const std::string&) { FAIL() << "nobody is left"; });
    context.poll_one();
    context.poll_one();
  }
}

}  // namespace
}  // namespace hub::access
