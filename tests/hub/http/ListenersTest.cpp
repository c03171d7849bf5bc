// What the server listens on, what it must not, and TLS.
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "Stand.h"

namespace hub::http {
namespace {

// Why it does not start.
std::string Refusal(const std::function<void(ServerOptions&)>& change) {
  Stand stand;
  ServerOptions options;
  options.listen = {"127.0.0.1:0"};
  options.socket = "";
  change(options);
  return stand.Run([&]() -> std::string {
    try {
      Server(stand.house, options).Start();
      return "";
    } catch (const std::runtime_error& error) {
      return error.what();
    }
  });
}

TEST(ListenersTest, OthersAreNotServedBeforeThereIsAnAccount) {
  const auto why = Refusal([](ServerOptions& options) {
    options.listen = {"0.0.0.0:0"};
    options.insecure_http = true;
  });
  EXPECT_NE(why.find("there is no account yet"), std::string::npos) << why;
}

TEST(ListenersTest, WhatIsNoAddressIsRefusedWithItsText) {
  for (const std::string text : {"localhost:5080", "127.0.0.1", "127.0.0.1:70000", "::1:5080",
                                 "127.0.0.1:http", "[127.0.0.1]:5080", ""}) {
    const auto why = Refusal([&](ServerOptions& options) { options.listen = {text}; });
    EXPECT_TRUE(why.starts_with("cannot listen on " + text + ": ")) << why;
  }
}

TEST(ListenersTest, ATakenPortIsNamed) {
  Stand stand;
  const std::string port = std::to_string(stand.port);
  const auto why = Refusal([&](ServerOptions& options) { options.listen = {"127.0.0.1:" + port}; });
  EXPECT_EQ(why, "cannot listen on 127.0.0.1 port " + port + ": Address already in use");
}

TEST(ListenersTest, OthersNeedACertificateOrTheWordInsecure) {
  Stand stand;
  stand.AddAccount();
  const auto start = [&](bool insecure) {
    ServerOptions options;
    options.listen = {"0.0.0.0:0"};
    options.socket = "";
    options.insecure_http = insecure;
    return stand.Run([&]() -> std::string {
      try {
        // It is closed at once: a test serves nobody but this machine.
        Server server(stand.house, options);
        server.Start();
        server.Stop();
        return "";
      } catch (const std::runtime_error& error) {
        return error.what();
      }
    });
  };
  EXPECT_NE(start(false).find("insecure-http"), std::string::npos);
}

TEST(ListenersTest, TheUnixSocketIsOpenToItsGroupAlone) {
  Stand stand;
  struct stat status {};
  ASSERT_EQ(stat(stand.folder.Path("hub.sock").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0660U);
}

TEST(ListenersTest, ASocketThatWasLeftIsTakenAway) {
  Stand stand([](ServerOptions& options) {
    const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    options.socket.copy(address.sun_path, sizeof address.sun_path - 1);
    EXPECT_EQ(bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    close(fd);
  });
  EXPECT_EQ(stand.ConnectLocally().Get("/healthz").status, 200);
}

TEST(ListenersTest, ASocketThatAnotherServesAndAFileStay) {
  Stand stand;
  const auto why =
      Refusal([&](ServerOptions& options) { options.socket = stand.folder.Path("hub.sock"); });
  EXPECT_NE(why.find("another program listens there"), std::string::npos) << why;
  stand.folder.Write("file", "kept");
  EXPECT_NE(Refusal([&](ServerOptions& options) { options.socket = stand.folder.Path("file"); }),
            "");
  EXPECT_TRUE(std::filesystem::exists(stand.folder.Path("file")));
}

TEST(ListenersTest, ASocketOfTheServiceManagerIsTakenOver) {
  TempDir folder;
  const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  folder.Path("given.sock").copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(listen(fd, 8), 0);
  Stand stand([&](ServerOptions& options) { options.socket_descriptor = fd; });
  EXPECT_EQ(WebClient::ToPath(folder.Path("given.sock")).Get("/healthz").status, 200);
  EXPECT_FALSE(std::filesystem::exists(stand.folder.Path("hub.sock")));
}

TEST(ListenersTest, ADescriptorThatIsNoUnixSocketIsRefused) {
  const int fd = socket(AF_INET, SOCK_STREAM, 0);
  ASSERT_EQ(listen(fd, 8), 0);
  const auto why = Refusal([&](ServerOptions& options) { options.socket_descriptor = fd; });
  EXPECT_EQ(why, "cannot listen on descriptor " + std::to_string(fd) + ": it is no Unix socket");
  close(fd);
}

TEST(ListenersTest, ACertificateThatCannotBeReadIsNamed) {
  const auto why = Refusal([](ServerOptions& options) {
    options.certificate = "/nowhere/hub.pem";
    options.key = "/nowhere/hub.key";
  });
  EXPECT_TRUE(why.starts_with("cannot use /nowhere/hub.pem: ")) << why;
}

}  // namespace
}  // namespace hub::http
