#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include "BusProcess.h"

namespace virtualbus {
namespace {

class Link : public BusTest {
 protected:
  // Starts it so that it must refuse; gives what it says.
  std::string Refusal(std::vector<std::string> arguments) {
    Program program(folder, std::move(arguments));
    EXPECT_EQ(program.WaitForExit(), 2);
    return program.Errors();
  }
  bool Exists(const std::string& name) const {
    struct stat ignored {};
    return lstat(folder.Path(name).c_str(), &ignored) == 0;
  }
};

TEST_F(Link, IsThereWhileTheProgramRuns) {
  Start();
  EXPECT_TRUE(std::filesystem::is_symlink(folder.Path("ttyUSB0")));
  bus->Signal(SIGTERM);
  EXPECT_EQ(bus->WaitForExit(), 0);
  EXPECT_FALSE(Exists("ttyUSB0"));
  EXPECT_FALSE(Exists("control"));
}

TEST_F(Link, GoesOnInterruptAndHangUpToo) {
  for (const int signal : {SIGINT, SIGHUP}) {
    SCOPED_TRACE(signal);
    Start();
    bus->Signal(signal);
    EXPECT_EQ(bus->WaitForExit(), 0);
    EXPECT_FALSE(Exists("ttyUSB0"));
    EXPECT_FALSE(Exists("control"));
  }
}

TEST_F(Link, AFileInItsPlaceIsLeftAlone) {
  const std::string path = folder.Write("taken", "mine");
  EXPECT_EQ(Refusal({"--link", path}), "qelm-bus: " + path + " exists and is not ours\n");
  EXPECT_EQ(ReadFile(path), "mine");
}

TEST_F(Link, AnotherLinkInItsPlaceIsLeftAlone) {
  const std::string path = folder.Path("taken");
  ASSERT_EQ(symlink("/dev/pts/nothing", path.c_str()), 0);
  EXPECT_EQ(Refusal({"--link", path}), "qelm-bus: " + path + " exists and is not ours\n");
  EXPECT_EQ(std::filesystem::read_symlink(path), "/dev/pts/nothing");
}

TEST_F(Link, InAFolderThatIsNotThereIsAnError) {
  const std::string path = folder.Path("no/where");
  EXPECT_EQ(Refusal({"--link", path}),
            "qelm-bus: cannot make the link " + path + ": No such file or directory\n");
}

TEST_F(Link, ThatSomeoneReplacedIsNotRemoved) {
  Start();
  const std::string path = folder.Path("ttyUSB0");
  ASSERT_EQ(unlink(path.c_str()), 0);
  ASSERT_EQ(symlink("/elsewhere", path.c_str()), 0);
  bus->Signal(SIGTERM);
  EXPECT_EQ(bus->WaitForExit(), 0);
  EXPECT_EQ(std::filesystem::read_symlink(path), "/elsewhere");
}

TEST_F(Link, APulledCableTakesItAwayAndSilencesTheLine) {
  Start({"--card", "3=digital-input"});
  EXPECT_EQ(Order("cable pull"), "ok");
  EXPECT_FALSE(Exists("ttyUSB0"));
  host->Send({0x20, 0x03, 0x02});
  EXPECT_EQ(Order("cable plug"), "ok");
  EXPECT_TRUE(Exists("ttyUSB0"));
  EXPECT_EQ(Ask({0x99}), Bytes{0x4E}) << "the poll of the silent time was not answered";
}

TEST_F(Link, ACableIsNotPluggedOverAnothersLink) {
  Start();
  EXPECT_EQ(Order("cable pull"), "ok");
  const std::string path = folder.Write("ttyUSB0", "mine");
  EXPECT_EQ(Order("cable plug"), "error: " + path + " exists and is not ours");
  EXPECT_EQ(ReadFile(path), "mine");
  std::filesystem::remove(path);
  EXPECT_EQ(Order("cable plug"), "ok");
}

TEST_F(Link, TheControlSocketIsForItsOwnerOnly) {
  Start();
  struct stat status {};
  ASSERT_EQ(stat(folder.Path("control").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST_F(Link, AControlSocketInUseIsLeftAlone) {
  Start();
  const std::string path = folder.Path("control");
  EXPECT_EQ(Refusal({"--control", path}), "qelm-bus: " + path + " exists and is not ours\n");
  EXPECT_EQ(Order("mark"), "ok");
}

TEST_F(Link, AControlSocketPathHasALongestLength) {
  const std::string path = "/tmp/" + std::string(200, 'x');
  EXPECT_EQ(Refusal({"--control", path}), "qelm-bus: " + path + " is too long for a socket\n");
}

}  // namespace
}  // namespace virtualbus
