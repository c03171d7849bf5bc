#include "model/Value.h"

#include <algorithm>
#include <cmath>

namespace hub::model {

namespace {

constexpr double kHighestByte = 255;
constexpr unsigned kDrives = 3;  // the fourth channel of a motor card is its control byte

// A signed drive stands still at 80; one side of it has a step more than the other.
constexpr double kStandstill = 0x80;
constexpr double kFullDrive = 100;

// On is the line low for an output, since a line drives its lamp by pulling low, and high for an
// input.
bool IsActiveHigh(const ChannelForm& form) {
  return form.settings.active_high.value_or(form.kind.kind == Kind::kDigitalInput);
}

bool IsSignedDrive(const ChannelForm& form) { return form.is_signed && form.number < kDrives; }

double Rounded(double value, int decimals) {
  const double scale = std::pow(10.0, decimals);
  const double rounded = std::round(value * scale) / scale;
  return rounded == 0 ? 0 : rounded;  // no minus in front of a zero
}

double DriveOf(uint8_t raw) {
  const double offset = raw - kStandstill;
  const double side = offset < 0 ? kStandstill : kHighestByte - kStandstill;
  return Rounded(offset / side * kFullDrive, 0);
}

double RawOfDrive(double drive) {
  const double side = drive < 0 ? kStandstill : kHighestByte - kStandstill;
  return kStandstill + drive / kFullDrive * side;
}

double NumberOf(const ChannelForm& form, uint8_t raw) {
  if (IsSignedDrive(form)) return DriveOf(raw);
  const ChannelSettings& unit = form.settings;
  return Rounded(std::lerp(unit.min, unit.max, raw / kHighestByte), unit.decimals);
}

double RawOf(const ChannelForm& form, double number) {
  if (IsSignedDrive(form)) return RawOfDrive(number);
  const ChannelSettings& unit = form.settings;
  if (unit.max == unit.min) return 0;
  return (number - unit.min) / (unit.max - unit.min) * kHighestByte;
}

}  // namespace

std::optional<Range> RangeOf(const ChannelForm& form) {
  if (HasLines(form.kind) || form.kind.kind == Kind::kInfrared) return std::nullopt;
  if (IsSignedDrive(form)) return Range{-kFullDrive, kFullDrive};
  // An end of the range is shown with so many places; what is shown can be set.
  const ChannelSettings& unit = form.settings;
  const auto [min, max] = std::minmax(
      {unit.min, unit.max, Rounded(unit.min, unit.decimals), Rounded(unit.max, unit.decimals)});
  return Range{min, max};
}

Value ToValue(const ChannelForm& form, uint8_t raw) {
  if (HasLines(form.kind)) return (raw != 0) == IsActiveHigh(form);
  return NumberOf(form, raw);
}

std::optional<uint8_t> ToRaw(const ChannelForm& form, const Value& value) {
  if (HasLines(form.kind)) {
    const bool* on = std::get_if<bool>(&value);
    if (on == nullptr) return std::nullopt;
    return static_cast<uint8_t>(*on == IsActiveHigh(form) ? 1 : 0);
  }
  const double* number = std::get_if<double>(&value);
  const auto range = RangeOf(form);
  if (number == nullptr || !range || !(*number >= range->min && *number <= range->max))
    return std::nullopt;
  const double raw = std::round(RawOf(form, *number));
  return static_cast<uint8_t>(std::clamp(raw, 0.0, kHighestByte));
}

}  // namespace hub::model
