#include "model/Bus.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace hub::model {

namespace {

constexpr double kRounding = 1e-12;

bool HasBlocks(const Card& card) { return card.Row().direction == Direction::kOutput; }

// A level that has hardly moved stays as it was published. Both are rounded to decimals, which
// doubles hold almost: 2.47 - 2.45 is a little more than 0.02.
bool IsWithin(const Value& was, const Value& is, double hysteresis) {
  const double* old_number = std::get_if<double>(&was);
  const double* new_number = std::get_if<double>(&is);
  return old_number != nullptr && new_number != nullptr &&
         std::abs(*new_number - *old_number) <=
             hysteresis + kRounding * std::max(std::abs(*old_number), std::abs(*new_number));
}

template <class Item>
void AddOnce(std::vector<Item>& items, const Item& item) {
  if (std::ranges::find(items, item) == items.end()) items.push_back(item);
}

}  // namespace

const Card* Bus::At(unsigned address) const {
  return address < cards_.size() && cards_[address] ? &*cards_[address] : nullptr;
}

Card* Bus::Find(unsigned address) {
  return address < cards_.size() && cards_[address] ? &*cards_[address] : nullptr;
}

void Bus::SetDaemon(Daemon daemon) {
  if (daemon == daemon_) return;
  daemon_ = std::move(daemon);
  NoteBus();
}

void Bus::SetAdapter(Adapter adapter) {
  if (adapter == adapter_) return;
  adapter_ = std::move(adapter);
  NoteBus();
}

void Bus::SetBroker(std::optional<Broker> broker) {
  if (broker == broker_) return;
  broker_ = std::move(broker);
  NoteBus();
}

void Bus::SetPace(int percent) {
  if (pace_ == percent) return;
  pace_ = percent;
  NoteBus();
}

void Bus::SetPolling(const protocol::Polling& polling) {
  if (polling_ != polling.all) {
    polling_ = polling.all;
    NoteBus();
  }
  for (unsigned address = 0; address < cards_.size(); ++address) {
    Card* const card = Find(address);
    if (card == nullptr || card->polling == polling.cards[address]) continue;
    card->polling = polling.cards[address];
    NoteCard(address);
  }
}

// A card that falls silent keeps its kind: what it showed is still the best that is known.
void Bus::SetCards(const protocol::CardNames& names) {
  for (unsigned address = 0; address < cards_.size(); ++address) {
    const bool is_empty = names[address] == kNoCard;
    const Kind kind = FindDaemonName(names[address]).kind;
    Card* const card = Find(address);
    if (card == nullptr && is_empty) continue;
    const bool keeps_kind = card != nullptr && (is_empty || kind == Kind::kSilent);
    if (!keeps_kind && (card == nullptr || card->kind != kind)) PlugCard(address, kind);
    CardState state = CardState::kPresent;
    if (kind == Kind::kSilent) state = CardState::kSilent;
    if (is_empty) state = CardState::kAbsent;
    if (cards_[address]->state == state) continue;
    cards_[address]->state = state;
    NoteCard(address);
  }
}

void Bus::PlugCard(unsigned address, Kind kind) {
  Card card;
  card.address = address;
  card.kind = kind;
  card.channels.resize(card.Row().channels);
  for (Channel& channel : card.channels) channel.assumed = HasBlocks(card);
  if (kind == Kind::kLcd) {
    const CardSettings settings = settings_.Card(address);
    card.glass.emplace(settings.rows, settings.columns);
  }
  cards_[address] = std::move(card);
  NoteCard(address);
}

void Bus::TakeInput(const protocol::InputReport& report, Time now) {
  Card* const card = Find(report.address);
  if (card == nullptr || card->Row().direction != Direction::kInput) return;
  if (card->kind == Kind::kKeys && report.block == 0) return TakeKeys(*card, report.value, now);
  TakeBlock(*card, report.block, report.value, now);
}

// The daemon reports what changes, from no key on: a key in the first byte has been pressed. Where
// the encoder stood before nobody knows.
void Bus::TakeKeys(Card& card, uint8_t value, Time now) {
  const Channel& channel = card.channels[0];
  const uint8_t before = channel.IsKnown() ? channel.raw : WithoutKey(value);
  for (const KeyEvent& key : KeyEventsBetween(before, value)) {
    const Event event{++sequence_, now, card.address, key};
    events_.Add(event);
    change_.events.push_back(event);
  }
  TakeBlock(card, 0, value, now);
}

void Bus::TakeBlock(Card& card, unsigned block, uint8_t value, Time now) {
  const KindRow& row = card.Row();
  for (unsigned number = 0; number < card.channels.size(); ++number) {
    if (BlockOf(row, number) != block) continue;
    const ChannelSettings settings = settings_.Channel(card.address, number);
    const ChannelForm form{row, number, settings, settings_.Card(card.address).is_signed};
    const auto raw = static_cast<uint8_t>(HasLines(row) ? value >> BitOf(number) & 1U : value);
    const Value is = ToValue(form, raw);
    Channel& channel = card.channels[number];
    const bool is_still =
        row.kind == Kind::kAnalogueInput && IsWithin(channel.value, is, settings.hysteresis);
    const bool moves = !is_still && (channel.value != is || channel.raw != raw);
    if (!moves && !channel.assumed && !channel.pending) continue;
    if (moves) channel = {is, raw, false, false, now};
    channel.assumed = false;
    channel.pending = false;
    NoteChannel({card.address, number});
  }
}

void Bus::TakeOutput(const protocol::IoCommand& command, Time now) {
  using namespace protocol;
  const unsigned address = std::visit([](const auto& each) { return each.address; }, command);
  Card* const card = Find(address);
  if (card == nullptr) return;
  if (const auto* write = std::get_if<WriteBlock>(&command); write != nullptr && HasBlocks(*card))
    return TakeBlock(*card, write->block, write->value, now);
  if (const auto* send = std::get_if<SendInfrared>(&command);
      send != nullptr && card->kind == Kind::kInfrared) {
    card->channels[0] = {HexBytes(send->bytes), 0, false, false, now};
    return NoteChannel({address, 0});
  }
  if (!card->glass) return;
  if (const auto* text = std::get_if<WriteText>(&command))
    card->glass->Write(text->column, text->row, text->text);
  else if (const auto* control = std::get_if<ControlLcd>(&command))
    card->glass->Control(control->control);
  else
    return;
  NoteCard(address);
}

void Bus::SetPending(unsigned address, unsigned block, bool pending) {
  Card* const card = Find(address);
  if (card == nullptr) return;
  for (unsigned number = 0; number < card->channels.size(); ++number) {
    Channel& channel = card->channels[number];
    if (BlockOf(card->Row(), number) != block || channel.pending == pending) continue;
    channel.pending = pending;
    NoteChannel({address, number});
  }
}

void Bus::AssumeOutputs() {
  for (unsigned address = 0; address < cards_.size(); ++address) AssumeOutputs(address);
}

void Bus::AssumeOutputs(unsigned address) {
  Card* const card = Find(address);
  if (card == nullptr || !HasBlocks(*card)) return;
  for (unsigned number = 0; number < card->channels.size(); ++number) {
    Channel& channel = card->channels[number];
    if (channel.assumed) continue;
    channel.assumed = true;
    NoteChannel({address, number});
  }
}

void Bus::Apply(model::Settings settings) {
  settings_ = std::move(settings);
  NoteBus();
  for (unsigned address = 0; address < cards_.size(); ++address) {
    Card* const card = Find(address);
    if (card == nullptr) continue;
    const CardSettings own = settings_.Card(address);
    for (unsigned number = 0; number < card->channels.size(); ++number) {
      Channel& channel = card->channels[number];
      if (!channel.IsKnown() || card->kind == Kind::kInfrared) continue;
      const ChannelSettings unit = settings_.Channel(address, number);
      channel.value = ToValue({card->Row(), number, unit, own.is_signed}, channel.raw);
    }
    const bool fits =
        !card->glass || (card->glass->RowCount() == static_cast<unsigned>(own.rows) &&
                         card->glass->ColumnCount() == static_cast<unsigned>(own.columns));
    if (!fits) card->glass.emplace(own.rows, own.columns);
    NoteCard(address);
  }
}

void Bus::NotePage() {
  ++sequence_;
  change_.page = true;
}

void Bus::NoteBoards(std::vector<BoardPlace> places) {
  if (places.empty()) return;
  ++sequence_;
  std::vector<BoardPlace>& noted = change_.boards;
  noted.insert(noted.end(), places.begin(), places.end());
  std::ranges::sort(noted);
  noted.erase(std::unique(noted.begin(), noted.end()), noted.end());
}

void Bus::NoteBus() {
  ++sequence_;
  change_.bus = true;
}

void Bus::NoteCard(unsigned address) {
  ++sequence_;
  AddOnce(change_.cards, address);
}

void Bus::NoteChannel(ChannelId id) {
  ++sequence_;
  AddOnce(change_.channels, id);
}

void Bus::Publish() {
  if (change_.after == sequence_) return;
  change_.sequence = sequence_;
  const Change change = std::exchange(change_, {});
  change_.after = sequence_;
  for (const Listener& listener : listeners_) listener(change);
}

}  // namespace hub::model
