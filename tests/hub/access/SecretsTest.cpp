#include "access/Secrets.h"

#include <gtest/gtest.h>

namespace hub::access {
namespace {

constexpr PasswordCost kCheap{8192, 1};

TEST(Secrets, AreLongAndWithoutLettersThatUrlsMind) {
  const std::string secret = RandomSecret();
  EXPECT_EQ(secret.size(), 43U);
  EXPECT_EQ(secret.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                     "0123456789-_"),
            std::string::npos);
  EXPECT_NE(secret, RandomSecret());
}

TEST(Secrets, IdsAreSixteenDigits) {
  const std::string id = RandomId();
  EXPECT_EQ(id.size(), 16U);
  EXPECT_EQ(id.find_first_not_of("0123456789abcdef"), std::string::npos);
  EXPECT_NE(id, RandomId());
}

TEST(Secrets, AreHashedAsBlake2b) {
  EXPECT_EQ(HashOf(""), "0e5751c026e543b2e8ab2eb06099daa1d1e5df47778f7787faab45cdf12fe3a8");
  EXPECT_EQ(HashOf("abc"), "bddd813c634239723171ef3fee98579b94964e3bb1cb3e427262c8c068d52319");
}

TEST(Secrets, AreTheSameInEachLetter) {
  EXPECT_TRUE(IsSame("", ""));
  EXPECT_TRUE(IsSame("abc", "abc"));
  EXPECT_FALSE(IsSame("abc", "abd"));
  EXPECT_FALSE(IsSame("abc", "ab"));
  EXPECT_FALSE(IsSame("ab", "abc"));
}

TEST(PasswordHash, IsArgon2idOf32MegabytesAndThreePasses) {
  const std::string hash = HashPassword("correct horse", {});
  EXPECT_TRUE(hash.starts_with("$argon2id$v=19$m=32768,t=3,p=1$")) << hash;
}

TEST(PasswordHash, FitsItsPasswordOnly) {
  const std::string hash = HashPassword("correct horse", kCheap);
  EXPECT_TRUE(IsPassword(hash, "correct horse"));
  for (const char* wrong : {"", "correct hors", "correct horse ", "Correct horse"})
    EXPECT_FALSE(IsPassword(hash, wrong)) << wrong;
}

TEST(PasswordHash, TakesEachByteOfThePassword) {
  using namespace std::string_literals;
  const std::string hash = HashPassword("with\0nul"s, kCheap);
  EXPECT_TRUE(IsPassword(hash, "with\0nul"s));
  EXPECT_FALSE(IsPassword(hash, "with"));
  EXPECT_FALSE(IsPassword(hash, "with\0null"s));
}

TEST(PasswordHash, HasASaltOfItsOwn) {
  EXPECT_NE(HashPassword("correct horse", kCheap), HashPassword("correct horse", kCheap));
}

TEST(PasswordHash, ATextThatIsNoneFitsNoPassword) {
  EXPECT_FALSE(IsPassword("", ""));
  EXPECT_FALSE(IsPassword("correct horse", "correct horse"));
  EXPECT_FALSE(IsPassword("$argon2id$v=19$m=8,t=1,p=1$", ""));
}

TEST(PasswordHash, WithoutTheMemoryThereIsNone) {
  EXPECT_THROW(HashPassword("correct horse", {size_t{1} << 50U, 1}), std::bad_alloc);
}

}  // namespace
}  // namespace hub::access
