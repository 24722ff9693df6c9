#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "base/Bytes.h"

namespace kv {

// The SHA-256 digest (FIPS 180-4) of bytes that are handed over piece by piece.
class Sha256 {
 public:
  Sha256();
  ~Sha256();
  Sha256(Sha256&& other) noexcept;
  Sha256& operator=(Sha256&& other) noexcept;

  void Add(std::string_view bytes);
  void Add(std::span<const std::uint8_t> bytes);

  // Of all bytes up to here, 64 lower-case hexadecimal digits, as sha256sum prints them. More bytes may follow.
  [[nodiscard]] std::string Hex() const;

 private:
  struct State;
  std::unique_ptr<State> mState;
};

}  // namespace kv
