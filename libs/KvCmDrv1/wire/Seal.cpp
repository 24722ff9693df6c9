#include "KvCmDrv1/wire/Seal.h"

#include <array>

#include "base/Crc32.h"
#include "base/Hex.h"

namespace kv {
namespace {

constexpr std::size_t kCounterDigits = 4;
constexpr std::size_t kCheckDigits = 8;

std::array<char, 2> UnitDigits(std::uint8_t unit) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  return {kDigits[unit >> 4], kDigits[unit & 0xFU]};
}

}  // namespace

Seal::Seal(std::string_view requestText) : mCheckOfRequest(Crc32("\r", Crc32(requestText))) {}

std::optional<SealedReply> Seal::Open(const AsciiFrame& frame) const {
  constexpr std::size_t kSeal = kCounterDigits + kCheckDigits;
  if (frame.text.size() <= kSeal) return std::nullopt;
  const std::size_t sealed = frame.text.size() - kCheckDigits;
  const std::optional<std::uint32_t> check = ParseUpperHex(frame.text.substr(sealed));
  const std::optional<std::uint32_t> counter =
      ParseUpperHex(frame.text.substr(sealed - kCounterDigits, kCounterDigits));
  if (!check || !counter || *counter == 0) return std::nullopt;

  const std::array<char, 2> unit = UnitDigits(frame.unit);
  const std::uint32_t ofUnit = Crc32(std::string_view(unit.data(), unit.size()), mCheckOfRequest);
  if (Crc32(frame.text.substr(0, sealed), ofUnit) != *check) return std::nullopt;
  return SealedReply{frame.text.substr(0, sealed - kCounterDigits), static_cast<std::uint16_t>(*counter)};
}

int StepsAhead(std::uint16_t counter, std::uint16_t last) {
  constexpr int kRing = 65535;
  return (counter - last + kRing) % kRing;
}

bool IsNewer(std::uint16_t counter, std::uint16_t last) {
  const int ahead = StepsAhead(counter, last);
  return ahead >= 1 && ahead <= 32767;
}

}  // namespace kv
