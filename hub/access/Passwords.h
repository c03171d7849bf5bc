// Hashes and checks passwords in a thread of its own, one after the other, so that nothing else
// waits for a tenth of a second. What waits is bounded, and addresses take turns.
//
// Belongs to Access, is called on the io_context's thread, and goes when that runs no more.
#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/thread_pool.hpp>
#include <cstdint>
#include <memory>
#include <string>

#include "access/FairQueue.h"
#include "access/Secrets.h"

namespace hub::access {

class Passwords {
 public:
  Passwords(boost::asio::io_context& context, PasswordCost cost);
  ~Passwords();
  Passwords(const Passwords&) = delete;
  Passwords& operator=(const Passwords&) = delete;

  // Ask before each of the two below. Whoever is cancelled while he waits gets the exception of
  // asio; the hash is computed all the same.
  bool HasRoom(const std::string& network) const { return waiting_.HasRoom(network); }

  boost::asio::awaitable<std::string> Hash(std::string password, std::string network);
  boost::asio::awaitable<bool> Check(std::string hash, std::string password, std::string network);

  uint64_t Computed() const { return computed_; }  // hashes, of both kinds

 private:
  struct Job;
  using SharedJob = std::shared_ptr<Job>;

  boost::asio::awaitable<void> Run(SharedJob job, std::string network);
  void StartNext();
  void Finish(const SharedJob& job);

  boost::asio::io_context& context_;
  PasswordCost cost_;
  FairQueue<SharedJob> waiting_;
  bool busy_ = false;
  uint64_t computed_ = 0;
  boost::asio::thread_pool thread_{1};
};

}  // namespace hub::access
