#include "access/Document.h"

#include <algorithm>
#include <boost/json.hpp>
#include <stdexcept>

#include "access/Secrets.h"

namespace hub::access {

namespace json = boost::json;

namespace {

constexpr int64_t kVersion = 1;
constexpr size_t kLongestName = 32;
constexpr size_t kHashDigits = 64;
constexpr std::string_view kHexDigits = "0123456789abcdef";
constexpr std::string_view kNameLetters =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_.";

[[noreturn]] void Refuse(const std::string& why) {
  throw std::runtime_error("the accounts cannot be read: " + why);
}

bool IsHash(std::string_view text) {
  return text.size() == kHashDigits && text.find_first_not_of(kHexDigits) == std::string_view::npos;
}

std::string Text(const json::object& object, std::string_view key) {
  const json::value* value = object.if_contains(key);
  if (value == nullptr || !value->is_string()) Refuse("no text \"" + std::string(key) + "\"");
  return std::string(value->get_string());
}

int64_t Number(const json::object& object, std::string_view key) {
  const json::value* value = object.if_contains(key);
  if (value == nullptr || !value->is_int64()) Refuse("no number \"" + std::string(key) + "\"");
  return value->get_int64();
}

std::string Name(const json::object& object, std::string_view key) {
  std::string name = Text(object, key);
  if (!IsName(name)) Refuse("a name that cannot be one");
  return name;
}

Role RoleOf(const json::object& object) {
  const auto role = ParseRole(Text(object, "role"));
  if (!role) Refuse("no such role");
  return *role;
}

std::string Secret(const json::object& object) {
  std::string secret = Text(object, "secret");
  if (!IsHash(secret)) Refuse("a secret that is no hash");
  return secret;
}

AccountRecord ToAccount(const json::object& object) {
  AccountRecord account{Name(object, "name"), RoleOf(object), Text(object, "password")};
  if (!LooksHashed(account.password)) Refuse("a password that is no hash");
  return account;
}

TokenRecord ToToken(const json::object& object) {
  return {Name(object, "name"), RoleOf(object), Secret(object)};
}

SessionRecord ToSession(const json::object& object) {
  return {Text(object, "id"), Name(object, "account"), Secret(object),
          model::Time(std::chrono::seconds(Number(object, "used")))};
}

json::object ToJson(const AccountRecord& account) {
  return {{"name", account.name}, {"role", NameOf(account.role)}, {"password", account.password}};
}

json::object ToJson(const TokenRecord& token) {
  return {{"name", token.name}, {"role", NameOf(token.role)}, {"secret", token.secret}};
}

json::object ToJson(const SessionRecord& session) {
  const auto used = std::chrono::floor<std::chrono::seconds>(session.used.time_since_epoch());
  return {{"id", session.id},
          {"account", session.account},
          {"secret", session.secret},
          {"used", int64_t{used.count()}}};
}

template <typename Record>
json::array ToArray(const std::vector<Record>& records) {
  json::array array;
  for (const Record& record : records) array.push_back(ToJson(record));
  return array;
}

template <typename Record>
std::vector<Record> ToRecords(const json::object& root, std::string_view key,
                              Record (*convert)(const json::object&)) {
  const json::value* list = root.if_contains(key);
  if (list == nullptr || !list->is_array()) Refuse("no list \"" + std::string(key) + "\"");
  std::vector<Record> records;
  for (const json::value& item : list->get_array()) {
    if (!item.is_object()) Refuse("a list of something else");
    records.push_back(convert(item.get_object()));
  }
  return records;
}

template <typename Record>
void RefuseTwins(const std::vector<Record>& records) {
  for (const Record& record : records)
    if (std::ranges::count(records, record.name, &Record::name) > 1) Refuse("a name occurs twice");
}

}  // namespace

bool IsName(std::string_view name) {
  return !name.empty() && name.size() <= kLongestName &&
         name.find_first_not_of(kNameLetters) == std::string_view::npos;
}

std::string ToText(const Document& document) {
  return json::serialize(json::object{{"version", kVersion},
                                      {"accounts", ToArray(document.accounts)},
                                      {"tokens", ToArray(document.tokens)},
                                      {"sessions", ToArray(document.sessions)}});
}

Document ParseDocument(std::string_view text) {
  boost::system::error_code error;
  const json::value value = json::parse(text, error);
  if (error || !value.is_object()) Refuse("no JSON object");
  const json::object& root = value.get_object();
  if (Number(root, "version") != kVersion) Refuse("another version's");
  Document document{ToRecords(root, "accounts", ToAccount), ToRecords(root, "tokens", ToToken),
                    ToRecords(root, "sessions", ToSession)};
  RefuseTwins(document.accounts);
  RefuseTwins(document.tokens);
  const auto& accounts = document.accounts;
  if (!accounts.empty() && std::ranges::count(accounts, Role::kAdmin, &AccountRecord::role) == 0)
    Refuse("no admin among them");
  return document;
}

}  // namespace hub::access
