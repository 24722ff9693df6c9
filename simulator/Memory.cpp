#include "simulator/Memory.h"

#include <algorithm>
#include <random>

namespace sim {
namespace {

constexpr std::uint8_t kErased = 255;
constexpr std::size_t kLine = 128;

// clang-format off
constexpr Segment kSmallSegments[] = {
    {"OP", 'R', 0x00100000,  0x0612},
    {"DT", 'R', 0x00110000,  0x0A36},
    {"HW", 'F', 0x00200000,  0x00D2},
    {"FT", 'F', 0x00210000,  0x0C4A},
    {"MM", 'R', 0x00220000,  0x0156},
    {"ZZ", 'R', 0x00230000,  0x0066},
    {"AP", 'F', 0x00300000,  0x4E3A},
    {"OS", 'F', 0x00400000,  0x251E},
};
constexpr Segment kPlainSegments[] = {
    {"OP", 'R', 0x00100000,  0x17A2},
    {"DT", 'R', 0x00110000,  0x4E26},
    {"HW", 'F', 0x00200000,  0x0152},
    {"FT", 'F', 0x00210000,  0x2C4A},
    {"MM", 'R', 0x00220000,  0x0356},
    {"ZZ", 'R', 0x00230000,  0x0066},
    {"AP", 'F', 0x00300000,  0x8E3A},
    {"OS", 'F', 0x00400000,  0xA51E},
};
constexpr Segment kLargeSegments[] = {
    {"OP", 'R', 0x01000000,  0x2FA6},
    {"DT", 'R', 0x01100000,  0x8E2A},
    {"HW", 'F', 0x02000000,  0x0252},
    {"FT", 'F', 0x02100000,  0x5C4E},
    {"MM", 'R', 0x02200000,  0x075A},
    {"ZZ", 'R', 0x02300000,  0x0066},
    {"AP", 'F', 0x03000000, 0x14E3A},
    {"OS", 'F', 0x04000000, 0x1251E},
};
// clang-format on

std::span<const Segment> SegmentsOf(MemoryLayout layout) {
  if (layout == MemoryLayout::Small) return kSmallSegments;
  if (layout == MemoryLayout::Plain) return kPlainSegments;
  return kLargeSegments;
}

bool HasErasedEnd(const Segment& segment) {
  return segment.code == "DT" || segment.code == "FT" || segment.code == "AP";
}

kv::Bytes FirstContent(const Segment& segment, std::uint32_t seed) {
  std::mt19937 chance(seed ^ segment.start);
  kv::Bytes bytes(segment.length, kErased);
  const std::size_t used = HasErasedEnd(segment) ? bytes.size() * 4 / 5 : bytes.size();
  for (std::size_t line = 0; line < used; line += kLine) {
    const auto kind = chance() % 8;
    if (kind == 0) continue;  // an erased line
    const auto end = bytes.begin() + static_cast<std::ptrdiff_t>(std::min(line + kLine, used));
    std::generate(bytes.begin() + static_cast<std::ptrdiff_t>(line), end,
                  [&] { return kind == 1 ? std::uint8_t{0} : static_cast<std::uint8_t>(chance() >> 24); });
  }
  return bytes;
}

}  // namespace

Memory::Memory(MemoryLayout layout, std::uint32_t seed) : mSegments(SegmentsOf(layout)) {
  for (const Segment& segment : mSegments) mContents.push_back(FirstContent(segment, seed));
}

std::size_t Memory::IndexOf(std::string_view code) const {
  return static_cast<std::size_t>(std::ranges::find(mSegments, code, &Segment::code) - mSegments.begin());
}

Result<std::size_t> Memory::Locate(std::uint32_t address, std::size_t length) const {
  const auto holds = [&](const Segment& segment) {
    return length > 0 && length <= segment.length && address >= segment.start &&
           address - segment.start <= segment.length - length;
  };
  const auto segment = std::ranges::find_if(mSegments, holds);
  if (segment == mSegments.end()) return Refuse(Refusal::OutsideMemory);
  return static_cast<std::size_t>(segment - mSegments.begin());
}

Result<std::string> Memory::Read(std::uint32_t address, std::size_t length) const {
  const auto segment = Locate(address, length);
  if (!segment) return Refuse(segment.error());
  const auto first = mContents[*segment].begin() + (address - mSegments[*segment].start);
  return std::string(first, first + static_cast<std::ptrdiff_t>(length));
}

void Memory::Write(std::size_t segment, std::uint32_t offset, std::string_view bytes) {
  std::ranges::copy(bytes, mContents[segment].begin() + offset);
}

void Memory::Erase(std::size_t segment) {
  std::ranges::fill(mContents[segment], kErased);
}

}  // namespace sim
