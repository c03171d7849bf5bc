// The list of interfaces in the configuration file.
#include <gtest/gtest.h>

#include "support/ConfigText.h"

TEST(Interfaces, FindsEachInterfaceByItsName) {
  const CONFIG_DESCRIPTOR config = ReadInterfaces(
      "<A Name=\"MON\" Port=\"5003\" InpSeparator=\"m\"/>"
      "<B Name=\"IO\" Port=\"5001\" OutSeparator=\"i\"/>"
      "<C Port=\"5002\" Name=\"CAE\"/>");
  EXPECT_EQ(config.IoDescriptor.Name, "IO");
  EXPECT_EQ(config.IoDescriptor.Port, 5001);
  EXPECT_EQ(config.IoDescriptor.OutSeparator, "i");
  EXPECT_EQ(config.IoDescriptor.InpSeparator, "\r\n");
  EXPECT_EQ(config.CaeDescriptor.Name, "CAE");
  EXPECT_EQ(config.CaeDescriptor.Port, 5002);
  EXPECT_EQ(config.MonDescriptor.Name, "MON");
  EXPECT_EQ(config.MonDescriptor.Port, 5003);
  EXPECT_EQ(config.MonDescriptor.InpSeparator, "m");
  EXPECT_EQ(config.SpareDescriptor.Name, "");
}

TEST(Interfaces, DecodesSeparators) {
  struct Case {
    const char* text;
    const char* separator;
  };
  for (const Case& c : {Case{R"(\r\n)", "\r\n"}, Case{R"(\n)", "\n"}, Case{R"(\r)", "\r"},
                        Case{";", ";"}, Case{"", ""}, Case{R"(\t)", R"(\t)"},
                        Case{R"(\n\n\r\r)", "\n\n\r\r"}, Case{R"(a\rb\nc)", "a\rb\nc"},
                        Case{R"(\\r)", "\\\r"}, Case{R"(\R\N)", R"(\R\N)"}, Case{R"(\)", R"(\)"}}) {
    const std::string text = c.text;
    const CONFIG_DESCRIPTOR config =
        ReadInterfaces("<I Name=\"IO\" InpSeparator=\"" + text +
                       "\"/><I Name=\"CAE\" OutSeparator=\"" + text + "\"/>");
    EXPECT_EQ(config.IoDescriptor.InpSeparator, c.separator) << text;
    EXPECT_EQ(config.CaeDescriptor.OutSeparator, c.separator) << text;
  }
}

TEST(Interfaces, TakesPortsFrom1025On) {
  EXPECT_EQ(ReadInterfaces("<I Name=\"IO\" Port=\"1025\"/>").IoDescriptor.Port, 1025);
  EXPECT_EQ(ReadInterfaces("<I Name=\"IO\" Port=\"65535\"/>").IoDescriptor.Port, 65535);
}

TEST(Interfaces, RefusesPortsUpTo1024) {
  for (const char* port : {"1024", "80", "0", "-1", "abc", "", "-99999999999999999999"}) {
    const CONFIG_DESCRIPTOR config =
        ReadInterfaces("<I Name=\"IO\" Port=\"" + std::string(port) + "\"/>");
    EXPECT_EQ(config.Status, "IO interface port number is less than 1025") << port;
    EXPECT_EQ(config.IoDescriptor.Name, "") << port;
    EXPECT_EQ(config.IoDescriptor.Port, 0) << port;
  }
}

TEST(Interfaces, TheErrorNamesWhatWasReadSoFar) {
  EXPECT_EQ(ReadInterfaces("<I Port=\"1024\" Name=\"IO\"/>").Status,
            " interface port number is less than 1025");
  EXPECT_EQ(ReadInterfaces("<I Name=\"other\" Port=\"1024\"/>").Status,
            "other interface port number is less than 1025");
}

TEST(Interfaces, TheErrorHolds59CharactersOfTheName) {
  const std::string name(59, 'n');
  const std::string status = name + " interface port number is less than 1025";
  EXPECT_EQ(ReadInterfaces("<I Name=\"" + name + "\" Port=\"1\"/>").Status, status);
  EXPECT_EQ(ReadInterfaces("<I Name=\"" + name + "x\" Port=\"1\"/>").Status, status);
  EXPECT_EQ(ReadInterfaces("<I Name=\"" + name + std::string(500, 'x') + "\" Port=\"1\"/>").Status,
            status);
}

TEST(Interfaces, NothingIsReadBehindABadPort) {
  const CONFIG_DESCRIPTOR config = ReadElements(
      "<Debuglog File=\"a\" Loglevel=\"2\"/>"
      "<Interfaces><I Name=\"CAE\" Port=\"5002\"/><I Name=\"IO\" Port=\"1\"/>"
      "<I Name=\"MON\" Port=\"5003\"/></Interfaces>"
      "<Speed Percent=\"50\"/>");
  EXPECT_EQ(config.Status, "IO interface port number is less than 1025");
  EXPECT_EQ(config.LogFile, "a");
  EXPECT_EQ(config.LogLevel, 2);
  EXPECT_EQ(config.CaeDescriptor.Port, 5002);
  EXPECT_EQ(config.IoDescriptor.Port, 0);
  EXPECT_EQ(config.MonDescriptor.Port, 0);
  EXPECT_EQ(config.ThreadDelay, 5000);
}

TEST(Interfaces, AnEntryWithAnotherNameIsIgnored) {
  for (const char* name : {"io", "Cae", "IO ", ""}) {
    const CONFIG_DESCRIPTOR config =
        ReadInterfaces("<I Name=\"" + std::string(name) + "\" Port=\"5001\"/>");
    EXPECT_EQ(config.Status, "NONE");
    EXPECT_EQ(config.IoDescriptor.Port, 0);
    EXPECT_EQ(config.CaeDescriptor.Port, 0);
  }
}

TEST(Interfaces, AnEntryWithoutPortKeepsPortZero) {
  const CONFIG_DESCRIPTOR config = ReadInterfaces("<I Name=\"IO\" InpSeparator=\";\"/>");
  EXPECT_EQ(config.Status, "NONE");
  EXPECT_EQ(config.IoDescriptor.Port, 0);
  EXPECT_EQ(config.IoDescriptor.InpSeparator, ";");
}

TEST(Interfaces, ALaterEntryReplacesAnEarlierOne) {
  const CONFIG_DESCRIPTOR config = ReadInterfaces(
      "<I Name=\"IO\" Port=\"5001\" InpSeparator=\";\"/><I Name=\"IO\" Port=\"6001\"/>");
  EXPECT_EQ(config.IoDescriptor.Port, 6001);
  EXPECT_EQ(config.IoDescriptor.InpSeparator, "\r\n");
}

TEST(Interfaces, TheLastOfARepeatedNameWins) {
  const CONFIG_DESCRIPTOR config = ReadElements(
      "<Interfaces><I Name=\"IO\" Port=\"5001\"/></Interfaces>"
      "<Interfaces><I Name=\"IO\" Port=\"6001\"/></Interfaces>");
  EXPECT_EQ(config.IoDescriptor.Port, 6001);
}

TEST(Interfaces, TheSpeedReachesThemFromInFront) {
  const std::string speed = "<Speed Percent=\"50\"/>";
  const std::string list = "<Interfaces><I Name=\"IO\"/><I Name=\"CAE\"/></Interfaces>";
  const CONFIG_DESCRIPTOR before = ReadElements(speed + list);
  EXPECT_EQ(before.ThreadDelay, 2525);
  EXPECT_EQ(before.IoDescriptor.ThreadDelay, 2525);
  EXPECT_EQ(before.CaeDescriptor.ThreadDelay, 2525);
  EXPECT_EQ(before.MonDescriptor.ThreadDelay, 5000);

  const CONFIG_DESCRIPTOR after = ReadElements(list + speed);
  EXPECT_EQ(after.ThreadDelay, 2525);
  EXPECT_EQ(after.IoDescriptor.ThreadDelay, 5000);

  const CONFIG_DESCRIPTOR between = ReadElements("<Speed Percent=\"99\"/>" + list + speed);
  EXPECT_EQ(between.ThreadDelay, 2525);
  EXPECT_EQ(between.IoDescriptor.ThreadDelay, 51);
}

TEST(Interfaces, TheFifthAndLaterAreIgnored) {
  const CONFIG_DESCRIPTOR config = ReadInterfaces(
      "<I Name=\"a\"/><I Name=\"b\"/><I Name=\"c\"/><I Name=\"IO\" Port=\"5001\"/>"
      "<I Name=\"CAE\" Port=\"5002\"/><I Name=\"MON\" Port=\"1\"/>");
  EXPECT_EQ(config.Status, "NONE");
  EXPECT_EQ(config.IoDescriptor.Port, 5001);
  EXPECT_EQ(config.CaeDescriptor.Port, 0);
}

TEST(Interfaces, CommentsAndTextAreNoEntries) {
  const CONFIG_DESCRIPTOR config = ReadInterfaces(
      "text<!-- 1 --><I Name=\"a\"/><!-- 2 -->text<I Name=\"b\"/><?pi?>"
      "<!-- 3 --><I Name=\"c\"/><!-- 4 --><I Name=\"MON\" Port=\"5003\"/>");
  EXPECT_EQ(config.MonDescriptor.Port, 5003);
}
