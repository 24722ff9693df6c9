#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/LittleEndian.h"

namespace kv {

// Takes fields from the front of bytes whose sender is not trusted, numbers with their least significant byte first.
// The first field that is missing, or that is required to be otherwise, fails it for good, so bytes are read in one go
// and judged once, at the end. A field that is missing is 0 or empty.
class FieldsOfBytes {
 public:
  // The bytes outlive this and the texts taken from it.
  explicit FieldsOfBytes(std::string_view bytes) : mRest(bytes) {}

  std::string_view Take(std::size_t count) {
    mGood = mGood && mRest.size() >= count;
    if (!mGood) return {};
    const std::string_view taken = mRest.substr(0, count);
    mRest.remove_prefix(count);
    return taken;
  }
  std::uint8_t Byte() { return static_cast<std::uint8_t>(LittleEndian(Take(1))); }
  std::uint16_t Word() { return static_cast<std::uint16_t>(LittleEndian(Take(2))); }
  std::uint32_t Long() { return LittleEndian(Take(4)); }

  void Require(bool holds) { mGood = mGood && holds; }
  [[nodiscard]] bool Good() const { return mGood; }
  [[nodiscard]] std::size_t Left() const { return mRest.size(); }
  [[nodiscard]] bool HasMore() const { return mGood && !mRest.empty(); }

 private:
  std::string_view mRest;
  bool mGood = true;
};

}  // namespace kv
