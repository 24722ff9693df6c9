#pragma once

#include <cstdint>
#include <vector>

namespace kv {

// Bytes of a controller's memory or of a binary file. Frames and lines on the wire are std::string, one char a byte.
using Bytes = std::vector<std::uint8_t>;

}  // namespace kv
