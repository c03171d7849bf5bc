// account, token
#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>

#include "base/Json.h"
#include "base/Text.h"
#include "commands/All.h"
#include "commands/Prompt.h"

namespace ctl {

namespace json = boost::json;

namespace {

constexpr char kDefaultRole[] = "use";

std::string RoleOf(const Words& words) { return words.Has("ROLE") ? words["ROLE"] : kDefaultRole; }

// The list stands under its own name, or is the whole document.
const json::array& ListOf(const json::value& data, const char* name) {
  return data.is_array() ? data.get_array() : ItemsAt(data, name);
}

int List(Session& session, const char* name, const char* key) {
  const Reply reply = session.hub.Get(std::string("/api/") + name);
  if (session.PrintedJson(reply)) return kDone;
  Table table;
  for (const json::value& item : ListOf(reply.data, name))
    table.Add({{TextAt(item, key), Colour::kBold}, {TextAt(item, "role")}});
  session.Print(table.Text(session.paint));
  return kDone;
}

int Remove(Session& session, const Words& words, const std::string& folder) {
  session.PrintedJson(session.hub.Ask("DELETE", folder + UrlEscape(words["NAME"])));
  return kDone;
}

int Change(Session& session, const Words& words, const json::object& body) {
  session.PrintedJson(
      session.hub.Ask("PUT", "/api/accounts/" + UrlEscape(words["NAME"]), json::serialize(body)));
  return kDone;
}

}  // namespace

int AddAccount(Session& session, const Words& words) {
  const json::object body{{"account", words["NAME"]},
                          {"password", AskPassword(words["NAME"])},
                          {"role", RoleOf(words)}};
  session.PrintedJson(session.hub.Ask("POST", "/api/accounts", json::serialize(body)));
  return kDone;
}

int ListAccounts(Session& session, const Words& /*words*/) {
  return List(session, "accounts", "account");
}

int RemoveAccount(Session& session, const Words& words) {
  return Remove(session, words, "/api/accounts/");
}

int ChangePassword(Session& session, const Words& words) {
  return Change(session, words, {{"password", AskPassword(words["NAME"])}});
}

int ChangeRole(Session& session, const Words& words) {
  return Change(session, words, {{"role", words["ROLE"]}});
}

int AddToken(Session& session, const Words& words) {
  const json::object body{{"name", words["NAME"]}, {"role", RoleOf(words)}};
  const Reply reply = session.hub.Ask("POST", "/api/tokens", json::serialize(body));
  if (!session.PrintedJson(reply)) session.Print(Printable(TextAt(reply.data, "token")) + "\n");
  return kDone;
}

int ListTokens(Session& session, const Words& /*words*/) { return List(session, "tokens", "name"); }

int RemoveToken(Session& session, const Words& words) {
  return Remove(session, words, "/api/tokens/");
}

}  // namespace ctl
