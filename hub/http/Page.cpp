#include "http/Page.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

#include "http/Answers.h"

namespace hub::http {

namespace {

struct TypeRow {
  std::string_view ending;
  std::string_view type;
};

constexpr TypeRow kTypes[] = {
    {".html", "text/html; charset=utf-8"},
    {".js", "text/javascript; charset=utf-8"},
    {".css", "text/css; charset=utf-8"},
    {".json", "application/json"},
    {".map", "application/json"},
    {".svg", "image/svg+xml"},
    {".png", "image/png"},
    {".ico", "image/vnd.microsoft.icon"},
    {".woff2", "font/woff2"},
    {".txt", "text/plain; charset=utf-8"},
    {".webmanifest", "application/manifest+json"},
};

struct CodingRow {
  std::string_view name;
  std::string_view ending;
};

// The smaller one first.
constexpr CodingRow kCodings[] = {{"br", ".br"}, {"gzip", ".gz"}};

constexpr std::string_view kNoPage =
    "<!doctype html>\n"
    "<html lang=\"en\">\n"
    "<meta charset=\"utf-8\">\n"
    "<title>qelm-hub</title>\n"
    "<h1>qelm-hub</h1>\n"
    "<p>The page is not installed. What there is:</p>\n"
    "<ul>\n"
    "<li><a href=\"/api/bus\">/api/bus</a>, <a href=\"/api/cards\">/api/cards</a>: the bus</li>\n"
    "<li><a href=\"/api/openapi.json\">/api/openapi.json</a>: all that can be asked</li>\n"
    "<li>/api/live: a WebSocket with every change</li>\n"
    "<li><a href=\"/metrics\">/metrics</a>, <a href=\"/healthz\">/healthz</a>: monitoring</li>\n"
    "</ul>\n";

bool IsPlain(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
         c == '_' || c == '.' || c == '/';
}

// "/", "/a.js", "/icons/b.svg"; a part that begins with a dot is hidden, or leads out.
bool IsName(std::string_view path) {
  return path.starts_with('/') && std::ranges::all_of(path, IsPlain) &&
         path.find("/.") == std::string_view::npos && path.find("//") == std::string_view::npos;
}

std::string_view TypeOf(std::string_view path) {
  for (const TypeRow& row : kTypes)
    if (path.ends_with(row.ending)) return row.type;
  return "application/octet-stream";
}

// "app-4F2K9Q1Z.js": whatever is in it, another content has another name.
bool HasHash(std::string_view path) {
  constexpr size_t kDigits = 8;
  const size_t dot = path.rfind('.');
  if (dot == std::string_view::npos || dot < kDigits + 1 || path[dot - kDigits - 1] != '-')
    return false;
  return std::ranges::all_of(path.substr(dot - kDigits, kDigits), [](char c) {
    return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
  });
}

std::string_view Trim(std::string_view text) {
  const size_t first = std::min(text.find_first_not_of(' '), text.size());
  text.remove_prefix(first);
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

// "gzip, br;q=0" takes gzip alone.
bool Takes(const Request& request, std::string_view coding) {
  std::string_view rest = request.Find("Accept-Encoding").value_or("");
  while (!rest.empty()) {
    const std::string_view item = rest.substr(0, rest.find(','));
    rest.remove_prefix(std::min(item.size() + 1, rest.size()));
    const std::string_view name = Trim(item.substr(0, item.find(';')));
    if (!IsSameName(name, coding)) continue;
    const size_t quality = item.find("q=");
    if (quality == std::string_view::npos) return true;
    return item.substr(quality + 2).find_first_of("123456789") != std::string_view::npos;
  }
  return false;
}

std::optional<std::string> Read(const std::string& name) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(name, error)) return {};
  std::ifstream file(name, std::ios::binary);
  if (!file) return {};
  return std::string(std::istreambuf_iterator<char>(file), {});
}

Response NoPage() {
  return {200,
          {{"Content-Type", "text/html; charset=utf-8"}, {"Cache-Control", "no-cache"}},
          std::string(kNoPage)};
}

}  // namespace

Response Page::Answer(const Request& request) const {
  if (!IsName(request.path)) return NotFound();
  const std::string path = request.path.ends_with('/') ? request.path + "index.html" : request.path;
  Response response;
  response.fields = {
      {"Content-Type", std::string(TypeOf(path))},
      {"Cache-Control", HasHash(path) ? "public, max-age=31536000, immutable" : "no-cache"},
      {"Vary", "Accept-Encoding"}};
  for (const CodingRow& row : kCodings) {
    if (folder_.empty() || !Takes(request, row.name)) continue;
    std::optional<std::string> bytes = Read(folder_ + path + std::string(row.ending));
    if (!bytes) continue;
    response.fields.push_back({"Content-Encoding", std::string(row.name)});
    response.body = std::move(*bytes);
    return response;
  }
  std::optional<std::string> bytes;
  if (!folder_.empty()) bytes = Read(folder_ + path);
  if (!bytes) return request.path == "/" ? NoPage() : NotFound();
  response.body = std::move(*bytes);
  return response;
}

}  // namespace hub::http
