#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "base/AtomicFile.h"
#include "clone/CloneSegment.h"

namespace kv {

// Bytes of a full command line.
[[nodiscard]] constexpr std::uint32_t LineSizeOf(MemoryKind kind) {
  return kind == MemoryKind::Flash ? 128 : 256;
}

// False when every byte is 255: erased flash.
[[nodiscard]] bool HasData(std::span<const std::uint8_t> bytes);

// Takes one write frame; its error ends the work.
using FrameSink = std::function<std::expected<void, FileError>(std::string_view frame)>;

// Hands the write frames of a block of memory, in address order, to `sink`. Full lines of flash are left out when they
// are erased; full lines of RAM never are; a short last line is left out when all of it is 255, in both kinds. The
// block must have an even number of bytes.
[[nodiscard]] std::expected<void, FileError> WriteDataLines(std::span<const std::uint8_t> block, std::uint32_t address,
                                                            MemoryKind kind, std::uint8_t unit, const FrameSink& sink);

}  // namespace kv
