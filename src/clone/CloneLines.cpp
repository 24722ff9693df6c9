#include "clone/CloneLines.h"

#include <algorithm>

#include "clone/CloneFrame.h"

namespace kv {

bool HasData(std::span<const std::uint8_t> bytes) {
  constexpr std::uint8_t kErased = 255;
  return std::ranges::any_of(bytes, [](std::uint8_t byte) { return byte != kErased; });
}

std::expected<void, FileError> WriteDataLines(std::span<const std::uint8_t> block, std::uint32_t address,
                                              MemoryKind kind, std::uint8_t unit, const FrameSink& sink) {
  const std::size_t lineSize = LineSizeOf(kind);
  while (!block.empty()) {
    const auto line = block.first(std::min(lineSize, block.size()));
    const bool isAlwaysWritten = kind == MemoryKind::Ram && line.size() == lineSize;
    if (isAlwaysWritten || HasData(line)) {
      if (auto written = sink(BuildWriteFrame(unit, kind, address, line)); !written) return written;
    }
    address += static_cast<std::uint32_t>(line.size());
    block = block.subspan(line.size());
  }
  return {};
}

}  // namespace kv
