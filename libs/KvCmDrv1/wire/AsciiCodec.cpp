#include "KvCmDrv1/wire/AsciiCodec.h"

#include "base/Hex.h"

namespace kv {
namespace {

constexpr std::size_t kUnitDigits = 2;
constexpr std::size_t kCheckDigits = 2;

TextFault FaultOf(std::string_view text) {
  if (text.empty()) return TextFault::Empty;
  if (text.size() > kMaxFrameText) return TextFault::TooLong;
  return IsPlain(text) ? TextFault::None : TextFault::BadCharacter;
}

// Where the last "/" stands. Most lines hold one, and looking for it from the front takes a tenth of the time.
std::size_t LastStart(std::string_view line) {
  const std::size_t first = line.find(kFrameStart);
  const bool isOnly = first == std::string_view::npos || line.find(kFrameStart, first + 1) == std::string_view::npos;
  return isOnly ? first : line.rfind(kFrameStart);
}

}  // namespace

// To the end in any case: without a way out the compiler can do many characters at once.
bool IsPlain(std::string_view text) {
  std::uint8_t others = 0;
  for (const char c : text) others = static_cast<std::uint8_t>(others | (IsFrameCharacter(c) ? 0 : 1));
  return others == 0;
}

TextFault EncodeFrame(std::uint8_t unit, std::string_view text, std::string& frame) {
  frame.clear();
  if (const TextFault fault = FaultOf(text); fault != TextFault::None) return fault;
  frame += kFrameStart;
  AppendHex(frame, unit, kUnitDigits);
  frame += text;
  AppendHex(frame, AsciiChecksum(std::string_view(frame).substr(1)), kCheckDigits);
  if (text.find(kFrameStart) != std::string_view::npos && FindFrame(frame)->text.size() != text.size()) {
    frame.clear();
    return TextFault::TailIsFrame;
  }
  frame += kFrameEnd;
  return TextFault::None;
}

std::string_view TextOf(std::string_view frame) {
  constexpr std::size_t kBefore = 1 + kUnitDigits;
  return frame.substr(kBefore, frame.size() - kBefore - kCheckDigits - 1);
}

std::optional<AsciiFrame> FindFrame(std::string_view line) {
  if (line.size() < 1 + kUnitDigits + 1 + kCheckDigits) return std::nullopt;
  const std::size_t textEnd = line.size() - kCheckDigits;
  const std::optional<std::uint32_t> check = ParseUpperHex(line.substr(textEnd));
  if (!check) return std::nullopt;

  // From the end to the front with the sum of what has been passed: one walk, however many "/" the line holds.
  std::uint32_t sum = 0;
  std::size_t passed = textEnd;
  while (passed > 0) {
    const std::size_t at = LastStart(line.substr(0, passed));
    if (at == std::string_view::npos) return std::nullopt;
    sum += AsciiChecksum(line.substr(at + 1, passed - at - 1));
    const std::size_t textStart = at + 1 + kUnitDigits;
    if (textStart + kMaxFrameText < textEnd) return std::nullopt;
    if (textStart < textEnd && (sum & 0xFFU) == *check) {
      if (const std::optional<std::uint32_t> unit = ParseUpperHex(line.substr(at + 1, kUnitDigits))) {
        return AsciiFrame{static_cast<std::uint8_t>(*unit), line.substr(textStart, textEnd - textStart)};
      }
    }
    sum += static_cast<unsigned char>(kFrameStart);
    passed = at;
  }
  return std::nullopt;
}

}  // namespace kv
