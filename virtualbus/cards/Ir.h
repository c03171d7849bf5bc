// An infrared transmitter. It keeps its last transmissions, the newest last.
#pragma once

#include <deque>

#include "cards/Card.h"

namespace virtualbus {

class Ir : public Card {
 public:
  static constexpr size_t kKept = 16;

  void PowerUp() override;
  bool Write(std::span<const uint8_t> data) override;
  std::vector<std::string> Show() const override;

  const std::deque<Bytes>& Sent() const { return sent_; }

 private:
  std::deque<Bytes> sent_;
};

}  // namespace virtualbus
