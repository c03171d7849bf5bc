// The parameters of a line of the administration interface. Pure functions.
//
// Each text is found by its place before or behind the first ":" or "=" of the line, and
// is empty where the line has nothing there. Digits are upper-case hexadecimal; any other
// character reads as 0.
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
