#include "cards/Card.h"

#include "base/Frames.h"

namespace virtualbus {

Card::Card() {
  AddAction(kRebootRegister, [this] { PowerUp(); });
}

bool Card::Write(std::span<const uint8_t>) { return false; }

Bytes Card::Poll() { return {}; }

std::span<uint8_t> Card::Inputs() { return {}; }

bool Card::Press(uint8_t) { return false; }

bool Card::Release(std::optional<uint8_t>) { return false; }

bool Card::Turn(int) { return false; }

std::optional<uint8_t> Card::ReadRegister(uint8_t number) const {
  const uint8_t* const cell = Find(readable_, number);
  return cell != nullptr ? std::optional(*cell) : std::nullopt;
}

bool Card::WriteRegister(uint8_t number, std::optional<uint8_t> value) {
  for (const Action& action : actions_) {
    if (action.number != number) continue;
    action.run();
    return true;
  }
  uint8_t* const cell = Find(writable_, number);
  if (cell == nullptr || !value) return false;
  *cell = *value;
  return true;
}

std::vector<std::string> Card::Show() const {
  std::vector<std::string> lines;
  for (const Field& field : fields_) {
    const std::string group = field.group == Group::kStored ? "stored " : "";
    const std::string text = field.form == Form::kHex
                                 ? Hex(field.cells)
                                 : '"' + std::string(field.cells.begin(), field.cells.end()) + '"';
    lines.push_back(group + field.name + " " + text);
  }
  return lines;
}

void Card::AddField(Group group, std::string name, std::span<uint8_t> cells, Form form) {
  fields_.push_back({group, std::move(name), cells, form});
}

void Card::AddReadable(uint8_t first, std::span<uint8_t> cells) {
  readable_.push_back({first, cells});
}

void Card::AddWritable(uint8_t first, std::span<uint8_t> cells) {
  writable_.push_back({first, cells});
}

void Card::AddAction(uint8_t number, std::function<void()> run) {
  actions_.push_back({number, std::move(run)});
}

uint8_t* Card::Find(const std::vector<Bank>& banks, uint8_t number) {
  for (const Bank& bank : banks) {
    if (number >= bank.first && number - bank.first < static_cast<int>(bank.cells.size())) {
      return &bank.cells[static_cast<size_t>(number - bank.first)];
    }
  }
  return nullptr;
}

}  // namespace virtualbus
