// A card on the bus: what the adapter asks of it (write, poll, registers) and what an operator does
// to it (inputs, keys, encoder). One derived class per card kind, in cards/.
// What a card holds is named in fields, from which show and the bus file are made.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Text.h"

namespace virtualbus {

class Card {
 public:
  enum class Group { kStart, kStored };  // kStored survives a reboot
  enum class Form { kHex, kText };
  struct Field {
    Group group;
    std::string name;
    std::span<uint8_t> cells;
    Form form;
  };

  virtual ~Card() = default;
  Card(const Card&) = delete;
  Card& operator=(const Card&) = delete;

  // What plugging in and REBOOT do: stored settings come back, everything else starts anew.
  virtual void PowerUp() = 0;

  // For the adapter. A card that cannot do what is asked returns false or nothing.
  virtual bool Write(std::span<const uint8_t> data);
  virtual Bytes Poll();
  std::optional<uint8_t> ReadRegister(uint8_t number) const;
  bool WriteRegister(uint8_t number, std::optional<uint8_t> value);

  // For the operator. A card without such a part returns false or nothing.
  virtual std::span<uint8_t> Inputs();
  virtual bool Press(uint8_t code);
  virtual bool Release(std::optional<uint8_t> code);
  virtual bool Turn(int steps);

  virtual std::vector<std::string> Show() const;
  const std::vector<Field>& Fields() const { return fields_; }

 protected:
  Card();

  void AddField(Group group, std::string name, std::span<uint8_t> cells, Form form = Form::kHex);
  void AddReadable(uint8_t first, std::span<uint8_t> cells);
  void AddWritable(uint8_t first, std::span<uint8_t> cells);
  void AddAction(uint8_t number, std::function<void()> run);

 private:
  struct Bank {
    uint8_t first;
    std::span<uint8_t> cells;
  };
  struct Action {
    uint8_t number;
    std::function<void()> run;
  };

  static uint8_t* Find(const std::vector<Bank>& banks, uint8_t number);

  std::vector<Field> fields_;
  std::vector<Bank> readable_;
  std::vector<Bank> writable_;
  std::vector<Action> actions_;
};

}  // namespace virtualbus
