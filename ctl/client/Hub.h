// Questions to the hub and its answers, over HTTP; and its live feed, over a WebSocket.
//
// One question at a time. The connection opens with the first question and is kept; one that the
// hub has closed meanwhile is opened again. What cannot be done throws Failure.
#pragma once

#include <boost/json/value.hpp>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "client/Target.h"

namespace ctl {

// What came, as it came and as data; null where nothing came.
struct Reply {
  int status = 0;
  std::string text;
  boost::json::value data;
};

class Hub {
 public:
  explicit Hub(Target target);
  ~Hub();
  Hub(const Hub&) = delete;
  Hub& operator=(const Hub&) = delete;

  // Where a board is named, the paths of cards and channels are that board's.
  //
  // Whatever the answer is. Throws Failure(kUnreachable) where none comes.
  Reply Try(std::string_view method, const std::string& path, std::string_view body = {});

  // An answer that is a yes. Throws Refusal where it is a no.
  Reply Ask(std::string_view method, const std::string& path, std::string_view body = {});
  Reply Get(const std::string& path) { return Ask("GET", path); }

  // Subscribes, and gives the reply and every notification after it, for as long as `sink` wants
  // more; with the events behind the number `after`. Throws Refusal, and Failure(kUnreachable)
  // when the connection ends.
  void Watch(std::optional<int64_t> after, const std::function<bool(const Reply& message)>& sink);

  const Target& Where() const { return target_; }

 private:
  struct Line;

  Reply TryOnce(std::string_view method, const std::string& path, std::string_view body);

  Target target_;
  std::unique_ptr<Line> line_;
};

// JSON of whatever answered. Throws Failure(kUnreachable): whoever speaks no JSON is no hub.
boost::json::value ParseJson(const Target& target, const std::string& text);

}  // namespace ctl
