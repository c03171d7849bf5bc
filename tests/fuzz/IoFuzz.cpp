// A message of the IO client. The first byte chooses the separator.
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "Finding.h"
#include "Site.h"
#include "StandIns.h"
#include "runtime/Queue.h"
#include "runtime/Values.h"

namespace {

constexpr std::array<const char*, 4> kSeparators{"\r\n", ";", "", "aa"};
constexpr std::size_t kMaxLcdText = 34;

std::vector<std::string> Pieces(const std::string& message, const std::string& separator) {
  std::vector<std::string> pieces;
  std::string rest = message;
  while (!rest.empty()) {
    const std::size_t end = separator.empty() ? std::string::npos : rest.find(separator);
    if (end != 0) pieces.push_back(rest.substr(0, end));
    rest.erase(0, end == std::string::npos ? end : end + separator.size());
  }
  return pieces;
}

char At(const std::string& text, std::size_t at) { return at < text.size() ? text[at] : '\0'; }

// Two digits, or one where the text ends behind it.
unsigned char ByteAt(const std::string& text, std::size_t at) {
  const bool is_cut = at + 1 == text.size();
  return is_cut ? HexCharToByte(text[at]) : HexNum2Byte(At(text, at), At(text, at + 1));
}

bool IsBlock(const std::string& piece) {
  return At(piece, 0) == 'a' && At(piece, 2) == 'b' && At(piece, 4) == 'd';
}

bool IsLcdText(const std::string& piece) {
  return At(piece, 0) == 'a' && At(piece, 2) == 'l' && piece.find("PAp") != std::string::npos;
}

bool EndsProcess(const std::string& piece) {
  return IsLcdText(piece) && piece.size() > 11 + kMaxLcdText;
}

void CheckFrame(const std::string& frame, int address) {
  if (frame.empty()) return;  // a block of a card that takes none
  Require(frame.size() <= 7 + kMaxLcdText, "a frame is too long");
  Require(frame.size() >= 4 && frame[0] == 0x10, "a frame is no write");
  Require(frame[1] == address, "a frame names another card");
  Require(static_cast<std::size_t>(frame[2]) == frame.size() - 3, "a frame miscounts its data");
}

void CheckPosition(const std::string& frame, const std::string& piece) {
  Require(frame.size() >= 7 && frame[3] == 9, "a text has no position");
  Require(static_cast<unsigned char>(frame[4]) == ByteAt(piece, 6), "a text has another column");
  Require(static_cast<unsigned char>(frame[5]) == ByteAt(piece, 8), "a text has another row");
}

// One command alone gives a frame for its card and no other, or the error on CAE.
void CheckPiece(Site& site, const std::string& piece) {
  const int address = HexCharToByte(At(piece, 1));
  const QList list(piece.begin(), piece.end());
  Require(site.Qelm.ParseOutCommand(list), "a message has failed");
  const std::vector<std::string> replies = site.CaeReplies();
  std::vector<std::string> frames = site.FramesFor(address);
  for (int a = 0; a <= kDriverQueue; ++a)
    Require(site.FramesFor(a).empty(), "a frame lies on another queue");
  Require(frames.size() + replies.size() / 2 == 1, "a command has not one outcome");
  if (!frames.empty()) {
    CheckFrame(frames[0], address);
    if (IsLcdText(piece)) CheckPosition(frames[0], piece);
  } else {
    Require(replies.size() == 2, "a rejection is not two entries");
    Require(replies[0] == "COE:Illegal command -> " + piece + "\r\n", "a rejection is misworded");
    Require(replies[1] == ">\r\n", "a rejection lacks its prompt");
  }
  if (!IsBlock(piece)) return;
  const std::size_t block = HexCharToByte(At(piece, 3));
  Require(site.Qelm.Cards[address].BlockData[block] == ByteAt(piece, 5), "a block is not stored");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string separator = kSeparators[data[0] % kSeparators.size()];
  const std::string message = AsRead({data + 1, data + size});
  const std::vector<std::string> pieces = Pieces(message, separator);

  bool must_end = false;
  for (const std::string& piece : pieces) must_end |= EndsProcess(piece);

  // First the whole message, then piece by piece.
  Site whole([](const std::string&) { return Wire::Answer{}; });
  whole.Qelm.Config.IoDescriptor.InpSeparator = separator;
  bool ended = false;
  try {
    whole.Qelm.ParseOutCommand({message.begin(), message.end()});
  } catch (const ProcessEnd&) {
    ended = true;
  }
  Require(ended == must_end, "the process does not end where it should, or where it should not");
  std::size_t outcomes = whole.CaeReplies().size() / 2;
  for (int a = 0; a < kCardCount; ++a) outcomes += whole.FramesFor(a).size();
  Require(ended || outcomes == pieces.size(), "a command of a message is lost");
  if (ended) return 0;
  for (const std::string& piece : pieces) CheckPiece(whole, piece);
  return 0;
}
