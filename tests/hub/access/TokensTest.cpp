// Tokens, and tickets for what cannot send headers.
#include "AccessTest.h"

namespace hub::access {
namespace {

TEST_F(AccessTest, ATokenIsShownOnceAndKnownByItsHash) {
  const auto token = access->AddToken("scripts", Role::kUse);
  const std::string secret = std::get<std::string>(token);
  const auto caller = access->ByToken(secret, kHere);
  ASSERT_TRUE(caller);
  EXPECT_EQ(caller->account, "token:scripts");
  EXPECT_EQ(caller->role, Role::kUse);
  EXPECT_EQ(caller->session, "");
  EXPECT_EQ(caller->address, kHere);
  EXPECT_EQ(kept.back().find(secret), std::string::npos);
  for (const std::string& wrong : {std::string(), secret.substr(1), secret + "a"})
    EXPECT_FALSE(access->ByToken(wrong, kHere));
  EXPECT_FALSE(access->BySecret(secret, kHere)) << "no cookie";
}

TEST_F(AccessTest, TokensHaveNamesOfTheirOwn) {
  access->AddToken("scripts", Role::kUse);
  EXPECT_EQ(std::get<Refusal>(access->AddToken("scripts", Role::kView)), Refusal::kExists);
  EXPECT_EQ(std::get<Refusal>(access->AddToken("a b", Role::kView)), Refusal::kBadName);
  EXPECT_EQ(access->RemoveToken("others"), Refusal::kMissing);
  ASSERT_EQ(access->Tokens().size(), 1U);
  EXPECT_EQ(access->Tokens()[0].name, "scripts");
  EXPECT_EQ(access->Tokens()[0].role, Role::kUse);
}

TEST_F(AccessTest, ARemovedTokenEndsItsConnections) {
  const std::string secret = std::get<std::string>(access->AddToken("scripts", Role::kUse));
  EXPECT_EQ(access->RemoveToken("scripts"), std::nullopt);
  EXPECT_EQ(tokens_ended, std::vector<std::string>{"scripts"});
  EXPECT_FALSE(access->ByToken(secret, kHere));
}

TEST_F(AccessTest, ATicketIsGoodOnceFromTheSameAddress) {
  Add("operator", Role::kAdmin);
  const Session session = LogIn("operator");
  const std::string ticket = access->MakeTicket(session.caller);
  const auto caller = access->TakeTicket(ticket, kHere);
  ASSERT_TRUE(caller);
  EXPECT_EQ(caller->session, session.caller.session);
  EXPECT_FALSE(access->TakeTicket(ticket, kHere));
  EXPECT_FALSE(access->TakeTicket(access->MakeTicket(session.caller), kThere));
  const std::string late = access->MakeTicket(session.caller);
  clock.Pass(5001ms);
  EXPECT_FALSE(access->TakeTicket(late, kHere));
}

TEST_F(AccessTest, ATicketDoesNotOutliveWhatItWasMadeFor) {
  access->AddToken("scripts", Role::kUse);
  const Caller nobody{"", Role::kAdmin, "", "127.0.0.1"};
  const Caller scripts{"token:scripts", Role::kUse, "", kHere};
  const Caller local{"", Role::kAdmin, "", ""};
  EXPECT_TRUE(access->TakeTicket(access->MakeTicket(nobody), "127.0.0.1"));
  EXPECT_TRUE(access->TakeTicket(access->MakeTicket(scripts), kHere));
  const std::string of_nobody = access->MakeTicket(nobody);
  const std::string of_scripts = access->MakeTicket(scripts);
  const std::string of_local = access->MakeTicket(local);
  Add("operator", Role::kAdmin);
  access->RemoveToken("scripts");
  const Session session = LogIn("operator");
  const std::string of_session = access->MakeTicket(session.caller);
  access->LogOut(session.caller.session);
  EXPECT_FALSE(access->TakeTicket(of_nobody, "127.0.0.1"));
  EXPECT_FALSE(access->TakeTicket(of_scripts, kHere));
  EXPECT_FALSE(access->TakeTicket(of_session, kHere));
  EXPECT_TRUE(access->TakeTicket(of_local, "")) << "the Unix socket needs no account";
}

TEST_F(AccessTest, ATicketOfATokenDoesNotHoldForAnotherOneOfItsName) {
  access->AddToken("scripts", Role::kAdmin);
  const std::string ticket = access->MakeTicket({"token:scripts", Role::kAdmin, "", kHere});
  access->RemoveToken("scripts");
  access->AddToken("scripts", Role::kView);
  EXPECT_FALSE(access->TakeTicket(ticket, kHere));
}

}  // namespace
}  // namespace hub::access
