// Small syntaxes and what makes texts fit for a terminal. Pure functions.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ctl {

std::string Lower(std::string_view text);  // ASCII

// As a terminal may show it: what could steer one is a "?". UTF-8 stays.
std::string Printable(std::string_view text);

// Characters, not bytes, of UTF-8.
size_t Width(std::string_view text);

// What was probably meant: the nearest of `words`, where one is near at all. Capitals count little.
std::optional<std::string> Nearest(std::string_view word, std::span<const std::string> words);

// "a, b or c"
std::string Listed(std::span<const std::string> words, std::string_view last = "or");

// "a b c"
std::string Joined(std::span<const std::string> words);

// The pieces between separators; "" has one, which is empty.
std::vector<std::string> Split(std::string_view text, char separator);

// For a place in a URL: everything but letters, digits, "-", "_", "." and "~" as %XX.
std::string UrlEscape(std::string_view text);

}  // namespace ctl
