#include "bus/CardOperator.h"

#include <algorithm>
#include <cstdlib>

namespace virtualbus {

namespace {

constexpr std::chrono::milliseconds kShortestStep{1};

}  // namespace

Problem CardOperator::Set(uint8_t address, uint8_t block, const Bytes& values) {
  if (Problem problem = CheckBlocks(address, block, values.size())) return problem;
  for (size_t i = 0; i < values.size(); ++i) {
    StopRamp({address, static_cast<uint8_t>(block + i)});
    adapter_.Present(address)->Inputs()[block + i] = values[i];
  }
  return Note(address, true, "set to " + Hex(adapter_.Present(address)->Inputs()), {});
}

Problem CardOperator::Ramp(uint8_t address, uint8_t block, uint8_t from, uint8_t to,
                           Clock::duration time) {
  if (Problem problem = CheckBlocks(address, block, 1)) return problem;
  const Block key{address, block};
  StopRamp(key);
  ramps_[key] = {from, to, Clock::now(), time, 0};
  Step(key);
  return Note(address, true, "ramp in block " + HexDigit(block), {});
}

Problem CardOperator::Press(uint8_t address, uint8_t code) {
  Card* const card = adapter_.Present(address);
  if (card == nullptr) return adapter_.WhyAbsent(address);
  return Note(address, card->Press(code), "pressed " + Hex({&code, 1}), "has no such key or line");
}

Problem CardOperator::Release(uint8_t address, std::optional<uint8_t> code) {
  Card* const card = adapter_.Present(address);
  if (card == nullptr) return adapter_.WhyAbsent(address);
  return Note(address, card->Release(code), "released", "holds no such key or line");
}

Problem CardOperator::Turn(uint8_t address, int steps) {
  Card* const card = adapter_.Present(address);
  if (card == nullptr) return adapter_.WhyAbsent(address);
  return Note(address, card->Turn(steps), "turned " + std::to_string(steps), "has no encoder");
}

Problem CardOperator::PullCard(uint8_t address) {
  if (Problem problem = adapter_.Pull(address)) return problem;
  return Note(address, true, "pulled", {});
}

Problem CardOperator::PlugCard(uint8_t address, const CardKind* kind) {
  Problem problem = kind != nullptr ? adapter_.Insert(address, *kind) : adapter_.PlugBack(address);
  if (problem) return problem;
  return Note(address, true, "plugged", {});
}

Problem CardOperator::CheckBlocks(uint8_t address, size_t block, size_t count) const {
  Card* const card = adapter_.Present(address);
  if (card == nullptr) return adapter_.WhyAbsent(address);
  const size_t blocks = card->Inputs().size();
  if (blocks == 0) return Problem("card " + HexDigit(address) + " has no inputs");
  if (block + count <= blocks) return {};
  return Problem("card " + HexDigit(address) + " has blocks 0 to " + std::to_string(blocks - 1));
}

Problem CardOperator::Note(uint8_t address, bool done, std::string_view what,
                           std::string_view refusal) {
  const std::string card = "card " + HexDigit(address) + " ";
  if (!done) return Problem(card + std::string(refusal));
  journal_.Note(card + std::string(what));
  return {};
}

// The value follows the clock and not the number of steps, so that a late step does not stretch the
// ramp. Its card may have been pulled, or another plugged, meanwhile.
void CardOperator::Step(Block block) {
  Movement& ramp = ramps_.at(block);
  Card* const card = adapter_.Present(block.first);
  const auto elapsed = std::min(Clock::now() - ramp.began, ramp.time);
  const bool over = elapsed == ramp.time;
  const int span = ramp.to - ramp.from;
  const auto moved = over ? span : span * elapsed / ramp.time;
  if (card != nullptr && block.second < card->Inputs().size()) {
    card->Inputs()[block.second] = static_cast<uint8_t>(ramp.from + moved);
  }
  if (over) {
    ramps_.erase(block);
    return;
  }
  const auto step = ramp.time / std::max(1, std::abs(span));
  ramp.next =
      loop_.After(std::max<Clock::duration>(step, kShortestStep), [this, block] { Step(block); });
}

void CardOperator::StopRamp(Block block) {
  const auto found = ramps_.find(block);
  if (found == ramps_.end()) return;
  loop_.Cancel(found->second.next);
  ramps_.erase(found);
}

}  // namespace virtualbus
