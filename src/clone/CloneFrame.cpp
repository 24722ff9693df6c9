#include "clone/CloneFrame.h"

#include <optional>
#include <utility>

#include "base/Hex.h"
#include "link/AsciiFrame.h"

namespace kv {
namespace {

constexpr std::size_t kUnitDigits = 2;
constexpr std::size_t kChecksumDigits = 2;
constexpr std::size_t kCountDigits = 2;

// Of the text of a write frame: where address, count and data begin.
constexpr std::size_t kAddressAt = 3;
constexpr std::size_t kCountAt = kAddressAt + kAddressDigits;
constexpr std::size_t kDataAt = kCountAt + kCountDigits;

// The bytes of flash change places within each word, on their way in and out.
void SwapWords(Bytes& bytes) {
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) std::swap(bytes[i], bytes[i + 1]);
}

std::expected<std::string_view, std::string> TextOf(std::string_view line) {
  if (!line.starts_with('/')) return std::unexpected("expected a frame, which begins with \"/\"");
  if (!line.ends_with('\r')) return std::unexpected("expected CR at the end of the frame: the line has been cut");
  const std::string_view inner = line.substr(1, line.size() - 2);
  if (inner.size() <= kUnitDigits + kChecksumDigits || !AreUpperHexDigits(inner.substr(0, kUnitDigits))) {
    return std::unexpected("expected unit id, command and checksum");
  }
  const std::size_t checksumAt = inner.size() - kChecksumDigits;
  const std::string checksum = ToHex(AsciiChecksum(inner.substr(0, checksumAt)), kChecksumDigits);
  if (inner.substr(checksumAt) != checksum) return std::unexpected("expected the checksum " + checksum);
  return inner.substr(kUnitDigits, checksumAt - kUnitDigits);
}

// Fills in what a text that begins with "WD" says.
std::expected<void, std::string> ReadWrite(std::string_view text, CloneFrame& frame) {
  if (text.size() < kDataAt || (text[2] != 'F' && text[2] != 'R')) {
    return std::unexpected("expected a memory letter F or R, address and count");
  }
  const std::string_view data = text.substr(kDataAt);
  if (!AreUpperHexDigits(text.substr(kAddressAt))) {
    return std::unexpected("expected upper-case hexadecimal digits behind the memory letter");
  }
  const std::size_t count = ParseHex(text.substr(kCountAt, kCountDigits)).value_or(0);
  const std::size_t bytes = count == 0 ? kMostFrameBytes : count;
  if (bytes % 2 != 0) return std::unexpected("expected an even number of bytes");
  if (data.size() != 2 * bytes) return std::unexpected("expected " + std::to_string(2 * bytes) + " digits of data");
  frame.kind = text[2] == 'F' ? MemoryKind::Flash : MemoryKind::Ram;
  frame.address = ParseHex(text.substr(kAddressAt, kAddressDigits)).value_or(0);
  frame.data = HexStringToBytes(data).value_or(Bytes());
  if (frame.kind == MemoryKind::Flash) SwapWords(frame.data);
  return {};
}

}  // namespace

std::string BuildWriteFrame(std::uint8_t unit, MemoryKind kind, std::uint32_t address,
                            std::span<const std::uint8_t> data) {
  Bytes ordered(data.begin(), data.end());
  if (kind == MemoryKind::Flash) SwapWords(ordered);
  std::string text = "WD";
  text.reserve(kDataAt + 2 * data.size());
  text += LetterOf(kind);
  AppendHex(text, address, kAddressDigits);
  AppendHex(text, static_cast<std::uint32_t>(data.size()), kCountDigits);
  AppendHexBytes(text, ordered);
  return BuildFrame(unit, text);
}

std::string BuildEndFrame(std::uint8_t unit) {
  return BuildFrame(unit, "ED");
}

std::expected<CloneFrame, std::string> ParseCloneFrame(std::string_view line) {
  const auto text = TextOf(line);
  if (!text) return std::unexpected(text.error());
  CloneFrame frame;
  frame.unit = HexPairToByte(line.substr(1, kUnitDigits)).value_or(0);
  frame.isEnd = *text == "ED";
  if (frame.isEnd) return frame;
  if (!text->starts_with("WD")) return std::unexpected("expected the command WD or ED");
  if (const auto read = ReadWrite(*text, frame); !read) return std::unexpected(read.error());
  return frame;
}

std::string WithUnit(std::string_view line, std::uint8_t unit) {
  const auto text = TextOf(line);
  const bool isOther = text && HexPairToByte(line.substr(1, kUnitDigits)) != unit;
  return isOther ? BuildFrame(unit, *text) : std::string(line);
}

}  // namespace kv
