#pragma once

#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>

namespace kv {

// Texts of controllers and files may hold control characters, with which a terminal can be made to do things: these and
// bytes that are not UTF-8 are shown as "<1B>", as a trace shows them.

// The text with every control character shown, but for those in `kept`.
[[nodiscard]] std::string HarmlessText(std::string_view text, std::string_view kept = "");

// A stream that passes on to another one what is harmless, piece by piece as it is written. A letter may come in two
// pieces.
class HarmlessBuffer final : public std::streambuf {
 public:
  // `target` outlives it.
  HarmlessBuffer(std::ostream& target, std::string_view kept) : mTarget(target), mKept(kept) {}

 protected:
  int_type overflow(int_type c) override;
  std::streamsize xsputn(const char* text, std::streamsize size) override;
  int sync() override;

 private:
  std::ostream& mTarget;
  std::string_view mKept;
  std::string mBegun;  // the bytes of a letter that is not complete
};

}  // namespace kv
