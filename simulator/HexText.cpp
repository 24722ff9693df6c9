#include "simulator/HexText.h"

#include <optional>

namespace sim {
namespace {

// Reckoned, not looked up: so the compiler can do many digits at once.
char DigitOf(unsigned value) {
  return static_cast<char>(value < 10 ? '0' + value : 'A' - 10 + value);
}

std::optional<std::uint32_t> ValueOf(char digit) {
  if (digit >= '0' && digit <= '9') return static_cast<std::uint32_t>(digit - '0');
  if (digit >= 'A' && digit <= 'F') return static_cast<std::uint32_t>(digit - 'A' + 10);
  return std::nullopt;
}

std::optional<std::uint32_t> ParseDigits(std::string_view digits) {
  std::uint32_t value = 0;
  for (const char digit : digits) {
    const auto place = ValueOf(digit);
    if (!place) return std::nullopt;
    value = value << 4 | *place;
  }
  return value;
}

}  // namespace

std::uint32_t HexReader::Number(std::size_t digits) {
  const auto value = mRest.size() < digits ? std::nullopt : ParseDigits(mRest.substr(0, digits));
  if (!value) {
    Spoil();
    return 0;
  }
  mRest.remove_prefix(digits);
  return *value;
}

std::string HexReader::Bytes(std::size_t count) {
  if (mRest.size() / 2 < count) {
    Spoil();
    return {};
  }
  std::string bytes(count, '\0');
  for (char& byte : bytes) byte = static_cast<char>(Number(2));
  return mGood ? bytes : std::string();
}

std::string HexReader::RestAsBytes() {
  if (mRest.size() % 2 != 0) Spoil();
  return Bytes(mRest.size() / 2);
}

char HexReader::Letter() {
  if (mRest.empty()) {
    Spoil();
    return '\0';
  }
  const char letter = mRest.front();
  mRest.remove_prefix(1);
  return letter;
}

void HexReader::Spoil() {
  mGood = false;
  mRest = {};
}

bool IsHexText(std::string_view text) {
  return ParseDigits(text).has_value();
}

std::string HexOfBytes(std::string_view bytes) {
  std::string text;
  AppendHexOfBytes(text, bytes);
  return text;
}

void AppendHexOfBytes(std::string& text, std::string_view bytes) {
  const std::size_t before = text.size();
  text.resize(before + 2 * bytes.size());
  char* place = text.data() + before;
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    *place++ = DigitOf(value >> 4);
    *place++ = DigitOf(value & 0xFU);
  }
}

}  // namespace sim
