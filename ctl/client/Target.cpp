#include "client/Target.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <string_view>

#include "base/Failure.h"

namespace ctl {

namespace {

constexpr char kHubPort[] = "5080";

[[noreturn]] void RefuseUrl(const std::string& url, const std::string& why) {
  throw Failure(kUsage, "\"" + url + "\" " + why + "; write it as http://board:5080");
}

bool TakePrefix(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

// The host, without the brackets of an IPv6 address; taken off `text`. Empty: it is none.
std::string TakeHost(std::string_view& text) {
  const bool bracketed = TakePrefix(text, "[");
  const size_t end = std::min(text.find_first_of(bracketed ? "]" : ":/?#"), text.size());
  if (bracketed && end == text.size()) return {};
  std::string host(text.substr(0, end));
  text.remove_prefix(end + (bracketed ? 1 : 0));
  return host;
}

bool IsPort(std::string_view text) {
  return !text.empty() && text.size() <= 5 &&
         std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

void SetUrl(Target& target, const std::string& url) {
  std::string_view rest = url;
  target.tls = TakePrefix(rest, "https://");
  if (!target.tls && !TakePrefix(rest, "http://")) RefuseUrl(url, "is no http:// or https:// URL");
  if (rest.ends_with('/')) rest.remove_suffix(1);
  if (rest.find('@') != std::string_view::npos)
    RefuseUrl(url.substr(0, url.find("//") + 2) + "...", "may hold no account or secret");
  target.host = TakeHost(rest);
  target.port = TakePrefix(rest, ":") ? std::string(rest) : kHubPort;
  if (!rest.empty() && rest != target.port) RefuseUrl(url, "has more than a host and a port");
  if (target.host.empty() || !IsPort(target.port)) RefuseUrl(url, "has no host or a wrong port");
}

std::string ReadToken(const std::string& file) {
  std::ifstream stream(file);
  std::string token;
  if (!stream) throw Failure(kUsage, "the token file " + file + ": " + std::strerror(errno));
  std::getline(stream, token);
  while (!token.empty() && (token.back() == '\r' || token.back() == ' ')) token.pop_back();
  if (token.empty())
    throw Failure(kUsage, "the token file " + file + " has no token in its first line");
  return token;
}

std::string NameOf(const Target& target) {
  if (target.host.empty()) return target.socket;
  const bool is_ipv6 = target.host.find(':') != std::string::npos;
  return (target.tls ? "https://" : "http://") + (is_ipv6 ? "[" + target.host + "]" : target.host) +
         ":" + target.port;
}

}  // namespace ctl
