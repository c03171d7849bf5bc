#include "api/MergePatch.h"

#include <boost/json/value.hpp>
#include <utility>

namespace hub::api {

namespace json = boost::json;

json::object Merge(json::object base, const json::object& patch) {
  for (const auto& [key, value] : patch) {
    if (value.is_null()) {
      base.erase(key);
    } else if (const auto* inner = value.if_object()) {
      const json::value* old = base.if_contains(key);
      const bool was_object = old != nullptr && old->is_object();
      json::object merged = Merge(was_object ? old->get_object() : json::object(), *inner);
      base[key] = std::move(merged);
    } else {
      base[key] = value;
    }
  }
  return base;
}

json::object Difference(const json::object& base, const json::object& wanted) {
  json::object patch;
  for (const auto& member : base)
    if (!wanted.contains(member.key())) patch[member.key()] = nullptr;
  for (const auto& [key, value] : wanted) {
    const json::value* old = base.if_contains(key);
    if (old != nullptr && *old == value) continue;
    if (old != nullptr && old->is_object() && value.is_object())
      patch[key] = Difference(old->get_object(), value.get_object());
    else
      patch[key] = value;
  }
  return patch;
}

}  // namespace hub::api
