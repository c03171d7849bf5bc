#include "http/Answers.h"

#include "api/Json.h"
#include "http/Limits.h"

namespace hub::http {

Response Json(std::string text) {
  return {
      200, {{"Content-Type", "application/json"}, {"Cache-Control", "no-store"}}, std::move(text)};
}

Response Refusal(const api::Problem& problem) {
  Response response{problem.status,
                    {{"Content-Type", "application/problem+json"}, {"Cache-Control", "no-store"}},
                    api::ToText(problem.ToJson())};
  if (problem.retry_after)
    response.fields.push_back({"Retry-After", std::to_string(*problem.retry_after)});
  if (problem.status == 401) response.fields.push_back({"WWW-Authenticate", "Bearer"});
  return response;
}

Response NotFound() { return Refusal(api::ProblemOf(404, "there is nothing under this path")); }

Response MalformedAnswer(int status) {
  switch (status) {
    case 413:
      return Refusal(api::ProblemOf(413, "a body has at most 65536 bytes"));
    case 431:
      return Refusal(api::ProblemOf(431, "the header has at most 8192 bytes"));
    default:
      return Refusal(api::ProblemOf(400, "this is no request of HTTP/1.1"));
  }
}

}  // namespace hub::http
