#include "access/Document.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace hub::access {
namespace {

const std::string kSecret(64, 'a');

std::string Text(const std::string& accounts, const std::string& tokens = "",
                 const std::string& sessions = "", const std::string& version = "1") {
  return R"({"version":)" + version + R"(,"accounts":[)" + accounts + R"(],"tokens":[)" + tokens +
         R"(],"sessions":[)" + sessions + "]}";
}

const std::string kOperator = R"({"name":"operator","role":"admin","password":"$argon2id$x"})";
const std::string kToken = R"({"name":"scripts","role":"use","secret":")" + kSecret + R"("})";
const std::string kSession = R"({"id":"0123456789abcdef","account":"operator","secret":")" +
                             kSecret + R"(","used":1795262400})";

Document Example() {
  return {{{"operator", Role::kAdmin, "$argon2id$x"}},
          {{"scripts", Role::kUse, kSecret}},
          {{"0123456789abcdef", "operator", kSecret,
            model::Time(std::chrono::seconds(1'795'262'400))}}};
}

TEST(Document, IsWrittenAsJson) {
  EXPECT_EQ(ToText(Example()), Text(kOperator, kToken, kSession));
  EXPECT_EQ(ToText({}), R"({"version":1,"accounts":[],"tokens":[],"sessions":[]})");
}

TEST(Document, IsReadAgain) {
  EXPECT_EQ(ParseDocument(Text(kOperator, kToken, kSession)), Example());
  EXPECT_EQ(ParseDocument(Text("")), Document{});
}

TEST(Document, OnlyWholeOnesAreRead) {
  const std::string whole = Text(kOperator, kToken, kSession);
  for (size_t length = 0; length < whole.size(); ++length)
    EXPECT_THROW(ParseDocument(whole.substr(0, length)), std::runtime_error) << length;
}

TEST(Document, OtherVersionsAreNotRead) {
  EXPECT_THROW(ParseDocument(Text(kOperator, "", "", "2")), std::runtime_error);
  EXPECT_THROW(ParseDocument(Text(kOperator, "", "", "\"1\"")), std::runtime_error);
  EXPECT_THROW(ParseDocument(R"({"accounts":[],"tokens":[],"sessions":[]})"), std::runtime_error);
}

struct Wrong {
  const char* what;
  std::string text;
};

TEST(Document, NothingElseIsRead) {
  const std::vector<Wrong> rows{
      {"no object", "[]"},
      {"no lists", R"({"version":1})"},
      {"a list of texts", Text("\"operator\"")},
      {"no name", Text(R"({"role":"admin","password":"$argon2id$x"})")},
      {"a bad name", Text(R"({"name":"a b","role":"admin","password":"$argon2id$x"})")},
      {"no role", Text(R"({"name":"a","password":"$argon2id$x"})")},
      {"a bad role", Text(R"({"name":"a","role":"none","password":"$argon2id$x"})")},
      {"a password in clear", Text(R"({"name":"a","role":"admin","password":"secret"})")},
      {"a name twice", Text(kOperator + "," + kOperator)},
      {"no admin", Text(R"({"name":"a","role":"use","password":"$argon2id$x"})")},
      {"a token in clear", Text(kOperator, R"({"name":"a","role":"use","secret":"secret"})")},
      {"a token twice", Text(kOperator, kToken + "," + kToken)},
      {"a session in clear",
       Text(kOperator, "", R"({"id":"1","account":"operator","secret":"x","used":1})")},
      {"a session without time",
       Text(kOperator, "", R"({"id":"1","account":"a","secret":")" + kSecret + R"("})")},
  };
  for (const Wrong& row : rows)
    EXPECT_THROW(ParseDocument(row.text), std::runtime_error) << row.what;
}

TEST(Names, AreOneToThirtyTwoLettersDigitsDashesAndDots) {
  for (const char* name : {"a", "operator", "A.b-c_9", "0", ".."})
    EXPECT_TRUE(IsName(name)) << name;
  EXPECT_TRUE(IsName(std::string(32, 'x')));
  EXPECT_FALSE(IsName(std::string(33, 'x')));
  for (const char* name : {"", " ", "a b", "a\n", "\xC3\xA4", "token:a", "<b>", "a/b", "a\x7F"})
    EXPECT_FALSE(IsName(name)) << name;
  EXPECT_FALSE(IsName(std::string("a\0b", 3)));
}

TEST(Roles, HaveNames) {
  EXPECT_EQ(NameOf(Role::kView), "view");
  EXPECT_EQ(NameOf(Role::kUse), "use");
  EXPECT_EQ(NameOf(Role::kAdmin), "admin");
  EXPECT_EQ(ParseRole("view"), Role::kView);
  EXPECT_EQ(ParseRole("use"), Role::kUse);
  EXPECT_EQ(ParseRole("admin"), Role::kAdmin);
  for (const char* name : {"", "none", "Admin", "admin ", "root"}) EXPECT_FALSE(ParseRole(name));
}

}  // namespace
}  // namespace hub::access
