#include "api/MergePatch.h"

#include <gtest/gtest.h>

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>

namespace hub::api {
namespace {

boost::json::object Object(std::string_view text) { return boost::json::parse(text).get_object(); }

std::string Merged(std::string_view base, std::string_view patch) {
  return boost::json::serialize(Merge(Object(base), Object(patch)));
}

std::string Different(std::string_view base, std::string_view wanted) {
  return boost::json::serialize(Difference(Object(base), Object(wanted)));
}

TEST(MergePatchTest, APatchAddsChangesAndRemoves) {
  EXPECT_EQ(Merged(R"({"a":1})", R"({"b":2})"), R"({"a":1,"b":2})");
  EXPECT_EQ(Merged(R"({"a":1})", R"({"a":[2]})"), R"({"a":[2]})");
  EXPECT_EQ(Merged(R"({"a":1})", R"({"a":null,"b":null})"), "{}");
  EXPECT_EQ(Merged(R"({"a":{"b":1,"c":2}})", R"({"a":{"b":null,"d":3}})"),
            R"({"a":{"c":2,"d":3}})");
  EXPECT_EQ(Merged(R"({"a":1})", R"({"a":{"b":null,"c":2}})"), R"({"a":{"c":2}})");
}

TEST(MergePatchTest, ADifferenceMakesTheOneOfTheOther) {
  constexpr const char* kBase = R"({"a":1,"b":{"c":2,"d":3},"e":{"f":4}})";
  for (const char* wanted :
       {R"({})", R"({"a":1,"b":{"c":2,"d":3},"e":{"f":4}})", R"({"a":2,"g":{"h":5}})",
        R"({"b":{"c":2},"e":{}})", R"({"a":{"b":1},"b":7})"})
    EXPECT_EQ(Object(Merged(kBase, Different(kBase, wanted))), Object(wanted)) << wanted;
}

TEST(MergePatchTest, ADifferenceSaysNoMoreThanNeeded) {
  EXPECT_EQ(Different(R"({"a":1,"b":{"c":2,"d":3}})", R"({"a":1,"b":{"c":2,"d":4}})"),
            R"({"b":{"d":4}})");
  EXPECT_EQ(Different(R"({"a":1,"b":2})", R"({"a":1})"), R"({"b":null})");
}

}  // namespace
}  // namespace hub::api
