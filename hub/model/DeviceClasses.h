// What lines and levels are for, in the words of Home Assistant, so that it draws a door as a door.
// A word that it does not know would cost the user the entity; these are those it knows. Pure.
#pragma once

#include <span>
#include <string_view>

namespace hub::model {

// What an output line can be shown as; the first where nothing is set.
std::span<const std::string_view> OutputForms();
bool IsOutputForm(std::string_view word);

// Of an input line: "door". Of a level: "temperature"; in one of the units that go with it, and
// only what may rise and fall.
bool IsContactClass(std::string_view word);
bool IsLevelClass(std::string_view word);
bool LevelClassTakes(std::string_view word, std::string_view unit);
bool IsDeviceClass(std::string_view word);  // either

}  // namespace hub::model
