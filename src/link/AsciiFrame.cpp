#include "link/AsciiFrame.h"

#include "base/Hex.h"

namespace kv {

std::uint8_t AsciiChecksum(std::string_view unitAndText) {
  std::uint8_t sum = 0;
  for (const char c : unitAndText) sum = static_cast<std::uint8_t>(sum + static_cast<unsigned char>(c));
  return sum;
}

std::string BuildFrame(std::uint8_t unit, std::string_view text) {
  constexpr std::size_t kFraming = 6;  // "/", unit id, checksum, CR
  std::string frame;
  frame.reserve(text.size() + kFraming);
  frame += '/';
  frame += ToHex(unit, 2);
  frame += text;
  frame += ToHex(AsciiChecksum(std::string_view(frame).substr(1)), 2);
  frame += '\r';
  return frame;
}

}  // namespace kv
