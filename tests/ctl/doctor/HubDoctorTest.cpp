// What is between the daemon's ports and a person.
#include <sys/socket.h>
#include <sys/un.h>

#include <cstring>

#include "DoctorTest.h"
#include "Impostor.h"
#include "kit/Listener.h"

namespace {

TEST_F(Doctor, NoHub) {
  StartQuietSite();
  hub.reset();
  Examine();
  ExpectWrong("hub", "/run/test/hub.sock: is not there");
}

TEST_F(Doctor, ASocketThatADeadHubLeftBehind) {
  StartQuietSite();
  hub.reset();
  sockaddr_un path{};
  path.sun_family = AF_UNIX;
  std::strcpy(path.sun_path, "/run/test/hub.sock");
  const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ASSERT_EQ(bind(fd, reinterpret_cast<const sockaddr*>(&path), sizeof path), 0);
  close(fd);
  Examine();
  ExpectWrong("hub", "has nobody behind it");
}

TEST_F(Doctor, AHubWhoseSocketIsElsewhere) {
  StartQuietSite();
  hub.reset();
  const Impostor other("qelm-hub", [] {});
  Examine();
  ExpectWrong("hub", "runs, but /run/test/hub.sock: is not there");
  ExpectWrong("hub", "name its socket with --socket, or its address with --url");
  ExpectFound("page", "note", "nobody listens on port 5080");
}

TEST_F(Doctor, AHubAtAnotherAddress) {
  StartQuietSite();
  report = RunCtl({"--url", "http://127.0.0.1:5081", "--json", "doctor", "--wait", "60s"});
  ExpectWrong("hub", "http://127.0.0.1:5081");
}

TEST_F(Doctor, WhatAnswersButIsNoHub) {
  StartQuietSite();
  hub->Answer("GET /api/bus", "<html>router</html>");
  Examine();
  ExpectWrong("hub", "is that qelm-hub?");
}

TEST_F(Doctor, AHubThatDoesNotFindTheDaemon) {
  StartQuietSite();
  SayBus(R"({"state":"absent","version":null,"waiting_for":null})");
  Examine();
  ExpectWrong("hub", "it does not find the daemon (absent)");
}

TEST_F(Doctor, AHubThatWaitsForAPort) {
  StartQuietSite();
  SayBus(R"({"state":"waiting","version":null,"waiting_for":"io"})");
  Examine();
  ExpectWrong("hub", "another client holds the port io");
}

TEST_F(Doctor, AHubThatWantsALogin) {
  StartQuietSite();
  SayBus("null", 401);
  Examine();
  ExpectFound("hub", "unseen", "answers with status 401");
  ExpectFound("cards", "unseen", "");
}

TEST_F(Doctor, APagePortThatAnotherProgramHas) {
  StartQuietSite();
  const Listener other(5080);
  Examine();
  ExpectWrong("page", "port 5080 belongs to");
}

TEST_F(Doctor, ABrokerThatRefusesTheHub) {
  StartQuietSite();
  hub->Answer("GET /api/bus",
              R"({"name":"bench","daemon":{"state":"up","version":"1.20","waiting_for":null},)"
              R"("broker":{"state":"refused","host":"10.0.0.5","detail":"wrong password"}})");
  Examine();
  ExpectWrong("broker", "the hub does not have the one at 10.0.0.5: wrong password");
}

TEST_F(Doctor, ABrokerThatIsNotReached) {
  StartQuietSite();
  hub->Answer("GET /api/bus",
              R"({"name":"bench","daemon":{"state":"up","version":"1.20","waiting_for":null},)"
              R"("broker":{"state":"connecting","host":"10.0.0.5","detail":null}})");
  Examine();
  ExpectWrong("broker", "the hub does not have the one at 10.0.0.5: connecting");
}

TEST_F(Doctor, ACardThatDoesNotAnswer) {
  StartQuietSite();
  hub->Answer("GET /api/cards", R"({"cards":[{"address":"5","name":"Relays","state":"silent"},)"
                                R"({"address":"0","name":null,"state":"present"}]})");
  Examine();
  ExpectFound("cards", "note", "card 5 (Relays) does not answer");
}

TEST_F(Doctor, ABusWithoutCards) {
  StartQuietSite();
  hub->Answer("GET /api/cards", R"({"cards":[]})");
  Examine();
  ExpectWrong("cards", "no card is known");
}

}  // namespace
