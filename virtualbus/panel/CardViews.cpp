#include "panel/CardViews.h"

#include <algorithm>
#include <cstdlib>

#include "cards/AnalogueInput.h"
#include "cards/DigitalInput.h"
#include "cards/DigitalOutput.h"
#include "cards/Ir.h"
#include "cards/Keys.h"
#include "cards/Lcd.h"
#include "cards/Motor.h"
#include "cards/Servo.h"

namespace virtualbus {

namespace {

constexpr int kLineCount = 16;
constexpr int kKeyCount = 12;
constexpr int kMotorBar = 24;
constexpr int kServoBar = 12;
constexpr int kSlider = 14;
constexpr size_t kPlot = 15;
constexpr int kFullScale = 255;
constexpr std::chrono::milliseconds kTap{300};

template <typename Kind>
const Kind& As(const ViewedCard& viewed) {
  return static_cast<const Kind&>(*viewed.slot.card);
}

std::string HexByte(int value) {
  const auto byte = static_cast<uint8_t>(value);
  return Hex({&byte, 1});
}

std::string Joined(std::initializer_list<std::string_view> parts) {
  std::string text;
  for (const std::string_view part : parts) text += part;
  return text;
}

std::string Repeat(const std::string& glyph, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += glyph;
  return text;
}

int Filled(int value, int width) { return (value * width + kFullScale / 2) / kFullScale; }

std::string Bar(const Glyphs& shapes, int value, int width) {
  const int filled = Filled(value, width);
  return Repeat(shapes.bar_on, filled) + Repeat(shapes.bar_off, width - filled);
}

// Lines as people write them: block 1 before block 0, bit 7 first.
int LineColumn(int line) { return (line < 8 ? 17 : 4) + 7 - line % 8; }

void DrawLine(Pen& pen, int line, bool on, bool selected) {
  const Look lamp = on ? Look::kGood : Look::kDim;
  pen.Put(0, LineColumn(line), on ? pen.Shapes().lamp_on : pen.Shapes().lamp_off,
          selected ? Look::kSelected : lamp);
}

void DrawBlockNames(Pen& pen) {
  pen.Put(0, 2, "1");
  pen.Put(0, 15, "0");
}

void DrawDigitalOutput(Pen& pen, const ViewedCard& viewed) {
  DrawBlockNames(pen);
  for (int line = 0; line < kLineCount; ++line) {
    DrawLine(pen, line, As<DigitalOutput>(viewed).IsLit(static_cast<size_t>(line)), false);
  }
}

Problem ToggleLine(const ViewedCard& viewed, int item) {
  const auto line = static_cast<uint8_t>(item);
  const bool pressed = As<DigitalInput>(viewed).IsPressed(line);
  return pressed ? viewed.card_operator.Release(viewed.address, line)
                 : viewed.card_operator.Press(viewed.address, line);
}

void DrawDigitalInput(Pen& pen, const ViewedCard& viewed) {
  DrawBlockNames(pen);
  for (int line = 0; line < kLineCount; ++line) {
    const bool on = As<DigitalInput>(viewed).IsPressed(static_cast<size_t>(line));
    DrawLine(pen, line, on, line == viewed.item);
    pen.AddSpot(
        {0, LineColumn(line), 1, [viewed, line](int) { return ToggleLine(viewed, line); }, {}});
  }
  if (viewed.item >= 0) pen.Put(0, 28, "line " + HexByte(viewed.item), Look::kDim);
}

void DrawServo(Pen& pen, const ViewedCard& viewed) {
  for (int channel = 0; channel < static_cast<int>(Servo::kChannelCount); ++channel) {
    const int reached = As<Servo>(viewed).Reached(static_cast<size_t>(channel));
    const int column = 2 + channel % 2 * 19;
    pen.Put(channel / 2, column, std::to_string(channel));
    pen.Put(channel / 2, column + 2, Bar(pen.Shapes(), reached, kServoBar), Look::kGood);
    pen.Put(channel / 2, column + 3 + kServoBar, HexByte(reached));
  }
}

// Backward grows to the left of the middle, forward to the right.
void DrawMotor(Pen& pen, const ViewedCard& viewed) {
  for (int channel = 0; channel < static_cast<int>(Motor::kChannelCount); ++channel) {
    const int speed = As<Motor>(viewed).Speed(static_cast<size_t>(channel));
    const int back = Filled(std::max(-speed, 0), kMotorBar / 2);
    const Glyphs& shapes = pen.Shapes();
    const std::string left =
        Repeat(shapes.bar_off, kMotorBar / 2 - back) + Repeat(shapes.bar_on, back);
    const std::string right = Bar(shapes, std::max(speed, 0), kMotorBar / 2);
    pen.Put(channel, 2, std::to_string(channel));
    pen.Put(channel, 4, Joined({left, shapes.middle, right}), Look::kGood);
    pen.Put(channel, 6 + kMotorBar, std::to_string(speed));
  }
}

Problem SetChannel(const ViewedCard& viewed, int item, int value) {
  const auto byte = static_cast<uint8_t>(std::clamp(value, 0, kFullScale));
  return viewed.card_operator.Set(viewed.address, static_cast<uint8_t>(item), {byte});
}

Problem MoveChannel(const ViewedCard& viewed, int item, int steps) {
  constexpr int kStep = 8;
  const int value = As<AnalogueInput>(viewed).Value(static_cast<size_t>(item));
  return SetChannel(viewed, item, value + steps * kStep);
}

std::string Plot(const Glyphs& shapes, const std::vector<std::optional<uint8_t>>& peaks) {
  std::string text;
  for (const auto& peak : peaks) text += peak ? shapes.plot[*peak / 32U] : " ";
  return text;
}

void DrawAnalogueInput(Pen& pen, const ViewedCard& viewed) {
  for (int channel = 0; channel < static_cast<int>(AnalogueInput::kChannelCount); ++channel) {
    const auto index = static_cast<size_t>(channel);
    const AnalogueInput& card = As<AnalogueInput>(viewed);
    const bool masked = card.IsMasked(index);
    pen.Put(channel, 2, std::to_string(channel),
            channel == viewed.item ? Look::kSelected : Look::kPlain);
    pen.Put(channel, 4, Bar(pen.Shapes(), card.Value(index), kSlider),
            masked ? Look::kDim : Look::kGood);
    pen.Put(channel, 5 + kSlider, HexByte(card.Value(index)), masked ? Look::kDim : Look::kPlain);
    pen.Put(channel, 8 + kSlider,
            masked ? "masked, reads 00" : Plot(pen.Shapes(), viewed.history.Peaks(index, kPlot)));
    pen.AddSpot({channel, 4, kSlider,
                 [viewed, channel](int offset) {
                   return SetChannel(viewed, channel, offset * kFullScale / (kSlider - 1));
                 },
                 [viewed, channel](int steps) { return MoveChannel(viewed, channel, steps); }});
  }
}

// A terminal reports when a key goes down, but not when it comes up again, so a timer releases the
// key. Until then the card may be pulled or the key be released; neither is worth a note.
Problem TapKey(const ViewedCard& viewed, int item) {
  const auto key = static_cast<uint8_t>(item + 1);
  viewed.loop.After(kTap, [&card_operator = viewed.card_operator, address = viewed.address, key] {
    static_cast<void>(card_operator.Release(address, key));
  });
  return viewed.card_operator.Press(viewed.address, key);
}

Problem TurnEncoder(const ViewedCard& viewed, int, int steps) {
  return viewed.card_operator.Turn(viewed.address, steps);
}

void DrawKeys(Pen& pen, const ViewedCard& viewed) {
  const Keys& card = As<Keys>(viewed);
  for (int key = 0; key < kKeyCount; ++key) {
    const bool held = card.Key() == key + 1;
    const Look look = held ? Look::kGood : Look::kPlain;
    pen.Put(0, 2 + key * 3, HexByte(key + 1), key == viewed.item ? Look::kSelected : look);
    pen.AddSpot({0, 2 + key * 3, 2, [viewed, key](int) { return TapKey(viewed, key); }, {}});
  }
  const std::string held = card.Key() != 0 ? HexByte(card.Key()) : "--";
  pen.Put(1, 2, Joined({"held ", held, "   encoder ", std::to_string(card.Position())}));
  pen.AddSpot({1, 12, 16, [viewed](int) { return TurnEncoder(viewed, 0, 1); },
               [viewed](int steps) { return TurnEncoder(viewed, 0, steps); }});
}

void DrawLcd(Pen& pen, const ViewedCard& viewed) {
  const Lcd& card = As<Lcd>(viewed);
  const std::string edge = "+" + std::string(Lcd::kColumns, '-') + "+";
  pen.Put(0, 2, edge);
  for (size_t row = 0; row < Lcd::kRows; ++row) {
    const int line = static_cast<int>(row) + 1;
    pen.Put(line, 2, "|");
    pen.Put(line, 3, card.Row(row), card.Light() ? Look::kDisplay : Look::kPlain);
    pen.Put(line, 3 + static_cast<int>(Lcd::kColumns), "|");
  }
  pen.Put(5, 2, edge);
  const size_t at = std::min(card.CursorAt(), Lcd::kRows * Lcd::kColumns - 1);
  const auto row = static_cast<int>(at / Lcd::kColumns);
  const auto column = static_cast<int>(at % Lcd::kColumns);
  if (card.Cursor()) pen.Put(row + 1, column + 3, "_", Look::kBold);
  pen.Put(1, 25, card.Light() ? "light on" : "light off");
  pen.Put(2, 25, card.Cursor() ? "cursor on" : "cursor off");
  pen.Put(3, 25, card.Blinking() ? "blinking" : "no blinking");
}

void DrawIr(Pen& pen, const ViewedCard& viewed) {
  const auto& sent = As<Ir>(viewed).Sent();
  std::string text = sent.empty() ? "nothing sent" : Hex(sent.back());
  text.resize(std::min<size_t>(text.size(), kViewWidth - 2));
  pen.Put(0, 2, text);
}

constexpr std::array<CardView, 8> kViews{{
    {KindId::kServo, 3, 0, 0, DrawServo, nullptr, nullptr},
    {KindId::kDigitalInput, 1, kLineCount, -1, DrawDigitalInput, ToggleLine, nullptr},
    {KindId::kMotor, 3, 0, 0, DrawMotor, nullptr, nullptr},
    {KindId::kDigitalOutput, 1, 0, 0, DrawDigitalOutput, nullptr, nullptr},
    {KindId::kKeys, 2, kKeyCount, 1, DrawKeys, TapKey, TurnEncoder},
    {KindId::kIr, 1, 0, 0, DrawIr, nullptr, nullptr},
    {KindId::kLcd, 6, 0, 0, DrawLcd, nullptr, nullptr},
    {KindId::kAnalogueInput, 6, 6, 1, DrawAnalogueInput, nullptr, MoveChannel},
}};

}  // namespace

const CardView& ViewOf(const CardKind& kind) {
  return *std::ranges::find(kViews, kind.id, &CardView::kind);
}

}  // namespace virtualbus
