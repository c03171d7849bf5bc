#include "model/DeviceClasses.h"

#include <algorithm>
#include <array>
#include <string>

namespace hub::model {

namespace {

constexpr std::array<std::string_view, 3> kOutputForms{"switch", "light", "fan"};

constexpr std::array<std::string_view, 28> kContactClasses{"battery",
                                                           "battery_charging",
                                                           "carbon_monoxide",
                                                           "cold",
                                                           "connectivity",
                                                           "door",
                                                           "garage_door",
                                                           "gas",
                                                           "heat",
                                                           "light",
                                                           "lock",
                                                           "moisture",
                                                           "motion",
                                                           "moving",
                                                           "occupancy",
                                                           "opening",
                                                           "plug",
                                                           "power",
                                                           "presence",
                                                           "problem",
                                                           "running",
                                                           "safety",
                                                           "smoke",
                                                           "sound",
                                                           "tamper",
                                                           "update",
                                                           "vibration",
                                                           "window"};

struct LevelRow {
  std::string_view word;
  std::string_view units;  // with a blank before and behind each; of "pH" and "aqi": none
};

constexpr std::array<LevelRow, 33> kLevelClasses{{
    // clang-format off
    {"apparent_power",                   " mVA VA kVA "},
    {"aqi",                              "  "},
    {"atmospheric_pressure",             " cbar bar hPa mmHg inHg inH₂O kPa mbar Pa psi "},
    {"battery",                          " % "},
    {"carbon_dioxide",                   " ppm "},
    {"carbon_monoxide",                  " ppm "},
    {"conductivity",                     " S/cm mS/cm µS/cm "},
    {"current",                          " A mA "},
    {"data_rate",                        " bit/s kbit/s Mbit/s Gbit/s B/s kB/s MB/s GB/s "},
    {"distance",                         " km m cm mm mi yd in "},
    {"duration",                         " d h min s ms "},
    {"frequency",                        " Hz kHz MHz GHz "},
    {"humidity",                         " % "},
    {"illuminance",                      " lx "},
    {"irradiance",                       " W/m² BTU/(h⋅ft²) "},
    {"moisture",                         " % "},
    {"ozone",                            " µg/m³ "},
    {"ph",                               "  "},
    {"pm1",                              " µg/m³ "},
    {"pm10",                             " µg/m³ "},
    {"pm25",                             " µg/m³ "},
    {"power",                            " mW W kW MW GW TW "},
    {"power_factor",                     " % "},
    {"precipitation_intensity",          " in/d in/h mm/d mm/h "},
    {"pressure",                         " Pa kPa hPa bar cbar mbar mmHg inHg psi "},
    {"reactive_power",                   " var kvar "},
    {"signal_strength",                  " dB dBm "},
    {"sound_pressure",                   " dB dBA "},
    {"speed",                            " ft/s in/d in/h in/s km/h kn m/s mph mm/d mm/s "},
    {"temperature",                      " °C °F K "},
    {"voltage",                          " V mV µV kV MV "},
    {"volume_flow_rate",                 " m³/h ft³/min L/min gal/min mL/s "},
    {"weight",                           " kg g mg µg oz lb st "},
    // clang-format on
}};

const LevelRow* FindLevel(std::string_view word) {
  const auto* const row = std::ranges::find(kLevelClasses, word, &LevelRow::word);
  return row == kLevelClasses.end() ? nullptr : row;
}

}  // namespace

std::span<const std::string_view> OutputForms() { return kOutputForms; }

bool IsOutputForm(std::string_view word) {
  return std::ranges::find(kOutputForms, word) != kOutputForms.end();
}

bool IsContactClass(std::string_view word) {
  return std::ranges::find(kContactClasses, word) != kContactClasses.end();
}

bool IsLevelClass(std::string_view word) { return FindLevel(word) != nullptr; }

bool LevelClassTakes(std::string_view word, std::string_view unit) {
  const LevelRow* const row = FindLevel(word);
  if (row == nullptr || unit.find(' ') != std::string_view::npos) return false;
  return row->units.find(" " + std::string(unit) + " ") != std::string_view::npos;
}

bool IsDeviceClass(std::string_view word) { return IsContactClass(word) || IsLevelClass(word); }

}  // namespace hub::model
