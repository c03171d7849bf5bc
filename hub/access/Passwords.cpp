#include "access/Passwords.h"

#include <boost/asio/post.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <exception>

namespace hub::access {

namespace asio = boost::asio;

// Holds all that the thread works with: who waits for it may go before it is done.
struct Passwords::Job {
  enum class Kind { kHash, kCheck };

  Job(asio::io_context& context, Kind a_kind, std::string a_hash, std::string a_password)
      : kind(a_kind),
        hash(std::move(a_hash)),
        password(std::move(a_password)),
        done(context, asio::steady_timer::time_point::max()) {}

  const Kind kind;
  std::string hash;  // the result, or what to check against
  const std::string password;
  bool is_password = false;
  std::exception_ptr failure;
  bool finished = false;
  asio::steady_timer done;  // cancelled when it is
};

Passwords::Passwords(asio::io_context& context, PasswordCost cost)
    : context_(context), cost_(cost) {}

Passwords::~Passwords() { thread_.join(); }

asio::awaitable<std::string> Passwords::Hash(std::string password, std::string network) {
  const auto job = std::make_shared<Job>(context_, Job::Kind::kHash, "", std::move(password));
  auto run = Run(job, std::move(network));
  co_await std::move(run);
  co_return std::move(job->hash);
}

asio::awaitable<bool> Passwords::Check(std::string hash, std::string password,
                                       std::string network) {
  const auto job =
      std::make_shared<Job>(context_, Job::Kind::kCheck, std::move(hash), std::move(password));
  auto run = Run(job, std::move(network));
  co_await std::move(run);
  co_return job->is_password;
}

asio::awaitable<void> Passwords::Run(SharedJob job, std::string network) {
  waiting_.Push(network, job);
  StartNext();
  boost::system::error_code error;
  co_await job->done.async_wait(asio::redirect_error(asio::use_awaitable, error));
  if (!job->finished) throw boost::system::system_error(error);
  if (job->failure) std::rethrow_exception(job->failure);
}

void Passwords::StartNext() {
  if (busy_) return;
  const auto next = waiting_.Pop();
  if (!next) return;
  busy_ = true;
  asio::post(thread_, [this, job = *next] {
    try {
      if (job->kind == Job::Kind::kHash)
        job->hash = HashPassword(job->password, cost_);
      else
        job->is_password = IsPassword(job->hash, job->password);
    } catch (...) {
      job->failure = std::current_exception();
    }
    asio::post(context_, [this, job] { Finish(job); });
  });
}

void Passwords::Finish(const SharedJob& job) {
  ++computed_;
  busy_ = false;
  job->finished = true;
  job->done.cancel();
  StartNext();
}

}  // namespace hub::access
