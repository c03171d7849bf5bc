// Puts qelm-hub between the daemon and the clients of its whole-system tests: they run a second
// time, through the text ports.
#include <filesystem>
#include <memory>
#include <vector>

#include "BusProcess.h"
#include "DaemonTest.h"

namespace {

constexpr int kTextPorts = 5110;  // CAE, IO, MON
constexpr char kSettings[] = "/etc/qelm/qelm-hub.toml";

struct Difference {
  const char* test;
  const char* why;
};

constexpr char kLineEnds[] = "a line ends with LF or CR LF, and waits for its end";
constexpr char kSeparators[] = "lines end as in the daemon's defaults, which the hub needs";
constexpr char kToWhoSentIt[] = "an illegal IO command is answered on the client's own port";
constexpr char kTextIsCut[] = "a text is cut at the end of its row";
constexpr char kNothingEndsTheDaemon[] = "nothing that would end the daemon is passed on";
constexpr char kNoOldPrompt[] = "nothing comes before a client's greeting";

// What the text ports do not do as the daemon does, by the test that shows it there.
constexpr Difference kDifferences[] = {
    {"CaeDriver.UnknownLinesGetReplyAndPromptInOneItem", kLineEnds},
    {"CaeDriver.SpeedNeedsNoLineEnd", kLineEnds},
    {"CaeDriver.ExitSaysGoodbyeAndTheDaemonRunsOn", kNoOldPrompt},
    {"IoCommands.LastPieceNeedsNoSeparator", kLineEnds},
    {"IoCommands.OtherSeparatorsCutTheMessage", kSeparators},
    {"IoCommands.EmptySeparatorMakesTheMessageOneCommand", kSeparators},
    {"IoCommands.ErrorAnswersEndWithTheSeparatorOfCae", kSeparators},
    {"IoCommands.IllegalCommandsAreAnsweredOnCaeOnly", kToWhoSentIt},
    {"IoCommands.LcdTextMayStandBesideTheGlass", kTextIsCut},
    {"IoCommands.LongestLcdTextIsSent", kTextIsCut},
    {"IoCommands.LongerLcdTextEndsTheProcess", kNothingEndsTheDaemon},
    {"IoCommands.LongerLcdTextEndsTheProcessWhateverTheCard", kNothingEndsTheDaemon},
};

class ThroughHub : public Front {
 public:
  ThroughHub() { Use(*this); }

  std::string Difference(const std::string& test) const override {
    for (const ::Difference& row : kDifferences)
      if (test == row.test) return row.why;
    return "";
  }

  int PortOf(Port port) const override { return kTextPorts + (port - kCae); }

  void Start(Place place) override {
    WriteFile(kSettings, "[daemon]\ncae = " + std::to_string(kCae) +
                             "\nio = " + std::to_string(kIo) + "\nmon = " + std::to_string(kMon) +
                             "\nlog = \"" + kLogFile +
                             "\"\n[store]\nfolder = \"/run/test/store\"\n");
    folder_ = std::make_unique<TempDir>();
    hub_ = std::make_unique<virtualbus::Program>(
        *folder_, QELM_HUB_BINARY,
        std::vector<std::string>{"--config", kSettings, "--socket", "/run/test/hub.sock"});
    if (!WaitUntil([this] { return IsListening(PortOf(kMon)) && HasDaemon(); }))
      FAIL_AT(place) << "the hub has no daemon: " << hub_->Errors();
  }

  // The daemon repeats a command on MON when it has acted on it; nobody has a card at B.
  void AwaitOutputs(Place place) override {
    constexpr char kNothing[] = "aBb0d00";
    Client mon(PortOf(kMon));
    mon.ReadUntil("QELM MON interface is ready\r\n\r", place);
    Client io(PortOf(kIo));
    io.Send(std::string(kNothing) + "\r\n", place);
    mon.ReadUntil(std::string(kNothing) + "\r\n\r", place);
  }

  void End() override {
    if (hub_ && testing::Test::HasFailure()) std::cout << "--- hub\n" << hub_->Errors();
    hub_.reset();
    folder_.reset();
  }

  void ExpectIllegal(Client& io, Client&, const std::string& command, Place place) override {
    io.ExpectBytes("COE:Illegal command -> " + command + "\r\n\r", place);
  }

 private:
  bool HasDaemon() const {
    Client cae(PortOf(kCae));
    cae.ReadUntil(">\r\n\r");
    cae.Send("DRVVER\r\n");
    return cae.ReadUntil(">\r\n\r").starts_with("CIA: DRIVER VERSION");
  }

  std::unique_ptr<TempDir> folder_;
  std::unique_ptr<virtualbus::Program> hub_;
};

ThroughHub through_hub;

}  // namespace
