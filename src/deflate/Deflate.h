#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "base/Bytes.h"

namespace kv {

// The bytes compressed as small as zlib can (a zlib stream, RFC 1950); they may come out larger. Nothing when memory
// runs out.
[[nodiscard]] std::optional<Bytes> Deflate(std::span<const std::uint8_t> bytes);

}  // namespace kv
