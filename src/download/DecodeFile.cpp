#include "download/DecodeFile.h"

#include <algorithm>

namespace kv {

std::string DecodeBytes(std::string_view scrambled) {
  std::string bytes(scrambled);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(bytes[i] ^ static_cast<char>(i % 256));
  return bytes;
}

std::string DecodeLine(std::string_view scrambled, std::size_t lineNumber) {
  std::string line(scrambled.rbegin(), scrambled.rend());
  const auto shift = static_cast<unsigned char>(lineNumber % 3);
  std::ranges::transform(line, line.begin(), [shift](char c) {
    return static_cast<char>(static_cast<unsigned char>(static_cast<unsigned char>(c) - shift));
  });
  return line;
}

}  // namespace kv
