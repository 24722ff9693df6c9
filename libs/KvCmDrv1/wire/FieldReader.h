#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kv {

// Takes fields from the front of a reply. The first field that is missing or malformed fails the reader for good, so a
// reply is read in one go and judged once, at its end.
class FieldReader {
 public:
  explicit FieldReader(std::string_view text) : mRest(text) {}

  // The value of the next `digits` digits, upper case; 0 from a reader that has failed.
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
