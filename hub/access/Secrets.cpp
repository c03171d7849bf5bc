#include "access/Secrets.h"

#include <sodium.h>

#include <array>
#include <new>
#include <stdexcept>

namespace hub::access {

namespace {

constexpr size_t kSecretBytes = 32;
constexpr size_t kIdBytes = 8;
constexpr size_t kHashBytes = 32;

// Once is enough, more often does nothing.
void Prepare() {
  if (sodium_init() < 0) throw std::runtime_error("libsodium does not start");
}

template <size_t size>
std::array<unsigned char, size> RandomBytes() {
  Prepare();
  std::array<unsigned char, size> bytes{};
  randombytes_buf(bytes.data(), bytes.size());
  return bytes;
}

template <size_t size>
std::string Hex(const std::array<unsigned char, size>& bytes) {
  std::string text(2 * size + 1, '\0');
  sodium_bin2hex(text.data(), text.size(), bytes.data(), bytes.size());
  text.pop_back();
  return text;
}

const unsigned char* Bytes(std::string_view text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

}  // namespace

std::string RandomSecret() {
  constexpr int kForm = sodium_base64_VARIANT_URLSAFE_NO_PADDING;
  const auto bytes = RandomBytes<kSecretBytes>();
  std::string text(sodium_base64_ENCODED_LEN(kSecretBytes, kForm), '\0');
  sodium_bin2base64(text.data(), text.size(), bytes.data(), bytes.size(), kForm);
  text.pop_back();
  return text;
}

std::string RandomId() { return Hex(RandomBytes<kIdBytes>()); }

std::string HashOf(std::string_view secret) {
  Prepare();
  std::array<unsigned char, kHashBytes> hash{};
  crypto_generichash(hash.data(), hash.size(), Bytes(secret), secret.size(), nullptr, 0);
  return Hex(hash);
}

bool IsSame(std::string_view left, std::string_view right) {
  return left.size() == right.size() && sodium_memcmp(left.data(), right.data(), left.size()) == 0;
}

std::string HashPassword(const std::string& password, PasswordCost cost) {
  Prepare();
  std::array<char, crypto_pwhash_STRBYTES> hash{};
  if (crypto_pwhash_str_alg(hash.data(), password.data(), password.size(), cost.passes, cost.memory,
                            crypto_pwhash_ALG_ARGON2ID13) != 0)
    throw std::bad_alloc();
  return hash.data();
}

bool IsPassword(const std::string& hash, const std::string& password) {
  Prepare();
  return crypto_pwhash_str_verify(hash.c_str(), password.data(), password.size()) == 0;
}

bool LooksHashed(std::string_view hash) {
  return hash.starts_with(crypto_pwhash_STRPREFIX) && hash.size() < crypto_pwhash_STRBYTES;
}

}  // namespace hub::access
