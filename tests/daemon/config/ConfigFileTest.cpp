// The file as a whole and its simple elements.
#include "config/ConfigFile.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/ConfigText.h"

namespace {

constexpr const char* kUnreadable = "Unable to load config, or unable to parse XML file!";

void ExpectDefaults(const INTERFACE_DESCRIPTOR& entry) {
  EXPECT_EQ(entry.Name, "");
  EXPECT_EQ(entry.Port, 0);
  EXPECT_EQ(entry.State, 0);
  EXPECT_EQ(entry.OutSeparator, "\r\n");
  EXPECT_EQ(entry.InpSeparator, "\r\n");
  EXPECT_EQ(entry.ThreadDelay, 5000);
}

void ExpectDefaults(const CONFIG_DESCRIPTOR& config, const std::string& status) {
  ExpectDefaults(config.IoDescriptor);
  ExpectDefaults(config.CaeDescriptor);
  ExpectDefaults(config.MonDescriptor);
  ExpectDefaults(config.SpareDescriptor);
  EXPECT_EQ(config.LogFile, "");
  EXPECT_EQ(config.LogLevel, 0);
  EXPECT_EQ(config.Status, status);
  EXPECT_EQ(config.ThreadDelay, 5000);
  EXPECT_FALSE(config.EnablePoll);
  EXPECT_FALSE(config.AutoDiscover);
}

}  // namespace

TEST(ConfigFile, HasDefaults) { ExpectDefaults(CONFIG_DESCRIPTOR(), "NONE"); }

TEST(ConfigFile, AMissingFileIsAnError) {
  ExpectDefaults(ReadConfigFile("/nonexistent/conf.xml"), kUnreadable);
}

TEST(ConfigFile, AFileThatIsNoXmlIsAnError) {
  for (const char* text :
       {"", "text", "<QELMConfig>", "<QELMConfig><Speed Percent=\"1\"></QELMConfig>",
        "<QELMConfig><Speed Percent=1/></QELMConfig>"})
    ExpectDefaults(ReadText(text), kUnreadable);
}

TEST(ConfigFile, AnotherDocumentElementYieldsTheDefaults) {
  for (const char* name : {"Config", "qelmconfig", "QELMConfigs"}) {
    const std::string tag = name;
    ExpectDefaults(ReadText("<" + tag + "><Speed Percent=\"50\"/></" + tag + ">"), "NONE");
  }
}

TEST(ConfigFile, AnElementDeeperDownIsNoChild) {
  ExpectDefaults(ReadText("<A><QELMConfig><Speed Percent=\"50\"/></QELMConfig></A>"), "NONE");
  ExpectDefaults(ReadElements("<A><Speed Percent=\"50\"/></A>"), "NONE");
}

TEST(ConfigFile, ReadsEveryElement) {
  const CONFIG_DESCRIPTOR config = ReadElements(
      "<Debuglog File=\"/tmp/a log\" Loglevel=\"3\"/>"
      "<Speed Percent=\"50\"/>"
      "<InitPollState Action=\"TRUE\"/>"
      "<AutoDiscover Action=\"true\"/>"
      "<Interfaces>"
      "<Interface Name=\"IO\" Port=\"5001\"/>"
      "<Interface Name=\"CAE\" Port=\"5002\"/>"
      "<Interface Name=\"MON\" Port=\"5003\"/>"
      "</Interfaces>");
  EXPECT_EQ(config.Status, "NONE");
  EXPECT_EQ(config.LogFile, "/tmp/a log");
  EXPECT_EQ(config.LogLevel, 3);
  EXPECT_EQ(config.ThreadDelay, 2525);
  EXPECT_TRUE(config.EnablePoll);
  EXPECT_TRUE(config.AutoDiscover);
  EXPECT_EQ(config.IoDescriptor.Port, 5001);
  EXPECT_EQ(config.CaeDescriptor.Port, 5002);
  EXPECT_EQ(config.MonDescriptor.Port, 5003);
  ExpectDefaults(config.SpareDescriptor);
}

TEST(ConfigFile, ReadsTheSpeed) {
  struct Case {
    const char* percent;
    int delay;
  };
  for (const Case& c :
       {Case{"1", 5000}, Case{"2", 4949}, Case{"50", 2525}, Case{"99", 51}, Case{"100", 1},
        Case{"abc", 5050}, Case{"0", 5050}, Case{"", 5050}, Case{" 50%", 2525}, Case{"101", -49},
        Case{"99999999999999999999", -2147483647}})
    EXPECT_EQ(ReadElements("<Speed Percent=\"" + std::string(c.percent) + "\"/>").ThreadDelay,
              c.delay)
        << c.percent;
}

TEST(ConfigFile, ReadsTheFlags) {
  for (const char* text : {"True", "true", "TRUE"}) {
    const std::string action = " Action=\"" + std::string(text) + "\"/>";
    EXPECT_TRUE(ReadElements("<InitPollState" + action).EnablePoll) << text;
    EXPECT_TRUE(ReadElements("<AutoDiscover" + action).AutoDiscover) << text;
  }
  for (const char* text : {"Yes", "1", "FALSE", "", "tRue"}) {
    const std::string action = " Action=\"" + std::string(text) + "\"/>";
    EXPECT_FALSE(ReadElements("<InitPollState" + action).EnablePoll) << text;
    EXPECT_FALSE(ReadElements("<AutoDiscover" + action).AutoDiscover) << text;
  }
}

TEST(ConfigFile, ALogLevelThatIsNoNumberIsZero) {
  EXPECT_EQ(ReadElements("<Debuglog Loglevel=\"x\"/>").LogLevel, 0);
  EXPECT_EQ(ReadElements("<Debuglog Loglevel=\"-2\"/>").LogLevel, -2);
  EXPECT_EQ(ReadElements("<Debuglog Loglevel=\"99999999999\"/>").LogLevel, 2147483647);
}

TEST(ConfigFile, NamesAreCaseSensitive) {
  ExpectDefaults(ReadElements("<speed Percent=\"50\"/><Speed percent=\"50\"/>"
                              "<debuglog File=\"a\"/><Debuglog file=\"a\" loglevel=\"2\"/>"
                              "<InitPollState action=\"TRUE\"/><Autodiscover Action=\"TRUE\"/>"
                              "<interfaces><I Name=\"IO\" Port=\"1\"/></interfaces>"),
                 "NONE");
}

TEST(ConfigFile, AnAttributeBelongsToItsElement) {
  ExpectDefaults(ReadElements("<Speed File=\"a\" Action=\"TRUE\"/><Debuglog Percent=\"50\"/>"),
                 "NONE");
}

TEST(ConfigFile, TheLastOfARepeatedElementWins) {
  const CONFIG_DESCRIPTOR config = ReadElements(
      "<Speed Percent=\"50\"/><AutoDiscover Action=\"TRUE\"/><Debuglog File=\"a\" Loglevel=\"1\"/>"
      "<Speed Percent=\"99\"/><AutoDiscover Action=\"no\"/><Debuglog File=\"b\"/>");
  EXPECT_EQ(config.ThreadDelay, 51);
  EXPECT_FALSE(config.AutoDiscover);
  EXPECT_EQ(config.LogFile, "b");
  EXPECT_EQ(config.LogLevel, 1);
}

TEST(ConfigFile, CommentsAndTextBetweenElementsDoNotMatter) {
  const CONFIG_DESCRIPTOR config = ReadElements(
      "<!-- speed --> some text <Speed Percent=\"50\"/><?pi x?><![CDATA[<Speed Percent=\"1\"/>]]>");
  EXPECT_EQ(config.ThreadDelay, 2525);
  EXPECT_EQ(config.Status, "NONE");
}

TEST(ConfigFile, ElementsMayHaveOtherElementsAroundThem) {
  const CONFIG_DESCRIPTOR config =
      ReadElements("<Other a=\"b\"/><Speed Percent=\"50\"></Speed><Last/>");
  EXPECT_EQ(config.ThreadDelay, 2525);
}
