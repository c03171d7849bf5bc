// The document that is made of the table: all of the table is in it, its examples fit its schemas,
// and so do real answers.
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <map>
#include <set>

#include "api/Api.h"
#include "api/ApiTest.h"
#include "api/SchemaCheck.h"
#include "api/Shapes.h"

namespace hub::api {
namespace {

namespace json = boost::json;

class OpenApiTest : public ApiTest {
 protected:
  OpenApiTest() : document(OpenApiDocument().get_object()) {}

  void ExpectFits(const json::value& value, const json::object& schema, std::string_view what) {
    for (const std::string& error : SchemaErrors(value, schema, document))
      ADD_FAILURE() << what << ": " << error << "\n" << json::serialize(value);
  }

  const json::object& SchemaNamed(std::string_view name) const {
    return document.at("components").at("schemas").at(name).get_object();
  }

  // Each operation with its path and verb: "get /api/bus".
  template <class Visit>
  void ForEachOperation(Visit visit) const {
    for (const auto& path : document.at("paths").get_object())
      for (const auto& verb : path.value().get_object())
        visit(std::string(verb.key()) + ' ' + std::string(path.key()), verb.value().get_object());
  }

  // The methods that have this reply shape give it.
  void ExpectReal(std::string_view method, std::string_view parameters) {
    const Method* const row = FindMethod(method);
    ExpectFits(json::parse(Result(method, parameters)), SchemaNamed(row->reply_shape), method);
  }

  json::object document;
};

TEST_F(OpenApiTest, EachRowIsInIt) {
  std::set<std::string> found;
  ForEachOperation([&found](const std::string&, const json::object& operation) {
    found.insert(std::string(operation.at("operationId").get_string()));
  });
  std::set<std::string> expected;
  for (const Method& method : Methods()) expected.insert(std::string(method.name));
  EXPECT_EQ(found, expected);
  EXPECT_EQ(found.size(), 53U);
}

TEST_F(OpenApiTest, OneOperationInFull) {
  const json::value& operation = document.at("paths").at("/api/channels/{id}").at("put");
  EXPECT_EQ(json::serialize(operation.at("parameters")), Compact(R"([
    {"name":"id", "in":"path", "required":true,
     "schema":{"type":"string", "minLength":1, "maxLength":32,
               "description":"of the channel: the card's address, a point, the number"}}])"));
  EXPECT_EQ(json::serialize(operation.at("requestBody").at("content").at("application/json")),
            Compact(R"({"schema":{"type":"object", "additionalProperties":false, "properties":{
      "value":{"description":"true or false, or a number in the channel's unit"},
      "pulse":{"type":"integer", "minimum":1, "maximum":600000,
               "description":"a line: on for so many ms, then back"},
      "ramp":{"type":"integer", "minimum":1, "maximum":600000,
              "description":"a position or drive: evenly within so many ms"}},
      "required":["value"]},
    "example":{"value":true, "pulse":500}})"));
  EXPECT_EQ(operation.at("description"), "Needs the role use.");
  EXPECT_EQ(operation.at("responses").at("503").at("$ref"), "#/components/responses/Unavailable");
}

TEST_F(OpenApiTest, EachParameterOfAPathIsDeclaredAndNoOther) {
  ForEachOperation([](const std::string& path, const json::object& operation) {
    const json::value* const parameters = operation.if_contains("parameters");
    std::string named;
    if (parameters != nullptr)
      for (const json::value& parameter : parameters->get_array())
        if (parameter.at("in") == "path")
          named += '{' + std::string(parameter.at("name").get_string()) + '}';
    std::string wanted;
    for (size_t at = path.find('{'); at != std::string::npos; at = path.find('{', at + 1))
      wanted += path.substr(at, path.find('}', at) - at + 1);
    EXPECT_EQ(named, wanted) << path;
  });
}

TEST_F(OpenApiTest, EachExampleFitsItsSchema) {
  ForEachOperation([this](const std::string& path, const json::object& operation) {
    const auto check = [&](const json::value& holder) {
      const json::value& media = holder.at("content").at("application/json");
      ExpectFits(media.at("example"), media.at("schema").get_object(), path);
    };
    const bool is_live = path == "get /api/live";
    check(operation.at("responses").at(is_live ? "101" : "200"));
    if (const json::value* body = operation.if_contains("requestBody")) check(*body);
  });
  const Method* const subscribe = FindMethod("live.subscribe");
  ExpectFits(json::parse(subscribe->reply_example), SchemaNamed("Snapshot"), "live.subscribe");
}

TEST_F(OpenApiTest, EachBodyHasAnExampleAndNothingElseHas) {
  for (const Method& method : Methods()) {
    const bool has_body = std::ranges::any_of(method.parameters, [](const Parameter& parameter) {
      return parameter.place == Place::kBody || parameter.place == Place::kWholeBody;
    });
    const bool needs_example = has_body && !method.route.empty();
    EXPECT_EQ(!method.request_example.empty(), needs_example) << method.name;
    EXPECT_FALSE(method.reply_example.empty()) << method.name;
  }
}

// The requests of the examples, as a door brings them, are all well formed.
TEST_F(OpenApiTest, EachRequestOfAnExampleIsTaken) {
  link.answers["GETANMASK:F"] = {"AMV:0xF:0x20"};
  access.accounts = {{"operator", access::Role::kUse}};
  const std::map<std::string_view, std::string> paths{{"{id}", R"({"id":"5.0"})"},
                                                      {"{account}", R"({"account":"operator"})"},
                                                      {"{name}", R"({"name":"script"})"}};
  const std::map<std::string_view, std::string> addresses{
      {"lcd", "E"}, {"ir", "9"}, {"card", "3"}, {"cards", "5"}};
  for (const Method& method : Methods()) {
    if (method.name.starts_with("boards.")) continue;  // there is no other board to answer
    json::object parameters;
    for (const auto& [place, given] : paths)
      if (method.route.find(place) != std::string_view::npos)
        parameters = json::parse(given).get_object();
    if (method.route.find("{address}") != std::string_view::npos) {
      const auto family = method.name.substr(0, method.name.find('.'));
      parameters["address"] = method.name.starts_with("card.settings") ? "0" : addresses.at(family);
    }
    if (method.name == "history.get") parameters["channel"] = "F.3";
    if (method.name == "card.settings.get") parameters["address"] = "F";
    if (!method.request_example.empty()) {
      ASSERT_FALSE(AddBody(method, json::parse(method.request_example), parameters));
    }
    const std::string text = json::serialize(parameters);
    const Outcome outcome = Call(method.name, text);
    ASSERT_FALSE(outcome.problem) << method.name << text << ": " << outcome.problem->detail;
    ExpectFits(json::parse(outcome.text), SchemaNamed(method.reply_shape), method.name);
  }
}

TEST_F(OpenApiTest, AnswersOfABusyBusFitTheirSchemas) {
  model::Settings settings;
  settings.bus_name = "bench";
  settings.channels[{0xF, 3}] = {"Bath", "V", 0, 5, 2, 0, {}};
  FileHas(settings);
  bus.SetAdapter({model::AdapterState::kDown, "/dev/ttyUSB0", std::nullopt});
  bus.SetPolling({true, {}});
  Report(0xF, 3, 0x33);
  Report(0x3, 0, 0x40);
  Report(0x8, 0, 0x00);
  Report(0x8, 0, 0x05);
  bus.TakeOutput(protocol::SendInfrared{9, {0x43}}, now);
  ExpectReal("bus.get", "{}");
  ExpectReal("cards.list", "{}");
  ExpectReal("live.subscribe", R"({"after":0})");
  DaemonIs(model::DaemonState::kWaiting);
  ExpectReal("bus.get", "{}");
  store.points = {{0, 1.5, 1, 2}};
  ExpectReal("history.get", R"({"channel":"F.3"})");
  store.entries = {{1, now, "hub", "started", ""}};
  ExpectReal("journal.get", "{}");
  model::Change change;
  change.bus = true;
  change.page = true;
  change.cards = {0xE};
  change.channels = {{0xF, 3}};
  change.events = {{1, now, 8, {model::KeyEventType::kLeft, 0}}};
  ExpectFits(ChangesJson(bus, ReadPage({}), change, 1), SchemaNamed("Changes"), "changes");
  ExpectFits(DoesNotFit("value", "x").ToJson(), SchemaNamed("Problem"), "problem");
  ExpectFits(RetryLater(503, "x", 5).ToJson(), SchemaNamed("Problem"), "problem");
}

TEST_F(OpenApiTest, AnswersOfOtherBoardsFitTheirSchemas) {
  ShedSays("status", "online");
  ShedSays("bus", R"({"id":"8c01d2ee","name":"Shed","version":"1.20","daemon":{"state":"up"},
    "adapter":{"state":"up"},"cards":[
    {"address":"5","kind":"digital-output","name":"Relays","state":"present"},
    {"address":"E","kind":"lcd","name":null,"state":"silent"},
    {"address":"F","kind":"analogue-input","name":null,"state":"present",
     "channels":{"3":{"name":null,"unit":"V","min":0,"max":5.5}}}]})");
  ShedSays("5/0", "ON");
  ShedSays("F/3", "2.5");
  ShedSays("E/glass", R"({"rows":["Hello"],"light":true,"cursor":false,"blink":false})");
  for (const char* status : {"online", "offline"}) {
    ShedSays("status", status);
    ExpectReal("boards.list", "{}");
    ExpectReal("boards.get", R"({"board":"shed"})");
    ExpectReal("boards.cards.list", R"({"board":"shed"})");
    ExpectReal("boards.cards.get", R"({"board":"shed","address":"E"})");
    ExpectReal("boards.channels.get", R"({"board":"shed","id":"F.3"})");
    ExpectReal("live.subscribe", "{}");
  }
}

TEST_F(OpenApiTest, TheSchemasFindWhatIsWrong) {
  const auto errors = [this](std::string_view value, std::string_view schema) {
    return SchemaErrors(json::parse(value), SchemaNamed(schema), document).size();
  };
  EXPECT_EQ(errors(R"({"account":"operator","role":"use"})", "Who"), 0U);
  EXPECT_EQ(errors(R"({"account":"operator"})", "Who"), 1U);
  EXPECT_EQ(errors(R"({"account":7,"role":"boss"})", "Who"), 2U);
  EXPECT_EQ(errors(R"({"mask":64,"x":1})", "CardSettings"), 2U);
  EXPECT_EQ(errors(R"({"cards":[{}]})", "Cards"), 9U);
}

TEST_F(OpenApiTest, EachTagIsDescribedAndUsed) {
  std::set<std::string> used;
  ForEachOperation([&used](const std::string&, const json::object& operation) {
    used.insert(std::string(operation.at("tags").at(0).get_string()));
  });
  std::set<std::string> described;
  for (const json::value& tag : document.at("tags").get_array())
    described.insert(std::string(tag.at("name").get_string()));
  EXPECT_EQ(used, described);
}

}  // namespace
}  // namespace hub::api
