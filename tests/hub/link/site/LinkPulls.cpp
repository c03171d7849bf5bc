#include "LinkPulls.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

namespace hub::link {

namespace {

struct KeptCard {
  uint8_t address;
  const char* digit;
  uint8_t blocks;
  uint8_t start;
  const char* field;  // as `show` calls it
};

constexpr KeptCard kCards[] = {
    {0, "0", 6, 0x80, "Positions "}, {4, "4", 4, 0x00, "Drive "}, {5, "5", 2, 0xFF, "Lines "}};

std::vector<uint8_t> ReadBytes(const std::string& text) {
  std::istringstream words(text);
  std::vector<uint8_t> bytes;
  for (unsigned byte = 0; words >> std::hex >> byte;) bytes.push_back(static_cast<uint8_t>(byte));
  return bytes;
}

}  // namespace

void LinkPulls::RunPulls(int rounds, unsigned seed) {
  chance_.seed(seed);
  settings.cards[kMotors].keep = true;
  StartAll("80");
  for (const KeptCard& card : kCards)
    for (uint8_t block = 0; block < card.blocks; ++block)
      wanted_[{card.address, block}] = {card.start};
  for (int round = 0; round < rounds && !HasFailure(); ++round) {
    asked_ = wanted_;
    accidents_ = 0;
    for (int i = Draw(4); i >= 0; --i) Ask();
    Disturb();
    for (int i = Draw(4); i > 0; --i) Ask();
    if (Draw(3) == 0) Disturb();
    Recover();
    NoteWhatCameLast();
    for (const KeptCard& card : kCards) {
      std::string seen;
      EXPECT_TRUE(WaitUntil([&] { return IsShown(card.address, &seen); }))
          << "round " << round << ", card " << card.digit << " is to show " << Wanted(card.address)
          << " and shows " << seen;
      CheckFrames(card.address);
    }
  }
  std::printf(
      "%d rounds: %d frames, %d of them with a start value of another block, %d in a row at most\n",
      rounds, frames_, start_frames_, most_in_a_row_);
}

void LinkPulls::Ask() {
  const KeptCard& card = kCards[Draw(3)];
  const Place place{card.address, static_cast<uint8_t>(Draw(card.blocks))};
  const auto value = static_cast<uint8_t>(Draw(256));
  const Outcome outcome = link->Send(protocol::WriteBlock{place.first, place.second, value});
  asked_[place].insert(value);
  if (outcome == Outcome::kAccepted)
    wanted_[place] = {value};
  else
    wanted_[place].insert(value);
}

void LinkPulls::Disturb() {
  ++accidents_;
  switch (Draw(4)) {
    case 0:
      if (is_cable_in_) Bus("cable pull");
      is_cable_in_ = false;
      break;
    case 1:
      if (is_daemon_there_) KillDaemon();
      is_daemon_there_ = false;
      break;
    case 2:
      KillHub();
      break;
    default:
      if (is_cable_in_) Bus("cable pull");
      Pause();
      Bus("cable plug");
      is_cable_in_ = true;
      break;
  }
  Pause();
}

// The last of each block.
std::map<LinkPulls::Place, uint8_t> LinkPulls::Stored() {
  std::map<Place, uint8_t> stored;
  for (const auto& command : link->Stored())
    stored[{command.address, command.block}] = command.value;
  return stored;
}

void LinkPulls::KillHub() {
  std::vector<protocol::WriteBlock> asked;
  for (const auto& [place, value] : Stored()) asked.push_back({place.first, place.second, value});
  StartHub(asked);
}

// Where a command was neither accepted nor refused, only the hub knows whether it counts.
void LinkPulls::NoteWhatCameLast() {
  for (const auto& [place, value] : Stored()) {
    EXPECT_TRUE(wanted_[place].contains(value))
        << "card " << int(place.first) << ", block " << int(place.second) << ": " << int(value);
    wanted_[place] = {value};
  }
}

void LinkPulls::Recover() {
  if (!is_daemon_there_) StartDaemonAnew();
  is_daemon_there_ = true;
  if (!is_cable_in_) Bus("cable plug");
  is_cable_in_ = true;
  EXPECT_TRUE(WaitUntil([&] {
    return link->WaitUp() && link->Adapter() == model::AdapterState::kUp && link->IsFree();
  }));
}

bool LinkPulls::IsShown(uint8_t address, std::string* seen) {
  for (const KeptCard& card : kCards) {
    if (card.address != address) continue;
    *seen = Bus(std::string("show ") + card.digit);
    const size_t at = seen->find(card.field);
    if (at == std::string::npos) return false;
    const auto bytes = ReadBytes(seen->substr(at + std::string(card.field).size()));
    for (uint8_t block = 0; block < card.blocks; ++block)
      if (!wanted_[{address, block}].contains(bytes.at(block))) return false;
  }
  return true;
}

std::string LinkPulls::Wanted(uint8_t address) const {
  std::string text;
  for (const auto& [place, values] : wanted_)
    if (place.first == address) text += Hex({values.begin(), values.end()}) + " ; ";
  return text;
}

// Each frame shows what somebody asked for, or a start value where the daemon left no choice: after
// a discovery, until the last of the blocks is out, a frame a round. An accident on the way lets it
// begin again, and so does the end of the accidents.
void LinkPulls::CheckFrames(uint8_t address) {
  for (const KeptCard& card : kCards) {
    if (card.address != address) continue;
    const auto writes = WritesTo(card.digit);
    int in_a_row = 0;
    for (size_t& at = frames_seen_[address]; at < writes.size(); ++at) {
      const auto bytes = ReadBytes(writes[at]);
      bool has_start = false;
      for (uint8_t block = 0; block < card.blocks; ++block) {
        if (asked_[{address, block}].contains(bytes.at(block))) continue;
        EXPECT_EQ(bytes[block], card.start) << writes[at] << " at card " << card.digit;
        has_start = true;
      }
      ++frames_;
      start_frames_ += has_start;
      in_a_row = has_start ? in_a_row + 1 : 0;
      most_in_a_row_ = std::max(most_in_a_row_, in_a_row);
      EXPECT_LE(in_a_row, (card.blocks - 1) * (accidents_ + 1)) << "at card " << card.digit;
    }
  }
}

}  // namespace hub::link
