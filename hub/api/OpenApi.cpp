// The OpenAPI 3.1 document, made of the table.
#include <fmt/format.h>

#include <array>
#include <boost/json/array.hpp>
#include <boost/json/parse.hpp>
#include <string>
#include <utility>

#include "api/Api.h"
#include "api/Schemas.h"

namespace hub::api {

namespace json = boost::json;

namespace {

constexpr std::array<std::string_view, 5> kVerbs{"get", "put", "post", "patch", "delete"};
constexpr std::array<std::string_view, 3> kPlaces{"path", "query", "body"};

struct Tag {
  std::string_view name;  // what the methods begin with, up to their first point
  std::string_view summary;
};

constexpr std::array<Tag, 19> kTags{{
    {"bus", "The bus as a whole"},
    {"cards", "Cards and what is on them"},
    {"card", "What an administrator does with one card"},
    {"channels", "One line, position, drive, level, key or code"},
    {"lcd", "Displays; rows and columns count from 0"},
    {"ir", "Infrared"},
    {"boards", "The other hubs on the broker, where boards = true"},
    {"console", "The daemon's own console"},
    {"history", "Curves"},
    {"journal", "What happened, and who did it"},
    {"names", "Names that people have given"},
    {"setup", "Units, directions, sizes"},
    {"page", "What the page keeps for everybody"},
    {"virtual", "A bus without hardware: what hands would do to it"},
    {"backup", "All that people have settled, as one document"},
    {"session", "Logging in and out"},
    {"accounts", "Who may log in"},
    {"tokens", "For programs"},
    {"live", "Everything as it happens"},
}};

// By Type; a time and any value are written by hand.
constexpr std::array<std::string_view, 6> kTypes{"string",  "integer", "number",
                                                 "boolean", "object",  "array"};

json::object Reference(std::string_view section, std::string_view name) {
  return {{"$ref", fmt::format("#/components/{}/{}", section, name)}};
}

void AddBounds(const Parameter& parameter, json::object& schema) {
  if (parameter.least == 0 && parameter.most == 0) return;
  const bool is_text = parameter.type == Type::kText;
  schema[is_text ? "minLength" : "minimum"] = static_cast<int64_t>(parameter.least);
  schema[is_text ? "maxLength" : "maximum"] = static_cast<int64_t>(parameter.most);
}

json::object SchemaOf(const Parameter& parameter) {
  json::object schema;
  if (parameter.type == Type::kTime)
    schema["type"] = json::array{"string", "integer"};
  else if (parameter.type != Type::kValue)
    schema["type"] = kTypes[static_cast<size_t>(parameter.type)];
  AddBounds(parameter, schema);
  if (!parameter.words.empty()) {
    json::array words;
    for (const std::string_view word : parameter.words) words.emplace_back(word);
    schema["enum"] = std::move(words);
  }
  schema["description"] = parameter.summary;
  return schema;
}

bool IsOfBody(const Parameter& parameter) {
  return parameter.place == Place::kBody || parameter.place == Place::kWholeBody;
}

json::array ParametersOf(const Method& method) {
  json::array list;
  for (const Parameter& parameter : method.parameters) {
    if (IsOfBody(parameter)) continue;
    list.push_back(json::object{{"name", parameter.name},
                                {"in", kPlaces[static_cast<size_t>(parameter.place)]},
                                {"required", parameter.required},
                                {"schema", SchemaOf(parameter)}});
  }
  return list;
}

json::object BodySchemaOf(const Method& method) {
  json::object properties;
  json::array required;
  for (const Parameter& parameter : method.parameters) {
    if (parameter.place == Place::kWholeBody) return SchemaOf(parameter);
    if (parameter.place != Place::kBody) continue;
    properties[parameter.name] = SchemaOf(parameter);
    if (parameter.required) required.emplace_back(parameter.name);
  }
  json::object schema{{"type", "object"}, {"additionalProperties", false}};
  schema["properties"] = std::move(properties);
  if (!required.empty()) schema["required"] = std::move(required);
  return schema;
}

json::object Content(json::object schema, std::string_view example) {
  json::object media{{"schema", std::move(schema)}};
  media["example"] = json::parse(example);
  return {{"application/json", std::move(media)}};
}

std::string_view TagOf(const Method& method) {
  return method.name.substr(0, method.name.find('.'));
}

json::object AnswersOf(const Method& method) {
  json::object good{{"description", "done"}};
  good["content"] = Content(Reference("schemas", method.reply_shape), method.reply_example);
  json::object answers{{"200", std::move(good)}};
  answers["4XX"] = Reference("responses", "Problem");
  answers["503"] = Reference("responses", "Unavailable");
  if (TagOf(method) == "boards" && method.role == access::Role::kUse)
    answers["504"] = Reference("responses", "NoAnswer");
  return answers;
}

json::object OperationOf(const Method& method) {
  const bool is_open = method.role == access::Role::kNone;
  json::object operation{{"operationId", method.name}, {"summary", method.summary}};
  operation["description"] = is_open
                                 ? std::string("For anybody.")
                                 : fmt::format("Needs the role {}.", access::NameOf(method.role));
  operation["tags"] = json::array{TagOf(method)};
  if (is_open) operation["security"] = json::array{};
  json::array parameters = ParametersOf(method);
  if (!parameters.empty()) operation["parameters"] = std::move(parameters);
  if (!method.request_example.empty())
    operation["requestBody"] = {{"required", true},
                                {"content", Content(BodySchemaOf(method), method.request_example)}};
  operation["responses"] = AnswersOf(method);
  return operation;
}

// What goes over the WebSocket: the answer to live.subscribe, and what follows it.
json::object LiveOperation(const Method& subscribe) {
  json::object operation{{"operationId", subscribe.name}, {"summary", subscribe.summary}};
  operation["description"] =
      "A WebSocket. In its text frames go requests and answers of JSON-RPC 2.0 for all methods. "
      "The "
      "result of live.subscribe is a Snapshot; after it come notifications, whose method is "
      "changes "
      "and whose params are Changes.";
  operation["tags"] = json::array{TagOf(subscribe)};
  operation["parameters"] = json::parse(R"([{"name":"ticket", "in":"query", "required":false,
    "schema":{"type":"string", "description":"of session.ticket, where no header can be sent"}}])");
  json::object schema{
      {"anyOf", json::array{Reference("schemas", "Snapshot"), Reference("schemas", "Changes")}}};
  json::object open{{"description", "the WebSocket is open"}};
  open["content"] = Content(std::move(schema), subscribe.reply_example);
  json::object answers{{"101", std::move(open)}};
  answers["4XX"] = Reference("responses", "Problem");
  answers["default"] = Reference("responses", "Problem");
  operation["responses"] = std::move(answers);
  return operation;
}

json::object Paths() {
  json::object paths;
  for (const Method& method : Methods()) {
    if (method.route.empty()) {
      paths["/api/live"] = json::object{{"get", LiveOperation(method)}};
      continue;
    }
    if (!paths.contains(method.route)) paths[method.route] = json::object();
    const std::string_view verb = kVerbs[static_cast<size_t>(method.verb)];
    paths[method.route].get_object()[verb] = OperationOf(method);
  }
  return paths;
}

json::object ProblemAnswer(std::string_view description) {
  json::object media{{"schema", Reference("schemas", "Problem")}};
  json::object content{{"application/problem+json", std::move(media)}};
  return {{"description", description}, {"content", std::move(content)}};
}

json::object Answers() {
  json::object unavailable =
      ProblemAnswer("the daemon is not there, or a card did not answer; nothing is queued");
  unavailable["headers"] =
      json::parse(R"({"Retry-After":{"description":"seconds", "schema":{"type":"integer"}}})");
  json::object answers{{"Problem", ProblemAnswer("what is wrong, where, and what would be right")}};
  answers["Unavailable"] = std::move(unavailable);
  answers["NoAnswer"] = ProblemAnswer("the other board has not said what became of it");
  return answers;
}

json::object Components() {
  json::object schemas;
  for (const Schema& schema : kSchemas) schemas[schema.name] = json::parse(schema.text);
  json::object components{{"schemas", std::move(schemas)}};
  components["responses"] = Answers();
  components["securitySchemes"] = json::parse(R"({
    "cookie":{"type":"apiKey", "in":"cookie", "name":"qelm_session"},
    "token":{"type":"http", "scheme":"bearer"}})");
  return components;
}

json::array Tags() {
  json::array tags;
  for (const Tag& tag : kTags)
    tags.push_back(json::object{{"name", tag.name}, {"description", tag.summary}});
  return tags;
}

}  // namespace

json::value OpenApiDocument() {
  json::object document{{"openapi", "3.1.0"}};
  document["info"] = json::parse(R"({
    "title":"qelm-hub", "version":"1",
    "description":"One bus of cards for many clients. Each method is also reachable as JSON-RPC 2.0 on the WebSocket /api/live, by its operationId, with the parameters of the route, the query and the body together.",
    "license":{"name":"All rights reserved", "identifier":"LicenseRef-qelm"}})");
  document["servers"] = json::parse(R"([{"url":"/"}])");
  document["security"] = json::parse(R"([{"cookie":[]}, {"token":[]}])");
  document["tags"] = Tags();
  document["paths"] = Paths();
  document["components"] = Components();
  return document;
}

}  // namespace hub::api
