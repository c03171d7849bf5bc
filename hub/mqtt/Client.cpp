#include "mqtt/Client.h"

#include <unistd.h>

#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <chrono>
#include <mutex>
#include <thread>
#include <utility>

#include "model/Fault.h"
#include "mqtt/Library.h"

namespace hub::mqtt {

namespace {

namespace asio = boost::asio;
using boost::system::error_code;
using Descriptor = asio::posix::stream_descriptor;

constexpr std::chrono::seconds kMostToGreet{12};
constexpr std::chrono::seconds kLookEvery{5};

}  // namespace

class Client::Session : public std::enable_shared_from_this<Session> {
 public:
  Session(asio::io_context& context, Greeting greeting)
      : library_(std::make_shared<Library>(std::move(greeting))),
        look_up_(std::make_shared<LookUp>(context)),
        socket_(context),
        has_news_(context, asio::steady_timer::time_point::max()),
        look_(context) {}

  void Connect(const Server& server);
  asio::awaitable<News> Next();
  void Close();

  template <class Action>
  void Do(Action action) {
    if (!is_ready_) return;
    action(*library_);
    Settle();
  }

 private:
  // Where a thread that looks up a name leaves its result. Nobody may be there any more.
  struct LookUp {
    explicit LookUp(asio::io_context& context) : waiting(&context) {}
    std::mutex mutex;
    asio::io_context* waiting;  // null: nobody
  };

  void Begin();
  void Settle();
  void Watch(Descriptor::wait_type what, bool& is_watching);
  void LookAfter(std::chrono::seconds pause);

  std::shared_ptr<Library> library_;  // the look-up's until it is ready
  std::shared_ptr<LookUp> look_up_;
  Descriptor socket_;  // a duplicate: the library closes its own when it likes
  bool is_ready_ = false;
  bool is_reading_ = false;
  bool is_writing_ = false;
  std::optional<News> early_end_;  // before it was ready
  asio::steady_timer has_news_;    // never expires: its cancellation wakes
  asio::steady_timer look_;
};

void Client::Session::Connect(const Server& server) {
  LookAfter(kMostToGreet);
  const auto work = [library = library_, look_up = look_up_, self = weak_from_this(), server] {
    try {
      library->Connect(server);
      const std::scoped_lock lock(look_up->mutex);
      if (look_up->waiting == nullptr) return;
      asio::post(*look_up->waiting, [self] {
        if (const auto session = self.lock()) session->Begin();
      });
    } catch (const std::exception& fault) {
      model::EndAtOnce(fault);
    }
  };
  std::thread(work).detach();
}

void Client::Session::Begin() {
  if (early_end_) return;
  is_ready_ = true;
  if (const int descriptor = library_->Socket(); descriptor >= 0) {
    const int twin = dup(descriptor);
    if (twin < 0) return Close();
    socket_.assign(twin);
  }
  Settle();
}

// After whatever may have changed something.
void Client::Session::Settle() {
  if (!library_->news.empty()) has_news_.cancel();
  if (library_->Socket() < 0) return Close();
  if (library_->news.size() < kMostNews) Watch(Descriptor::wait_read, is_reading_);
  if (library_->WantsToWrite()) Watch(Descriptor::wait_write, is_writing_);
}

void Client::Session::Watch(Descriptor::wait_type what, bool& is_watching) {
  if (is_watching || !socket_.is_open()) return;
  is_watching = true;
  socket_.async_wait(what, [self = shared_from_this(), what, &is_watching](error_code error) {
    is_watching = false;
    if (error || !self->socket_.is_open()) return;
    self->Do([what](Library& library) {
      what == Descriptor::wait_read ? library.Read(kMostNews) : library.Write();
    });
  });
}

void Client::Session::LookAfter(std::chrono::seconds pause) {
  look_.expires_after(pause);
  look_.async_wait([self = weak_from_this()](error_code error) {
    const auto session = self.lock();
    if (error || !session) return;
    if (!session->is_ready_ || !session->library_->is_connected) return session->Close();
    session->Do([](Library& library) { library.LookAfter(); });
    session->LookAfter(kLookEvery);
  });
}

asio::awaitable<News> Client::Session::Next() {
  error_code cancelled;
  const auto self = shared_from_this();
  auto token = asio::redirect_error(asio::use_awaitable, cancelled);
  while (!early_end_ && (!is_ready_ || library_->news.empty()))
    co_await has_news_.async_wait(token);
  if (early_end_) co_return *early_end_;
  News news = std::move(library_->news.front());
  library_->news.pop_front();
  if (socket_.is_open()) Settle();
  co_return news;
}

void Client::Session::Close() {
  Ended ended{.why = "it does not answer"};
  if (is_ready_)
    library_->End(std::move(ended));
  else
    early_end_ = std::move(ended);
  error_code ignored;
  socket_.close(ignored);
  look_.cancel();
  has_news_.cancel();
  const std::scoped_lock lock(look_up_->mutex);
  look_up_->waiting = nullptr;
}

Client::Client(asio::io_context& context, const Server& server, Greeting greeting)
    : session_(std::make_shared<Session>(context, std::move(greeting))) {
  session_->Connect(server);
}

Client::~Client() { session_->Close(); }

asio::awaitable<News> Client::Next() { return session_->Next(); }

int Client::Subscribe(const std::string& filter, Hearing hearing) {
  int id = 0;
  session_->Do([&](Library& library) { id = library.Subscribe(filter, hearing); });
  return id;
}

void Client::Unsubscribe(const std::string& filter) {
  session_->Do([&filter](Library& library) { library.Unsubscribe(filter); });
}

void Client::Publish(const Message& message) {
  session_->Do([&message](Library& library) { library.Publish(message); });
}

void Client::Disconnect() {
  session_->Do([](Library& library) { library.Disconnect(); });
}

void Client::Close() { session_->Close(); }

}  // namespace hub::mqtt
