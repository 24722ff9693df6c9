#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <string>
#include <string_view>

#include "base/LineError.h"

namespace kv {

// The lines of a text one after the other, with their numbers for errors. The last line may lack its end. The text must
// outlive what is handed out of it.
class LineReader {
 public:
  enum class End : std::uint8_t {
    Lf,    // a CR before the LF belongs to the end, too
    CrLf,  // CR and LF together; one of them alone ends no line
  };

  explicit LineReader(std::string_view text, End end = End::Lf) : mText(text), mEnd(end) {}

  // Goes to the next line; false behind the last one.
  bool Next();

  [[nodiscard]] std::string_view Line() const { return mLine; }  // without its end
  // Of the line at hand, from 1 on; behind the last line, of the line that is missing.
  [[nodiscard]] std::size_t Number() const { return mNumber; }
  [[nodiscard]] bool IsEnded() const { return mIsEnded; }  // whether the line at hand has its end
  [[nodiscard]] bool IsAtEnd() const { return mNext == mText.size(); }
  [[nodiscard]] std::string_view Before() const { return mText.substr(0, mStart); }  // all lines before the one at hand

  // "expected ..." in the line at hand.
  [[nodiscard]] std::unexpected<LineError> Expected(std::string_view what) const;

 private:
  std::string_view mText;
  End mEnd;
  std::string_view mLine;
  std::size_t mStart = 0;
  std::size_t mNext = 0;
  std::size_t mNumber = 0;
  bool mIsEnded = false;
};

// The check line, which ends a file of lines that must be whole: "check" and the CRC-32 of everything before it, in 8
// hexadecimal digits.
inline constexpr std::string_view kCheckWord = "check ";
[[nodiscard]] std::string WithCheckLine(std::string lines, std::string_view lineEnd = "\n");
[[nodiscard]] bool IsCheckLine(std::string_view line, std::string_view before);

}  // namespace kv
