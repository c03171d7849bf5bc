// One WebSocket of /api/live: requests in, answers and changes out.
//
// What waits to go out is bounded: answers by their number and size, since no further request is
// read before there is room; changes are not kept at all. A long answer waits for nobody but
// itself, and whoever does not take what is sent is dropped in time. One thread.
#pragma once

#include <boost/asio/awaitable.hpp>
#include <deque>
#include <memory>
#include <optional>
#include <string>

#include "http/Live.h"
#include "http/Signal.h"
#include "http/WebSocket.h"

namespace hub::http {

class LiveClient : public std::enable_shared_from_this<LiveClient> {
 public:
  static constexpr size_t kMostUnderWay = 16;              // requests not answered yet
  static constexpr size_t kReplyBytesToPause = 64 * 1024;  // no further request is read
  static constexpr size_t kReplyBytesToEnd = 192 * 1024;   // nor does it stay connected
  static constexpr int kKernelBytes = 64 * 1024;

  LiveClient(Live& live, std::shared_ptr<Stream> stream, access::Caller caller);

  boost::asio::awaitable<void> Run(Request request);  // to the end of everything it began

  void Tell() { news_.Raise(); }  // there is something new on the bus
  void PingWhenDue();
  void End(std::string_view reason);
  const access::Caller& Caller() const { return caller_; }

 private:
  using Self = std::shared_ptr<LiveClient>;

  static boost::asio::awaitable<void> Answer(Self self, std::string text);
  static boost::asio::awaitable<void> Write(Self self);

  boost::asio::awaitable<void> Read();
  bool HasRoom() const;
  void Queue(std::string text);
  SharedText Next();

  Live& live_;
  std::shared_ptr<WebSocket> socket_;
  access::Caller caller_;
  const model::Clock& clock_;
  model::SteadyTime pinged_;
  std::deque<SharedText> replies_;                             // not on their way yet
  size_t reply_bytes_ = 0;                                     // of these
  size_t writing_bytes_ = 0;                                   // of an answer that is on its way
  model::SteadyTime writes_until_ = model::SteadyTime::max();  // taken by then, or it is dropped
  size_t under_way_ = 0;          // requests whose answer has not gone out
  std::optional<uint64_t> told_;  // up to there; nothing: did not subscribe
  bool is_open_ = false;          // the handshake is behind it
  bool may_ask_ = true;           // until its login is over
  bool is_over_ = false;
  bool is_cut_ = false;  // it did not take its answers
  size_t workers_ = 0;   // coroutines besides Run
  Signal news_;          // something to write
  Signal room_;          // something was written, or ended
};

}  // namespace hub::http
