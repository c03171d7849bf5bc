#include "client/Refusal.h"

#include "base/Json.h"

namespace ctl {

namespace {

struct Advice {
  int status;
  const char* text;
};

constexpr Advice kAdvice[] = {
    {401,
     "give a token: --token-file FILE, or QELMCTL_TOKEN; an admin makes one with "
     "\"qelmctl token add\""},
    {403, "this wants a role that may do more; an admin can give one"},
    {404, "\"qelmctl cards\" lists what is there"},
    {429, "wait a little, and send less at once"},
    {503, "\"qelmctl doctor\" says what is wrong"},
};

const char* AdviceFor(int status) {
  for (const Advice& advice : kAdvice)
    if (advice.status == status) return advice.text;
  return nullptr;
}

}  // namespace

std::string Refusal::Sentence(int status, const boost::json::value& problem) {
  std::string text = TextAt(problem, "detail");
  if (text.empty()) text = TextAt(problem, "title");
  if (text.empty()) text = "the hub refuses with status " + std::to_string(status);
  const std::string where = TextAt(problem, "where");
  if (!where.empty()) text += " (" + where + ")";
  const char* advice = AdviceFor(status);
  if (advice != nullptr) text += "; " + std::string(advice);
  return text;
}

}  // namespace ctl
