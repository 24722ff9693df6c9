#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

// The kinds of controller memory, with the numbers that tools give them. Flash erases to 255 and is carried in 16-bit
// words with their two bytes swapped; RAM is carried byte by byte.
enum class MemoryKind : std::int32_t { Flash = 0, Ram = 1 };

// The letter of a kind in frames.
[[nodiscard]] constexpr char LetterOf(MemoryKind kind) {
  return kind == MemoryKind::Flash ? 'F' : 'R';
}

// Hexadecimal digits of an address, in frames, files and texts.
inline constexpr std::size_t kAddressDigits = 8;

// One entry of a controller's segment table: `length` bytes of memory from controller address `start` on.
struct CloneSegment {
  std::string code;  // 2 characters
  MemoryKind kind = MemoryKind::Ram;
  std::uint32_t start = 0;
  std::uint32_t length = 0;

  bool operator==(const CloneSegment&) const = default;
};

// Reads the reply to "GI" (the text with its checksum still at the end): "GI1", count (4 hexadecimal digits), then per
// segment code, kind letter ("F" is flash, any other RAM), start and length (8 digits each). The table keeps the
// order of the reply and is never empty. A refusal, a refused password, a count of 0, a length that does not fit the
// count, a field that is no number, a code that cannot be printed and memory past address FFFFFFFF are errors; the
// text says which, and in which segment.
[[nodiscard]] std::expected<std::vector<CloneSegment>, std::string> ParseSegmentTable(std::string_view reply);

// Which of the optional segments a clone takes: the state of the four boxes of the cloner window.
struct SegmentBoxes {
  bool op = true;
  bool dt = true;
  bool ap = true;
  bool os = true;

  bool operator==(const SegmentBoxes&) const = default;
};

// HW, FT and MM always, OP, DT, AP and OS by their box, any other code never.
[[nodiscard]] bool IsIncluded(std::string_view code, const SegmentBoxes& boxes);

}  // namespace kv
