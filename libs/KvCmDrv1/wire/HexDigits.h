#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "base/Numbers.h"

namespace kv {

// The digits of the wire: upper-case hexadecimal, most significant first. Lower case is not a digit.

// Appends two digits a byte.
void AppendHexBytes(std::string& text, std::span<const std::uint8_t> bytes);

// The value of 1 to 8 digits; nothing for any other text.
[[nodiscard]] std::optional<std::uint32_t> HexValue(std::string_view digits);

// Fills `bytes` from exactly two digits a byte. False when the length differs or a character is not a digit; `bytes` is
// then of no use.
[[nodiscard]] bool HexToBytes(std::string_view digits, std::span<std::uint8_t> bytes);

// Takes fields from the front of a reply. The first field that is missing or malformed fails the reader for good, so a
// reply is read in one go and judged once, at its end.
class FieldReader {
 public:
  explicit FieldReader(std::string_view text) : mRest(text) {}

  // The value of the next `digits` digits; 0 from a reader that has failed.
  std::uint32_t Hex(std::size_t digits);
  // The next characters must be these.
  void Expect(std::string_view characters);
  void ExpectHex(std::uint32_t value, std::size_t digits);
  // The next `count` characters, whatever they are.
  std::string_view Take(std::size_t count);

  void Fail() { mGood = false; }
  [[nodiscard]] bool Good() const { return mGood; }
  [[nodiscard]] bool GoodToTheEnd() const { return mGood && mRest.empty(); }
  [[nodiscard]] std::string_view Rest() const { return mRest; }

 private:
  std::string_view mRest;
  bool mGood = true;
};

}  // namespace kv
