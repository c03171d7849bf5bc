#include "http/Message.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>

namespace hub::http {

namespace {

struct StatusRow {
  int status;
  std::string_view reason;
};

constexpr StatusRow kStatuses[] = {
    {200, "OK"},
    {201, "Created"},
    {204, "No Content"},
    {400, "Bad Request"},
    {401, "Unauthorized"},
    {403, "Forbidden"},
    {404, "Not Found"},
    {405, "Method Not Allowed"},
    {409, "Conflict"},
    {413, "Content Too Large"},
    {415, "Unsupported Media Type"},
    {422, "Unprocessable Content"},
    {426, "Upgrade Required"},
    {429, "Too Many Requests"},
    {431, "Request Header Fields Too Large"},
    {500, "Internal Server Error"},
    {501, "Not Implemented"},
    {503, "Service Unavailable"},
};

std::string_view ReasonOf(int status) {
  const auto* row = std::ranges::find(kStatuses, status, &StatusRow::status);
  return row == std::end(kStatuses) ? "Unknown" : row->reason;
}

struct FieldRow {
  std::string_view name;
  std::string_view value;
};

// Scripts, styles and sockets come from here alone, and nobody frames, embeds or opens the page.
constexpr FieldRow kAlways[] = {
    {"Content-Security-Policy",
     "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; "
     "font-src 'self'; connect-src 'self'; manifest-src 'self'; base-uri 'none'; "
     "form-action 'none'; frame-ancestors 'none'"},
    {"X-Content-Type-Options", "nosniff"},
    {"X-Frame-Options", "DENY"},
    {"Referrer-Policy", "no-referrer"},
    {"Cross-Origin-Opener-Policy", "same-origin"},
    {"Cross-Origin-Embedder-Policy", "require-corp"},
    {"Cross-Origin-Resource-Policy", "same-origin"},
};

// "a%20b" as "a b"; nothing where an escape is broken.
std::optional<std::string> Unescape(std::string_view text) {
  std::string plain;
  for (size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '%') {
      plain += text[at];
      continue;
    }
    const std::string_view digits = text.substr(at + 1, 2);
    unsigned byte = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
    if (error != std::errc{} || end != digits.data() + 2) return {};
    plain += static_cast<char>(byte);
    at += 2;
  }
  return plain;
}

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

bool IsSameName(std::string_view left, std::string_view right) {
  return std::ranges::equal(left, right, {}, Lower, Lower);
}

std::optional<std::string_view> Request::Find(std::string_view name) const {
  for (const Field& field : fields)
    if (IsSameName(field.name, name)) return field.value;
  return {};
}

size_t Request::Count(std::string_view name) const {
  return static_cast<size_t>(std::ranges::count_if(
      fields, [name](const Field& field) { return IsSameName(field.name, name); }));
}

std::optional<Fields> ParseQuery(std::string_view query) {
  Fields fields;
  while (!query.empty()) {
    const std::string_view pair = query.substr(0, query.find('&'));
    query.remove_prefix(std::min(pair.size() + 1, query.size()));
    if (pair.empty()) continue;
    const size_t equals = std::min(pair.find('='), pair.size());
    std::string spaced(pair);
    std::ranges::replace(spaced, '+', ' ');
    const auto name = Unescape(std::string_view(spaced).substr(0, equals));
    const auto value = Unescape(std::string_view(spaced).substr(std::min(equals + 1, pair.size())));
    if (!name || !value) return {};
    fields.push_back({*name, *value});
  }
  return fields;
}

std::string HeadOf(const Response& response, bool keep_alive, std::string_view date) {
  std::string head;
  const auto add = [&head](std::string_view name, std::string_view value) {
    fmt::format_to(std::back_inserter(head), "{}: {}\r\n", name, value);
  };
  head = fmt::format("HTTP/1.1 {} {}\r\n", response.status, ReasonOf(response.status));
  add("Date", date);
  for (const FieldRow& row : kAlways) add(row.name, row.value);
  for (const Field& field : response.fields) add(field.name, field.value);
  if (response.status != 204) add("Content-Length", std::to_string(response.body.size()));
  add("Connection", keep_alive ? "keep-alive" : "close");
  return head + "\r\n";
}

}  // namespace hub::http
