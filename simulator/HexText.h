#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace sim {

// Takes the fields of a request's text one after another. The first field that is too short or holds something else
// than upper-case hexadecimal digits spoils the reader: everything taken from then on is zero or empty, and IsGood()
// says so, so a command takes all its fields and asks once.
class HexReader {
 public:
  explicit HexReader(std::string_view text) : mRest(text) {}

  [[nodiscard]] std::uint32_t Number(std::size_t digits);  // 1 to 8 digits
  [[nodiscard]] std::string Bytes(std::size_t count);      // two digits a byte
  [[nodiscard]] std::string RestAsBytes();                 // all that is left; an odd digit spoils the reader
  [[nodiscard]] char Letter();                             // any one character
  [[nodiscard]] std::string_view Rest() const { return mRest; }
  [[nodiscard]] bool IsGood() const { return mGood; }
  [[nodiscard]] bool IsGoodAndDone() const { return mGood && mRest.empty(); }

 private:
  void Spoil();

  std::string_view mRest;
  bool mGood = true;
};

[[nodiscard]] bool IsHexText(std::string_view text);  // upper-case digits and nothing else

// Two upper-case digits a byte.
[[nodiscard]] std::string HexOfBytes(std::string_view bytes);
// The same behind what `text` holds.
void AppendHexOfBytes(std::string& text, std::string_view bytes);

}  // namespace sim
