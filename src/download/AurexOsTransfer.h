#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/Bytes.h"
#include "download/AurexOsFile.h"
#include "download/FontsFile.h"

namespace kv {

// Largest piece of a topic that one block message carries.
inline constexpr std::size_t kOsChunk = 500;

// The 16 bytes with which a transfer begins.
using OsTransferHeader = std::array<std::uint8_t, 16>;

// One topic as it goes to the controller: `stream` is cut into chunks, each addressed by `base` and its place in it.
struct OsTransferTopic {
  int number = 0;
  std::string name;  // for messages, UTF-8
  std::uint32_t base = 0;
  Bytes stream;  // size in the controller (4 bytes), size here (4 bytes), data
  std::uint32_t plainSize = 0;
  std::uint32_t sentSize = 0;      // less than plainSize when it is compressed, else the same
  bool compressionFailed = false;  // it goes as it is, which the user is told
};

// All that an O/S download sends between the boot loader's start and the programming, in this order.
struct OsTransfer {
  OsTransferHeader header{};
  std::vector<OsTransferTopic> topics;
};

// Bytes of all streams, and chunks in which they go.
[[nodiscard]] std::uint64_t StreamBytes(const OsTransfer& transfer);
[[nodiscard]] std::uint64_t ChunkCount(const OsTransfer& transfer);

// Compresses as zlib does (RFC 1950); nothing when it fails.
using CompressBlock = std::function<std::optional<Bytes>(std::span<const std::uint8_t>)>;

// The transfer of an O/S and its fonts, which must be of one O/S model. An engine hands over a `compress` that gives
// its pacer a turn now and then (deflate/Deflate.h).
[[nodiscard]] OsTransfer MakeOsTransfer(const AurexOsFile& os, const FontsFile& fonts);
[[nodiscard]] OsTransfer MakeOsTransfer(const AurexOsFile& os, const FontsFile& fonts, const CompressBlock& compress);

}  // namespace kv
