#include "KeptOutputs.h"

#include <gtest/gtest.h>

namespace hub {
namespace {

std::string Again(const char* document) { return KeptOutputs(document).Document(); }

TEST(KeptOutputs, ADocumentIsReadAsItWasWritten) {
  KeptOutputs outputs("");
  EXPECT_TRUE(outputs.Keep({0x5, 0, 0xFE}));
  EXPECT_FALSE(outputs.Keep({0x5, 0, 0xFE}));
  EXPECT_TRUE(outputs.Keep({0xE, 1, 7}));
  EXPECT_EQ(outputs.Document(), R"({"5.0":254,"E.1":7})");
  EXPECT_EQ(Again(R"({"5.0":254,"E.1":7})"), R"({"5.0":254,"E.1":7})");
}

TEST(KeptOutputs, WhatIsForgottenIsKeptNoMore) {
  KeptOutputs outputs(R"({"5.0":254,"E.1":7})");
  EXPECT_TRUE(outputs.Forget(0x5, 0));
  EXPECT_FALSE(outputs.Forget(0x5, 0));
  EXPECT_EQ(outputs.Document(), R"({"E.1":7})");
}

TEST(KeptOutputs, WhatIsBrokenIsPassedOverAndTheRestIsKept) {
  for (const char* all_of_it : {"", "[", "[]", "7", "null", R"({"5.0":254)", "\xFF"})
    EXPECT_EQ(Again(all_of_it), "{}") << all_of_it;
  for (const char* member :
       {R"("5.0":256)", R"("5.0":-1)", R"("5.0":1.5)", R"("5.0":"1")", R"("5.0":null)",
        R"("G.0":1)", R"("5.G":1)", R"("5-0":1)", R"("5.00":1)", R"("":1)"})
    EXPECT_EQ(Again(("{" + std::string(member) + R"(,"6.1":3})").c_str()), R"({"6.1":3})")
        << member;
}

}  // namespace
}  // namespace hub
