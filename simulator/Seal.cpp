#include "simulator/Seal.h"

#include <algorithm>
#include <array>

#include "base/Crc32.h"
#include "base/Hex.h"
#include "simulator/HexText.h"

namespace sim {
namespace {

constexpr std::size_t kTextAt = 3;    // behind "/" and the unit id
constexpr std::size_t kTailSize = 3;  // checksum and CR
constexpr std::size_t kCounterDigits = 4;
constexpr std::size_t kCheckDigits = 8;
constexpr std::size_t kSealSize = kCounterDigits + kCheckDigits;
constexpr std::array<std::string_view, 9> kOwnCommands = {"RO", "WO", "RM", "IN", "AC", "SY", "PD", "PC", "PE"};

std::uint8_t Sum(std::string_view characters) {
  std::uint8_t sum = 0;
  for (const char character : characters) sum = static_cast<std::uint8_t>(sum + static_cast<unsigned char>(character));
  return sum;
}

std::string BeginFrame(std::uint8_t unit, std::size_t textSize) {
  std::string bytes;
  bytes.reserve(kTextAt + textSize + kTailSize);
  bytes.push_back(kFrameStart);
  kv::AppendHex(bytes, unit, 2);
  return bytes;
}

void EndFrame(std::string& bytes) {
  kv::AppendHex(bytes, Sum(std::string_view(bytes).substr(1)), 2);
  bytes.push_back(kFrameEnd);
}

}  // namespace

std::string EncodeFrame(std::uint8_t unit, std::string_view text) {
  std::string bytes = BeginFrame(unit, text.size());
  bytes += text;
  EndFrame(bytes);
  return bytes;
}

std::optional<AsciiFrame> DecodeFrame(std::string_view bytes) {
  if (bytes.size() <= kTextAt + kTailSize || bytes.size() > kLongestFrame) return std::nullopt;
  const std::size_t sumAt = bytes.size() - kTailSize;
  HexReader unitDigits(bytes.substr(1, 2));
  HexReader sumDigits(bytes.substr(sumAt, 2));
  const std::uint32_t unit = unitDigits.Number(2);
  const std::uint32_t sum = sumDigits.Number(2);
  if (!unitDigits.IsGood() || !sumDigits.IsGood() || sum != Sum(bytes.substr(1, sumAt - 1))) return std::nullopt;
  return AsciiFrame{static_cast<std::uint8_t>(unit), bytes.substr(kTextAt, sumAt - kTextAt)};
}

std::string EncodeReply(std::uint8_t unit, std::string_view request, std::string_view reply, std::uint16_t counter) {
  std::string bytes = BeginFrame(unit, reply.size() + kSealSize);
  bytes += reply;
  kv::AppendHex(bytes, counter, kCounterDigits);
  const std::uint32_t checkOfRequest = kv::Crc32("\r", kv::Crc32(request));
  kv::AppendHex(bytes, kv::Crc32(std::string_view(bytes).substr(1), checkOfRequest), kCheckDigits);
  EndFrame(bytes);
  return bytes;
}

bool IsRequestSound(const AsciiFrame& request) {
  if (std::ranges::find(kOwnCommands, request.text.substr(0, 2)) == kOwnCommands.end()) return true;
  if (request.text.size() < 2 + kCheckDigits) return false;
  const std::size_t checkAt = request.text.size() - kCheckDigits;
  const std::uint32_t check = kv::Crc32(request.text.substr(0, checkAt), kv::Crc32(kv::ToHex(request.unit, 2)));
  return request.text.substr(checkAt) == kv::ToHex(check, kCheckDigits);
}

std::string RefusalText(std::string_view request, Refusal refusal) {
  return std::string(request.substr(0, 2)) + "ERROR" + kv::ToHex(static_cast<std::uint32_t>(refusal), 2);
}

}  // namespace sim
