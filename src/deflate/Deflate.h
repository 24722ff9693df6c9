#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>

#include "base/Bytes.h"

namespace kv {

// The bytes compressed (a zlib stream, RFC 1950); they may come out larger. Nothing when memory runs out. `turn`, which
// may be empty, is called between pieces that take a few milliseconds each: a megabyte takes a window's patience.
[[nodiscard]] std::optional<Bytes> Deflate(std::span<const std::uint8_t> bytes, const std::function<void()>& turn = {});

}  // namespace kv
