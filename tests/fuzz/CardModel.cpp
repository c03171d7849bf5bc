#include "CardModel.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "Finding.h"
#include "bus/PerifCard.h"

namespace {

unsigned char At(const std::string& bytes, std::size_t at) {
  return at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0;
}

}  // namespace

void CardModel::Clear() {
  for (Card& card : Cards) {
    Card fresh;
    fresh.query = card.query;
    fresh.samples = card.samples;
    card = fresh;
  }
}

std::vector<std::string> CardModel::TakeReports() { return std::exchange(Reports, {}); }

void CardModel::Take(const std::string& reply) {
  if (At(reply, 0) == '1') Discover(reply);
  const std::size_t address = At(reply, 1);
  if (reply.size() < 2 || address > 15) return;
  Card& card = Cards[address];
  if (reply[0] == 'Q') {
    for (std::size_t i = 0; i < 16; ++i) card.query[i] = At(reply, i);
    Report(address);
  }
  if (reply[0] == '!') {
    Poll(card, reply.substr(2));
    Report(address);
  }
}

void CardModel::Discover(const std::string& reply) {
  for (std::size_t a = 0; a < 16; ++a) {
    Card& card = Cards[a];
    card.type = At(reply, a + 1);
    if (card.type == 3) std::fill_n(card.blocks.begin(), 2, 0xFF);
    if (card.type == 5) std::fill_n(card.blocks.begin(), 6, 0x80);
    const bool is_input = card.type == 4 || card.type == 7 || card.type == 8;
    if (is_input && card.polls < 85) ++card.polls;
  }
}

void CardModel::Poll(Card& card, const std::string& blocks) {
  card.changed = {};
  if (card.type == 7) return Average(card, blocks);
  const std::size_t count = card.type == 4 ? 2 : card.type == 8 ? 1 : 0;
  for (std::size_t b = 0; b < std::min(count, blocks.size()); ++b) {
    card.changed[b] = card.blocks[b] != At(blocks, b) ? 1 : 0;
    card.blocks[b] = At(blocks, b);
  }
}

// Six replies are summed, the seventh is dropped.
void CardModel::Average(Card& card, const std::string& channels) {
  if (card.samples < 6) {
    for (std::size_t k = 0; k < 6; ++k) card.sums[k] += At(channels, k);
    ++card.samples;
    return;
  }
  for (std::size_t k = 0; k < 6; ++k) {
    const auto average = static_cast<unsigned char>(card.sums[k] / 6);
    card.changed[k] = card.blocks[k] != average ? 1 : 0;
    card.blocks[k] = average;
  }
  card.sums = {};
  card.samples = 0;
}

void CardModel::Report(std::size_t address) {
  const Card& card = Cards[address];
  for (std::size_t b = 0; b < 16; ++b) {
    if (card.changed[b] == 0) continue;
    char text[16];
    std::snprintf(text, sizeof text, "a%zXb%zXd%02X", address, b, card.blocks[b]);
    Reports.emplace_back(text);
  }
}

void CardModel::Compare(const PERIFCARD* cards) const {
  const auto same = [](const auto& model, const auto& field) {
    return std::equal(model.begin(), model.end(), field.begin());
  };
  for (std::size_t a = 0; a < 16; ++a) {
    const Card& model = Cards[a];
    const PERIFCARD& card = cards[a];
    Require(card.CardType == model.type, "a card has another type");
    Require(same(model.blocks, card.BlockData), "a card has other blocks");
    Require(same(model.changed, card.BlockChanged), "a card has other change marks");
    Require(same(model.query, card.QueryReply), "a card has another answer");
    Require(same(model.sums, card.AnalogueSums), "a card has other sums");
    Require(card.SampleCount == model.samples, "a card has another count of samples");
    Require(card.PollFrame.size() == 3 * model.polls, "a card has another poll frame");
  }
}
