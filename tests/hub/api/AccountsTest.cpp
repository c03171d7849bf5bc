// Sessions, accounts and tokens, as far as the methods go.
#include "api/ApiTest.h"

namespace hub::api {
namespace {

using access::Role;

class AccountsTest : public ApiTest {
 protected:
  AccountsTest() { access.accounts = {{"operator", Role::kUse}, {"root", Role::kAdmin}}; }

  std::string TakeAskedOfAccess() {
    std::string text;
    for (const std::string& each : std::exchange(access.asked, {})) text += each + ';';
    return text;
  }

  // No secret is in the journal.
  void ExpectNoSecretNoted() {
    for (const std::string& entry : store.journal)
      EXPECT_EQ(entry.find("secret"), std::string::npos) << entry;
  }
};

TEST_F(AccountsTest, ALogInBringsACookie) {
  caller = {"", Role::kNone, "", "10.0.0.2"};
  const Outcome outcome =
      Call("session.open", R"({"account":"operator","password":"secret word"})");
  EXPECT_EQ(outcome.text, R"({"account":"operator","role":"use"})");
  EXPECT_EQ(outcome.cookie, "cookie-of-operator");
  EXPECT_EQ(TakeAskedOfAccess(), "log-in operator 'secret word' from 10.0.0.2;");
  EXPECT_EQ(LastNote(), "access operator: log-in");
  ExpectNoSecretNoted();
}

TEST_F(AccountsTest, AFailedLogInSaysNeitherNameNorPassword) {
  caller = {"", Role::kNone, "", "10.0.0.2"};
  access.refusal = FakeAccess::kWrong;
  const Outcome outcome = Call("session.open", R"({"account":"my secret","password":"secret"})");
  EXPECT_EQ(outcome.problem->status, 401);
  EXPECT_EQ(outcome.problem->detail, "the name or the password is wrong");
  EXPECT_EQ(outcome.cookie, std::nullopt);
  EXPECT_EQ(LastNote(), "access : a log-in failed, from 10.0.0.2");
  ExpectNoSecretNoted();
}

TEST_F(AccountsTest, TooManyTriesAreToldWhenTheNextOneIs) {
  caller = {"", Role::kNone, "", "10.0.0.2"};
  access.wait = 7;
  const Outcome outcome = Call("session.open", R"({"account":"operator","password":"x"})");
  EXPECT_EQ(outcome.problem->status, 429);
  EXPECT_EQ(outcome.problem->retry_after, 7);
  EXPECT_EQ(outcome.problem->detail, "too many tries; the next one in 7 s");
}

TEST_F(AccountsTest, ALogOutEndsTheSessionAndTakesTheCookie) {
  const Outcome outcome = Call("session.close");
  EXPECT_EQ(outcome.text, R"({"account":null,"role":null})");
  EXPECT_EQ(outcome.cookie, "");
  EXPECT_EQ(TakeAskedOfAccess(), "log-out session-7;");
  EXPECT_EQ(LastNote(), "access operator: log-out");
  caller.session.clear();
  EXPECT_EQ(Call("session.close").cookie, "");
  EXPECT_EQ(TakeAskedOfAccess(), "");
}

TEST_F(AccountsTest, EverybodyMayAskWhoTheyAre) {
  ExpectResult("session.who", "{}", R"({"account":"operator","role":"admin"})");
  caller = {"", Role::kAdmin, "", "127.0.0.1"};
  ExpectResult("session.who", "{}", R"({"account":null,"role":"admin"})");
  caller = {};
  ExpectResult("session.who", "{}", R"({"account":null,"role":null})");
}

TEST_F(AccountsTest, ATicketIsForWhoeverIsLoggedIn) {
  ExpectResult("session.ticket", "{}", R"({"ticket":"ticket-of-operator"})");
  caller = {};
  ExpectProblem("session.ticket", "{}", 401, "", "log in first");
  ExpectNoSecretNoted();
}

TEST_F(AccountsTest, AccountsAreListedAddedChangedAndRemoved) {
  ExpectResult("accounts.list", "{}", R"({"accounts":[{"account":"operator","role":"use"},
                                                      {"account":"root","role":"admin"}]})");
  ExpectResult("accounts.add", R"({"account":"guest","password":"secret word","role":"view"})",
               R"({"accounts":[{"account":"guest","role":"view"},
                   {"account":"operator","role":"use"}, {"account":"root","role":"admin"}]})");
  EXPECT_EQ(LastNote(), "access operator: account guest added, role view");
  Result("accounts.change", R"({"account":"guest","role":"use","password":"secret two"})");
  EXPECT_EQ(LastNote(), "access operator: account guest: new password, role use");
  Result("accounts.change", R"({"account":"guest","password":"secret two"})");
  Result("accounts.change", R"({"account":"guest","role":"admin"})");
  Result("accounts.remove", R"({"account":"guest"})");
  EXPECT_EQ(LastNote(), "access operator: account guest removed");
  EXPECT_EQ(TakeAskedOfAccess(),
            "add guest view 'secret word';change guest use 'secret two';"
            "change guest 'secret two';change guest admin;remove guest;");
  ExpectNoSecretNoted();
}

TEST_F(AccountsTest, AChangeMustChangeSomething) {
  ExpectProblem("accounts.change", R"({"account":"operator"})", 422, "",
                "a password or a role is to be given");
  ExpectProblem("accounts.add", R"({"account":"a","password":"secret word","role":"root"})", 422,
                "role", "role takes view, use or admin");
  ExpectProblem("accounts.change", R"({"account":"a","role":""})", 422, "role",
                "role takes view, use or admin");
}

TEST_F(AccountsTest, WhatIsRefusedIsWorded) {
  struct Row {
    FakeAccess::Refusal refusal;
    int status;
    const char* where;
    const char* detail;
  };
  for (const Row& row : {
           Row{FakeAccess::kExists, 409, "account", "the name is taken"},
           Row{FakeAccess::kMissing, 404, "account", "nobody has this name"},
           Row{FakeAccess::kLastAdmin, 409, "", "the last admin would be gone"},
           Row{FakeAccess::kFirstIsAdmin, 422, "role", "the first account has to be an admin"},
           Row{FakeAccess::kBadName, 422, "account",
               "a name has 1 to 32 letters, digits, \"-\", \"_\" and \".\""},
           Row{FakeAccess::kShortPassword, 422, "password", "a password has at least 8 characters"},
           Row{FakeAccess::kLongPassword, 422, "password",
               "a password has at most 1024 characters"},
           Row{FakeAccess::kBusy, 429, "", "too many passwords wait to be checked"},
       }) {
    access.refusal = row.refusal;
    for (const char* method : {"accounts.add", "accounts.change"})
      ExpectProblem(method, R"({"account":"a","password":"secret","role":"use"})", row.status,
                    row.where, row.detail);
    ExpectProblem("accounts.remove", R"({"account":"a"})", row.status, row.where, row.detail);
  }
  EXPECT_TRUE(store.journal.empty());
}

TEST_F(AccountsTest, ATokenIsShownOnce) {
  ExpectResult("tokens.add", R"({"name":"script","role":"view"})",
               R"({"name":"script","role":"view","token":"secret-of-script"})");
  EXPECT_EQ(LastNote(), "access operator: token script added, role view");
  ExpectResult("tokens.list", "{}", R"({"tokens":[{"name":"script","role":"view"}]})");
  ExpectResult("tokens.remove", R"({"name":"script"})", R"({"tokens":[]})");
  EXPECT_EQ(LastNote(), "access operator: token script removed");
  ExpectNoSecretNoted();
  access.refusal = FakeAccess::kExists;
  ExpectProblem("tokens.add", R"({"name":"script","role":"view"})", 409, "name",
                "the name is taken");
  access.refusal = FakeAccess::kMissing;
  ExpectProblem("tokens.remove", R"({"name":"script"})", 404, "name", "nobody has this name");
}

}  // namespace
}  // namespace hub::api
