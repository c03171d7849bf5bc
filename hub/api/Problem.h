// What went wrong with a request: what is wrong, where, and what would be right. Over HTTP a
// problem document (RFC 9457), over the WebSocket the data of an error.
#pragma once

#include <boost/json/object.hpp>
#include <exception>
#include <optional>
#include <string>

namespace hub::api {

struct Problem {
  int status = 500;   // as of HTTP
  std::string title;  // short, the same for the same status
  std::string detail;
  std::string where;               // the field; empty: none, null in the document
  std::optional<int> retry_after;  // seconds

  boost::json::object ToJson() const;
};

// With the title of its status.
Problem ProblemOf(int status, std::string detail, std::string where = "");

// A value or a field that does not fit: 422.
Problem DoesNotFit(std::string where, std::string detail);

// A fault of the hub's own: 503 where it had not the memory, else 500.
Problem ProblemOf(const std::exception& fault);

// Come again later: 429 and 503.
Problem RetryLater(int status, std::string detail, int seconds);

}  // namespace hub::api
