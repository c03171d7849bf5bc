#include "doctor/Configuration.h"

#include <gtest/gtest.h>

namespace ctl::doctor {
namespace {

const std::string kPorts = R"(<Interfaces>
<Interface Name="CAE" Port="5010" InpSeparator="\r\n" OutSeparator="\r\n"/>
<Interface Name="IO" Port="5011" InpSeparator="\r\n" OutSeparator="\r\n"/>
<Interface Name="MON" Port="5012" InpSeparator="\r\n" OutSeparator="\r\n"/>
</Interfaces>
)";
const std::string kLog = "<Debuglog File=\"/var/log/qelm/qelm.log\" Loglevel=\"1\"/>\n";

std::string Whole(const std::string& content) {
  return "<?xml version=\"1.0\"?>\n<QELMConfig>\n" + content + "</QELMConfig>\n";
}

// What is found, a line each, "note: " in front of what works all the same.
std::string Found(const std::string& text) {
  std::string found;
  for (const Finding& finding : ReadConfiguration(text).findings)
    found += (finding.verdict == Verdict::kNote ? "note: " : "") + finding.found + "\n";
  return found;
}

TEST(Configuration, TheInstalledOneIsWell) {
  const Configuration configuration =
      ReadConfiguration(Whole(kLog +
                              "<Speed Percent=\"50\"/>\n<InitPollState Action=\"True\"/>\n"
                              "<AutoDiscover Action=\"TRUE\"/>\n" +
                              kPorts));
  EXPECT_TRUE(configuration.findings.empty());
  EXPECT_EQ(configuration.log_file, "/var/log/qelm/qelm.log");
  EXPECT_TRUE(configuration.polls);
  EXPECT_TRUE(configuration.discovers);
  ASSERT_EQ(configuration.ports.size(), 3U);
  EXPECT_EQ(configuration.ports[0].name, "CAE");
  EXPECT_EQ(configuration.ports[2].number, 5012);
}

TEST(Configuration, BrokenXmlIsFoundWithItsLine) {
  EXPECT_EQ(Found("<QELMConfig>\n<Speed>\n</QELMConfig>\n"),
            "line 3: is no well-formed XML: Start-end tags mismatch\n");
}

TEST(Configuration, AnotherOutermostElementIsAnEmptyFile) {
  EXPECT_EQ(Found("<Config/>"),
            "line 1: the outermost element is \"Config\": the daemon takes the file for an empty "
            "one\n");
}

TEST(Configuration, MisspeltNamesAreFound) {
  EXPECT_EQ(Found(Whole(kLog + "<speed Percent=\"5\"/>\n" + kPorts)),
            "line 4: the daemon passes over the unknown element \"speed\"\n");
  EXPECT_EQ(Found(Whole(kLog + "<AutoDiscover action=\"True\"/>\n" + kPorts)),
            "line 4: the daemon passes over the unknown attribute \"action\" of AutoDiscover\n"
            "line 4: AutoDiscover \"\" counts as False\n");
}

TEST(Configuration, WhatWasMeantIsSaid) {
  const auto findings = ReadConfiguration(Whole(kLog + "<Sped/>\n" + kPorts)).findings;
  ASSERT_EQ(findings.size(), 1U);
  EXPECT_EQ(findings[0].advice, "write \"Speed\"");
}

TEST(Configuration, ValuesThatDoSomethingElseAreFound) {
  EXPECT_EQ(
      Found(Whole(kLog + "<Speed Percent=\"fast\"/>\n<InitPollState Action=\"yes\"/>\n" + kPorts)),
      "line 4: the speed \"fast\" is not from 1 to 100\n"
      "line 5: InitPollState \"yes\" counts as False\n");
  EXPECT_EQ(Found(Whole("<Debuglog File=\"/l\" Loglevel=\"2\"/>\n" + kPorts)),
            "line 3: a Loglevel above 1 writes nothing, and costs a file descriptor an event\n");
}

struct PortCase {
  const char* port;
  const char* found;
};

class Port : public testing::TestWithParam<PortCase> {};

TEST_P(Port, ThatIsWrongIsFound) {
  const std::string ports =
      "<Interfaces>\n<I Name=\"CAE\" Port=\"5010\"/>\n"
      "<I Name=\"IO\" Port=\"5011\"/>\n" +
      std::string(GetParam().port) + "\n</Interfaces>\n";
  EXPECT_EQ(Found(Whole(kLog + ports)), GetParam().found);
}

INSTANTIATE_TEST_SUITE_P(
    Configuration, Port,
    testing::Values(
        PortCase{R"(<I Name="MON" Port="1024"/>)",
                 "line 7: the port 1024 is below 1025: the daemon does not start\n"},
        PortCase{R"(<I Name="MON" Port="65536"/>)",
                 "line 7: the port \"65536\" is no number up to 65535\n"},
        PortCase{R"(<I Name="MON" Port="5011"/>)",
                 "the port MON has the number of another, 5011: it listens somewhere else\n"},
        PortCase{R"(<I Name="MON"/>)", "line 7: the port MON has no number\n"},
        PortCase{R"(<I Name="Mon" Port="5012"/>)",
                 "line 7: the daemon drops a port called \"Mon\"\n"
                 "there is no port MON: it greets nobody\n"},
        PortCase{R"(<I Name="IO" Port="5012"/>)",
                 "line 7: a second port IO takes the place of the first\n"
                 "there is no port MON: it greets nobody\n"},
        PortCase{R"(<I Name="MON" Port="5012" InSeparator="\n"/>)",
                 "line 7: the daemon passes over the unknown attribute \"InSeparator\" of I\n"}));

TEST(Configuration, OrderThatMattersIsNoted) {
  EXPECT_EQ(Found(Whole(kPorts + "<Speed Percent=\"50\"/>\n" + kLog)),
            "note: line 8: Speed stands behind Interfaces: the ports keep a pause of 5000 "
            "microseconds\n"
            "note: line 9: Debuglog stands behind Interfaces: of a wrong port the log says "
            "nothing\n");
}

TEST(Configuration, NoLogIsNoted) {
  EXPECT_EQ(Found(Whole(kPorts)), "note: no log: faults of the adapter leave no trace\n");
}

}  // namespace
}  // namespace ctl::doctor
