// Failures are reported where the test called, not inside the vocabulary.
#pragma once

#include <gtest/gtest.h>

#include <source_location>

using Place = std::source_location;

#define FAIL_AT(place) ADD_FAILURE_AT((place).file_name(), static_cast<int>((place).line()))
