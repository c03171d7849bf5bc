// What an operator does to the cards: turn a potentiometer, press a key, pull a card. The control
// lines and the panel both act through this class, so that both can do the same.
#pragma once

#include <chrono>
#include <map>
#include <utility>

#include "base/Loop.h"
#include "base/Problem.h"
#include "bus/BusAdapter.h"
#include "journal/Journal.h"

namespace virtualbus {

class CardOperator {
 public:
  CardOperator(Loop& loop, BusAdapter& adapter, Journal& journal)
      : loop_(loop), adapter_(adapter), journal_(journal) {}

  Problem Set(uint8_t address, uint8_t block, const Bytes& values);
  Problem Ramp(uint8_t address, uint8_t block, uint8_t from, uint8_t to, Clock::duration time);
  Problem Press(uint8_t address, uint8_t code);
  Problem Release(uint8_t address, std::optional<uint8_t> code);
  Problem Turn(uint8_t address, int steps);
  Problem PullCard(uint8_t address);
  Problem PlugCard(uint8_t address, const CardKind* kind);  // null: the card that was pulled

 private:
  using Block = std::pair<uint8_t, uint8_t>;  // address, block
  struct Movement {
    uint8_t from;
    uint8_t to;
    Time began;
    Clock::duration time;
    Loop::TimerId next;
  };

  Problem CheckBlocks(uint8_t address, size_t block, size_t count) const;
  Problem Note(uint8_t address, bool done, std::string_view what, std::string_view refusal);
  void Step(Block block);
  void StopRamp(Block block);

  Loop& loop_;
  BusAdapter& adapter_;
  Journal& journal_;
  std::map<Block, Movement> ramps_;
};

}  // namespace virtualbus
