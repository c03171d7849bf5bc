// Random secrets, their hashes, and those of passwords: all the cryptography that accounts need.
// Pure functions, for any thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace hub::access {

std::string RandomSecret();  // 256 bits as 43 letters, digits, "-", "_"
std::string RandomId();      // 16 hexadecimal digits; no secret

// BLAKE2b, 64 hexadecimal digits. A secret has 256 bits of its own, so it needs neither salt nor
// time.
std::string HashOf(std::string_view secret);

// Takes the same time wherever two texts of the same length differ.
bool IsSame(std::string_view left, std::string_view right);

// What hashing one password costs. A hub runs on boards of 256 MB beside other programs: 32 MB
// for a moment fit there, and one thread hashes, so it is never more than once. Three passes make
// up for the memory: each guess costs a thief of the hashes 32 MB and a tenth of a second on a
// desk computer, half a second on a board. The smallest cost that is advised for Argon2id today
// is 19 MB and two passes.
struct PasswordCost {
  size_t memory = size_t{32} << 20U;  // bytes
  unsigned passes = 3;
};

// Argon2id: a text that holds salt and cost too. Throws std::bad_alloc without the memory.
std::string HashPassword(const std::string& password, PasswordCost cost);
bool IsPassword(const std::string& hash, const std::string& password);

// Whether the text can be a hash that HashPassword has made.
bool LooksHashed(std::string_view hash);

}  // namespace hub::access
