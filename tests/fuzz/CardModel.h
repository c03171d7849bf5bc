// What the card table must hold after a reply, worked out independently of the daemon.
#pragma once

#include <array>
#include <string>
#include <vector>

class PERIFCARD;

class CardModel {
 public:
  // The payload of a reply as it came from the wire.
  void Take(const std::string& reply);
  void Clear();  // before a new discovery

  // The input reports due since the last call.
  std::vector<std::string> TakeReports();

  // Fails unless the table agrees in every field that a reply can change.
  void Compare(const PERIFCARD* cards) const;

 private:
  struct Card {
    unsigned char type = 0;
    std::array<unsigned char, 16> blocks{};
    std::array<unsigned char, 16> changed{};
    std::array<unsigned char, 16> query{};
    std::array<int, 6> sums{};
    int samples = 0;
    std::size_t polls = 0;  // in its poll frame
  };

  void Discover(const std::string& reply);
  void Poll(Card& card, const std::string& blocks);
  void Average(Card& card, const std::string& channels);
  void Report(std::size_t address);

  std::array<Card, 16> Cards;
  std::vector<std::string> Reports;
};
