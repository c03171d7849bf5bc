// The payloads of this hub's topics. Pure functions.
#pragma once

#include <string>
#include <string_view>

#include "api/Problem.h"
#include "model/Bus.h"

namespace hub::mqtt {

inline constexpr std::string_view kOnline = "online";
inline constexpr std::string_view kOffline = "offline";

// "ON", "OFF", a number, "None" while it is not known.
std::string ValuePayload(const model::Value& value);

// Somebody has to be there to ask it, too.
bool Answers(const model::Bus& bus, const model::Card& card);

std::string BusPayload(const model::Bus& bus, std::string_view version);
std::string RatesPayload(double commands, double reports);  // a second
std::string GlassPayload(const model::Glass& glass);
std::string EventPayload(const model::Event& event);
std::string ErrorPayload(std::string_view topic, const api::Problem& problem);

}  // namespace hub::mqtt
