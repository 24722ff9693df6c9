#include "simulator/files/SampleBytes.h"

#include <algorithm>
#include <random>

#include "base/Crc32.h"
#include "simulator/LittleEndian.h"

namespace sim {

std::string SampleBytes(std::size_t size, std::uint32_t seed) {
  std::mt19937 chance(seed);
  std::string bytes;
  bytes.reserve(size + 4);
  while (bytes.size() < size) {
    const auto word = static_cast<std::uint32_t>(chance());
    AppendLittle(bytes, word % 8 < 3 ? word : word % 64 * 0x01000100, 4);
  }
  bytes.resize(size);
  return bytes;
}

std::string Padded(std::string_view text, std::size_t size) {
  std::string padded(text.substr(0, size));
  padded.resize(size, '\0');
  return padded;
}

std::string Digits(int number, std::size_t digits) {
  std::string text = std::to_string(number);
  text.insert(0, digits - std::min(digits, text.size()), '0');
  return text.substr(text.size() - digits);
}

void PutCheck(std::string& file, std::size_t offset) {
  PutLittle(file.data() + offset, 0, 4);
  PutLittle(file.data() + offset, kv::Crc32(file), 4);
}

}  // namespace sim
