#include "api/Problem.h"

#include <algorithm>
#include <array>
#include <boost/json/value.hpp>
#include <new>
#include <string_view>
#include <utility>

namespace hub::api {

namespace {

struct StatusTitle {
  int status;
  std::string_view title;
};

// The last serves every status that is not in the table.
constexpr std::array<StatusTitle, 16> kTitles{{
    {400, "no JSON"},
    {401, "no login"},
    {403, "not allowed"},
    {404, "not there"},
    {405, "another verb"},
    {408, "too slow"},
    {409, "in conflict"},
    {413, "too long"},
    {415, "not JSON"},
    {422, "does not fit"},
    {426, "a WebSocket only"},
    {429, "too fast"},
    {431, "headers too long"},
    {503, "not available"},
    {504, "no answer"},
    {500, "a fault of the hub"},
}};

constexpr int kRetrySeconds = 1;

}  // namespace

boost::json::object Problem::ToJson() const {
  boost::json::object document{{"title", title}, {"status", status}, {"detail", detail}};
  document["where"] = where.empty() ? boost::json::value() : boost::json::value(where);
  if (retry_after) document["retry_after"] = *retry_after;
  return document;
}

Problem ProblemOf(int status, std::string detail, std::string where) {
  const auto* row = std::ranges::find(kTitles, status, &StatusTitle::status);
  if (row == kTitles.end()) --row;
  return {status, std::string(row->title), std::move(detail), std::move(where), std::nullopt};
}

Problem DoesNotFit(std::string where, std::string detail) {
  return ProblemOf(422, std::move(detail), std::move(where));
}

Problem ProblemOf(const std::exception& fault) {
  if (dynamic_cast<const std::bad_alloc*>(&fault) != nullptr)
    return RetryLater(503, "no memory for this just now", kRetrySeconds);
  return ProblemOf(500, fault.what());
}

Problem RetryLater(int status, std::string detail, int seconds) {
  Problem problem = ProblemOf(status, std::move(detail));
  problem.retry_after = seconds;
  return problem;
}

}  // namespace hub::api
