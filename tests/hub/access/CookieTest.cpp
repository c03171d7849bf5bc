#include "access/Cookie.h"

#include <gtest/gtest.h>

namespace hub::access {
namespace {

TEST(Cookie, IsFoundAmongOthers) {
  for (const char* header :
       {"qelm_session=abc", "qelm_session=abc; theme=dark", "theme=dark; qelm_session=abc",
        "a=1; qelm_session=abc; b=2", "theme=dark;qelm_session=abc", "qelm_session=abc;",
        "  qelm_session=abc", "xqelm_session=evil; qelm_session=abc"})
    EXPECT_EQ(SessionCookie(header), "abc") << header;
}

TEST(Cookie, IsNoneWhereTheNameIsAnother) {
  for (const char* header :
       {"", ";", ";;;", "=", "qelm_session", "qelm_session;", "qelm_session=", "Qelm_Session=abc",
        "qelm_sessions=abc", "xqelm_session=abc", "x=qelm_session=abc", "qelm_session =abc",
        "theme=dark, qelm_session=abc"})
    EXPECT_EQ(SessionCookie(header), std::nullopt) << header;
}

TEST(Cookie, TwoOfThemAreNone) {
  EXPECT_EQ(SessionCookie("qelm_session=abc; qelm_session=planted"), std::nullopt);
  EXPECT_EQ(SessionCookie("qelm_session=; qelm_session=abc"), std::nullopt);
}

TEST(Cookie, IsSetSoThatNoScriptAndNoOtherSiteHasIt) {
  EXPECT_EQ(FormatSessionCookie("abc", false),
            "qelm_session=abc; Path=/; HttpOnly; SameSite=Strict; Max-Age=34560000");
}

TEST(Cookie, StaysWithTlsWhereItCameOverIt) {
  EXPECT_EQ(FormatSessionCookie("abc", true),
            "qelm_session=abc; Path=/; HttpOnly; SameSite=Strict; Max-Age=34560000; Secure");
}

TEST(Cookie, IsDeletedByAnEmptySecret) {
  EXPECT_EQ(FormatSessionCookie("", false),
            "qelm_session=; Path=/; HttpOnly; SameSite=Strict; Max-Age=0");
}

}  // namespace
}  // namespace hub::access
