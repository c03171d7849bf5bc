// The way to a handler: role, parameters, faults. What each row of the table has to stand.
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <map>
#include <set>

#include "api/Api.h"
#include "api/ApiTest.h"

namespace hub::api {
namespace {

namespace json = boost::json;

using access::Role;

class CallTest : public ApiTest {
 protected:
  // The status that the method gives to a caller of this role.
  int StatusFor(Role role, const Method& method, std::string_view parameters) {
    caller.role = role;
    const Outcome outcome = Call(method.name, parameters);
    return outcome.problem ? outcome.problem->status : 200;
  }
};

TEST_F(CallTest, EachRowNeedsItsRole) {
  for (const Method& method : Methods()) {
    constexpr const char* kWrong = R"({"no-such-field":1})";
    for (const Role role : {Role::kNone, Role::kView, Role::kUse, Role::kAdmin}) {
      int expected = 422;  // the parameters are looked at only after the role
      if (role < method.role) expected = role == Role::kNone ? 401 : 403;
      EXPECT_EQ(StatusFor(role, method, kWrong), expected)
          << method.name << " for " << access::NameOf(role);
    }
  }
}

TEST_F(CallTest, TheRolesAreThese) {
  const std::map<Role, std::set<std::string_view>> expected{
      {Role::kNone, {"session.open", "session.who", "session.close"}},
      {Role::kView,
       {"bus.get", "cards.list", "cards.get", "channels.get", "card.settings.get", "history.get",
        "journal.get", "names.get", "setup.get", "page.get", "session.ticket", "live.subscribe",
        "boards.list", "boards.get", "boards.cards.list", "boards.cards.get",
        "boards.channels.get"}},
      {Role::kUse,
       {"cards.set", "channels.set", "lcd.write", "lcd.control", "ir.send", "boards.channels.set",
        "boards.lcd.write", "boards.lcd.control", "boards.ir.send"}},
      {Role::kAdmin, {"bus.discover", "bus.pace",          "bus.polling",         "card.polling",
                      "card.reboot",  "card.settings.set", "card.settings.store", "console.run",
                      "names.set",    "names.merge",       "setup.set",           "setup.merge",
                      "page.set",     "backup.get",        "backup.put",          "accounts.list",
                      "accounts.add", "accounts.change",   "accounts.remove",     "tokens.list",
                      "tokens.add",   "tokens.remove",     "virtual.get",         "virtual.run"}}};
  std::map<Role, std::set<std::string_view>> found;
  for (const Method& method : Methods()) found[method.role].insert(method.name);
  EXPECT_EQ(found, expected);
}

TEST_F(CallTest, ARoleThatIsTooLowIsNamed) {
  caller.role = Role::kView;
  ExpectProblem("channels.set", R"({"id":"5.0","value":true})", 403, "",
                "channels.set needs the role use; this login has view");
  caller.role = Role::kNone;
  ExpectProblem("channels.get", R"({"id":"5.0"})", 401, "", "log in first");
}

// Something that the parameter takes.
boost::json::value Fitting(const Parameter& parameter) {
  if (!parameter.words.empty()) return boost::json::value(parameter.words[0]);
  switch (parameter.type) {
    case Type::kText:
      return "55";
    case Type::kBoolean:
      return true;
    case Type::kObject:
      return boost::json::object();
    case Type::kList:
      return boost::json::array();
    default:
      return static_cast<int64_t>(parameter.least);
  }
}

// Every parameter of every row, with a value of another type.
TEST_F(CallTest, EachParameterHasItsType) {
  for (const Method& method : Methods()) {
    boost::json::object parameters;
    for (const Parameter& parameter : method.parameters) {
      if (parameter.type == Type::kValue) {
        parameters[parameter.name] = true;
        continue;
      }
      if (parameter.type == Type::kList)
        parameters[parameter.name] = true;
      else
        parameters[parameter.name] = boost::json::array();
      const Outcome outcome = Call(method.name, boost::json::serialize(parameters));
      ASSERT_TRUE(outcome.problem) << method.name << ' ' << parameter.name;
      EXPECT_EQ(outcome.problem->status, 422) << method.name;
      EXPECT_EQ(outcome.problem->where, parameter.name) << method.name;
      parameters[parameter.name] = Fitting(parameter);
    }
  }
}

// Each parameter that a row needs, missing.
TEST_F(CallTest, EachMissingParameterIsNamed) {
  for (const Method& method : Methods()) {
    boost::json::object parameters;
    for (const Parameter& parameter : method.parameters) {
      if (!parameter.required) continue;
      const Outcome outcome = Call(method.name, boost::json::serialize(parameters));
      ASSERT_TRUE(outcome.problem) << method.name;
      EXPECT_EQ(outcome.problem->status, 422) << method.name;
      EXPECT_EQ(outcome.problem->where, parameter.name) << method.name;
      parameters[parameter.name] = Fitting(parameter);
    }
  }
}

TEST_F(CallTest, AnUnknownParameterIsNamedAndWhatThereIs) {
  ExpectProblem("bus.pace", R"({"pace":50,"speed":1})", 422, "speed",
                "bus.pace has no \"speed\"; it has pace");
  ExpectProblem("bus.get", R"({"x":1})", 422, "x", "bus.get has no \"x\"; it has no parameters");
  ExpectProblem("channels.set", R"({"id":"5.0","valeu":true})", 422, "valeu",
                "channels.set has no \"valeu\"; it has id, value, pulse and ramp");
}

TEST_F(CallTest, AnUnknownNameIsRepeatedAsFarAsItCanBeRead) {
  ExpectProblem("bus.get", R"({"a\u0007b":1})", 422, "a?b",
                "bus.get has no \"a?b\"; it has no parameters");
  EXPECT_EQ(Call("bus.get", "{\"" + std::string(5000, 'x') + "\":1}").problem->where,
            std::string(32, 'x') + "...");
}

TEST_F(CallTest, ANullIsNothingGiven) {
  ExpectProblem("bus.pace", R"({"pace":null})", 422, "pace",
                "pace is missing: percent of the full speed");
  Result("channels.set", R"({"id":"5.0","value":true,"pulse":null})");
  EXPECT_EQ(TakeSet(), "5 0=0");
}

TEST_F(CallTest, AWholeNumberMayHaveAPointAndStaysInItsRange) {
  Result("bus.pace", R"({"pace":50.0})");
  EXPECT_EQ(TakeAsked(), "SPEED=50");
  ExpectProblem("bus.pace", R"({"pace":0})", 422, "pace", "0; pace takes 1 to 100");
  ExpectProblem("bus.pace", R"({"pace":101})", 422, "pace", "101; pace takes 1 to 100");
  for (const char* wrong : {"50.5", "\"50\"", "true", "1e300", "18446744073709551615", "[50]"})
    ExpectProblem("bus.pace", "{\"pace\":" + std::string(wrong) + "}", 422, "pace",
                  "pace takes a whole number");
}

// Each text that can reach the daemon, the bus, or a file of the hub's, one by one; the other
// parameters are those of the example.
TEST_F(CallTest, NoTextOfAnyMethodBringsALineEndOrANul) {
  const std::vector<std::string> kLineEnds{"5\r", "5\n", "5\r\nREBOOT:5", std::string("5\0x", 3)};
  int tried = 0;
  for (const Method& method : Methods()) {
    if (method.role == Role::kNone) continue;
    json::object others;
    if (!method.request_example.empty()) {
      EXPECT_FALSE(AddBody(method, json::parse(method.request_example), others)) << method.name;
    }
    for (const Parameter& parameter : method.parameters)
      if (parameter.place == Place::kPath) others[parameter.name] = "5";
    for (const Parameter& parameter : method.parameters) {
      if (parameter.type != Type::kText) continue;
      for (const std::string& text : kLineEnds) {
        json::object given = others;
        given[parameter.name] = text;
        const Outcome outcome = Call(method.name, json::serialize(given));
        ASSERT_TRUE(outcome.problem) << method.name << json::serialize(given);
        EXPECT_EQ(outcome.problem->status, 422) << method.name << json::serialize(given);
        EXPECT_EQ(outcome.problem->where, parameter.name) << method.name << json::serialize(given);
        ++tried;
      }
    }
  }
  EXPECT_GE(tried, 80);
  EXPECT_EQ(TakeSet() + TakeSent() + TakeAsked(), "");
  EXPECT_TRUE(virtual_bus.asked.empty());
}

TEST_F(CallTest, ControlCharactersAreInNoText) {
  for (const char* text : {R"(a\r)", R"(a\nREBOOT:5)", R"(\u0000)", R"(\u001b[2J)", R"(\u007f)",
                           R"(\u0085)", R"(\u009f)", R"(\t)"}) {
    const std::string line = "{\"line\":\"" + std::string(text) + "\"}";
    ExpectProblem("console.run", line, 422, "line",
                  "line holds a control character; only characters that can be seen go through");
  }
  EXPECT_EQ(TakeAsked(), "");
}

TEST_F(CallTest, CharactersAreCountedNotBytes) {
  std::string name;
  for (int i = 0; i < 64; ++i) name += "\u00e9";
  Result("names.merge", R"({"cards":{"5":")" + name + "\"}}");
  ExpectProblem("names.merge", R"({"cards":{"5":")" + name + "x\"}}", 422, "cards.5",
                "a text of 65 characters; cards.5 takes 1 to 64");
}

TEST_F(CallTest, AFaultOfTheHubIsAProblemToo) {
  store.documents.clear();
  caller.account = "operator";
  access.fails = true;
  ExpectProblem("session.open", R"({"account":"ghost","password":"secret word"})", 500, "",
                "session.open: the thread is gone");
}

std::optional<Problem> Query(std::string_view method, std::string_view name, std::string_view value,
                             boost::json::object& parameters) {
  return AddQuery(*FindMethod(method), name, value, parameters);
}

TEST_F(CallTest, AQueryBringsOnlyWhatIsOfTheQuery) {
  boost::json::object parameters{{"address", "5"}};
  EXPECT_FALSE(Query("card.settings.get", "ask", "1", parameters));
  EXPECT_EQ(parameters.at("ask"), "1");
  EXPECT_EQ(Query("card.settings.get", "ask", "0", parameters)->detail, "ask comes twice");
  EXPECT_EQ(Query("card.settings.get", "address", "6", parameters)->status, 422);
  EXPECT_EQ(Query("channels.set", "value", "true", parameters)->where, "value");
  parameters.clear();
  EXPECT_EQ(Query("history.get", "channel", "\xFF", parameters)->detail,
            "channel takes printable ASCII");
}

TEST_F(CallTest, ABodyBringsOnlyWhatIsOfTheBody) {
  const auto add = [](std::string_view method, std::string_view body,
                      boost::json::object& parameters) {
    return AddBody(*FindMethod(method), boost::json::parse(body), parameters);
  };
  boost::json::object parameters{{"id", "5.0"}};
  EXPECT_FALSE(add("channels.set", R"({"value":true})", parameters));
  EXPECT_EQ(parameters.at("value"), true);
  EXPECT_EQ(add("channels.set", R"({"id":"5.1","value":true})", parameters)->where, "id");
  EXPECT_EQ(add("channels.set", "[true]", parameters)->detail, "the body has to be an object");
  boost::json::object of_card{{"address", "5"}};
  EXPECT_FALSE(add("cards.set", R"({"0":true})", of_card));
  EXPECT_EQ(boost::json::serialize(of_card), R"({"address":"5","values":{"0":true}})");
}

}  // namespace
}  // namespace hub::api
