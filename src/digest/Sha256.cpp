#include "digest/Sha256.h"

#include <sodium.h>

#include <array>

namespace kv {

struct Sha256::State {
  crypto_hash_sha256_state hash;
};

Sha256::Sha256() : mState(std::make_unique<State>()) {
  crypto_hash_sha256_init(&mState->hash);
}
Sha256::~Sha256() = default;
Sha256::Sha256(Sha256&& other) noexcept = default;
Sha256& Sha256::operator=(Sha256&& other) noexcept = default;

void Sha256::Add(std::string_view bytes) {
  crypto_hash_sha256_update(&mState->hash, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

void Sha256::Add(std::span<const std::uint8_t> bytes) {
  crypto_hash_sha256_update(&mState->hash, bytes.data(), bytes.size());
}

std::string Sha256::Hex() const {
  crypto_hash_sha256_state copy = mState->hash;  // the library's end spoils its state
  std::array<unsigned char, crypto_hash_sha256_BYTES> digest;
  crypto_hash_sha256_final(&copy, digest.data());
  std::array<char, 2 * crypto_hash_sha256_BYTES + 1> text;
  sodium_bin2hex(text.data(), text.size(), digest.data(), digest.size());
  return text.data();
}

}  // namespace kv
