// Plain values as JSON: what is not there is null. Pure functions.
#pragma once

#include <boost/json/value.hpp>
#include <cmath>
#include <optional>
#include <string>
#include <variant>

#include "api/Times.h"
#include "model/Change.h"
#include "model/Value.h"

namespace hub::api {

inline boost::json::value OrNull(const std::string& text) {
  return text.empty() ? boost::json::value() : boost::json::value(text);
}

template <class Plain>
boost::json::value OrNull(const std::optional<Plain>& value) {
  return value ? boost::json::value(*value) : boost::json::value();
}

inline boost::json::value OrNull(const std::optional<model::Time>& time) {
  return time ? boost::json::value(TimeText(*time)) : boost::json::value();
}

// A whole number without a point.
inline boost::json::value NumberJson(double number) {
  constexpr double kLargestWhole = 9'007'199'254'740'992;
  if (number == std::trunc(number) && std::abs(number) <= kLargestWhole)
    return static_cast<int64_t>(number);
  return number;
}

inline boost::json::value ValueJson(const model::Value& value) {
  if (const bool* on = std::get_if<bool>(&value)) return *on;
  if (const double* number = std::get_if<double>(&value)) return NumberJson(*number);
  if (const auto* code = std::get_if<std::string>(&value)) return boost::json::value(*code);
  return nullptr;
}

}  // namespace hub::api
