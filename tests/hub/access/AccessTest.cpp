#include "AccessTest.h"

#include <algorithm>

namespace hub::access {
namespace {

TEST_F(AccessTest, OutOfTheBoxThereIsNobody) {
  EXPECT_FALSE(access->HasAccounts());
  EXPECT_EQ(Outcome("", ""), "wrong");
  EXPECT_EQ(Outcome("admin", "admin"), "wrong");
  EXPECT_FALSE(access->BySecret("", kHere));
  EXPECT_FALSE(access->ByToken("", kHere));
  EXPECT_FALSE(access->TakeTicket("", kHere));
  EXPECT_TRUE(kept.empty());
}

TEST_F(AccessTest, TheFirstAccountIsAnAdmin) {
  EXPECT_EQ(Add("operator", Role::kView), Refusal::kFirstIsAdmin);
  EXPECT_EQ(Add("operator", Role::kUse), Refusal::kFirstIsAdmin);
  EXPECT_FALSE(access->HasAccounts());
  EXPECT_EQ(Add("operator", Role::kAdmin), std::nullopt);
  EXPECT_TRUE(access->HasAccounts());
  EXPECT_EQ(Add("guest", Role::kView), std::nullopt);
}

TEST_F(AccessTest, WithTheFirstAccountALoginIsNeeded) {
  Add("operator", Role::kAdmin);
  EXPECT_EQ(login_needed, 1);
  Add("guest", Role::kView);
  EXPECT_EQ(login_needed, 1);
}

TEST_F(AccessTest, TwoFirstAccountsAtOnceAreJudgedOneBehindTheOther) {
  std::vector<std::optional<Refusal>> refusals;
  for (int i = 0; i < 2; ++i)
    asio::co_spawn(context, access->AddAccount("operator", kPassword, Role::kAdmin),
                   [&refusals](std::exception_ptr, std::optional<Refusal> refusal) {
                     refusals.push_back(refusal);
                   });
  context.restart();
  context.run();
  EXPECT_EQ(refusals, (std::vector<std::optional<Refusal>>{std::nullopt, Refusal::kExists}));
  EXPECT_EQ(access->Accounts().size(), 1U);
}

TEST_F(AccessTest, NamesAndPasswordsHaveToFit) {
  EXPECT_EQ(Add("", Role::kAdmin), Refusal::kBadName);
  EXPECT_EQ(Add("token:x", Role::kAdmin), Refusal::kBadName);
  EXPECT_EQ(Add("<script>", Role::kAdmin), Refusal::kBadName);
  EXPECT_EQ(Add("operator", Role::kAdmin, "1234567"), Refusal::kShortPassword);
  EXPECT_EQ(Add("operator", Role::kAdmin, "\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4"),
            Refusal::kShortPassword);
  EXPECT_EQ(Add("operator", Role::kAdmin, std::string(1025, 'x')), Refusal::kLongPassword);
  EXPECT_EQ(Add("operator", Role::kAdmin, std::string(1024, 'x')), std::nullopt);
  EXPECT_EQ(Add("second", Role::kAdmin, "12345678"), std::nullopt);
  EXPECT_EQ(Add("operator", Role::kAdmin), Refusal::kExists);
  EXPECT_EQ(Change("second", "short", {}), Refusal::kShortPassword);
}

TEST_F(AccessTest, WhoLogsInHasASessionWithItsRole) {
  Add("operator", Role::kAdmin);
  Add("guest", Role::kView);
  const Session session = LogIn("guest");
  EXPECT_EQ(session.caller.account, "guest");
  EXPECT_EQ(session.caller.role, Role::kView);
  EXPECT_EQ(session.caller.address, kHere);
  EXPECT_NE(session.caller.session, session.secret);
  const auto caller = access->BySecret(session.secret, kThere);
  ASSERT_TRUE(caller);
  EXPECT_EQ(caller->account, "guest");
  EXPECT_EQ(caller->role, Role::kView);
  EXPECT_EQ(caller->session, session.caller.session);
  EXPECT_EQ(caller->address, kThere);
}

TEST_F(AccessTest, EmptyAndCutCredentialsAreWrong) {
  Add("operator", Role::kAdmin);
  const Session session = LogIn("operator");
  int network = 1;
  for (const char* password : {"", "correct", "correct horse ", "Correct horse", "operator"})
    EXPECT_EQ(Outcome("operator", password, "198.51.100." + std::to_string(++network)), "wrong");
  for (const char* name : {"", "operato", "operator ", "Operator", "*"})
    EXPECT_EQ(Outcome(name, kPassword), "wrong") << name;
  const std::string& secret = session.secret;
  for (const std::string& wrong : {std::string(), secret.substr(1), secret.substr(0, 42),
                                   secret + "=", session.caller.session})
    EXPECT_FALSE(access->BySecret(wrong, kHere)) << wrong;
}

TEST_F(AccessTest, AnUnknownNameCostsAHashAsAKnownOne) {
  Add("operator", Role::kAdmin);
  const uint64_t before = access->Count().hashed;
  EXPECT_EQ(Outcome("operator", "wrong password"), "wrong");
  EXPECT_EQ(access->Count().hashed, before + 1);
  EXPECT_EQ(Outcome("nobody", "wrong password"), "wrong");
  EXPECT_EQ(access->Count().hashed, before + 2);
  EXPECT_EQ(Outcome("nobody", kPassword), "wrong") << "somebody else's password";
  EXPECT_EQ(access->Count().hashed, before + 3);
  EXPECT_EQ(Outcome(std::string(1000, 'x'), ""), "wrong");
  EXPECT_EQ(access->Count().hashed, before + 4);
}

TEST_F(AccessTest, KnownAndUnknownNamesAreThrottledAlike) {
  Add("operator", Role::kAdmin);
  for (const char* name : {"operator", "nobody"}) {
    for (int i = 0; i < 5; ++i) EXPECT_EQ(Outcome(name, "wrong password"), "wrong");
    EXPECT_EQ(Outcome(name, "wrong password"), "1");
  }
  clock.Pass(1s);
  for (const char* name : {"operator", "nobody"}) {
    EXPECT_EQ(Outcome(name, "wrong password"), "wrong");
    EXPECT_EQ(Outcome(name, "wrong password"), "2");
  }
}

TEST_F(AccessTest, WhoHasToWaitIsNotLetInWithTheRightPasswordEither) {
  Add("operator", Role::kAdmin);
  for (int i = 0; i < 5; ++i) Outcome("operator", "wrong password");
  const uint64_t hashed = access->Count().hashed;
  EXPECT_EQ(Outcome("operator", kPassword), "1");
  EXPECT_EQ(access->Count().hashed, hashed) << "no work for who has to wait";
  clock.Pass(1s);
  EXPECT_EQ(Outcome("operator", kPassword), "in");
  EXPECT_EQ(Outcome("operator", "wrong password"), "wrong");
}

TEST_F(AccessTest, OwnLoginsInBetweenDoNotHelpToGuessAnothersPassword) {
  Add("operator", Role::kAdmin);
  Add("guest", Role::kView);
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(Outcome("operator", "wrong password"), "wrong");
    EXPECT_EQ(Outcome("guest", kPassword), "in");
  }
  EXPECT_EQ(Outcome("operator", "wrong password"), "1");
}

TEST_F(AccessTest, OtherAddressesAndAccountsAreNotSlowed) {
  Add("operator", Role::kAdmin);
  Add("guest", Role::kView);
  for (int i = 0; i < 6; ++i) Outcome("operator", "wrong password");
  EXPECT_EQ(Outcome("operator", kPassword, kThere), "in");
  EXPECT_EQ(Outcome("guest", kPassword), "in");
}

TEST_F(AccessTest, TriesAtOnceCountAsMany) {
  Add("operator", Role::kAdmin);
  // Four of an address wait to be hashed, one is under way.
  EXPECT_EQ(TryAtOnce({"operator", "operator", "operator", "operator", "operator", "operator"}),
            (std::vector<std::string>{"1", "wrong", "wrong", "wrong", "wrong", "wrong"}));
  EXPECT_EQ(Outcome("operator", kPassword), "1");
}

TEST_F(AccessTest, AnAddressThatTriesManyNamesWaitsForItself) {
  Add("operator", Role::kAdmin);
  const uint64_t hashed = access->Count().hashed;
  const std::vector<std::string> outcomes =
      TryAtOnce({"a", "b", "c", "d", "e", "f", "g", "h", "i", "j"});
  EXPECT_EQ(std::ranges::count(outcomes, "1"), 5);
  EXPECT_EQ(std::ranges::count(outcomes, "wrong"), 5);
  EXPECT_EQ(access->Count().hashed, hashed + 5);
}

TEST_F(AccessTest, ALogOutEndsTheSession) {
  Add("operator", Role::kAdmin);
  const Session session = LogIn("operator");
  const Session other = LogIn("operator");
  access->LogOut(session.caller.session);
  EXPECT_FALSE(access->BySecret(session.secret, kHere));
  EXPECT_TRUE(access->BySecret(other.secret, kHere));
  EXPECT_EQ(ended, std::vector<std::string>{session.caller.session});
  access->LogOut(session.caller.session);
  access->LogOut("");
  EXPECT_EQ(ended.size(), 1U);
}

TEST_F(AccessTest, ANewPasswordEndsAllSessionsOfTheAccount) {
  Add("operator", Role::kAdmin);
  Add("guest", Role::kView);
  const Session one = LogIn("guest");
  const Session two = LogIn("guest");
  const Session admin = LogIn("operator");
  EXPECT_EQ(Change("guest", "another password", {}), std::nullopt);
  EXPECT_EQ(ended, (std::vector<std::string>{one.caller.session, two.caller.session}));
  EXPECT_FALSE(access->BySecret(one.secret, kHere));
  EXPECT_FALSE(access->BySecret(two.secret, kHere));
  EXPECT_TRUE(access->BySecret(admin.secret, kHere));
  EXPECT_EQ(Outcome("guest", kPassword), "wrong");
  EXPECT_EQ(Outcome("guest", "another password"), "in");
}

TEST_F(AccessTest, ANewRoleEndsAllSessionsOfTheAccount) {
  Add("operator", Role::kAdmin);
  Add("guest", Role::kUse);
  const Session session = LogIn("guest");
  EXPECT_EQ(Change("guest", {}, Role::kUse), std::nullopt) << "the same";
  EXPECT_TRUE(access->BySecret(session.secret, kHere));
  EXPECT_EQ(Change("guest", {}, Role::kView), std::nullopt);
  EXPECT_EQ(ended, std::vector<std::string>{session.caller.session});
  EXPECT_FALSE(access->BySecret(session.secret, kHere));
  EXPECT_EQ(LogIn("guest").caller.role, Role::kView);
}

TEST_F(AccessTest, ARemovedAccountEndsItsSessionsAndIsUnknown) {
  Add("operator", Role::kAdmin);
  Add("guest", Role::kView);
  const Session session = LogIn("guest");
  EXPECT_EQ(access->RemoveAccount("guest"), std::nullopt);
  EXPECT_EQ(ended, std::vector<std::string>{session.caller.session});
  EXPECT_FALSE(access->BySecret(session.secret, kHere));
  EXPECT_EQ(Outcome("guest", kPassword), "wrong");
  EXPECT_EQ(access->RemoveAccount("guest"), Refusal::kMissing);
  EXPECT_EQ(Change("guest", {}, Role::kUse), Refusal::kMissing);
  Add("guest", Role::kUse);
  EXPECT_FALSE(access->BySecret(session.secret, kHere)) << "a new one of the same name";
}

TEST_F(AccessTest, AnAccountThatGoesWhileItsPasswordIsCheckedIsNotLetIn) {
  Add("operator", Role::kAdmin);
  Add("guest", Role::kView);
  std::string outcome;
  asio::co_spawn(context, access->LogIn("guest", kPassword, kHere),
                 [&outcome](std::exception_ptr, const Tried& tried) { outcome = Word(tried); });
  context.restart();
  context.run_one();
  ASSERT_EQ(outcome, "");
  access->RemoveAccount("guest");
  context.run();
  EXPECT_EQ(outcome, "wrong");
}

TEST_F(AccessTest, AnOldPasswordThatIsCheckedWhileTheNewOneComesIsNotLetIn) {
  Add("operator", Role::kAdmin);
  std::string outcome;
  asio::co_spawn(context, access->ChangeAccount("operator", "another password", {}),
                 [](std::exception_ptr, std::optional<Refusal>) {});
  asio::co_spawn(context, access->LogIn("operator", kPassword, kHere),
                 [&outcome](std::exception_ptr, const Tried& tried) { outcome = Word(tried); });
  context.restart();
  context.run();
  EXPECT_EQ(outcome, "wrong");
}

TEST_F(AccessTest, TheLastAdminCanNeitherGoNorBeLowered) {
  Add("operator", Role::kAdmin);
  Add("guest", Role::kView);
  EXPECT_EQ(access->RemoveAccount("operator"), Refusal::kLastAdmin);
  EXPECT_EQ(Change("operator", {}, Role::kUse), Refusal::kLastAdmin);
  EXPECT_EQ(Change("operator", "another password", Role::kView), Refusal::kLastAdmin);
  EXPECT_EQ(Outcome("operator", kPassword), "in") << "nothing of it was done";
  EXPECT_EQ(Change("operator", "another password", Role::kAdmin), std::nullopt);
  EXPECT_EQ(Change("guest", {}, Role::kAdmin), std::nullopt);
  EXPECT_EQ(access->RemoveAccount("operator"), std::nullopt);
  EXPECT_EQ(access->RemoveAccount("guest"), Refusal::kLastAdmin);
}

TEST_F(AccessTest, TwoAdminsWhoAreLoweredAtOnceLeaveOne) {
  Add("one", Role::kAdmin);
  Add("two", Role::kAdmin);
  std::vector<std::optional<Refusal>> refusals;
  for (const char* name : {"one", "two"})
    asio::co_spawn(context, access->ChangeAccount(name, "another password", Role::kView),
                   [&refusals](std::exception_ptr, std::optional<Refusal> refusal) {
                     refusals.push_back(refusal);
                   });
  context.restart();
  context.run();
  EXPECT_EQ(refusals, (std::vector<std::optional<Refusal>>{std::nullopt, Refusal::kLastAdmin}));
}

TEST_F(AccessTest, AllIsThereAfterARestart) {
  Add("operator", Role::kAdmin);
  Add("guest", Role::kView);
  const std::string token = std::get<std::string>(access->AddToken("scripts", Role::kUse));
  const Session session = LogIn("guest");
  Restart();
  EXPECT_TRUE(access->HasAccounts());
  EXPECT_EQ(access->BySecret(session.secret, kHere)->role, Role::kView);
  EXPECT_EQ(access->ByToken(token, kHere)->role, Role::kUse);
  EXPECT_EQ(Outcome("operator", kPassword), "in");
  EXPECT_EQ(login_needed, 1);
}

TEST_F(AccessTest, WhatHasEndedStaysEndedAfterARestart) {
  Add("operator", Role::kAdmin);
  Add("guest", Role::kView);
  const Session logged_out = LogIn("operator");
  const Session removed = LogIn("guest");
  const std::string token = std::get<std::string>(access->AddToken("scripts", Role::kUse));
  access->LogOut(logged_out.caller.session);
  access->RemoveAccount("guest");
  access->RemoveToken("scripts");
  Restart();
  EXPECT_FALSE(access->BySecret(logged_out.secret, kHere));
  EXPECT_FALSE(access->BySecret(removed.secret, kHere));
  EXPECT_FALSE(access->ByToken(token, kHere));
  EXPECT_EQ(access->Accounts().size(), 1U);
}

TEST_F(AccessTest, NoSecretIsKept) {
  Add("operator", Role::kAdmin);
  const Session session = LogIn("operator");
  const std::string token = std::get<std::string>(access->AddToken("scripts", Role::kUse));
  for (const std::string& text : kept)
    for (const std::string& secret : {std::string(kPassword), session.secret, token})
      EXPECT_EQ(text.find(secret), std::string::npos);
}

TEST_F(AccessTest, AUseIsKeptOnceAnHour) {
  Add("operator", Role::kAdmin);
  const Session session = LogIn("operator");
  const size_t before = kept.size();
  for (int i = 0; i < 100; ++i) access->BySecret(session.secret, kHere);
  EXPECT_EQ(kept.size(), before);
  clock.Pass(1h);
  access->BySecret(session.secret, kHere);
  EXPECT_EQ(kept.size(), before + 1);
  clock.Pass(1h);
  access->NoteUse(session.caller.session);
  EXPECT_EQ(kept.size(), before + 2);
}

TEST_F(AccessTest, AccountsThatCannotBeReadKeepTheHubDown) {
  for (const char* text : {"", "{", "[]", R"({"version":2})"})
    EXPECT_THROW(Start(text), std::runtime_error) << text;
}

TEST_F(AccessTest, CountsWhatHappened) {
  Add("operator", Role::kAdmin);
  LogIn("operator");
  for (int i = 0; i < 6; ++i) Outcome("operator", "wrong password");
  const Access::Counters counters = access->Count();
  EXPECT_EQ(counters.logins, 1U);
  EXPECT_EQ(counters.wrong, 5U);
  EXPECT_EQ(counters.throttled, 1U);
  EXPECT_EQ(counters.hashed, 7U);
}

}  // namespace
}  // namespace hub::access
