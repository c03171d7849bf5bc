// The virtual bus as the page has it.
#include "api/ApiTest.h"

namespace hub::api {
namespace {

class VirtualBusTest : public ApiTest {};

TEST_F(VirtualBusTest, ARealBusHasNone) {
  BusIsReal();
  const char* const kReal = "the bus is a real one; see `control` of [virtual-bus] in the settings";
  ExpectProblem("virtual.get", "{}", 404, "", kReal);
  ExpectProblem("virtual.run", R"({"line":"press 3 06"})", 404, "", kReal);
}

TEST_F(VirtualBusTest, ItsCableCardsAndFaultsAreRead) {
  virtual_bus.answers["status"] = {{"  device /dev/pts/3", "  cable plugged", "  frames 12",
                                    "  replies 11", "  lost 1", "  shaped 2", "  fault late 40ms"},
                                   ""};
  virtual_bus.answers["show 3"] = {{"card 3 digital-input", "  Lines 40 00"}, ""};
  virtual_bus.answers["show 5"] = {{"card 5 digital-output (pulled)", "  Lines FF FF"}, ""};
  virtual_bus.answers["show 6"] = {{}, "no card at 6"};
  ExpectResult("virtual.get", "{}", R"({
    "device":"/dev/pts/3", "cable":true, "frames":12, "replies":11, "lost":1, "shaped":2,
    "faults":["late 40ms"],
    "cards":[{"address":"3", "kind":"digital-input", "plugged":true, "values":[64,0]},
             {"address":"5", "kind":"digital-output", "plugged":false, "values":null}]})");
}

TEST_F(VirtualBusTest, ItsDeviceIsGoneWithTheCable) {
  virtual_bus.answers["status"] = {{"  device /dev/pts/3", "  cable pulled"}, ""};
  EXPECT_TRUE(Result("virtual.get").starts_with(R"({"device":null,"cable":false,)"));
}

TEST_F(VirtualBusTest, ALineIsDoneAndWhatItShowsComesBack) {
  virtual_bus.answers["show 3"] = {{"card 3 digital-input", "  Lines 40 00"}, ""};
  ExpectResult("virtual.run", R"({"line":"show 3"})",
               R"({"lines":["card 3 digital-input","  Lines 40 00"]})");
  ExpectResult("virtual.run", R"({"line":"press 3 06"})", R"({"lines":[]})");
  EXPECT_EQ(virtual_bus.asked, (std::vector<std::string>{"show 3", "press 3 06"}));
}

TEST_F(VirtualBusTest, TheJournalHasWhatIsPulledButNotEachMoveOfAHand) {
  Result("virtual.run", R"({"line":"set F 3 80"})");
  EXPECT_EQ(LastNote(), "");
  Result("virtual.run", R"({"line":"cable pull"})");
  EXPECT_EQ(LastNote(), "virtual-bus operator: cable pull");
}

TEST_F(VirtualBusTest, WhatTheBusRefusesIsToldInItsWords) {
  virtual_bus.answers["press 9 01"] = {{}, "card 9 has no keys"};
  ExpectProblem("virtual.run", R"({"line":"press 9 01"})", 422, "line", "card 9 has no keys");
}

TEST_F(VirtualBusTest, WhatWouldEndItOrWaitIsNotSent) {
  for (const char* line : {"quit", "  quit", "quit now", "wait frame 30", "mark"})
    EXPECT_EQ(Call("virtual.run", "{\"line\":\"" + std::string(line) + "\"}").problem->status, 422)
        << line;
  ExpectProblem("virtual.run", R"({"line":"quit"})", 422, "line",
                "quit is for whoever holds a connection to the bus");
  ExpectProblem("virtual.run", R"({"line":"  "})", 422, "line",
                "a line without a word; help lists what there is");
  EXPECT_TRUE(virtual_bus.asked.empty());
}

TEST_F(VirtualBusTest, ABusThatIsNotThereIsToldSo) {
  virtual_bus.is_there = false;
  ExpectProblem("virtual.get", "{}", 503, "",
                "the virtual bus does not answer at its control socket");
  EXPECT_EQ(Call("virtual.run", R"({"line":"cable pull"})").problem->retry_after, 5);
}

}  // namespace
}  // namespace hub::api
