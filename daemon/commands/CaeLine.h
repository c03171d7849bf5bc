// The parameters of a line of the administration interface. Pure functions.
//
// Each text is what stands at a place relative to the first ":" or "=" of the line;
// what is not there is empty. The digits are upper-case hexadecimal, everything else
// reads as 0.
#pragma once

#include <string>
#include <string_view>

// Right behind the first ":": the address as typed.
std::string AddressText(std::string_view line);

// One or two places before the first ":": the channel and the bank as typed.
std::string ChannelText(std::string_view line);
std::string BankText(std::string_view line);

// The `count` characters right behind the first "=".
std::string ValueText(std::string_view line, std::size_t count);

// From the first "=" to the next character of the separator, or to the end.
std::string SpeedText(std::string_view line, std::string_view separator);

// The first character as a digit, 0..15.
unsigned char Digit(std::string_view text);

// The first two characters as digits, high one first.
unsigned char TwoDigits(std::string_view text);
