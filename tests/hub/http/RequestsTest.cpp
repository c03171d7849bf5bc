// Requests and their answers, byte by byte.
#include "Stand.h"

namespace hub::http {
namespace {

class RequestsTest : public testing::Test {
 protected:
  Stand stand;
  WebClient client = stand.Connect();
};

TEST_F(RequestsTest, AMethodIsReachedByItsRoute) {
  const Reply reply = client.Get("/api/things/lamp?deep=3");
  EXPECT_EQ(reply.status, 200);
  EXPECT_EQ(reply.body, R"({"name":"lamp","deep":3})");
  EXPECT_EQ(reply.fields.at("content-type"), "application/json");
  EXPECT_EQ(reply.fields.at("cache-control"), "no-store");
}

TEST_F(RequestsTest, TheAnswerGoesOutInTheseBytes) {
  client.Send("GET /api/things/lamp HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n");
  EXPECT_EQ(client.ReadToEnd(),
            "HTTP/1.1 200 OK\r\n"
            "Date: Sat, 21 Nov 2026 12:00:00 GMT\r\n"
            "Content-Security-Policy: default-src 'none'; script-src 'self'; style-src 'self'; "
            "img-src 'self' data:; font-src 'self'; connect-src 'self'; manifest-src 'self'; "
            "base-uri 'none'; form-action 'none'; frame-ancestors 'none'\r\n"
            "X-Content-Type-Options: nosniff\r\n"
            "X-Frame-Options: DENY\r\n"
            "Referrer-Policy: no-referrer\r\n"
            "Cross-Origin-Opener-Policy: same-origin\r\n"
            "Cross-Origin-Embedder-Policy: require-corp\r\n"
            "Cross-Origin-Resource-Policy: same-origin\r\n"
            "Content-Type: application/json\r\n"
            "Cache-Control: no-store\r\n"
            "Content-Length: 15\r\n"
            "Connection: close\r\n"
            "\r\n"
            "{\"name\":\"lamp\"}");
}

TEST_F(RequestsTest, OneConnectionCarriesManyRequests) {
  for (int i = 0; i < 3; ++i) EXPECT_EQ(client.Get("/api/things/lamp").status, 200);
  client.Send(RequestText("GET", "/api/things/a") + RequestText("GET", "/api/things/b"));
  EXPECT_EQ(client.Read().body, R"({"name":"a"})");
  EXPECT_EQ(client.Read().body, R"({"name":"b"})");
}

TEST_F(RequestsTest, ARequestMayComeInAnyPieces) {
  const std::string request = RequestText("GET", "/api/things/lamp");
  for (const char byte : request) client.Send(std::string(1, byte));
  EXPECT_EQ(client.Read().status, 200);
}

TEST_F(RequestsTest, ABodyBringsItsFields) {
  const Reply reply = client.Write("PUT", "/api/things/lamp", R"({"value":7})");
  EXPECT_EQ(reply.body, R"({"name":"lamp","value":7})");
}

TEST_F(RequestsTest, ABodyMayComeInChunks) {
  const Reply reply =
      client.Ask(RequestText("PUT", "/api/things/lamp",
                             "Content-Type: application/json\r\nTransfer-Encoding: chunked\r\n") +
                 "6\r\n{\"valu\r\n5\r\ne\":7}\r\n0\r\n\r\n");
  EXPECT_EQ(reply.body, R"({"name":"lamp","value":7})");
}

TEST_F(RequestsTest, WhoAsksBeforeSendingABodyIsLetOn) {
  client.Send(RequestText("PUT", "/api/things/lamp",
                          "Content-Type: application/json\r\nContent-Length: 11\r\n"
                          "Expect: 100-continue\r\n"));
  EXPECT_EQ(client.Read().status, 100);
  EXPECT_EQ(client.Ask(R"({"value":7})").status, 200);
}

TEST_F(RequestsTest, AnOldClientIsAnsweredAndClosed) {
  client.Send("GET /api/things/lamp HTTP/1.0\r\nHost: localhost\r\n\r\n");
  EXPECT_EQ(client.Read().fields.at("connection"), "close");
  EXPECT_TRUE(client.Ends());
}

TEST_F(RequestsTest, HeadGivesTheFieldsWithoutTheBody) {
  client.Send(RequestText("HEAD", "/api/things/lamp"));
  const Reply reply = client.Read(false);
  EXPECT_EQ(reply.status, 200);
  EXPECT_EQ(reply.fields.at("content-length"), "15");
  EXPECT_EQ(client.Get("/api/things/lamp").status, 200);
}

TEST_F(RequestsTest, OptionsNamesWhatGoes) {
  const Reply reply = client.Ask(RequestText("OPTIONS", "/api/things/lamp"));
  EXPECT_EQ(reply.status, 204);
  EXPECT_EQ(reply.fields.at("allow"), "GET, HEAD, PUT, OPTIONS");
  EXPECT_FALSE(reply.fields.contains("access-control-allow-origin"));
}

TEST_F(RequestsTest, AnotherVerbIsRefusedWithThoseThatGo) {
  const Reply reply = client.Write("POST", "/api/things/lamp", "{}");
  EXPECT_EQ(reply.status, 405);
  EXPECT_EQ(reply.fields.at("allow"), "GET, HEAD, PUT, OPTIONS");
  EXPECT_EQ(client.Ask(RequestText("BREW", "/api/things/lamp")).status, 405);
  EXPECT_EQ(client.Ask(RequestText("DELETE", "/metrics")).status, 405);
}

TEST_F(RequestsTest, AnUnknownPathIsAProblemDocument) {
  const Reply reply = client.Get("/api/nothing");
  EXPECT_EQ(reply.status, 404);
  EXPECT_EQ(reply.fields.at("content-type"), "application/problem+json");
  EXPECT_NE(reply.body.find(R"("status":404)"), std::string::npos);
}

TEST_F(RequestsTest, AFormOrATextIsNotTakenForJson) {
  for (const std::string type : {"application/x-www-form-urlencoded", "text/plain",
                                 "multipart/form-data; boundary=x", "application/jsonp"}) {
    const Reply reply =
        client.Ask(RequestText("PUT", "/api/things/lamp",
                               "Content-Type: " + type + "\r\nContent-Length: 11\r\n") +
                   R"({"value":7})");
    EXPECT_EQ(reply.status, 415) << type;
  }
}

TEST_F(RequestsTest, ABodyWithoutATypeIsRefused) {
  const std::string text = RequestText("PUT", "/api/things/lamp", "Content-Length: 11\r\n");
  EXPECT_EQ(client.Ask(text + R"({"value":7})").status, 415);
}

TEST_F(RequestsTest, AWriteWithoutABodyNeedsNoType) {
  EXPECT_EQ(client.Ask(RequestText("POST", "/api/session", "")).status, 200);
  EXPECT_EQ(client.Ask(RequestText("POST", "/api/session", "Content-Length: 0\r\n")).status, 200);
}

TEST_F(RequestsTest, AFormWithoutABodyIsRefused) {
  for (const std::string type : {"application/x-www-form-urlencoded", "text/plain"})
    EXPECT_EQ(client
                  .Ask(RequestText("POST", "/api/session",
                                   "Content-Type: " + type + "\r\nContent-Length: 0\r\n"))
                  .status,
              415)
        << type;
}

TEST_F(RequestsTest, TheTypeMayNameItsCharacters) {
  const Reply reply = client.Ask(
      RequestText("PUT", "/api/things/lamp",
                  "Content-Type: Application/JSON; charset=utf-8\r\nContent-Length: 11\r\n") +
      R"({"value":7})");
  EXPECT_EQ(reply.status, 200);
}

TEST_F(RequestsTest, NoJsonIsABadRequest) {
  EXPECT_EQ(client.Write("PUT", "/api/things/lamp", "{value").status, 400);
}

TEST_F(RequestsTest, NothingIsNoJsonWhereABodyIsNeeded) {
  const Reply reply = client.Write("PUT", "/api/things/lamp", "");
  EXPECT_EQ(reply.status, 400);
  EXPECT_NE(reply.body.find(R"("title":"no JSON")"), std::string::npos) << reply.body;
  EXPECT_EQ(client.Write("POST", "/api/session", "").status, 200);
}

TEST_F(RequestsTest, AFieldThatNobodyKnowsIsRefusedByName) {
  const Reply reply = client.Write("PUT", "/api/things/lamp", R"({"value":7,"colour":1})");
  EXPECT_EQ(reply.status, 422);
  EXPECT_NE(reply.body.find("colour"), std::string::npos);
  EXPECT_EQ(client.Get("/api/things/lamp?colour=1").status, 422);
}

TEST_F(RequestsTest, AFieldOfTheBodyIsNotTakenFromTheQuery) {
  EXPECT_EQ(client.Write("PUT", "/api/things/lamp?value=7", "{}").status, 422);
}

TEST_F(RequestsTest, ABrokenEscapeIsABadRequest) {
  EXPECT_EQ(client.Get("/api/things/lamp?deep=%4").status, 400);
  EXPECT_EQ(client.Get("/api/things/lamp?deep=%33").body, R"({"name":"lamp","deep":3})");
}

TEST_F(RequestsTest, AProblemSaysWhenToComeAgain) {
  const Reply reply = client.Get("/api/busy");
  EXPECT_EQ(reply.status, 503);
  EXPECT_EQ(reply.fields.at("retry-after"), "7");
}

TEST_F(RequestsTest, ALoginSetsACookieAndALogoutTakesItBack) {
  const std::string set = client.Write("POST", "/api/session", "{}").fields.at("set-cookie");
  EXPECT_EQ(set.substr(0, set.find("; Max-Age")),
            "qelm_session=secret; Path=/; HttpOnly; SameSite=Strict");
  EXPECT_EQ(client.Ask(RequestText("DELETE", "/api/session")).fields.at("set-cookie"),
            "qelm_session=; Path=/; HttpOnly; SameSite=Strict; Max-Age=0");
}

TEST_F(RequestsTest, ALoginThroughAProxyWithTlsSetsACookieForTlsAlone) {
  Stand behind([](ServerOptions& options) { options.proxies = {"127.0.0.1"}; });
  const std::string forwarded = "X-Forwarded-Proto: https\r\n";
  const auto cookie = [&](Stand& at, const std::string& fields) {
    return at.Connect().Write("POST", "/api/session", "{}", fields).fields.at("set-cookie");
  };
  EXPECT_TRUE(cookie(behind, forwarded).ends_with("; Secure")) << cookie(behind, forwarded);
  EXPECT_FALSE(cookie(behind, "").ends_with("; Secure"));
  EXPECT_FALSE(cookie(stand, forwarded).ends_with("; Secure"));
}

TEST_F(RequestsTest, WithoutMemoryTheAnswerIsToComeAgain) {
  stand.Run([&] { stand.server->Collect([]() -> std::string { throw std::bad_alloc(); }); });
  const Reply reply = client.Get("/metrics");
  EXPECT_EQ(reply.status, 503);
  EXPECT_NE(reply.body.find("no memory for this just now"), std::string::npos);
  EXPECT_EQ(client.Get("/healthz").status, 200);
}

TEST_F(RequestsTest, AFaultIsAnAnswer) {
  stand.Run([&] {
    stand.server->Collect([]() -> std::string { throw std::runtime_error("no such number"); });
  });
  const Reply reply = client.Get("/metrics");
  EXPECT_EQ(reply.status, 500);
  EXPECT_NE(reply.body.find("no such number"), std::string::npos);
  EXPECT_EQ(client.Get("/healthz").status, 200);
}

// Nobody could say whose it was. The server is busy until the other end has gone.
TEST_F(RequestsTest, AConnectionThatWasResetIsNotServed) {
  stand.Run([&] {
    WebClient other = stand.Connect();
    other.Send(RequestText("GET", "/api/nothing"));
    other.Reset();
  });
  EXPECT_EQ(client.Get("/api/things/lamp").status, 200);
  EXPECT_EQ(client.Get("/metrics").body.find("qelm_http_requests_total{status=\"404\"}"),
            std::string::npos);
}

TEST_F(RequestsTest, WhatIsNoHttpIsRefusedAndClosed) {
  for (const std::string bytes :
       {"hello\r\n\r\n", "GET / HTTP/9.9\r\n\r\n", "GET  /  HTTP/1.1\r\n\r\n",
        "GET http://elsewhere/ HTTP/1.1\r\nHost: localhost\r\n\r\n",
        "GET / HTTP/1.1\r\nHost: localhost\r\nBad Name: x\r\n\r\n",
        "POST /api/session HTTP/1.1\r\nHost: localhost\r\nContent-Length: 2\r\n"
        "Transfer-Encoding: chunked\r\n\r\n0\r\n\r\n",
        "POST /api/session HTTP/1.1\r\nHost: localhost\r\nContent-Length: -2\r\n\r\n"}) {
    WebClient other = stand.Connect();
    const Reply reply = other.Ask(bytes);
    EXPECT_EQ(reply.status, 400) << bytes;
    EXPECT_EQ(reply.fields.at("connection"), "close");
    EXPECT_TRUE(other.Ends());
  }
}

TEST_F(RequestsTest, TheOpenApiDocumentIsServed) {
  EXPECT_EQ(client.Get("/api/openapi.json").body, R"({"openapi":"3.1.0"})");
}

TEST_F(RequestsTest, HealthSaysWhatIsUp) {
  EXPECT_EQ(client.Get("/healthz").body, R"({"hub":"up","daemon":"absent","adapter":"unknown"})");
}

}  // namespace
}  // namespace hub::http
