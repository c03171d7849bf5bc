// What shells are offered, and the two scripts that ask for it.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

#include "Ctl.h"
#include "FakeHub.h"

namespace {

class Completion : public testing::Test {
 protected:
  Completion() {
    hub.Answer("GET /api/cards",
               R"({"cards":[{"address":"5","name":"Relays","channels":[{"id":"5.0","name":"Lamp"},)"
               R"({"id":"5.1","name":"Big lamp"},{"id":"5.2","name":null}]}]})");
  }

  std::string Offered(std::vector<std::string> words) {
    words.insert(words.begin(), {"complete", "--socket", hub.SocketPath()});
    return RunCtl(words).out;
  }

  FakeHub hub;
};

TEST_F(Completion, OffersCommands) {
  EXPECT_EQ(Offered({"se"}), "set\nsettings\n");
  EXPECT_EQ(Offered({"account", "r"}), "remove\nrole\n");
}

TEST_F(Completion, OffersChannelsAndNames) {
  EXPECT_EQ(Offered({"set", ""}), "5.0\nLamp\n5.1\nBig lamp\n5.2\n");
  EXPECT_EQ(Offered({"get", "la"}), "Lamp\n");
  EXPECT_EQ(Offered({"get", "Lamp", ""}), "");
}

TEST_F(Completion, OffersBoardsAndWhatIsOnThem) {
  hub.Answer("GET /api/boards", R"({"boards":[{"board":"attic"},{"board":"shed"}]})");
  hub.Answer("GET /api/boards/shed/cards",
             R"({"cards":[{"address":"6","name":null,"channels":[{"id":"6.0","name":"Pump"}]}]})");
  EXPECT_EQ(Offered({"--board", ""}), "attic\nshed\n");
  EXPECT_EQ(Offered({"--board", "shed", "get", ""}), "6.0\nPump\n");
}

TEST_F(Completion, OffersInfraredCodes) {
  hub.Answer("GET /api/cards",
             R"({"cards":[{"address":"9","codes":{"434F":"Volume up","4350":"Mute"}}]})");
  EXPECT_EQ(Offered({"ir", "9", ""}), "434F\nVolume up\n4350\nMute\n");
  EXPECT_EQ(Offered({"ir", "9", "mu"}), "Mute\n");
}

TEST_F(Completion, OffersCards) { EXPECT_EQ(Offered({"reboot", ""}), "5\nRelays\n"); }

TEST_F(Completion, OffersValuesAndRoles) {
  EXPECT_EQ(Offered({"set", "5.0", "o"}), "on\noff\n");
  EXPECT_EQ(Offered({"account", "role", "operator", ""}), "view\nuse\nadmin\n");
}

TEST_F(Completion, OffersOptions) {
  EXPECT_EQ(Offered({"set", "--p"}), "--pulse\n");
  EXPECT_EQ(Offered({"--j"}), "--json\n");
  EXPECT_EQ(Offered({"set", "5.0", "on", "--pulse", ""}), "");
}

TEST_F(Completion, IsSilentWithoutAHub) {
  const Outcome outcome = RunCtl({"complete", "--socket", "/nonexistent/sock", "get", ""});
  EXPECT_EQ(outcome.out + outcome.err, "");
  EXPECT_EQ(outcome.status, 0);
}

TEST_F(Completion, BashQuotesWhatNeedsIt) {
  const TempDir folder;
  const std::string script =
      folder.Write("complete.bash", "qelmctl() { " QELMCTL " \"$@\"; }\n. " COMPLETIONS
                                    "/qelmctl.bash\n"
                                    "COMP_WORDS=(qelmctl --socket " +
                                        hub.SocketPath() +
                                        " set big)\nCOMP_CWORD=4\n_qelmctl\n"
                                        "printf '%s\\n' \"${COMPREPLY[@]}\" >" +
                                        folder.Path("out") + "\n");
  ASSERT_EQ(std::system(("bash " + script).c_str()), 0);
  EXPECT_EQ(ReadFile(folder.Path("out")), "Big\\ lamp\n");
}

// Both shells with a person at the keyboard: what stands behind Tab is on the line then.
TEST_F(Completion, ZshCompletesAtTheKeyboard) {
  if (std::system("command -v zsh >/dev/null") != 0) GTEST_SKIP() << "zsh is not installed";
  const TempDir folder;
  const std::string script = folder.Write(
      "keyboard.zsh",
      "zmodload zsh/zpty\n"
      "export ZDOTDIR=" +
          folder.Path("") +
          " TERM=dumb\n"
          "zpty -b shell zsh -f -i\n"
          "zpty -w shell 'fpath=(" COMPLETIONS
          " $fpath); autoload -U compinit; compinit -u -D'\n"
          "zpty -w shell 'qelmctl() { " QELMCTL
          " \"$@\" }; print rea''dy'\n"
          "seen=\n"
          "until [[ $seen == *ready* ]]; do zpty -r shell out && seen+=$out; sleep 0.02; done\n"
          "zpty -n -w shell $'qelmctl --socket " +
          hub.SocketPath() +
          " set big\\t'\n"
          "until [[ $seen == *'Big\\ lamp'* ]]; do zpty -r shell out && seen+=$out; sleep 0.02; "
          "done\n");
  EXPECT_EQ(std::system(("timeout 60 zsh -f " + script + " </dev/null").c_str()), 0);
}

}  // namespace
