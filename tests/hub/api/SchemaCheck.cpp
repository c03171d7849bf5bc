#include "api/SchemaCheck.h"

#include <regex.h>

#include <algorithm>
#include <boost/json/serialize.hpp>
#include <string_view>

namespace hub::api {

namespace json = boost::json;

namespace {

bool Matches(const std::string& text, const std::string& pattern) {
  regex_t compiled;
  if (regcomp(&compiled, pattern.c_str(), REG_EXTENDED | REG_NOSUB) != 0) return false;
  const bool matches = regexec(&compiled, text.c_str(), 0, nullptr, 0) == 0;
  regfree(&compiled);
  return matches;
}

class Checker {
 public:
  explicit Checker(const json::object& document) : document_(document) {}

  void Check(const json::value& value, const json::object& schema, const std::string& where) {
    for (const auto& member : schema)
      CheckKeyword(value, schema, member.key(), member.value(), where);
  }

  std::vector<std::string> errors;

 private:
  void CheckKeyword(const json::value& value, const json::object& schema, std::string_view keyword,
                    const json::value& wanted, const std::string& where) {
    if (keyword == "description" || keyword == "format") return;
    if (keyword == "$ref") return Check(value, Referenced(wanted.get_string()), where);
    if (keyword == "type") return Expect(IsOfType(value, wanted), where, "type");
    if (keyword == "enum")
      return Expect(std::ranges::find(wanted.get_array(), value) != wanted.get_array().end(), where,
                    "enum");
    if (keyword == "anyOf") return CheckAnyOf(value, wanted.get_array(), where);
    if (keyword == "pattern" || keyword == "minLength" || keyword == "maxLength")
      return CheckText(value, keyword, wanted, where);
    if (keyword == "minimum" || keyword == "maximum")
      return CheckNumber(value, keyword, wanted, where);
    if (keyword == "items" || keyword == "minItems" || keyword == "maxItems" ||
        keyword == "uniqueItems")
      return CheckList(value, keyword, wanted, where);
    CheckObject(value, schema, keyword, wanted, where);
  }

  void Expect(bool holds, const std::string& where, std::string_view keyword) {
    if (!holds) errors.push_back(where + ": " + std::string(keyword));
  }

  const json::object& Referenced(std::string_view reference) const {
    constexpr std::string_view kBegin = "#/components/schemas/";
    const std::string_view name = reference.substr(kBegin.size());
    return document_.at("components").at("schemas").at(name).get_object();
  }

  static bool IsOfType(const json::value& value, const json::value& type) {
    if (const auto* types = type.if_array())
      return std::ranges::any_of(*types,
                                 [&](const json::value& each) { return IsOfType(value, each); });
    const std::string_view name = type.get_string();
    if (name == "null") return value.is_null();
    if (name == "boolean") return value.is_bool();
    if (name == "integer") return value.is_int64() || value.is_uint64();
    if (name == "number") return value.is_number();
    if (name == "string") return value.is_string();
    if (name == "array") return value.is_array();
    return name == "object" && value.is_object();
  }

  void CheckAnyOf(const json::value& value, const json::array& schemas, const std::string& where) {
    const bool fits = std::ranges::any_of(schemas, [&](const json::value& schema) {
      Checker inner(document_);
      inner.Check(value, schema.get_object(), where);
      return inner.errors.empty();
    });
    Expect(fits, where, "anyOf");
  }

  void CheckText(const json::value& value, std::string_view keyword, const json::value& wanted,
                 const std::string& where) {
    if (!value.is_string()) return;
    const std::string text(value.get_string());
    if (keyword == "pattern")
      Expect(Matches(text, std::string(wanted.get_string())), where, keyword);
    else if (keyword == "minLength")
      Expect(text.size() >= wanted.to_number<size_t>(), where, keyword);
    else
      Expect(text.size() <= wanted.to_number<size_t>(), where, keyword);
  }

  void CheckNumber(const json::value& value, std::string_view keyword, const json::value& wanted,
                   const std::string& where) {
    if (!value.is_number()) return;
    const auto number = value.to_number<double>();
    const auto bound = wanted.to_number<double>();
    Expect(keyword == "minimum" ? number >= bound : number <= bound, where, keyword);
  }

  void CheckList(const json::value& value, std::string_view keyword, const json::value& wanted,
                 const std::string& where) {
    if (!value.is_array()) return;
    const json::array& list = value.get_array();
    if (keyword == "minItems")
      return Expect(list.size() >= wanted.to_number<size_t>(), where, keyword);
    if (keyword == "maxItems")
      return Expect(list.size() <= wanted.to_number<size_t>(), where, keyword);
    if (keyword == "uniqueItems") {
      for (auto it = list.begin(); it != list.end(); ++it)
        Expect(std::find(std::next(it), list.end(), *it) == list.end(), where, keyword);
      return;
    }
    for (const json::value& item : list) Check(item, wanted.get_object(), where + "[]");
  }

  void CheckObject(const json::value& value, const json::object& schema, std::string_view keyword,
                   const json::value& wanted, const std::string& where) {
    const json::object* const object = value.if_object();
    if (keyword == "required") {
      for (const json::value& name : wanted.get_array())
        Expect(object == nullptr || object->contains(name.get_string()), where, "required");
    } else if (keyword == "properties") {
      if (object == nullptr) return;
      for (const auto& member : wanted.get_object())
        if (const json::value* inner = object->if_contains(member.key()))
          Check(*inner, member.value().get_object(), where + '.' + std::string(member.key()));
    } else if (keyword == "additionalProperties") {
      if (object != nullptr) CheckAdditional(*object, schema, wanted, where);
    } else {
      Expect(false, where, "unknown keyword " + std::string(keyword));
    }
  }

  void CheckAdditional(const json::object& object, const json::object& schema,
                       const json::value& wanted, const std::string& where) {
    const json::value* const known = schema.if_contains("properties");
    for (const auto& member : object) {
      if (known != nullptr && known->get_object().contains(member.key())) continue;
      const std::string inner = where + '.' + std::string(member.key());
      if (wanted.is_bool())
        Expect(wanted.get_bool(), inner, "additionalProperties");
      else
        Check(member.value(), wanted.get_object(), inner);
    }
  }

  const json::object& document_;
};

}  // namespace

std::vector<std::string> SchemaErrors(const json::value& value, const json::object& schema,
                                      const json::object& document) {
  Checker checker(document);
  checker.Check(value, schema, "$");
  return checker.errors;
}

}  // namespace hub::api
