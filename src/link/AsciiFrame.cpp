#include "link/AsciiFrame.h"

#include <functional>
#include <numeric>

#include "base/Numbers.h"

namespace kv {

std::uint8_t AsciiChecksum(std::string_view unitAndText) {
  const auto value = [](char c) { return unsigned{static_cast<unsigned char>(c)}; };
  const unsigned sum = std::transform_reduce(unitAndText.begin(), unitAndText.end(), 0U, std::plus<>(), value);
  return static_cast<std::uint8_t>(sum & 0xFF);
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
