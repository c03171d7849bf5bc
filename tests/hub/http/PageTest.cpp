// The files of the page.
#include "http/Page.h"

#include <sys/stat.h>

#include "Stand.h"

namespace hub::http {
namespace {

class PageTest : public testing::Test {
 protected:
  PageTest() {
    folder.Write("index.html", "<p>index");
    folder.Write("app-4F2K9Q1Z.js", "let plain;");
    folder.Write("app-4F2K9Q1Z.js.gz", "gzipped");
    folder.Write("app-4F2K9Q1Z.js.br", "brotli");
    folder.Write(".secret", "no");
    folder.Write("strange.xyz", "bytes");
  }

  Reply Get(const std::string& path, const std::string& fields = "") {
    return stand.Connect().Get(path, fields);
  }

  TempDir folder;
  Stand stand{[this](ServerOptions& options) { options.page = folder.Path(""); }};
};

TEST_F(PageTest, TheIndexIsServedFresh) {
  const Reply reply = Get("/");
  EXPECT_EQ(reply.status, 200);
  EXPECT_EQ(reply.body, "<p>index");
  EXPECT_EQ(reply.fields.at("content-type"), "text/html; charset=utf-8");
  EXPECT_EQ(reply.fields.at("cache-control"), "no-cache");
  EXPECT_TRUE(reply.fields.contains("content-security-policy"));
}

TEST_F(PageTest, ANameWithAHashIsKeptForEver) {
  const Reply reply = Get("/app-4F2K9Q1Z.js");
  EXPECT_EQ(reply.body, "let plain;");
  EXPECT_EQ(reply.fields.at("content-type"), "text/javascript; charset=utf-8");
  EXPECT_EQ(reply.fields.at("cache-control"), "public, max-age=31536000, immutable");
}

TEST_F(PageTest, TheSmallestCodingThatTheBrowserTakesIsSent) {
  const std::string path = "/app-4F2K9Q1Z.js";
  EXPECT_EQ(Get(path, "Accept-Encoding: gzip, deflate, br\r\n").body, "brotli");
  EXPECT_EQ(Get(path, "Accept-Encoding: gzip\r\n").body, "gzipped");
  EXPECT_EQ(Get(path, "Accept-Encoding: br;q=0, gzip;q=0.5\r\n").body, "gzipped");
  EXPECT_EQ(Get(path, "Accept-Encoding: identity\r\n").body, "let plain;");
  const Reply reply = Get(path, "Accept-Encoding: br\r\n");
  EXPECT_EQ(reply.fields.at("content-encoding"), "br");
  EXPECT_EQ(reply.fields.at("content-type"), "text/javascript; charset=utf-8");
  EXPECT_EQ(reply.fields.at("vary"), "Accept-Encoding");
}

TEST_F(PageTest, NothingOutsideOfTheFolderIsServed) {
  for (const std::string path :
       {"/../secret", "/..", "/%2e%2e/secret", "/..%2fsecret", "/.secret", "/a/../index.html",
        "//etc/passwd", "/a//b", "/\\..\\secret", "/index.html%00.js", "/./index.html"})
    EXPECT_EQ(Get(path).status, 404) << path;
}

TEST_F(PageTest, AFolderOrAMissingFileIsNotThere) {
  ASSERT_EQ(mkdir(folder.Path("icons").c_str(), 0755), 0);
  EXPECT_EQ(Get("/icons").status, 404);
  EXPECT_EQ(Get("/icons/").status, 404);
  EXPECT_EQ(Get("/nothing.js").status, 404);
}

TEST_F(PageTest, AFileOfNoKnownKindIsBytes) {
  EXPECT_EQ(Get("/strange.xyz").fields.at("content-type"), "application/octet-stream");
}

TEST_F(PageTest, ThePageIsThereBeforeTheLogin) {
  stand.AddAccount();
  EXPECT_EQ(Get("/").status, 200);
}

TEST(NoPageTest, WithoutAFolderASmallPageSaysWhatThereIs) {
  Stand stand;
  const Reply reply = stand.Connect().Get("/");
  EXPECT_EQ(reply.status, 200);
  EXPECT_NE(reply.body.find("/api/openapi.json"), std::string::npos);
  EXPECT_EQ(stand.Connect().Get("/index.html").status, 404);
}

}  // namespace
}  // namespace hub::http
